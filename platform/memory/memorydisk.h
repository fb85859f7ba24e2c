// Drives, folders and files in memory: questions about them and the program's own reading and writing.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "base/lettercase.h"
#include "platform/memory/journal.h"
#include "system/filestore.h"
#include "system/filesystemprobe.h"

namespace corvalt {

struct TMemoryFile {
  Text Name;
  Text ShortName;
  bool IsFolder = false;
  bool IsLink = false;
  bool IsUnreadable = false;  // a folder that can't be listed, a file that can't be read
  std::vector<std::uint8_t> Bytes;
  std::map<Text, std::unique_ptr<TMemoryFile>> Entries;  // by upper-cased name
};

// As Windows takes paths: letter case does not count, doubled separators and "/" are separators, dots and
// blanks at the end of a name are dropped. Paths without a drive and network paths lead nowhere.
class TMemoryDisk : public FileSystemProbe, public TFileStore {
 public:
  // Begins with the fixed drive "C:\".
  TMemoryDisk();

  // Building. Parents are created.
  void AddDrive(TextView root, std::uint32_t driveType);
  void AddFolder(TextView path);
  void AddFile(TextView path, std::string_view content = {});
  void SetShortName(TextView path, TextView shortName);
  void MakeLink(TextView path);
  void MakeUnreadable(TextView path);
  void Remove(TextView path);
  void SetEnvironmentVariable(TextView name, TextView value);

  // A 32-bit process on a 64-bit system: while the redirection is on, redirectedFolder
  // ("C:\Windows\System32") shows what lies in targetFolder ("C:\Windows\SysWOW64"). Sets "ProgramFiles(x86)"
  // too.
  void RedirectFolder(TextView redirectedFolder, TextView targetFolder);

  // How often the redirection was switched off and not back on; 0 when the switch paired up.
  int RedirectionDepth() const {
    return m_redirectionOff;
  }
  int RedirectionSwitches() const {
    return m_redirectionSwitches;
  }

  // Every question asked of FileExists, DirectoryExists and ListFolder so far.
  int Questions() const {
    return m_questions;
  }

  // Failures to come. Every operation of this kind fails with this code until 0 is set again.
  void FailReading(std::uint32_t code) {
    m_readFailure = code;
  }
  void FailReplacing(std::uint32_t code) {
    m_replaceFailure = code;
  }
  void FailMakingFolders(std::uint32_t code) {
    m_folderFailure = code;
  }
  void FailDeleting(std::uint32_t code) {
    m_deleteFailure = code;
  }
  // Writes that do not arrive as they were sent: the last byte changes.
  void CorruptWrites(bool corrupt) {
    m_corruptWrites = corrupt;
  }

  void SetJournal(TJournal* journal) {
    m_journal = journal;
  }

  // The content of a file; nothing when there is none.
  std::optional<std::string> Content(TextView path) const;
  // Full paths of all files and folders below a folder, sorted.
  std::vector<Text> AllBelow(TextView folder) const;

  // FileSystemProbe
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

  // TFileStore
  TSystemError ReadFile(TextView path, std::vector<std::uint8_t>& bytes) override;
  TSystemError ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) override;
  TSystemError MoveFile(TextView from, TextView to) override;
  TSystemError DeleteFile(TextView path) override;
  TSystemError MakeFolders(TextView path) override;
  TFileInfo Info(TextView path) override;

 private:
  struct TRedirection {
    Text From;  // upper case, no trailing "\"
    Text To;
  };

  TMemoryFile* Find(TextView path) const;
  TMemoryFile& Create(TextView path, bool isFolder);
  std::vector<Text> Components(TextView path) const;
  void Note(std::string_view what, TextView path) const;

  struct TDrive {
    std::uint32_t Type = kDriveFixed;
    TMemoryFile Root;
  };
  std::map<Text, TDrive> m_drives;  // by "C:"
  std::map<Text, Text, TLessIgnoringCase> m_environment;
  std::vector<TRedirection> m_redirections;
  int m_redirectionOff = 0;
  int m_redirectionSwitches = 0;
  int m_questions = 0;
  std::uint32_t m_readFailure = 0;
  std::uint32_t m_replaceFailure = 0;
  std::uint32_t m_folderFailure = 0;
  std::uint32_t m_deleteFailure = 0;
  bool m_corruptWrites = false;
  TJournal* m_journal = nullptr;
};

}  // namespace corvalt
