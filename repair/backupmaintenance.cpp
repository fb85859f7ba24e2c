#include "repair/backupmaintenance.h"

#include <algorithm>
#include <array>

#include "base/lettercase.h"
#include "repair/backupname.h"

namespace corvalt {

namespace {

constexpr TextView kLegacyFolder = u"TessalySoft\\Corvalt\\Backups\\";

// Where other modules of the suite name further files of a backup, and what stands for none.
constexpr std::array<TextView, 4> kFurtherFileKeys = {u"29601", u"29602", u"29603", u"29606"};
constexpr TextView kNoFile = u"nofile";

// Days after which a backup is too old, by the number that the suite's setting holds; another number means
// never. Whatever it holds, none is removed for its age before kAgeFloor days.
constexpr std::array<std::int32_t, 6> kAgeLimits = {7, 14, 21, 30, 60, 90};
constexpr std::int32_t kNoAgeLimit = 99999999;
constexpr std::int32_t kAgeFloor = 90;

std::int32_t AgeLimitOf(std::int32_t setting) {
  const bool isListed = setting >= 0 && setting < static_cast<std::int32_t>(kAgeLimits.size());
  const std::int32_t days = isListed ? kAgeLimits[static_cast<std::size_t>(setting)] : kNoAgeLimit;
  return std::max(days, kAgeFloor);
}

// Lists the names in the suite's index, and returns those that were not listed before.
std::vector<Text> ListInSuite(TBackupFolder& suite, const std::vector<Text>& names) {
  std::vector<Text> added;
  suite.ChangeIndex([&names, &added](TIniFile& index) {
    for (const Text& name : names) {
      if (!HasSection(index, name))
        added.push_back(name);
      index.Write(name, kTypeKey, kCleanerModuleId);
    }
  });
  return added;
}

// Takes out of the suite's index the names that were just added and have no file. An old index that can't be
// deleted is read again at each start, and would list backups again that the user has removed.
void TakeOutWithoutFile(TBackupFolder& suite, const std::vector<Text>& added) {
  suite.ChangeIndex([&suite, &added](TIniFile& index) {
    for (const Text& name : added) {
      if (!suite.HasFile(name))
        index.EraseSection(name);
    }
  });
}

void MoveFiles(TSystem& system, TBackupFolder& legacy, const TBackupFolder& suite,
               const std::vector<Text>& names) {
  for (const Text& name : names) {
    // A file that stays behind is no failure: its backup is listed all the same.
    if (legacy.HasFile(name))
      static_cast<void>(system.Files.MoveFile(legacy.Path() + name, suite.Path() + name));
  }
}

bool IsOfStore(TextView fileName, TextView decimalSign) {
  if (fileName.ends_with(kBackupLogEnd))
    fileName.remove_suffix(kBackupLogEnd.size());
  return EqualIgnoringCase(fileName, kBackupIndexName) || TimeOfBackupName(fileName, decimalSign).has_value();
}

}  // namespace

bool HasSection(const TIniFile& index, TextView name) {
  const std::vector<Text> names = index.SectionNames();
  return std::any_of(names.begin(), names.end(),
                     [name](const Text& each) { return EqualIgnoringCase(each, Trim(name)); });
}

bool IsOfModule(const TIniFile& index, TextView section, TextView moduleId) {
  return EqualIgnoringCase(index.Read(section, kTypeKey).value_or(Text()), moduleId);
}

void MigrateBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop) {
  const Text legacyPath = vars.AppDataFolder + Text(kLegacyFolder);
  if (!system.Files.Info(legacyPath + Text(kBackupIndexName)).Exists)
    return;
  // A link may lead to the suite's folder, whose index would then be taken for the old one and deleted.
  if (system.Files.Info(TextView(legacyPath).substr(0, legacyPath.size() - 1)).IsLink)
    return;
  const std::unique_ptr<THeldLock> lock = LockBackups(system, vars, stop);
  TBackupFolder legacy = TBackupFolder::Open(system, vars, legacyPath);
  const TSystemError made = system.Files.MakeFolders(vars.SuiteBackupsFolder);
  if (made.Failed())
    throw TSystemException(made, vars.SuiteBackupsFolder);
  TBackupFolder suite = TBackupFolder::Open(system, vars, vars.SuiteBackupsFolder);
  // A link further up in the path may lead there too.
  if (suite.IsSame(legacy))
    return;
  const std::vector<Text> names = legacy.ReadIndex().SectionNames();
  const std::vector<Text> added = ListInSuite(suite, names);
  MoveFiles(system, legacy, suite, names);
  const TSystemError deleted = legacy.DeleteIndex();
  if (!deleted.Failed())
    return;
  TakeOutWithoutFile(suite, added);
  throw TSystemException(deleted, legacyPath + Text(kBackupIndexName));
}

TBackupPruning::TBackupPruning(TSystem& system, const TGlobalVars& vars, TBackupFolder& folder,
                               const std::function<bool()>& stop)
    : m_system(system), m_vars(vars), m_folder(folder), m_stop(stop) {
}

void TBackupPruning::Run() {
  m_folder.ChangeIndex([this](TIniFile& index) {
    const std::vector<Text> names = index.SectionNames();
    PruneByAge(index, names);
    // These are all names, also those that were just removed for their age: the limit counts them too, so
    // that more backups may go than it asks for.
    PruneByCount(index, names);
  });
}

void TBackupPruning::PruneByAge(TIniFile& index, const std::vector<Text>& names) {
  for (const Text& name : names) {
    if (m_stop())
      return;
    if (!IsTooOld(name))
      continue;
    DeleteFiles(index, name);
    for (const TextView key : kFurtherFileKeys)
      Delete(index.Read(name, key).value_or(Text(kNoFile)));
    index.EraseSection(name);
  }
}

bool TBackupPruning::IsTooOld(TextView name) {
  const TDateTime created = TimeOfBackupName(name, m_system.Locale.DecimalSeparator()).value_or(0);
  return m_system.Clock.Now() - created > AgeLimitOf(m_vars.BackupsDelete);
}

void TBackupPruning::PruneByCount(TIniFile& index, std::vector<Text> names) {
  std::sort(names.begin(), names.end(), std::greater<>());
  const auto count = static_cast<std::int64_t>(names.size());
  if (count < m_vars.BackupsMax)
    return;
  // One less than the limit stays, which leaves room for the next repair's backup.
  const std::int64_t last = std::max<std::int64_t>(std::int64_t{m_vars.BackupsMax} - 1, 0);
  for (std::int64_t i = count - 1; i >= last && !m_stop(); --i) {
    const Text& name = names[static_cast<std::size_t>(i)];
    DeleteFiles(index, name);
    index.EraseSection(name);
  }
}

// The file of the backup, and of a backup of this module that is gone the list of changes beside it.
void TBackupPruning::DeleteFiles(const TIniFile& index, const Text& name) {
  const std::optional<TBackupName> backup = TBackupName::FromText(name);
  if (Delete(name) && backup && IsOfModule(index, name, kCleanerModuleId))
    Delete(backup->LogName());
}

// Whether there is no such file any more. A file that can't be deleted stays; its backup is taken out of the
// index all the same.
bool TBackupPruning::Delete(TextView name) {
  return !m_folder.DeleteFile(name).Failed();
}

void RemoveTemporaryFiles(TSystem& system, TBackupFolder& folder) {
  std::vector<TFolderEntry> entries;
  if (system.Probe.ListFolder(folder.Path(), entries) != FileSystemProbe::TListing::Listed)
    return;
  const Text decimalSign = system.Locale.DecimalSeparator();
  for (const TFolderEntry& entry : entries) {
    const std::optional<TTemporaryName> name = ParseTemporaryName(entry.Name);
    if (name && IsOfStore(name->Target, decimalSign) && !system.Interprocess.ProcessRuns(name->ProcessId))
      static_cast<void>(folder.DeleteFile(entry.Name));
  }
}

}  // namespace corvalt
