#include "platform/windows/windowsfiles.h"

#include <algorithm>

#include "base/limits.h"
#include "platform/windows/filebytes.h"
#include "platform/windows/windowsfolder.h"
#include "system/machine.h"

namespace corvalt {

namespace {

constexpr DWORD kNoSuchFile = INVALID_FILE_ATTRIBUTES;

DWORD AttributesOf(TextView path) {
  if (HoldsNul(path)) {
    SetLastError(ERROR_INVALID_NAME);
    return kNoSuchFile;
  }
  return GetFileAttributesW(Wide(PathOfAnyLength(path)));
}

enum class TExistence { Missing, File, Folder, Unknown };

TExistence ExistenceOf(DWORD attributes) {
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? TExistence::Folder : TExistence::File;
}

// The attributes of what can't be opened may still be read in its folder.
TExistence ExistenceInItsFolder(TextView path) {
  WIN32_FIND_DATAW found = {};
  if (path.find_first_of(u"*?") != TextView::npos)
    return TExistence::Unknown;
  const TOwnedFind search(FindFirstFileW(Wide(PathOfAnyLength(path)), &found));
  return search ? ExistenceOf(found.dwFileAttributes) : TExistence::Unknown;
}

TExistence ExistenceAt(TextView path) {
  const DWORD attributes = AttributesOf(path);
  if (attributes != kNoSuchFile)
    return ExistenceOf(attributes);
  return MeansMissing(GetLastError()) ? TExistence::Missing : ExistenceInItsFolder(path);
}

TFolderEntry EntryOf(const WIN32_FIND_DATAW& found) {
  TFolderEntry entry;
  entry.Name = Text(FromWide(found.cFileName));
  entry.ShortName = Text(FromWide(found.cAlternateFileName));
  entry.IsFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  entry.IsLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return entry;
}

bool IsDotName(const Text& name) {
  return name == u"." || name == u"..";
}

// Why a folder could not be listed. The system also gives "path not found" where a file stands in the
// way, and "file not found" for a drive's root without entries.
FileSystemProbe::TListing WithoutListing(TextView folder, DWORD error, std::vector<TFolderEntry>& entries) {
  const DWORD attributes = AttributesOf(folder);
  if (attributes == kNoSuchFile) {
    const bool missing = MeansMissing(error) && MeansMissing(GetLastError());
    return missing ? FileSystemProbe::TListing::Missing : FileSystemProbe::TListing::Unreadable;
  }
  if (error != ERROR_FILE_NOT_FOUND || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    return FileSystemProbe::TListing::Unreadable;
  entries.clear();
  return FileSystemProbe::TListing::Listed;
}

// A file of a name that nobody uses, deleted at the end unless it was moved to where it belongs.
class TTemporaryFile {
 public:
  explicit TTemporaryFile(Text target) : m_target(std::move(target)) {
  }
  ~TTemporaryFile() {
    m_file.Close();
    if (m_exists)
      DeleteFileW(Wide(m_path));
  }

  TSystemError Create() {
    TSystemError error = {ERROR_FILE_EXISTS};
    for (int i = 0; i < kMostTemporaryNames && error.Code == ERROR_FILE_EXISTS; ++i) {
      m_path = TemporaryNameOf(m_target, GetCurrentProcessId(), i);
      m_file = TOwnedFile(
          CreateFileW(Wide(m_path), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
      error = m_file ? TSystemError{} : LastError();
    }
    m_exists = !error.Failed();
    return error;
  }

  TSystemError Write(std::span<const std::uint8_t> bytes) {
    return WriteAll(m_file.Get(), bytes);
  }

  TSystemError FlushAndClose() {
    const TSystemError error = FlushFileBuffers(m_file.Get()) ? TSystemError{} : LastError();
    m_file.Close();
    return error;
  }

  TSystemError MoveOverTarget() {
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (!MoveFileExW(Wide(m_path), Wide(m_target), kFlags))
      return LastError();
    m_exists = false;
    return {};
  }

 private:
  Text m_target;
  Text m_path;
  TOwnedFile m_file;
  bool m_exists = false;
};

}  // namespace

TWindowsProbe::TWindowsProbe() {
  const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  m_getLongPathName = FindRoutine<TGetLongPathName>(kernel, "GetLongPathNameW");
  m_disableRedirection = FindRoutine<TDisableRedirection>(kernel, "Wow64DisableWow64FsRedirection");
  m_revertRedirection = FindRoutine<TRevertRedirection>(kernel, "Wow64RevertWow64FsRedirection");
}

bool TWindowsProbe::FileExists(TextView path) {
  const TExistence existence = ExistenceAt(path);
  return existence == TExistence::File || existence == TExistence::Unknown;
}

bool TWindowsProbe::DirectoryExists(TextView path) {
  const TExistence existence = ExistenceAt(path);
  return existence == TExistence::Folder || existence == TExistence::Unknown;
}

std::optional<Text> TWindowsProbe::GetLongPathName(TextView path) {
  if (m_getLongPathName == nullptr || HoldsNul(path))
    return std::nullopt;
  Text longPath(kMaxPath, u'\0');
  const DWORD length = m_getLongPathName(Wide(Text(path)), WideBuffer(longPath), kMaxPath);
  if (length == 0 || length > kMaxPath)
    return std::nullopt;
  longPath.resize(length);
  return longPath;
}

std::size_t TWindowsProbe::GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) {
  Text buffer(bufferLength, u'\0');
  const DWORD length = GetLogicalDriveStringsW(static_cast<DWORD>(bufferLength),
                                               bufferLength == 0 ? nullptr : WideBuffer(buffer));
  if (length <= bufferLength)
    roots = buffer.substr(0, length);
  return length;
}

std::uint32_t TWindowsProbe::GetDriveType(TextView root) {
  return GetDriveTypeW(Wide(Text(root)));
}

Text TWindowsProbe::GetEnvironmentVariable(TextView name) {
  const Text variable(name);
  Text value;
  DWORD length = GetEnvironmentVariableW(Wide(variable), nullptr, 0);
  // The variable may grow between the two calls; then the result is larger than the room for it.
  while (length > value.size()) {
    value.resize(length);
    length = GetEnvironmentVariableW(Wide(variable), WideBuffer(value), static_cast<DWORD>(value.size()));
  }
  value.resize(length);
  return value;
}

bool TWindowsProbe::Wow64DisableWow64FsRedirection() {
  PVOID oldValue = nullptr;
  if (m_disableRedirection == nullptr || m_revertRedirection == nullptr || !m_disableRedirection(&oldValue))
    return false;
  const std::lock_guard<std::mutex> hold(m_mutex);
  m_switchedOff[GetCurrentThreadId()].push_back(oldValue);
  return true;
}

void TWindowsProbe::Wow64RevertWow64FsRedirection() {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const auto values = m_switchedOff.find(GetCurrentThreadId());
  if (values == m_switchedOff.end())
    return;
  m_revertRedirection(values->second.back());
  values->second.pop_back();
  if (values->second.empty())
    m_switchedOff.erase(values);
}

std::int64_t TWindowsProbe::FileSize(TextView path) {
  WIN32_FIND_DATAW found = {};
  if (HoldsNul(path))
    return 0;
  const TOwnedFind search(FindFirstFileW(Wide(Text(path)), &found));
  return search ? SizeOf(found.nFileSizeHigh, found.nFileSizeLow) : 0;
}

FileSystemProbe::TListing TWindowsProbe::ListFolder(TextView folder, std::vector<TFolderEntry>& entries) {
  if (folder.empty() || HoldsNul(folder))
    return TListing::Unreadable;
  WIN32_FIND_DATAW found = {};
  const TOwnedFind search(
      FindFirstFileW(Wide(PathOfAnyLength(WithTrailingBackslash(folder) + u"*")), &found));
  if (!search)
    return WithoutListing(folder, GetLastError(), entries);
  std::vector<TFolderEntry> listed;
  do {
    TFolderEntry entry = EntryOf(found);
    if (!IsDotName(entry.Name))
      listed.push_back(std::move(entry));
  } while (FindNextFileW(search.Get(), &found));
  if (GetLastError() != ERROR_NO_MORE_FILES)
    return TListing::Unreadable;
  entries = std::move(listed);
  return TListing::Listed;
}

TSystemError TWindowsFiles::ReadFile(TextView path, std::vector<std::uint8_t>& bytes) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  if (HoldsNul(path))
    return TSystemError{ERROR_INVALID_NAME};
  const TOwnedFile file(CreateFileW(Wide(Text(path)), GENERIC_READ, kShare, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file)
    return LastError();
  std::vector<std::uint8_t> read;
  const TSystemError error = ReadAll(file.Get(), read);
  if (!error.Failed())
    bytes = std::move(read);
  return error;
}

TSystemError TWindowsFiles::ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) {
  return ReplaceFileInPieces(path, [bytes](const TWrite& write) { return write(bytes); });
}

TSystemError TWindowsFiles::ReplaceFileInPieces(TextView path, const TProducer& produce) {
  if (HoldsNul(path))
    return TSystemError{ERROR_INVALID_NAME};
  TTemporaryFile temporary{Text(path)};
  TSystemError error = temporary.Create();
  if (!error.Failed())
    error = produce([&temporary](std::span<const std::uint8_t> bytes) { return temporary.Write(bytes); });
  if (!error.Failed())
    error = temporary.FlushAndClose();
  if (!error.Failed())
    error = temporary.MoveOverTarget();
  return error;
}

TSystemError TWindowsFiles::MoveFile(TextView from, TextView to) {
  if (HoldsNul(from) || HoldsNul(to))
    return TSystemError{ERROR_INVALID_NAME};
  return MoveFileW(Wide(Text(from)), Wide(Text(to))) ? TSystemError{} : LastError();
}

TSystemError TWindowsFiles::DeleteFile(TextView path) {
  if (HoldsNul(path))
    return TSystemError{ERROR_INVALID_NAME};
  return DeleteFileW(Wide(Text(path))) ? TSystemError{} : LastError();
}

TSystemError TWindowsFiles::MakeFolders(TextView path) {
  const Text folder(path.substr(0, path.find_last_not_of(u"\\/") + 1));
  if (path.empty())
    return TSystemError{kErrorPathNotFound};
  const DWORD attributes = AttributesOf(WithTrailingBackslash(folder));
  if (attributes != kNoSuchFile && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    return {};
  if (HoldsNul(folder))
    return TSystemError{ERROR_INVALID_NAME};
  const Text parent = FolderOf(folder);
  if (!parent.empty() && parent.size() < folder.size()) {
    const TSystemError error = MakeFolders(parent);
    if (error.Failed())
      return error;
  }
  if (CreateDirectoryW(Wide(folder), nullptr))
    return {};
  const TSystemError error = LastError();
  const DWORD attributesNow = AttributesOf(folder);
  const bool madeByAnother = attributesNow != kNoSuchFile && (attributesNow & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return madeByAnother ? TSystemError{} : error;
}

TSystemError TWindowsFiles::OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) {
  return TWindowsFolder::Open(path, folder);
}

TFileInfo TWindowsFiles::Info(TextView path) {
  TFileInfo info;
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (path.empty() || HoldsNul(path))
    return info;
  const Text name(path);
  info.IsDevice = IsDevicePath(name);
  if (info.IsDevice || !GetFileAttributesExW(Wide(name), GetFileExInfoStandard, &data))
    return info;
  info.Exists = true;
  info.IsFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  info.IsLink = IsLinkPath(name, data.dwFileAttributes);
  info.Size = SizeOf(data.nFileSizeHigh, data.nFileSizeLow);
  return info;
}

Text TWindowsFiles::FullPath(TextView path) {
  return HoldsNul(path) ? Text() : FullPathOf(Text(path));
}

}  // namespace corvalt
