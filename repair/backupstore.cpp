#include "repair/backupstore.h"

#include <algorithm>
#include <utility>

#include "core/languagetexts.h"
#include "repair/backupmaintenance.h"
#include "repair/backuporigin.h"

namespace corvalt {

namespace {

[[noreturn]] void ThrowNotVerified(const TGlobalVars& vars) {
  throw TProgramException(PlainLanguageText(vars.Texts, TextId::BackupNotVerified));
}

// Of a path with at least one name; the root's is "\".
Text ParentPath(const Text& keyPath) {
  const std::size_t end = keyPath.rfind(u'\\');
  return end == 0 ? Text(u"\\") : keyPath.substr(0, end);
}

// Of a file of a backup that could not be deleted.
struct TDeletionFailure {
  TSystemError Error;
  Text FileName;
};

// The log last: as long as there is the backup there is its log. Ends at the first failure; a log that stays
// keeps the backup listed, so that both can still be removed.
std::optional<TDeletionFailure> DeleteFiles(TBackupFolder& folder, const TBackupName& name) {
  for (const Text& fileName : {name.Value(), name.LogName()}) {
    const TSystemError error = folder.DeleteFile(fileName);
    if (error.Failed())
      return TDeletionFailure{error, fileName};
  }
  return std::nullopt;
}

void Expect(TSystemError error, const Text& path) {
  if (error.Failed())
    throw TSystemException(error, path);
}

}  // namespace

BackupStore::BackupStore(TSystem& system, const TGlobalVars& vars, std::function<bool()> stop)
    : m_system(system), m_vars(vars), m_stop(std::move(stop)), m_exporter(system.Raw, system.Locale) {
}

TBackupName BackupStore::BeginBackup() {
  const std::unique_ptr<THeldLock> lock = LockStore();
  Expect(m_system.Files.MakeFolders(m_vars.SuiteBackupsFolder), m_vars.SuiteBackupsFolder);
  m_exporter.Clear(OriginHere(m_system));
  m_collected = TDeletionRight();
  TBackupName name = TBackupName::OfTime(m_system.Clock.Now(), m_system.Locale.DecimalSeparator());
  TBackupFolder folder = OpenStore();
  m_run = NewRun(folder, name);
  folder.ChangeIndex([this](TIniFile& index) {
    const Text& section = m_run->Name.Value();
    m_run->WasListed = HasSection(index, section);
    m_run->TypeBefore = index.Read(section, kTypeKey);
    index.Write(section, kTypeKey, kCleanerModuleId);
  });
  return name;
}

BackupStore::TRun BackupStore::NewRun(TBackupFolder& folder, const TBackupName& name) const {
  TRun run = {name};
  run.HadIndex = folder.HasIndex();
  run.HadFile = folder.HasFile(name.Value());
  run.FileWasRead = run.HadFile && !folder.ReadFile(name.Value(), run.FileBefore).Failed();
  return run;
}

TExportResult BackupStore::AddKeyToBackup(const TKeyPath& key) {
  const TKeysReleased released(m_system.Raw);
  TKeyPlace place;
  const TRawResult found = m_system.Raw.FindKey(key.RootKey(), key.Path(), place);
  if (found != TRawResult::Done)
    return found == TRawResult::Missing ? TExportResult::Missing : TExportResult::Unreadable;
  // Who may delete a key may still be unable to create it again, which takes a right on its parent.
  if (m_system.Raw.MayCreateSubKeys(place.RootKey, ParentPath(place.KeyPath)) != TRawResult::Done)
    return TExportResult::Unreadable;
  const std::size_t keysBefore = m_exporter.Exported().size();
  const TExportResult result = m_exporter.ExportKey(key, place);
  if (result == TExportResult::Done) {
    m_collected.CoverKey(key, place);
    CollectContent(keysBefore, place);
  }
  return result;
}

TExportResult BackupStore::AddValueToBackup(const TKeyPath& key, TextView valueName) {
  const TKeysReleased released(m_system.Raw);
  TKeyPlace place;
  const TRawResult found = m_system.Raw.FindValue(key.RootKey(), key.Path(), valueName, place);
  if (found != TRawResult::Done)
    return found == TRawResult::Missing ? TExportResult::Missing : TExportResult::Unreadable;
  const std::size_t keysBefore = m_exporter.Exported().size();
  const TExportResult result = m_exporter.ExportValue(key, place, valueName);
  if (result == TExportResult::Done) {
    m_collected.CoverValue(key, valueName, place);
    CollectContent(keysBefore, place);
  }
  return result;
}

// The first key of an export is the one at its place, and the others lie below it.
void BackupStore::CollectContent(std::size_t keysBefore, const TKeyPlace& place) {
  const std::span<const TExportedKey> exported = m_exporter.Exported().subspan(keysBefore);
  for (const TExportedKey& key : exported)
    m_collected.AddContent(place, TextView(key.KeyPath).substr(exported.front().KeyPath.size()), key.Values);
}

bool BackupStore::HoldsKey(const TKeyPath& key) const {
  return m_collected.PlaceOfKey(key) != nullptr;
}

// The file is written without the lock: other copies of the program need not wait, however long it is.
TDeletionRight BackupStore::CommitBackup(const TBackupName& name) {
  try {
    TBackupFolder folder = OpenStore();
    m_exporter.Finish();
    WriteVerifiedFile(folder, name);
    ExpectListed(folder, name);
  } catch (...) {
    AbandonBackup();
    throw;
  }
  m_run.reset();
  return std::exchange(m_collected, TDeletionRight());
}

void BackupStore::WriteVerifiedFile(TBackupFolder& folder, const TBackupName& name) {
  const Text path = BackupFilePath(name);
  Expect(folder.ReplaceFile(name.Value(), m_exporter.ExportedText()), path);
  if (m_run)
    m_run->FileReplaced = true;
  m_held = {name, nullptr};
  Expect(folder.HoldFile(name.Value(), m_held->File), path);
  std::vector<std::uint8_t> bytes;
  Expect(folder.ReadFile(name.Value(), bytes), path);
  if (!m_exporter.HoldsWhatWasExported(bytes))
    ThrowNotVerified(m_vars);
}

// Another copy of the program may have removed the backup meanwhile.
void BackupStore::ExpectListed(TBackupFolder& folder, const TBackupName& name) const {
  if (!IsOfModule(folder.ReadIndex(), name.Value(), kCleanerModuleId))
    ThrowNotVerified(m_vars);
}

// Another copy of the program that was asked to remove the backup, or found too many, has failed to delete
// the file. The file is let go under the lock, so that no such copy comes between. Waits also after Cancel.
void BackupStore::ReleaseBackup() {
  const std::optional<THeldBackup> held = std::exchange(m_held, std::nullopt);
  if (!held)
    return;
  const std::unique_ptr<THeldLock> lock = LockBackups(m_system, m_vars, {});
  OpenStore().ChangeIndex([&held](TIniFile& index) {
    if (!IsOfModule(index, held->Name.Value(), kCleanerModuleId))
      index.Write(held->Name.Value(), kTypeKey, kCleanerModuleId);
  });
}

void BackupStore::AbandonBackup() noexcept {
  const std::optional<TRun> run = std::exchange(m_run, std::nullopt);
  if (!run)
    return;
  m_held.reset();
  try {
    TakeBack(*run);
  } catch (...) {
    // The failure that led here is the one to tell. What stays is listed, and goes when it is old.
  }
}

void BackupStore::TakeBack(const TRun& run) {
  const std::unique_ptr<THeldLock> lock = LockStore();
  TBackupFolder folder = OpenStore();
  TakeBackFile(folder, run);
  const Text& section = run.Name.Value();
  // The file that is there now is the backup of another run of the same tick, which deletes by it. (One that
  // was written after this run began and replaced by it is gone, as after any second backup of a tick.)
  const bool isOthers = folder.HasFile(section);
  folder.ChangeIndex([&run, &section, isOthers](TIniFile& index) {
    if (!run.WasListed && !isOthers)
      index.EraseSection(section);
    else if (run.TypeBefore)
      index.Write(section, kTypeKey, *run.TypeBefore);
  });
  if (!run.HadIndex && folder.ReadIndex().SectionNames().empty())
    Expect(folder.DeleteIndex(), folder.Path());
}

void BackupStore::TakeBackFile(TBackupFolder& folder, const TRun& run) {
  const Text& name = run.Name.Value();
  if (!run.FileReplaced)
    return;
  if (!run.HadFile)
    Expect(folder.DeleteFile(name), folder.Path() + name);
  else if (run.FileWasRead)
    Expect(folder.ReplaceFile(name, run.FileBefore), folder.Path() + name);
}

// The index is replaced whole by whoever changes it, so that reading it needs no lock.
std::vector<TBackup> BackupStore::ListBackups(TextView moduleId) {
  std::vector<TBackup> backups;
  std::optional<TBackupFolder> folder = OpenStoreIfThere();
  if (!folder)
    return backups;
  const TIniFile index = folder->ReadIndex();
  const Text decimalSign = m_system.Locale.DecimalSeparator();
  for (const Text& section : index.SectionNames()) {
    const std::optional<TBackupName> name = TBackupName::FromText(section);
    const std::optional<TDateTime> created = TimeOfBackupName(section, decimalSign);
    if (name && created && IsOfModule(index, section, moduleId))
      backups.push_back({*name, *created, folder->FileSize(section)});
  }
  return backups;
}

void BackupStore::RemoveBackup(const TBackupName& name) {
  const std::unique_ptr<THeldLock> lock = LockStore();
  std::optional<TBackupFolder> folder = OpenStoreIfThere();
  if (!folder)
    return;
  folder->ChangeIndex([&folder, &name](TIniFile& index) {
    if (const std::optional<TDeletionFailure> failure = DeleteFiles(*folder, name))
      throw TSystemException(failure->Error, folder->Path() + failure->FileName);
    index.EraseSection(name.Value());
  });
}

// A section whose name can't be a file's is taken out too: it lists a backup of this module that never was.
TRemovedBackups BackupStore::RemoveAllBackups(TextView moduleId) {
  TRemovedBackups result;
  const std::unique_ptr<THeldLock> lock = LockStore();
  std::optional<TBackupFolder> folder = OpenStoreIfThere();
  if (!folder)
    return result;
  folder->ChangeIndex([&](TIniFile& index) {
    for (const Text& section : index.SectionNames()) {
      if (!IsOfModule(index, section, moduleId))
        continue;
      const std::optional<TBackupName> name = TBackupName::FromText(section);
      const std::optional<TDeletionFailure> failure = name ? DeleteFiles(*folder, *name) : std::nullopt;
      if (failure) {
        result.Kept.emplace_back(*name, failure->Error);
        continue;
      }
      index.EraseSection(section);
      ++result.Removed;
    }
  });
  return result;
}

bool BackupStore::HasFile(const TBackupName& name) {
  std::optional<TBackupFolder> folder = OpenStoreIfThere();
  return folder && folder->HasFile(name.Value());
}

Text BackupStore::BackupFilePath(const TBackupName& name) const {
  return m_vars.SuiteBackupsFolder + name.Value();
}

TSystemError BackupStore::ReadBackup(const TBackupName& name, std::vector<std::uint8_t>& bytes) {
  std::optional<TBackupFolder> folder = OpenStoreIfThere();
  return folder ? folder->ReadFile(name.Value(), bytes) : TSystemError{kErrorFileNotFound};
}

void BackupStore::MigrateLegacyBackups() {
  MigrateBackups(m_system, m_vars, m_stop);
}

void BackupStore::PruneBackups(const std::function<bool()>& stop) {
  const std::unique_ptr<THeldLock> lock = LockBackups(m_system, m_vars, stop);
  if (std::optional<TBackupFolder> folder = OpenStoreIfThere())
    TBackupPruning(m_system, m_vars, *folder, stop).Run();
}

void BackupStore::RemoveLeftFiles() {
  if (std::optional<TBackupFolder> folder = OpenStoreIfThere())
    RemoveTemporaryFiles(m_system, *folder);
}

std::unique_ptr<THeldLock> BackupStore::LockStore() const {
  TSystem system = m_system;
  return LockBackups(system, m_vars, m_stop);
}

TBackupFolder BackupStore::OpenStore() {
  return TBackupFolder::Open(m_system, m_vars, m_vars.SuiteBackupsFolder);
}

std::optional<TBackupFolder> BackupStore::OpenStoreIfThere() {
  return TBackupFolder::OpenIfThere(m_system, m_vars, m_vars.SuiteBackupsFolder);
}

}  // namespace corvalt
