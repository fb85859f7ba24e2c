// One file or folder of a disk in memory.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "base/text.h"

namespace corvalt {

struct TMemoryFile {
  Text Name;
  Text ShortName;
  bool IsFolder = false;
  bool IsLink = false;
  bool IsNameSurrogate = false;  // of a link: it stands for another place
  bool IsUnreadable = false;     // a folder that can't be listed, a file that can't be read
  int Holders = 0;               // how many have the folder open, or hold the file
  std::shared_ptr<TMemoryFile> LinkTarget = nullptr;  // of a junction that leads somewhere
  std::vector<std::uint8_t> Bytes;
  std::map<Text, std::shared_ptr<TMemoryFile>> Entries;  // by upper-cased name

  // The entry under its long or its short name; nullptr when there is none.
  std::shared_ptr<TMemoryFile> Entry(TextView name) const;
  std::shared_ptr<TMemoryFile> AddEntry(TextView name, bool isFolder);

  // Whether somebody has this folder, or something below it, open.
  bool IsHeldOpen() const;

  // Appends the full path of everything below this folder, whose path is given.
  void CollectBelow(const Text& path, std::vector<Text>& paths) const;
};

// Whether the name is one that the pattern means; "*" and "?" count as for FindFirstFile
// (learn.microsoft.com).
bool MatchesPattern(TextView pattern, TextView name);

}  // namespace corvalt
