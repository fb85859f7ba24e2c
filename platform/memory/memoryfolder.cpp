#include "platform/memory/memoryfolder.h"

namespace corvalt {

namespace {

// What a name that is an entry's, and not that of a device, may be opened as.
TSystemError CheckName(TextView name, const TFileInfo& info) {
  return TSystemError{IsPlainFileName(name) && !info.IsDevice ? 0 : kErrorInvalidName};
}

// The same of an entry that must exist.
TSystemError CheckEntry(TextView name, const TFileInfo& info) {
  const TSystemError error = CheckName(name, info);
  return error.Failed() || info.Exists ? error : TSystemError{kErrorFileNotFound};
}

// Of an entry that is there and is opened itself: a link is not followed.
TSystemError CheckOpened(TextView name, const TFileInfo& info) {
  const TSystemError error = CheckEntry(name, info);
  return error.Failed() || !info.IsLink ? error : TSystemError{kErrorStoppedOnLink};
}

}  // namespace

TSystemError TMemoryGrowingFile::Append(std::span<const std::uint8_t> bytes) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  if (TMemoryDisk::Fails(m_disk.m_growFailure, m_path))
    return TSystemError{m_disk.m_growFailure.Code};
  m_disk.Note("append to file", m_path);
  m_file->Bytes.insert(m_file->Bytes.end(), bytes.begin(), bytes.end());
  return {};
}

TSystemError TMemoryGrowingFile::Flush() {
  m_disk.Note("flush file", m_path);
  return {};
}

TMemoryHeldFile::TMemoryHeldFile(TMemoryDisk& disk, std::shared_ptr<TMemoryFile> file)
    : m_disk(disk), m_file(std::move(file)) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  ++m_file->Holders;
}

TMemoryHeldFile::~TMemoryHeldFile() {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  --m_file->Holders;
}

TMemoryFolder::TMemoryFolder(TMemoryDisk& disk, std::shared_ptr<TMemoryFile> folder, Text path)
    : m_disk(disk), m_folder(std::move(folder)), m_path(std::move(path)) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  ++m_folder->Holders;
}

TMemoryFolder::~TMemoryFolder() {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  --m_folder->Holders;
}

TFileInfo TMemoryFolder::Info(TextView name) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  return IsPlainFileName(name) ? TMemoryDisk::InfoOf(m_folder->Entry(name).get(), name) : TFileInfo();
}

TSystemError TMemoryFolder::ReadFile(TextView name, std::vector<std::uint8_t>& bytes) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  const TFileInfo info = Info(name);
  const TSystemError error = CheckOpened(name, info);
  if (error.Failed())
    return error;
  return m_disk.ReadEntry(*m_folder->Entry(name), m_path + Text(name), bytes);
}

TSystemError TMemoryFolder::ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  const TSystemError error = CheckName(name, Info(name));
  return error.Failed() ? error : m_disk.ReplaceEntry(*m_folder, name, m_path + Text(name), bytes);
}

TSystemError TMemoryFolder::DeleteFile(TextView name) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  const TFileInfo info = Info(name);
  const TSystemError error = CheckEntry(name, info);
  if (error.Failed())
    return error;
  return m_disk.DeleteEntry(*m_folder, *m_folder->Entry(name), m_path + Text(name));
}

TSystemError TMemoryFolder::GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  const TFileInfo info = Info(name);
  const TSystemError error = CheckName(name, info);
  const Text path = m_path + Text(name);
  if (error.Failed())
    return error;
  if (info.IsLink)
    return {kErrorStoppedOnLink};
  if (info.IsFolder)
    return {kErrorAccessDenied};
  if (TMemoryDisk::Fails(m_disk.m_growFailure, path))
    return {m_disk.m_growFailure.Code};
  if (!info.Exists)
    m_folder->AddEntry(name, false);
  // CreateFile, learn.microsoft.com: nobody may write to what is open without FILE_SHARE_WRITE.
  if (m_folder->Entry(name)->Holders != 0)
    return {kErrorSharingViolation};
  file = std::make_unique<TMemoryGrowingFile>(m_disk, m_folder->Entry(name), path);
  return {};
}

TSystemError TMemoryFolder::HoldFile(TextView name, std::unique_ptr<THeldFile>& file) {
  const TMemoryDisk::THold hold(m_disk.m_mutex);
  const TFileInfo info = Info(name);
  const TSystemError error = CheckOpened(name, info);
  if (error.Failed())
    return error;
  if (info.IsFolder)
    return {kErrorAccessDenied};
  file = std::make_unique<TMemoryHeldFile>(m_disk, m_folder->Entry(name));
  return {};
}

std::optional<TFolderIdentity> TMemoryFolder::Identity() {
  return TFolderIdentity{0, reinterpret_cast<std::uintptr_t>(m_folder.get())};
}

}  // namespace corvalt
