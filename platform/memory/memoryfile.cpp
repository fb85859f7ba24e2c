#include "platform/memory/memoryfile.h"

#include <algorithm>

#include "base/lettercase.h"

namespace corvalt {

std::shared_ptr<TMemoryFile> TMemoryFile::Entry(TextView name) const {
  const auto found = Entries.find(UpperCase(name));
  if (found != Entries.end())
    return found->second;
  for (const auto& [upperName, entry] : Entries) {
    if (!entry->ShortName.empty() && EqualIgnoringCase(entry->ShortName, name))
      return entry;
  }
  return nullptr;
}

std::shared_ptr<TMemoryFile> TMemoryFile::AddEntry(TextView name, bool isFolder) {
  std::shared_ptr<TMemoryFile>& entry = Entries[UpperCase(name)];
  entry = std::make_shared<TMemoryFile>();
  entry->Name = name;
  entry->IsFolder = isFolder;
  return entry;
}

bool TMemoryFile::IsHeldOpen() const {
  return Holders != 0 || std::any_of(Entries.begin(), Entries.end(),
                                     [](const auto& entry) { return entry.second->IsHeldOpen(); });
}

void TMemoryFile::CollectBelow(const Text& path, std::vector<Text>& paths) const {
  for (const auto& [upperName, entry] : Entries) {
    const Text entryPath = path + u"\\" + entry->Name;
    paths.push_back(entryPath);
    entry->CollectBelow(entryPath, paths);
  }
}

bool MatchesPattern(TextView pattern, TextView name) {
  if (pattern.empty())
    return name.empty();
  if (pattern.front() == u'*') {
    for (std::size_t skip = 0; skip <= name.size(); ++skip) {
      if (MatchesPattern(pattern.substr(1), name.substr(skip)))
        return true;
    }
    return false;
  }
  if (name.empty())
    return false;
  const bool same = pattern.front() == u'?' || UpperUnit(pattern.front()) == UpperUnit(name.front());
  return same && MatchesPattern(pattern.substr(1), name.substr(1));
}

}  // namespace corvalt
