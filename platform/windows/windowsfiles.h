// Files and folders of the real system: the questions about them, and the program's own reading and writing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/filestore.h"
#include "system/filesystemprobe.h"
#include "system/systemerror.h"

namespace corvalt {

class TWindowsProbe : public FileSystemProbe {
 public:
  TWindowsProbe();

  bool FileExists(TextView path) override;
  bool DirectoryExists(TextView path) override;
  std::optional<Text> GetLongPathName(TextView path) override;
  std::size_t GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) override;
  std::uint32_t GetDriveType(TextView root) override;
  Text GetEnvironmentVariable(TextView name) override;
  bool Wow64DisableWow64FsRedirection() override;
  void Wow64RevertWow64FsRedirection() override;
  std::int64_t FileSize(TextView path) override;
  TListing ListFolder(TextView folder, std::vector<TFolderEntry>& entries) override;

 private:
  using TGetLongPathName = DWORD(WINAPI*)(LPCWSTR, LPWSTR, DWORD);
  using TDisableRedirection = BOOL(WINAPI*)(PVOID*);
  using TRevertRedirection = BOOL(WINAPI*)(PVOID);

  TGetLongPathName m_getLongPathName;
  TDisableRedirection m_disableRedirection;
  TRevertRedirection m_revertRedirection;

  // What each thread must hand back to switch the redirection on again, innermost last.
  std::mutex m_mutex;
  std::map<DWORD, std::vector<PVOID>> m_switchedOff;
};

class TWindowsFiles : public TFileStore {
 public:
  TSystemError ReadFile(TextView path, std::vector<std::uint8_t>& bytes) override;
  TSystemError ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) override;
  TSystemError ReplaceFileInPieces(TextView path, const TProducer& produce) override;
  TSystemError MoveFile(TextView from, TextView to) override;
  TSystemError DeleteFile(TextView path) override;
  TSystemError MakeFolders(TextView path) override;
  TSystemError OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) override;
  TFileInfo Info(TextView path) override;
  Text FullPath(TextView path) override;
};

}  // namespace corvalt
