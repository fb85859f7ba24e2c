#include "core/globalregs.h"

#include "core/datafiles.h"
#include "core/settings.h"
#include "core/settingskeys.h"
#include "formats/inflate.h"
#include "formats/textfile.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr std::int32_t kDefaultBackupCount = 30;
constexpr TextView kBackupCountValue = u"regbackupcount";
constexpr TextView kBackupFolderValue = u"regbackupfolder";

std::vector<Text> LoadExclusions(TSystem& system, const TGlobalVars& vars) {
  const auto file = ReadDataFile(system.Files, vars.ProgramFolder + u"data\\registry.dat");
  const auto content = file ? InflateDataFile(*file) : std::nullopt;
  std::vector<Text> exclusions;
  if (!content)
    return exclusions;
  VisitFileLines(*content, system.Locale, [&exclusions](TextView line) {
    if (std::optional<Text> entry = ParseExclusion(line))
      exclusions.push_back(*std::move(entry));
  });
  return exclusions;
}

void LoadCleanerSettings(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*store, kCleanerSettingsKey, true);
  if (!key)
    return;
  reg.BackupCount =
      StoredInteger(system, kCleanerSettingsKey, kBackupCountValue).value_or(kDefaultBackupCount);
  Text folder = store->ReadString(kBackupFolderValue);
  if (folder.empty())
    folder = vars.AppDataFolder + u"TessalySoft\\Corvalt\\Backups\\";
  reg.BackupFolder = WithTrailingBackslash(folder);
}

}  // namespace

std::optional<Text> ParseExclusion(TextView line) {
  const Text trimmed = Trim(line);
  Text entry = Trim(CutAt(u"//", trimmed));
  if (trimmed.starts_with(u';') || entry.empty())
    return std::nullopt;
  return entry;
}

std::vector<Text> LoadIgnoreList(TSystem& system) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  std::vector<Text> entries;
  const TOpenKey key(*store, kIgnoreListKey, true);
  for (Text& name : store->GetValueNames()) {
    if (store->ReadBool(name))
      entries.push_back(std::move(name));
  }
  return entries;
}

void FillGlobalReg(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg) {
  reg.IgnoreList = LoadIgnoreList(system);
  reg.BuiltInExclusions = LoadExclusions(system, vars);
  LoadCleanerSettings(system, vars, reg);
}

void SaveCleanerSettings(TSystem& system, const TGlobalReg& reg) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*store, kCleanerSettingsKey, true);
  store->WriteString(kBackupFolderValue, reg.BackupFolder);
  store->WriteInteger(kBackupCountValue, reg.BackupCount);
}

bool DeleteCleanerSettings(TSystem& system) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  store->DeleteKey(kCleanerKey);
  return !store->KeyExists(kCleanerKey);
}

}  // namespace corvalt
