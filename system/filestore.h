// Files that the program itself reads and writes: data files, language files, backups, reports.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/text.h"
#include "system/systemerror.h"

namespace corvalt {

struct TFileInfo {
  bool Exists = false;
  bool IsFolder = false;
  bool IsLink = false;    // a symbolic link or another reparse point
  bool IsDevice = false;  // a device name such as "nul" or "com1.txt"
  std::int64_t Size = 0;  // bytes
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

  // A plain rename or move; fails when the target exists.
  virtual TSystemError MoveFile(TextView from, TextView to) = 0;
  virtual TSystemError DeleteFile(TextView path) = 0;

  // Creates a folder and all its missing parents; success when it exists.
  virtual TSystemError MakeFolders(TextView path) = 0;

  // About the name itself: a link is not followed.
  virtual TFileInfo Info(TextView path) = 0;
};

}  // namespace corvalt
