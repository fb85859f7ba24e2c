// Drives, folders and files in memory: questions about them and the program's own reading and writing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "base/lettercase.h"
#include "base/text.h"
#include "platform/memory/journal.h"
#include "platform/memory/memoryfile.h"
#include "system/filestore.h"
#include "system/filesystemprobe.h"
#include "system/systemerror.h"

namespace corvalt {

// Failures to come of one kind of operation.
struct TMemoryFailure {
  std::uint32_t Code = 0;  // 0: none
  Text PathEnd;            // only of paths that end so, letter case included
  int Times = -1;          // so often; less than 0: always
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
  // A reparse point: a junction, or one that is no name surrogate, such as a deduplicated file.
  void MakeLink(TextView path, bool isNameSurrogate = true);
  // The same of a junction that leads to a folder: paths through it are followed.
  void MakeJunction(TextView path, TextView targetFolder);
  void MakeUnreadable(TextView path);
  // From now on a question about the path, or about anything below it, fails with this code
  // (GetFileAttributesW, learn.microsoft.com), whether something is there or not; its folders can't be
  // listed.
  void FailAsking(TextView path, std::uint32_t code);
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

  // Every operation of this kind fails with this code until 0 is set again.
  void FailReading(std::uint32_t code, TextView pathEnd = {}, int times = -1) {
    m_readFailure = {code, Text(pathEnd), times};
  }
  void FailReplacing(std::uint32_t code, TextView pathEnd = {}, int times = -1) {
    m_replaceFailure = {code, Text(pathEnd), times};
  }
  void FailMakingFolders(std::uint32_t code) {
    m_folderFailure = {code, {}, -1};
  }
  void FailDeleting(std::uint32_t code, TextView pathEnd = {}, int times = -1) {
    m_deleteFailure = {code, Text(pathEnd), times};
  }
  // Of growing files: of opening one, and of writing what was appended.
  void FailGrowing(std::uint32_t code, TextView pathEnd = {}, int times = -1) {
    m_growFailure = {code, Text(pathEnd), times};
  }
  // Writes that do not arrive as they were sent: the last byte changes.
  void CorruptWrites(bool corrupt) {
    m_corruptWrites = corrupt;
  }

  void SetJournal(TJournal* journal) {
    m_journal = journal;
  }

  // The content of a file; nullopt when there is none.
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
  TSystemError ReplaceFileInPieces(TextView path, const TProducer& produce) override;
  TSystemError MoveFile(TextView from, TextView to) override;
  TSystemError DeleteFile(TextView path) override;
  TSystemError MakeFolders(TextView path) override;
  TSystemError OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) override;
  TFileInfo Info(TextView path) override;
  Text FullPath(TextView path) override;

  // What FullPath puts before a relative path.
  Text CurrentFolder = u"C:\\Users";

 private:
  friend class TMemoryFolder;
  friend class TMemoryGrowingFile;
  friend class TMemoryHeldFile;

  struct TRedirection {
    Text From;  // upper case, no trailing "\"
    Text To;
  };

  using THold = std::lock_guard<std::recursive_mutex>;

  TMemoryFile* Find(TextView path) const;
  std::shared_ptr<TMemoryFile> FindShared(TextView path) const;

  // The operations on entries that were found; path is for the journal and the failures to come.
  static bool Fails(TMemoryFailure& failure, TextView path);
  TSystemError ReadEntry(const TMemoryFile& file, TextView path, std::vector<std::uint8_t>& bytes);
  TSystemError ReplaceEntry(TMemoryFile& folder, TextView name, TextView path,
                            std::span<const std::uint8_t> bytes);
  TSystemError DeleteEntry(TMemoryFile& folder, const TMemoryFile& file, TextView path);
  static TFileInfo InfoOf(const TMemoryFile* file, TextView name);
  // The code that questions about the path fail with; 0 for none.
  std::uint32_t AskingFailure(TextView path) const;
  TMemoryFile& Create(TextView path, bool isFolder);
  std::vector<Text> Components(TextView path) const;
  void Note(std::string_view what, TextView path) const;

  // Files may be read and changed by several threads at once, as the system's.
  mutable std::recursive_mutex m_mutex;

  struct TDrive {
    std::uint32_t Type = kDriveFixed;
    std::shared_ptr<TMemoryFile> Root = std::make_shared<TMemoryFile>();
  };
  std::map<Text, TDrive> m_drives;  // by "C:"
  std::map<Text, Text, TLessIgnoringCase> m_environment;
  std::map<Text, std::uint32_t> m_askingFailures;  // by upper-cased path
  std::vector<TRedirection> m_redirections;
  int m_redirectionOff = 0;
  int m_redirectionSwitches = 0;
  int m_questions = 0;
  TMemoryFailure m_readFailure;
  TMemoryFailure m_replaceFailure;
  TMemoryFailure m_folderFailure;
  TMemoryFailure m_deleteFailure;
  TMemoryFailure m_growFailure;
  bool m_corruptWrites = false;
  TJournal* m_journal = nullptr;
};

}  // namespace corvalt
