// Files that the program itself reads and writes: data files, language files, backups, reports.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/text.h"
#include "system/systemerror.h"

namespace corvalt {

struct TFileInfo {
  bool Exists = false;
  bool IsFolder = false;
  // The name stands for another place: a symbolic link, a junction or another reparse point of the kind that
  // Windows calls a name surrogate. Deduplicated files and those kept in a cloud are files like any other.
  bool IsLink = false;
  bool IsDevice = false;  // a device name such as "nul" or "com1.txt"
  std::int64_t Size = 0;  // bytes
};

// Whether the name can only mean an entry of the folder that it is looked for in: no separator, drive, stream
// or wildcard in it, no blank or dot at its end, which Windows drops, and no longer than a name can be.
[[nodiscard]] bool IsPlainFileName(TextView name);

// The temporary file through which ReplaceFile writes: TARGET.PROCESS-NUMBER.tmp, with the identifier of the
// writing process in decimal. One that is left was written by a process that was ended in the middle.
[[nodiscard]] Text TemporaryNameOf(TextView target, std::uint32_t processId, int number);
// How many numbers are tried while files of these names exist.
inline constexpr int kMostTemporaryNames = 100;
struct TTemporaryName {
  Text Target;
  std::uint32_t ProcessId = 0;
};
// nullopt for any other name.
[[nodiscard]] std::optional<TTemporaryName> ParseTemporaryName(TextView name);

// A file that grows, open until the object goes.
class TGrowingFile {
 public:
  virtual ~TGrowingFile() = default;
  virtual TSystemError Append(std::span<const std::uint8_t> bytes) = 0;
  // What was appended is on the disk afterwards.
  virtual TSystemError Flush() = 0;
};

// A file that nobody can delete, replace or write to until the object goes. It may be read.
class THeldFile {
 public:
  virtual ~THeldFile() = default;
};

// What tells a folder from every other one, whatever path led to it.
struct TFolderIdentity {
  std::uint64_t Volume = 0;
  std::uint64_t Index = 0;

  bool operator==(const TFolderIdentity&) const = default;
};

// A folder held open. Every name is that of an entry directly in it, wherever the folder's path leads
// meanwhile; a name that is not plain fails with kErrorInvalidName. A link is never followed: Info tells of
// the link itself, reading, growing and holding one fail with kErrorStoppedOnLink, replacing and deleting one
// takes the link. A failing operation leaves its outputs, and the files, as they were.
class TOpenFolder {
 public:
  virtual ~TOpenFolder() = default;
  [[nodiscard]] virtual TFileInfo Info(TextView name) = 0;
  // The whole file.
  virtual TSystemError ReadFile(TextView name, std::vector<std::uint8_t>& bytes) = 0;
  // As TFileStore::ReplaceFile.
  virtual TSystemError ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) = 0;
  virtual TSystemError DeleteFile(TextView name) = 0;
  // Opens a file for writing behind what it holds, and creates it where it is missing. Several may write to
  // one file, each Append in one piece, and whoever deletes it need not wait for them.
  virtual TSystemError GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) = 0;
  // Fails with kErrorSharingViolation where another has the file open in order to change it.
  virtual TSystemError HoldFile(TextView name, std::unique_ptr<THeldFile>& file) = 0;
  // nullopt where the system does not tell.
  [[nodiscard]] virtual std::optional<TFolderIdentity> Identity() = 0;
};

// A failing operation leaves its outputs, and the files, as they were.
class TFileStore {
 public:
  virtual ~TFileStore() = default;

  // The whole file.
  virtual TSystemError ReadFile(TextView path, std::vector<std::uint8_t>& bytes) = 0;

  // Replaces the file whole or creates it: writes a temporary file beside it, flushes it to the disk, renames
  // it over the target. After a failure the old file is in place and no temporary file is left.
  virtual TSystemError ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) = 0;

  // The same with bytes that are made while they are written. The first failure of write, returned by
  // produce, ends it; so does a failure that produce returns on its own.
  using TWrite = std::function<TSystemError(std::span<const std::uint8_t>)>;
  using TProducer = std::function<TSystemError(const TWrite& write)>;
  virtual TSystemError ReplaceFileInPieces(TextView path, const TProducer& produce) = 0;

  // A plain rename or move; fails when the target exists.
  virtual TSystemError MoveFile(TextView from, TextView to) = 0;
  virtual TSystemError DeleteFile(TextView path) = 0;

  // Creates a folder and all its missing parents; success when it exists.
  virtual TSystemError MakeFolders(TextView path) = 0;

  // Opens a folder, with or without a "\" at the end of its path. While it is open it can't be renamed,
  // moved or deleted. kErrorStoppedOnLink where it is a link itself; kErrorPathNotFound for a file.
  virtual TSystemError OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) = 0;

  // About the name itself: a link is not followed.
  [[nodiscard]] virtual TFileInfo Info(TextView path) = 0;

  // The path from its drive or share on, as the system reads it: the current folder before a relative one,
  // "." and ".." worked out, "\\" between the names. Nothing need exist there. Empty when it can't be read.
  [[nodiscard]] virtual Text FullPath(TextView path) = 0;
};

}  // namespace corvalt
