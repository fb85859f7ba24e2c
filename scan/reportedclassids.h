// The identifiers of the classes and type libraries that were reported as broken in this scan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/text.h"

// An identifier counts as broken when it occurs anywhere in the list's whole text, all entries joined by line
// breaks (CR LF): a substring, letter case counts. The list grows while the classes are scanned and is then
// asked once for each link to a class; neither costs more with a longer list than a search in a sorted one.
class TReportedClassIds {
 public:
  // Duplicates are allowed.
  void Append(TextView identifier);

  // An empty identifier occurs nowhere.
  bool Holds(TextView identifier);

 private:
  struct THash {
    using is_transparent = void;
    std::size_t operator()(TextView text) const {
      return std::hash<TextView>()(text);
    }
  };

  void SortSuffixes();

  Text m_wholeText;
  std::unordered_set<Text, THash, std::equal_to<>> m_entries;
  std::size_t m_longestEntry = 0;
  std::vector<std::uint32_t>
      m_suffixes;  // starts in m_wholeText, sorted; made when first needed after an Append
};
