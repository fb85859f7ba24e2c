#include "platform/windows/windowsfolder.h"

#include <vector>

#include "platform/windows/filebytes.h"

#include <winternl.h>

namespace corvalt {

namespace {

constexpr ULONG kFileAsLink = FILE_NON_DIRECTORY_FILE | FILE_OPEN_REPARSE_POINT;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Classes of NtSetInformationFile and NtQueryInformationFile (learn.microsoft.com, FILE_INFORMATION_CLASS).
constexpr int kFileRenameInformation = 10;
constexpr int kFileDispositionInformation = 13;
constexpr int kFileAttributeTagInformation = 35;

struct TRenameInformation {
  BOOLEAN ReplaceIfExists;
  HANDLE RootDirectory;
  ULONG FileNameLength;  // bytes
  WCHAR FileName[1];
};

struct TAttributeTag {
  ULONG Attributes;
  ULONG ReparseTag;
};

// The system's routines that take a name relative to an open folder. Every Windows NT has them.
struct TNtFiles {
  using TCreateFile = NTSTATUS(NTAPI*)(PHANDLE, ACCESS_MASK, POBJECT_ATTRIBUTES, PIO_STATUS_BLOCK,
                                       PLARGE_INTEGER, ULONG, ULONG, ULONG, ULONG, PVOID, ULONG);
  using TSetInformation = NTSTATUS(NTAPI*)(HANDLE, PIO_STATUS_BLOCK, PVOID, ULONG, int);
  using TErrorOf = ULONG(NTAPI*)(NTSTATUS);

  TCreateFile CreateFile = nullptr;
  TSetInformation SetInformation = nullptr;
  TSetInformation QueryInformation = nullptr;
  TErrorOf ErrorOf = nullptr;

  bool AreThere() const {
    return CreateFile != nullptr && SetInformation != nullptr && QueryInformation != nullptr &&
           ErrorOf != nullptr;
  }
};

const TNtFiles& NtFiles() {
  static const TNtFiles files = [] {
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return TNtFiles{FindRoutine<TNtFiles::TCreateFile>(ntdll, "NtCreateFile"),
                    FindRoutine<TNtFiles::TSetInformation>(ntdll, "NtSetInformationFile"),
                    FindRoutine<TNtFiles::TSetInformation>(ntdll, "NtQueryInformationFile"),
                    FindRoutine<TNtFiles::TErrorOf>(ntdll, "RtlNtStatusToDosError")};
  }();
  return files;
}

TSystemError ErrorOf(NTSTATUS status) {
  return TSystemError{status >= 0 ? 0 : NtFiles().ErrorOf(status)};
}

struct TOpening {
  ACCESS_MASK Access = 0;
  ULONG Share = 0;
  ULONG Disposition = FILE_OPEN;
  ULONG Options = FILE_OPEN_REPARSE_POINT;  // a link is opened as the link that it is
};

// Opens the entry of an open folder.
TSystemError OpenBelow(HANDLE folder, TextView name, const TOpening& how, TOwnedFile& file) {
  Text units(name);
  UNICODE_STRING systemName = {};
  systemName.Buffer = WideBuffer(units);
  systemName.Length = static_cast<USHORT>(units.size() * sizeof(char16_t));
  systemName.MaximumLength = systemName.Length;
  OBJECT_ATTRIBUTES attributes = {};
  attributes.Length = sizeof(attributes);
  attributes.RootDirectory = folder;
  attributes.ObjectName = &systemName;
  attributes.Attributes = OBJ_CASE_INSENSITIVE;
  IO_STATUS_BLOCK io = {};
  HANDLE opened = nullptr;
  const NTSTATUS status =
      NtFiles().CreateFile(&opened, how.Access | SYNCHRONIZE | FILE_READ_ATTRIBUTES, &attributes, &io,
                           nullptr, FILE_ATTRIBUTE_NORMAL, how.Share, how.Disposition,
                           FILE_SYNCHRONOUS_IO_NONALERT | how.Options, nullptr, 0);
  if (status < 0)
    return ErrorOf(status);
  file = TOwnedFile(opened);
  return {};
}

// Attributes and reparse tag of an open file.
TAttributeTag TagOf(HANDLE file) {
  TAttributeTag tag = {};
  IO_STATUS_BLOCK io = {};
  if (NtFiles().QueryInformation(file, &io, &tag, sizeof(tag), kFileAttributeTagInformation) >= 0)
    return tag;
  BY_HANDLE_FILE_INFORMATION info = {};
  if (GetFileInformationByHandle(file, &info))
    return {info.dwFileAttributes, 0};
  return {FILE_ATTRIBUTE_REPARSE_POINT, 0};
}

bool IsLink(HANDLE file) {
  const TAttributeTag tag = TagOf(file);
  return IsLinkOf(tag.Attributes, tag.ReparseTag);
}

TSystemError MarkDeleted(HANDLE file) {
  BOOLEAN deleted = TRUE;
  IO_STATUS_BLOCK io = {};
  return ErrorOf(NtFiles().SetInformation(file, &io, &deleted, sizeof(deleted), kFileDispositionInformation));
}

TSystemError RenameOver(HANDLE file, HANDLE folder, TextView name) {
  const std::size_t nameBytes = name.size() * sizeof(char16_t);
  std::vector<std::uint64_t> buffer((sizeof(TRenameInformation) + nameBytes) / sizeof(std::uint64_t) + 1);
  auto* const rename = reinterpret_cast<TRenameInformation*>(buffer.data());
  rename->ReplaceIfExists = TRUE;
  rename->RootDirectory = folder;
  rename->FileNameLength = static_cast<ULONG>(nameBytes);
  CopyMemory(rename->FileName, name.data(), nameBytes);
  IO_STATUS_BLOCK io = {};
  return ErrorOf(NtFiles().SetInformation(
      file, &io, rename, static_cast<ULONG>(buffer.size() * sizeof(std::uint64_t)), kFileRenameInformation));
}

class TWindowsGrowingFile : public TGrowingFile {
 public:
  explicit TWindowsGrowingFile(TOwnedFile file) : m_file(std::move(file)) {
  }
  TSystemError Append(std::span<const std::uint8_t> bytes) override {
    return WriteBytes(m_file.Get(), bytes);
  }
  TSystemError Flush() override {
    return FlushFileBuffers(m_file.Get()) ? TSystemError{} : LastError();
  }

 private:
  TOwnedFile m_file;
};

class TWindowsHeldFile : public THeldFile {
 public:
  explicit TWindowsHeldFile(TOwnedFile file) : m_file(std::move(file)) {
  }

 private:
  TOwnedFile m_file;
};

}  // namespace

TSystemError TWindowsFolder::Open(TextView path, std::unique_ptr<TOpenFolder>& folder) {
  if (path.empty() || HoldsNul(path) || !NtFiles().AreThere())
    return {kErrorInvalidName};
  const Text withSeparator = WithTrailingBackslash(path);
  const Text name = withSeparator.substr(0, withSeparator.find_last_not_of(u'\\') + 1);
  // A drive's root keeps its "\"; any other path loses it, because it would follow a link.
  const Text& opened = name.ends_with(u':') ? withSeparator : name;
  // Nobody may rename or delete what is open without FILE_SHARE_DELETE (CreateFile, learn.microsoft.com).
  TOwnedFile handle(CreateFileW(Wide(opened),
                                FILE_LIST_DIRECTORY | FILE_TRAVERSE | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!handle)
    return LastError();
  // Under Wine the handle of a link is that of its target, and only the path shows the link; while the folder
  // is open the path can't be given to another.
  const DWORD attributes = GetFileAttributesW(Wide(opened));
  if (IsLink(handle.Get()) || (attributes != INVALID_FILE_ATTRIBUTES && IsLinkPath(opened, attributes)))
    return {kErrorStoppedOnLink};
  if ((TagOf(handle.Get()).Attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    return {kErrorPathNotFound};
  folder = std::make_unique<TWindowsFolder>(std::move(handle), withSeparator);
  return {};
}

TSystemError TWindowsFolder::CheckName(TextView name) const {
  return TSystemError{IsPlainFileName(name) && !IsDevicePath(m_path + Text(name)) ? 0 : kErrorInvalidName};
}

TFileInfo TWindowsFolder::Info(TextView name) {
  TFileInfo info;
  info.IsDevice = IsPlainFileName(name) && IsDevicePath(m_path + Text(name));
  TOwnedFile file;
  if (CheckName(name).Failed() || OpenBelow(m_folder.Get(), name, {0, kShareAll}, file).Failed())
    return info;
  BY_HANDLE_FILE_INFORMATION data = {};
  info.Exists = true;
  info.IsLink = IsLink(file.Get());
  if (!GetFileInformationByHandle(file.Get(), &data))
    return info;
  info.IsFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  info.Size = SizeOf(data.nFileSizeHigh, data.nFileSizeLow);
  return info;
}

// A reparse point that is no link, such as a deduplicated file, is opened a second time without the option
// that shows the bare reparse point, so that its own driver gives the content.
TSystemError TWindowsFolder::OpenContent(TextView name, TOwnedFile& file) const {
  TSystemError error =
      OpenBelow(m_folder.Get(), name, {FILE_READ_DATA, kShareAll, FILE_OPEN, kFileAsLink}, file);
  if (error.Failed())
    return error;
  const TAttributeTag tag = TagOf(file.Get());
  if (IsLinkOf(tag.Attributes, tag.ReparseTag))
    return {kErrorStoppedOnLink};
  if ((tag.Attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    return {};
  return OpenBelow(m_folder.Get(), name, {FILE_READ_DATA, kShareAll, FILE_OPEN, FILE_NON_DIRECTORY_FILE},
                   file);
}

TSystemError TWindowsFolder::ReadFile(TextView name, std::vector<std::uint8_t>& bytes) {
  TOwnedFile file;
  TSystemError error = CheckName(name);
  if (!error.Failed())
    error = OpenContent(name, file);
  std::vector<std::uint8_t> read;
  if (!error.Failed())
    error = ReadAll(file.Get(), read);
  if (!error.Failed())
    bytes = std::move(read);
  return error;
}

TSystemError TWindowsFolder::CreateTemporary(TextView name, TOwnedFile& file) const {
  TSystemError error = {kErrorAlreadyExists};
  for (int i = 0; i < kMostTemporaryNames && error.Code == kErrorAlreadyExists; ++i) {
    error = OpenBelow(m_folder.Get(), TemporaryNameOf(name, GetCurrentProcessId(), i),
                      {FILE_WRITE_DATA | DELETE, 0, FILE_CREATE, kFileAsLink}, file);
  }
  return error;
}

TSystemError TWindowsFolder::ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) {
  TOwnedFile file;
  TSystemError error = CheckName(name);
  if (!error.Failed())
    error = CreateTemporary(name, file);
  if (error.Failed())
    return error;
  error = WriteAll(file.Get(), bytes);
  if (!error.Failed())
    error = RenameOver(file.Get(), m_folder.Get(), name);
  if (error.Failed()) {
    // What can't be marked stays as a temporary file, which a later start removes.
    static_cast<void>(MarkDeleted(file.Get()));
    return error;
  }
  // The new name goes to the disk too; where it can't be forced there the content is safe all the same.
  FlushFileBuffers(file.Get());
  return {};
}

TSystemError TWindowsFolder::DeleteFile(TextView name) {
  TOwnedFile file;
  TSystemError error = CheckName(name);
  if (!error.Failed())
    error = OpenBelow(m_folder.Get(), name, {DELETE, kShareAll}, file);
  if (!error.Failed() && (TagOf(file.Get()).Attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    error = {kErrorAccessDenied};
  return error.Failed() ? error : MarkDeleted(file.Get());
}

TSystemError TWindowsFolder::GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) {
  TOwnedFile opened;
  TSystemError error = CheckName(name);
  if (!error.Failed())
    error = OpenBelow(m_folder.Get(), name, {FILE_APPEND_DATA, kShareAll, FILE_OPEN_IF, kFileAsLink}, opened);
  if (error.Failed())
    return error;
  if (IsLink(opened.Get()))
    return {kErrorStoppedOnLink};
  file = std::make_unique<TWindowsGrowingFile>(std::move(opened));
  return {};
}

TSystemError TWindowsFolder::HoldFile(TextView name, std::unique_ptr<THeldFile>& file) {
  TOwnedFile opened;
  TSystemError error = CheckName(name);
  if (!error.Failed())
    error =
        OpenBelow(m_folder.Get(), name, {FILE_READ_DATA, FILE_SHARE_READ, FILE_OPEN, kFileAsLink}, opened);
  if (error.Failed())
    return error;
  if (IsLink(opened.Get()))
    return {kErrorStoppedOnLink};
  file = std::make_unique<TWindowsHeldFile>(std::move(opened));
  return {};
}

std::optional<TFolderIdentity> TWindowsFolder::Identity() {
  BY_HANDLE_FILE_INFORMATION info = {};
  if (!GetFileInformationByHandle(m_folder.Get(), &info))
    return std::nullopt;
  return TFolderIdentity{info.dwVolumeSerialNumber,
                         (std::uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow};
}

}  // namespace corvalt
