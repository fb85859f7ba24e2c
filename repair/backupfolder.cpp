#include "repair/backupfolder.h"

#include <algorithm>

#include "core/languagetexts.h"
#include "repair/backupname.h"

namespace corvalt {

namespace {

constexpr TextView kLockName = u"TessalySoft Tessaly Utilities Backups ";
// Units of the folder's path that the lock's name ends with. Paths differ at their ends, and the name of a
// lock takes 150 units (system/interprocess.h).
constexpr std::size_t kFolderInLockName = 110;

constexpr std::chrono::milliseconds kIndexPatience = std::chrono::seconds(2);
constexpr std::chrono::milliseconds kIndexSlice(50);

// Whether another program may have the file open. The system refuses to replace an open file with "access
// denied" (MoveFileEx, learn.microsoft.com).
bool MayBeInUse(TSystemError error, bool replaces) {
  return error.Code == kErrorSharingViolation || error.Code == kErrorLockViolation ||
         (replaces && error.Code == kErrorAccessDenied);
}

}  // namespace

std::unique_ptr<THeldLock> LockBackups(TSystem& system, const TGlobalVars& vars,
                                       const std::function<bool()>& stop) {
  const Text& folder = vars.SuiteBackupsFolder;
  TLockWish wish;
  wish.Name = Text(kLockName) + folder.substr(folder.size() - std::min(folder.size(), kFolderInLockName));
  // The users of a portable installation have one folder of backups.
  wish.ForAllUsers = vars.IsPortable;
  TLockAnswer answer = system.Interprocess.Lock(wish, stop);
  switch (answer.End) {
    case TLockEnd::Held:
      return std::move(answer.Lock);
    case TLockEnd::Stopped:
      throw TBackupWorkStopped();
    case TLockEnd::TimedOut: {
      const Text title = PlainLanguageText(vars.Texts, TextId::ProgramTitle);
      throw TProgramException(PlainLanguageText(vars.Texts, TextId::BackupsInUse, title));
    }
    case TLockEnd::Refused:
      break;
  }
  throw TSystemException({kErrorAccessDenied}, folder + Text(kBackupIndexName));
}

std::optional<TBackupFolder> TBackupFolder::OpenIfThere(TSystem& system, const TGlobalVars& vars,
                                                        const Text& path) {
  std::unique_ptr<TOpenFolder> folder;
  const TSystemError error = system.Files.OpenFolder(path, folder);
  if (IsMissing(error))
    return std::nullopt;
  if (error.Code == kErrorStoppedOnLink)
    throw TProgramException(PlainLanguageText(vars.Texts, TextId::BackupFolderIsLink, path));
  if (error.Failed())
    throw TSystemException(error, path);
  return TBackupFolder(system, path, std::move(folder));
}

TBackupFolder TBackupFolder::Open(TSystem& system, const TGlobalVars& vars, const Text& path) {
  std::optional<TBackupFolder> folder = OpenIfThere(system, vars, path);
  if (!folder)
    throw TSystemException({kErrorPathNotFound}, path);
  return *std::move(folder);
}

bool TBackupFolder::HasFile(TextView name) {
  if (!TBackupName::FromText(name))
    return false;
  const TFileInfo info = m_folder->Info(name);
  return info.Exists && !info.IsFolder && !info.IsLink && !info.IsDevice;
}

std::int64_t TBackupFolder::FileSize(TextView name) {
  return HasFile(name) ? m_folder->Info(name).Size : 0;
}

TSystemError TBackupFolder::ReadFile(TextView name, std::vector<std::uint8_t>& bytes) {
  return HasFile(name) ? m_folder->ReadFile(name, bytes) : TSystemError{kErrorFileNotFound};
}

TSystemError TBackupFolder::ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) {
  return m_folder->ReplaceFile(name, bytes);
}

TSystemError TBackupFolder::DeleteFile(TextView name) {
  if (!HasFile(name))
    return {};
  const TSystemError error = m_folder->DeleteFile(name);
  return IsMissing(error) ? TSystemError{} : error;
}

TSystemError TBackupFolder::GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) {
  return m_folder->GrowFile(name, file);
}

TSystemError TBackupFolder::HoldFile(TextView name, std::unique_ptr<THeldFile>& file) {
  return Patiently([this, name, &file] { return m_folder->HoldFile(name, file); }, false);
}

bool TBackupFolder::IsSame(const TBackupFolder& other) const {
  const std::optional<TFolderIdentity> identity = m_folder->Identity();
  return identity && identity == other.m_folder->Identity();
}

TSystemError TBackupFolder::Patiently(const std::function<TSystemError()>& attempt, bool replaces) {
  for (std::chrono::milliseconds waited(0);; waited += kIndexSlice) {
    const TSystemError error = attempt();
    if (!MayBeInUse(error, replaces) || waited >= kIndexPatience)
      return error;
    m_system.Clock.Sleep(kIndexSlice);
  }
}

TIniFile TBackupFolder::ReadIndex() {
  std::vector<std::uint8_t> bytes;
  const TSystemError error =
      Patiently([this, &bytes] { return m_folder->ReadFile(kBackupIndexName, bytes); }, false);
  if (error.Failed() && !IsMissing(error))
    throw TSystemException(error, m_path + Text(kBackupIndexName));
  return TIniFile::FromBytes(bytes, m_system.Locale);
}

TSystemError TBackupFolder::DeleteIndex() {
  const TSystemError error = m_folder->DeleteFile(kBackupIndexName);
  return IsMissing(error) ? TSystemError{} : error;
}

bool TBackupFolder::HasIndex() {
  return m_folder->Info(kBackupIndexName).Exists;
}

void TBackupFolder::ChangeIndex(const std::function<void(TIniFile&)>& change) {
  TIniFile index = ReadIndex();
  const std::vector<std::uint8_t> before = index.ToBytes(m_system.Locale);
  change(index);
  const std::vector<std::uint8_t> after = index.ToBytes(m_system.Locale);
  if (after == before)
    return;
  const TSystemError error =
      Patiently([this, &after] { return m_folder->ReplaceFile(kBackupIndexName, after); }, true);
  if (error.Failed())
    throw TSystemException(error, m_path + Text(kBackupIndexName));
}

}  // namespace corvalt
