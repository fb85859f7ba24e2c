#include "platform/memory/memoryfiles.h"

#include "base/devicenames.h"
#include "platform/memory/memoryfolder.h"
#include "system/machine.h"

namespace corvalt {

namespace {

bool HasWildcard(TextView path) {
  return path.find_first_of(u"*?") != TextView::npos;
}

TextView WithoutTrailingBackslash(TextView path) {
  return path.substr(0, path.find_last_not_of(u'\\') + 1);
}

TSystemError Error(std::uint32_t code) {
  return TSystemError{code};
}

}  // namespace

TMemoryDisk::TMemoryDisk() {
  AddDrive(u"C:\\", kDriveFixed);
}

void TMemoryDisk::AddDrive(TextView root, std::uint32_t driveType) {
  TDrive& drive = m_drives[UpperCase(root.substr(0, 2))];
  drive.Type = driveType;
  drive.Root->Name = Text(root.substr(0, 2));
  drive.Root->IsFolder = true;
}

void TMemoryDisk::AddFolder(TextView path) {
  Create(path, true);
}

void TMemoryDisk::AddFile(TextView path, std::string_view content) {
  Create(path, false).Bytes.assign(content.begin(), content.end());
}

void TMemoryDisk::SetShortName(TextView path, TextView shortName) {
  Find(path)->ShortName = Text(shortName);
}
void TMemoryDisk::MakeLink(TextView path, bool isNameSurrogate) {
  Find(path)->IsLink = true;
  Find(path)->IsNameSurrogate = isNameSurrogate;
}
void TMemoryDisk::MakeJunction(TextView path, TextView targetFolder) {
  MakeLink(path);
  Find(path)->LinkTarget = FindShared(targetFolder);
}
void TMemoryDisk::MakeUnreadable(TextView path) {
  Find(path)->IsUnreadable = true;
}

void TMemoryDisk::FailAsking(TextView path, std::uint32_t code) {
  m_askingFailures[UpperCase(path)] = code;
}

std::uint32_t TMemoryDisk::AskingFailure(TextView path) const {
  Text upper;
  for (const Text& name : Components(path))
    upper += (upper.empty() ? u"" : u"\\") + UpperCase(name);
  for (const auto& [failing, code] : m_askingFailures) {
    if (upper == failing || upper.starts_with(failing + u"\\"))
      return code;
  }
  return 0;
}

void TMemoryDisk::Remove(TextView path) {
  const std::vector<Text> names = Components(path);
  TMemoryFile* parent = Find(FolderOf(path));
  if (parent != nullptr)
    parent->Entries.erase(UpperCase(names.back()));
}

void TMemoryDisk::SetEnvironmentVariable(TextView name, TextView value) {
  m_environment.insert_or_assign(Text(name), Text(value));
}

void TMemoryDisk::RedirectFolder(TextView redirectedFolder, TextView targetFolder) {
  m_redirections.push_back({UpperCase(redirectedFolder), Text(targetFolder)});
  SetEnvironmentVariable(u"ProgramFiles(x86)", u"C:\\Program Files (x86)");
}

std::optional<std::string> TMemoryDisk::Content(TextView path) const {
  const TMemoryFile* file = Find(path);
  if (file == nullptr || file->IsFolder)
    return std::nullopt;
  return std::string(file->Bytes.begin(), file->Bytes.end());
}

std::vector<Text> TMemoryDisk::AllBelow(TextView folder) const {
  std::vector<Text> paths;
  const TMemoryFile* file = Find(folder);
  if (file != nullptr)
    file->CollectBelow(Text(WithoutTrailingBackslash(folder)), paths);
  return paths;
}

// The names below the drive, the drive first; empty for a path that leads nowhere.
std::vector<Text> TMemoryDisk::Components(TextView path) const {
  std::vector<Text> names;
  const bool absolute = path.size() >= 3 && path[1] == u':' && (path[2] == u'\\' || path[2] == u'/');
  if (!absolute)
    return names;
  while (!path.empty()) {
    const std::size_t end = path.find_first_of(u"\\/");
    TextView name = path.substr(0, end);
    path.remove_prefix(end == TextView::npos ? path.size() : end + 1);
    if (name == u"..") {
      if (names.size() > 1)
        names.pop_back();
      continue;
    }
    while (!name.empty() && (name.back() == u'.' || name.back() == u' '))
      name.remove_suffix(1);
    if (!name.empty())
      names.emplace_back(name);
  }
  return names;
}

TMemoryFile* TMemoryDisk::Find(TextView path) const {
  return FindShared(path).get();
}

std::shared_ptr<TMemoryFile> TMemoryDisk::FindShared(TextView path) const {
  std::vector<Text> names = Components(path);
  if (names.empty() || HasWildcard(path))
    return nullptr;
  if (m_redirectionOff == 0) {
    Text joined;
    for (const Text& name : names)
      joined += (joined.empty() ? u"" : u"\\") + name;
    for (const TRedirection& redirection : m_redirections) {
      const Text upper = UpperCase(joined);
      const bool inside = upper == redirection.From || upper.starts_with(redirection.From + u"\\");
      if (inside)
        names = Components(redirection.To + joined.substr(redirection.From.size()));
    }
  }
  const auto drive = m_drives.find(UpperCase(names.front()));
  if (drive == m_drives.end())
    return nullptr;
  std::shared_ptr<TMemoryFile> file = drive->second.Root;
  for (std::size_t i = 1; i < names.size() && file != nullptr; ++i) {
    file = file->Entry(names[i]);
    if (file != nullptr && file->LinkTarget && i + 1 < names.size())
      file = file->LinkTarget;
  }
  return file;
}

TMemoryFile& TMemoryDisk::Create(TextView path, bool isFolder) {
  const std::vector<Text> names = Components(path);
  std::shared_ptr<TMemoryFile> file = m_drives[UpperCase(names.front())].Root;
  for (std::size_t i = 1; i < names.size(); ++i) {
    std::shared_ptr<TMemoryFile> entry = file->Entry(names[i]);
    if (entry == nullptr)
      entry = file->AddEntry(names[i], isFolder || i + 1 < names.size());
    file = std::move(entry);
  }
  return *file;
}

void TMemoryDisk::Note(std::string_view what, TextView path) const {
  if (m_journal != nullptr)
    m_journal->Add(std::string(what) + " " + EncodeUtf8(path));
}

bool TMemoryDisk::FileExists(TextView path) {
  ++m_questions;
  if (const std::uint32_t failure = AskingFailure(path))
    return !MeansMissing(failure);
  const TMemoryFile* file = Find(path);
  return file != nullptr && !file->IsFolder;
}

bool TMemoryDisk::DirectoryExists(TextView path) {
  ++m_questions;
  if (const std::uint32_t failure = AskingFailure(path))
    return !MeansMissing(failure);
  const TMemoryFile* file = Find(path);
  return file != nullptr && file->IsFolder;
}

std::optional<Text> TMemoryDisk::GetLongPathName(TextView path) {
  const std::vector<Text> names = Components(path);
  if (names.empty() || Find(path) == nullptr)
    return std::nullopt;
  Text longPath = names.front();
  std::shared_ptr<TMemoryFile> file = m_drives.at(UpperCase(names.front())).Root;
  for (std::size_t i = 1; i < names.size() && file != nullptr; ++i) {
    file = file->Entry(names[i]);
    if (file != nullptr)
      longPath += u"\\" + file->Name;
  }
  const bool keepsSeparator = names.size() == 1 || path.back() == u'\\';
  return keepsSeparator ? WithTrailingBackslash(longPath) : longPath;
}

std::size_t TMemoryDisk::GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) {
  Text all;
  for (const auto& [name, drive] : m_drives)
    all += name + u"\\" + u'\0';
  if (all.size() <= bufferLength)
    roots = all;
  return all.size();
}

std::uint32_t TMemoryDisk::GetDriveType(TextView root) {
  constexpr std::uint32_t kNoRootDir = 1;
  const auto drive = m_drives.find(UpperCase(root.substr(0, 2)));
  return drive == m_drives.end() ? kNoRootDir : drive->second.Type;
}

Text TMemoryDisk::GetEnvironmentVariable(TextView name) {
  const auto found = m_environment.find(name);
  return found == m_environment.end() ? Text() : found->second;
}

bool TMemoryDisk::Wow64DisableWow64FsRedirection() {
  if (m_redirections.empty())
    return false;
  ++m_redirectionOff;
  ++m_redirectionSwitches;
  return true;
}

void TMemoryDisk::Wow64RevertWow64FsRedirection() {
  if (!m_redirections.empty())
    --m_redirectionOff;
}

std::int64_t TMemoryDisk::FileSize(TextView path) {
  const std::size_t nameStart = LastPos(u"\\", path);
  const TMemoryFile* folder = Find(path.substr(0, nameStart));
  if (folder == nullptr)
    return 0;
  for (const auto& [upperName, entry] : folder->Entries) {
    if (MatchesPattern(path.substr(nameStart), entry->Name))
      return static_cast<std::int64_t>(entry->Bytes.size());
  }
  return 0;
}

FileSystemProbe::TListing TMemoryDisk::ListFolder(TextView folder, std::vector<TFolderEntry>& entries) {
  ++m_questions;
  if (const std::uint32_t failure = AskingFailure(folder))
    return MeansMissing(failure) ? TListing::Missing : TListing::Unreadable;
  const TMemoryFile* file = Find(folder);
  if (file == nullptr)
    return TListing::Missing;
  if (!file->IsFolder || file->IsUnreadable)
    return TListing::Unreadable;
  entries.clear();
  for (const auto& [upperName, entry] : file->Entries) {
    entries.push_back({entry->Name, entry->ShortName, entry->IsFolder, entry->IsLink});
  }
  return TListing::Listed;
}

bool TMemoryDisk::Fails(TMemoryFailure& failure, TextView path) {
  if (failure.Code == 0 || failure.Times == 0 || !path.ends_with(failure.PathEnd))
    return false;
  if (failure.Times > 0)
    --failure.Times;
  return true;
}

TSystemError TMemoryDisk::ReadEntry(const TMemoryFile& file, TextView path,
                                    std::vector<std::uint8_t>& bytes) {
  if (file.IsFolder || file.IsUnreadable)
    return Error(kErrorAccessDenied);
  if (Fails(m_readFailure, path))
    return Error(m_readFailure.Code);
  bytes = file.Bytes;
  return {};
}

TSystemError TMemoryDisk::ReplaceEntry(TMemoryFile& folder, TextView name, TextView path,
                                       std::span<const std::uint8_t> bytes) {
  std::shared_ptr<TMemoryFile> file = folder.Entry(name);
  if (file != nullptr && file->IsFolder)
    return Error(kErrorAccessDenied);
  if (Fails(m_replaceFailure, path))
    return Error(m_replaceFailure.Code);
  // MoveFileEx, learn.microsoft.com: a file that somebody has open can't be replaced; access is denied.
  if (file != nullptr && file->Holders != 0)
    return Error(kErrorAccessDenied);
  Note("replace file", path);
  if (file == nullptr)
    file = folder.AddEntry(name, false);
  file->IsLink = false;
  file->Bytes.assign(bytes.begin(), bytes.end());
  if (m_corruptWrites && !file->Bytes.empty())
    file->Bytes.back() ^= 1;
  return {};
}

TSystemError TMemoryDisk::DeleteEntry(TMemoryFile& folder, const TMemoryFile& file, TextView path) {
  if (file.IsFolder)
    return Error(kErrorAccessDenied);
  if (Fails(m_deleteFailure, path))
    return Error(m_deleteFailure.Code);
  // CreateFile, learn.microsoft.com: nobody may delete what is open without FILE_SHARE_DELETE.
  if (file.Holders != 0)
    return Error(kErrorSharingViolation);
  Note("delete file", path);
  folder.Entries.erase(UpperCase(file.Name));
  return {};
}

TFileInfo TMemoryDisk::InfoOf(const TMemoryFile* file, TextView name) {
  TFileInfo info;
  info.IsDevice = IsDeviceName(name);
  if (file == nullptr || info.IsDevice)
    return info;
  info.Exists = true;
  info.IsFolder = file->IsFolder;
  info.IsLink = file->IsLink && file->IsNameSurrogate;
  info.Size = static_cast<std::int64_t>(file->Bytes.size());
  return info;
}

TSystemError TMemoryDisk::ReadFile(TextView path, std::vector<std::uint8_t>& bytes) {
  const THold hold(m_mutex);
  const TMemoryFile* file = Find(path);
  if (file == nullptr)
    return Error(Find(FolderOf(path)) == nullptr ? kErrorPathNotFound : kErrorFileNotFound);
  return ReadEntry(*file, path, bytes);
}

TSystemError TMemoryDisk::ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) {
  const THold hold(m_mutex);
  TMemoryFile* folder = Find(FolderOf(path));
  const std::vector<Text> names = Components(path);
  if (folder == nullptr || !folder->IsFolder || names.size() < 2)
    return Error(kErrorPathNotFound);
  return ReplaceEntry(*folder, names.back(), path, bytes);
}

TSystemError TMemoryDisk::ReplaceFileInPieces(TextView path, const TProducer& produce) {
  std::vector<std::uint8_t> bytes;
  const TSystemError error = produce([&bytes](std::span<const std::uint8_t> piece) {
    bytes.insert(bytes.end(), piece.begin(), piece.end());
    return TSystemError{};
  });
  return error.Failed() ? error : ReplaceFile(path, bytes);
}

TSystemError TMemoryDisk::MoveFile(TextView from, TextView to) {
  const THold hold(m_mutex);
  const std::shared_ptr<TMemoryFile> source = FindShared(from);
  if (source == nullptr)
    return Error(kErrorFileNotFound);
  if (Find(to) != nullptr)
    return Error(kErrorAlreadyExists);
  if (Find(FolderOf(to)) == nullptr)
    return Error(kErrorPathNotFound);
  // CreateFile, learn.microsoft.com: without FILE_SHARE_DELETE nobody may rename what is open.
  if (source->IsHeldOpen())
    return Error(kErrorSharingViolation);
  Note("move file", from);
  Create(to, source->IsFolder).Bytes = source->Bytes;
  Find(to)->Entries = source->Entries;
  Remove(from);
  return {};
}

TSystemError TMemoryDisk::DeleteFile(TextView path) {
  const THold hold(m_mutex);
  const TMemoryFile* file = Find(path);
  TMemoryFile* folder = Find(FolderOf(path));
  if (file == nullptr || folder == nullptr)
    return Error(kErrorFileNotFound);
  return DeleteEntry(*folder, *file, path);
}

TSystemError TMemoryDisk::MakeFolders(TextView path) {
  const THold hold(m_mutex);
  const std::vector<Text> names = Components(path);
  if (names.empty() || m_drives.find(UpperCase(names.front())) == m_drives.end())
    return Error(kErrorPathNotFound);
  if (Fails(m_folderFailure, path))
    return Error(m_folderFailure.Code);
  const TMemoryFile* existing = Find(path);
  if (existing != nullptr)
    return Error(existing->IsFolder ? 0 : kErrorAlreadyExists);
  Create(path, true);
  return {};
}

TSystemError TMemoryDisk::OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) {
  const THold hold(m_mutex);
  std::shared_ptr<TMemoryFile> file = FindShared(path);
  if (file == nullptr)
    return Error(Find(FolderOf(WithoutTrailingBackslash(path))) == nullptr ? kErrorPathNotFound
                                                                           : kErrorFileNotFound);
  if (file->IsLink && file->IsNameSurrogate)
    return Error(kErrorStoppedOnLink);
  if (!file->IsFolder)
    return Error(kErrorPathNotFound);
  folder = std::make_unique<TMemoryFolder>(*this, std::move(file), WithTrailingBackslash(path));
  return {};
}

TFileInfo TMemoryDisk::Info(TextView path) {
  const THold hold(m_mutex);
  return InfoOf(Find(path), path.substr(LastPos(u"\\", path)));
}

Text TMemoryDisk::FullPath(TextView path) {
  const auto isSeparator = [](char16_t unit) { return unit == u'\\' || unit == u'/'; };
  const bool isNetwork = path.size() > 1 && isSeparator(path[0]) && isSeparator(path[1]);
  if (path.empty() || isNetwork || HoldsNul(path))
    return isNetwork ? Text(path) : Text();
  Text whole(path);
  if (isSeparator(path[0]))
    whole.insert(0, CurrentFolder.substr(0, 2));
  else if (path.substr(1, 1) != u":")
    whole.insert(0, CurrentFolder + u"\\");
  Text full;
  for (const Text& name : Components(whole))
    full += (full.empty() ? u"" : u"\\") + name;
  return full.size() == 2 || isSeparator(path.back()) ? full + u"\\" : full;
}

}  // namespace corvalt
