#include "core/globalregs.h"

#include "core/settings.h"
#include "core/settingskeys.h"
#include "formats/inflate.h"
#include "formats/textfile.h"

namespace corvalt {

namespace {

constexpr std::int32_t kDefaultBackupCount = 30;
constexpr TextView kBackupCountValue = u"regbackupcount";
constexpr TextView kBackupFolderValue = u"regbackupfolder";

std::unique_ptr<RegistryStore> UserStore(TSystem& system) {
  std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  store->SetRootKey(kHkeyCurrentUser);
  return store;
}

std::vector<Text> LoadExclusions(TSystem& system, const TGlobalVars& vars) {
  std::vector<std::uint8_t> file;
  if (system.Files.ReadFile(vars.ProgramFolder + u"data\\registry.dat", file).Failed())
    return {};
  const auto content = InflateDataFile(file);
  return content ? ParseExclusions(SplitLines(DecodeTextFile(*content, system.Locale))) : std::vector<Text>();
}

void LoadCleanerSettings(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg) {
  const std::unique_ptr<RegistryStore> store = UserStore(system);
  if (!store->OpenKey(kCleanerSettingsKey, true))
    return;
  reg.BackupCount =
      StoredInteger(system, kCleanerSettingsKey, kBackupCountValue).value_or(kDefaultBackupCount);
  Text folder = store->ReadString(kBackupFolderValue);
  if (folder.empty())
    folder = vars.AppDataFolder + u"TessalySoft\\Corvalt\\Backups\\";
  reg.BackupFolder = WithTrailingBackslash(folder);
  store->CloseKey();
}

}  // namespace

std::vector<Text> ParseExclusions(const std::vector<Text>& lines) {
  std::vector<Text> exclusions;
  for (const Text& line : lines) {
    const Text trimmed = Trim(line);
    if (trimmed.starts_with(u';'))
      continue;
    Text entry = Trim(CutAt(u"//", trimmed));
    if (!entry.empty())
      exclusions.push_back(std::move(entry));
  }
  return exclusions;
}

std::vector<Text> LoadIgnoreList(TSystem& system) {
  const std::unique_ptr<RegistryStore> store = UserStore(system);
  std::vector<Text> entries;
  store->OpenKey(kIgnoreListKey, true);
  for (Text& name : store->GetValueNames()) {
    if (store->ReadBool(name))
      entries.push_back(std::move(name));
  }
  store->CloseKey();
  return entries;
}

void FillGlobalReg(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg) {
  reg.IgnoreList = LoadIgnoreList(system);
  reg.BuiltInExclusions = LoadExclusions(system, vars);
  LoadCleanerSettings(system, vars, reg);
}

void SaveCleanerSettings(TSystem& system, const TGlobalReg& reg) {
  const std::unique_ptr<RegistryStore> store = UserStore(system);
  store->OpenKey(kCleanerSettingsKey, true);
  store->WriteString(kBackupFolderValue, reg.BackupFolder);
  store->WriteInteger(kBackupCountValue, reg.BackupCount);
  store->CloseKey();
}

}  // namespace corvalt
