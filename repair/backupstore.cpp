#include "repair/backupstore.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/lettercase.h"
#include "core/languagetexts.h"
#include "repair/backupname.h"

namespace corvalt {

namespace {

constexpr TextView kIndexName = u"index.ini";
constexpr TextView kIndexLock = u"TessalySoft Tessaly Utilities Backups ";
// The end of a folder tells it from others; a lock's name has its limit.
constexpr std::size_t kFolderInLockName = 200;
constexpr TextView kTypeKey = u"Type";
constexpr TextView kLegacyFolder = u"TessalySoft\\Corvalt\\Backups\\";

// Where other modules of the suite name further files of a backup, and what stands for none.
constexpr std::array<TextView, 4> kFurtherFileKeys = {u"29601", u"29602", u"29603", u"29606"};
constexpr TextView kNoFile = u"nofile";

// Days by the suite's setting; no backup is removed before the floor.
constexpr std::array<std::int32_t, 6> kAgeLimits = {7, 14, 21, 30, 60, 90};
constexpr std::int32_t kNoAgeLimit = 99999999;
constexpr std::int32_t kAgeFloor = 90;

std::int32_t AgeLimitOf(std::int32_t setting) {
  const bool isListed = setting >= 0 && setting < static_cast<std::int32_t>(kAgeLimits.size());
  const std::int32_t days = isListed ? kAgeLimits[static_cast<std::size_t>(setting)] : kNoAgeLimit;
  return std::max(days, kAgeFloor);
}

bool SaysMissing(TSystemError error) {
  return error.Code == kErrorFileNotFound || error.Code == kErrorPathNotFound;
}

bool IsOfModule(const TIniFile& index, TextView name, TextView moduleId) {
  return EqualIgnoringCase(index.Read(name, kTypeKey).value_or(Text()), moduleId);
}

}  // namespace

BackupStore::BackupStore(TSystem& system, const TGlobalVars& vars)
    : m_system(system), m_vars(vars), m_exporter(system.Raw, system.Locale) {
}

Text BackupStore::BeginBackup() {
  const std::unique_ptr<THeldLock> lock = LockStore();
  const TSystemError error = m_system.Files.MakeFolders(m_vars.SuiteBackupsFolder);
  if (error.Failed())
    throw TSystemException(error, m_vars.SuiteBackupsFolder);
  m_exporter.Clear();
  m_collected = TDeletionRight();
  return BackupNameOf(m_system.Clock.Now(), m_system.Locale.DecimalSeparator());
}

TExportResult BackupStore::AddKeyToBackup(const TKeyPath& key) {
  const std::size_t keysBefore = m_exporter.Exported().size();
  const TExportResult result = m_exporter.ExportKey(key.RootKey(), key.Path());
  if (result == TExportResult::Done)
    m_collected.CoverKey(key);
  CollectContent(keysBefore);
  return result;
}

TExportResult BackupStore::AddValueToBackup(const TKeyPath& key, TextView valueName) {
  const std::size_t keysBefore = m_exporter.Exported().size();
  const TExportResult result = m_exporter.ExportValue(key.RootKey(), key.Path(), valueName);
  if (result == TExportResult::Done)
    m_collected.CoverValue(key, valueName);
  CollectContent(keysBefore);
  return result;
}

void BackupStore::CollectContent(std::size_t keysBefore) {
  for (const TExportedKey& exported : m_exporter.Exported().subspan(keysBefore)) {
    if (const std::optional<TKeyPath> key = TKeyPath::Parse(exported.RootKey, exported.KeyPath))
      m_collected.AddContent(*key, exported.Values);
  }
}

bool BackupStore::HoldsKey(const TKeyPath& key) const {
  return m_collected.CoversKey(key);
}

TDeletionRight BackupStore::CommitBackup(TextView name) {
  const std::unique_ptr<THeldLock> lock = LockStore();
  WriteVerifiedFile(name);
  ListInIndex(name);
  return std::exchange(m_collected, TDeletionRight());
}

void BackupStore::WriteVerifiedFile(TextView name) {
  const Text path = BackupFilePath(name);
  const TSystemError written = m_system.Files.ReplaceFile(path, m_exporter.ExportedText());
  if (written.Failed())
    throw TSystemException(written, path);
  std::vector<std::uint8_t> bytes;
  const TSystemError read = m_system.Files.ReadFile(path, bytes);
  if (read.Failed())
    throw TSystemException(read, path);
  if (!m_exporter.SaysWhatWasExported(bytes))
    throw TProgramException(PlainText(LanguageText(m_vars.Texts, TextId::BackupNotVerified)));
}

void BackupStore::ListInIndex(TextView name) {
  ChangeLockedIndex([name](TIniFile& index) { index.Write(name, kTypeKey, kCleanerModuleId); });
  if (!IsOfModule(ReadIndex(m_vars.SuiteBackupsFolder), name, kCleanerModuleId))
    throw TProgramException(PlainText(LanguageText(m_vars.Texts, TextId::BackupNotVerified)));
}

std::vector<TBackup> BackupStore::ListBackups(TextView moduleId) {
  const std::unique_ptr<THeldLock> lock = LockStore();
  const TIniFile index = ReadIndex(m_vars.SuiteBackupsFolder);
  const Text decimalSign = m_system.Locale.DecimalSeparator();
  std::vector<TBackup> backups;
  for (Text& name : index.SectionNames()) {
    const std::optional<TDateTime> created = TimeOfBackupName(name, decimalSign);
    if (!created || !IsOfModule(index, name, moduleId))
      continue;
    const bool hasFile = HasFile(m_vars.SuiteBackupsFolder, name);
    const std::int64_t size = hasFile ? m_system.Files.Info(BackupFilePath(name)).Size : 0;
    backups.push_back({std::move(name), *created, size});
  }
  return backups;
}

void BackupStore::RemoveBackup(TextView name) {
  ChangeIndex([this, name](TIniFile& index) {
    const TSystemError error = DeleteStoreFile(name);
    if (error.Failed())
      throw TSystemException(error, BackupFilePath(name));
    index.EraseSection(name);
  });
}

Text BackupStore::BackupFilePath(TextView name) const {
  return IsPlainFileName(name) ? m_vars.SuiteBackupsFolder + Text(name) : Text();
}

TSystemError BackupStore::ReadBackup(TextView name, std::vector<std::uint8_t>& bytes) {
  if (!HasFile(m_vars.SuiteBackupsFolder, name))
    return {kErrorFileNotFound};
  return m_system.Files.ReadFile(BackupFilePath(name), bytes);
}

void BackupStore::MigrateLegacyBackups() {
  const Text legacyFolder = m_vars.AppDataFolder + Text(kLegacyFolder);
  const Text legacyIndex = legacyFolder + Text(kIndexName);
  // A link may lead to the suite's folder, whose index would then be taken for the old one and deleted.
  if (!m_system.Files.Info(legacyIndex).Exists || IsLinkedFolder(legacyFolder))
    return;
  const std::vector<Text> names = ReadIndex(legacyFolder).SectionNames();
  const TSystemError folderError = m_system.Files.MakeFolders(m_vars.SuiteBackupsFolder);
  if (folderError.Failed())
    throw TSystemException(folderError, m_vars.SuiteBackupsFolder);
  ChangeIndex([&names](TIniFile& index) {
    for (const Text& name : names)
      index.Write(name, kTypeKey, kCleanerModuleId);
  });
  for (const Text& name : names)
    MoveLegacyFile(legacyFolder, name);
  m_system.Files.DeleteFile(legacyIndex);
}

void BackupStore::MoveLegacyFile(const Text& legacyFolder, TextView name) {
  // A file that stays behind is no failure: its backup is listed all the same.
  if (HasFile(legacyFolder, name))
    m_system.Files.MoveFile(legacyFolder + Text(name), BackupFilePath(name));
}

void BackupStore::PruneBackups(const std::function<bool()>& stop) {
  const std::vector<Text> names = [this] {
    const std::unique_ptr<THeldLock> lock = LockStore();
    return ReadIndex(m_vars.SuiteBackupsFolder).SectionNames();
  }();
  PruneByAge(names, stop);
  // Names that were erased by age are counted once more, which may remove more than needed.
  PruneByCount(names, stop);
}

void BackupStore::PruneByAge(const std::vector<Text>& names, const std::function<bool()>& stop) {
  const std::int32_t limitInDays = AgeLimitOf(m_vars.BackupsDelete);
  for (const Text& name : names) {
    if (stop())
      return;
    if (!IsTooOld(name, limitInDays))
      continue;
    ChangeIndex([this, &name](TIniFile& index) {
      DeleteStoreFile(name);
      for (const TextView key : kFurtherFileKeys)
        DeleteStoreFile(index.Read(name, key).value_or(Text(kNoFile)));
      index.EraseSection(name);
    });
  }
}

bool BackupStore::IsTooOld(TextView name, std::int32_t limitInDays) {
  const TDateTime created = TimeOfBackupName(name, m_system.Locale.DecimalSeparator()).value_or(0);
  return m_system.Clock.Now() - created > limitInDays;
}

void BackupStore::PruneByCount(std::vector<Text> names, const std::function<bool()>& stop) {
  std::sort(names.begin(), names.end(), std::greater<>());
  const auto count = static_cast<std::int64_t>(names.size());
  if (count < m_vars.BackupsMax)
    return;
  // One less than the limit stays, which leaves room for the next repair's backup.
  const std::int64_t last = std::max<std::int64_t>(std::int64_t{m_vars.BackupsMax} - 1, 0);
  for (std::int64_t i = count - 1; i >= last && !stop(); --i) {
    const Text& name = names[static_cast<std::size_t>(i)];
    ChangeIndex([&name](TIniFile& index) { index.EraseSection(name); });
    DeleteStoreFile(name);
  }
}

Text BackupStore::LockName() const {
  const Text folder = UpperCase(m_vars.SuiteBackupsFolder);
  return Text(kIndexLock) + folder.substr(folder.size() - std::min(folder.size(), kFolderInLockName));
}

std::unique_ptr<THeldLock> BackupStore::LockStore() {
  std::unique_ptr<THeldLock> lock = m_system.Interprocess.Lock(LockName());
  if (!lock)
    throw TSystemException({kErrorAccessDenied}, m_vars.SuiteBackupsFolder + Text(kIndexName));
  return lock;
}

TIniFile BackupStore::ReadIndex(const Text& folder) {
  const Text path = folder + Text(kIndexName);
  std::vector<std::uint8_t> bytes;
  const TSystemError error = m_system.Files.ReadFile(path, bytes);
  if (error.Failed() && !SaysMissing(error))
    throw TSystemException(error, path);
  return TIniFile::FromBytes(bytes, m_system.Locale);
}

void BackupStore::ChangeIndex(const std::function<void(TIniFile&)>& change) {
  const std::unique_ptr<THeldLock> lock = LockStore();
  ChangeLockedIndex(change);
}

void BackupStore::ChangeLockedIndex(const std::function<void(TIniFile&)>& change) {
  TIniFile index = ReadIndex(m_vars.SuiteBackupsFolder);
  const std::vector<std::uint8_t> before = index.ToBytes(m_system.Locale);
  change(index);
  const std::vector<std::uint8_t> after = index.ToBytes(m_system.Locale);
  if (after == before)
    return;
  const Text path = m_vars.SuiteBackupsFolder + Text(kIndexName);
  const TSystemError error = m_system.Files.ReplaceFile(path, after);
  if (error.Failed())
    throw TSystemException(error, path);
}

bool BackupStore::IsLinkedFolder(const Text& folder) {
  return m_system.Files.Info(TextView(folder).substr(0, folder.size() - 1)).IsLink;
}

bool BackupStore::HasFile(const Text& folder, TextView name) {
  if (!IsPlainFileName(name))
    return false;
  const TFileInfo info = m_system.Files.Info(folder + Text(name));
  return info.Exists && !info.IsFolder && !info.IsLink && !info.IsDevice;
}

TSystemError BackupStore::DeleteStoreFile(TextView name) {
  if (!HasFile(m_vars.SuiteBackupsFolder, name))
    return {};
  const TSystemError error = m_system.Files.DeleteFile(BackupFilePath(name));
  return SaysMissing(error) ? TSystemError{} : error;
}

}  // namespace corvalt
