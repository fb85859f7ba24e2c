// The identifiers of the classes and type libraries that were reported as broken in this scan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_set>
#include <vector>

#include "base/text.h"

namespace corvalt {

// An identifier counts as broken when it occurs anywhere in the list's whole text, all entries joined by line
// breaks (CR LF): a substring, letter case counts. The list grows while the classes are scanned and is then
// asked once for each link to a class; neither costs more with a longer list than a search in a sorted one.
class TReportedClassIds {
 public:
  TReportedClassIds() = default;
  TReportedClassIds(const TReportedClassIds&) = delete;
  TReportedClassIds& operator=(const TReportedClassIds&) = delete;

  // Duplicates are allowed.
  void Append(TextView identifier);

  // An empty identifier occurs nowhere.
  bool Holds(TextView identifier);

 private:
  struct TEntry {
    std::uint32_t Start;  // in m_wholeText
    std::uint32_t Size;
  };
  // All different parts of one length that the entries have.
  using TParts = std::unordered_set<TextView>;

  TextView TextOf(const TEntry& entry) const;
  bool IsEntry(TextView identifier) const;
  bool OccursInAnEntry(TextView identifier);
  bool OccursAnywhere(TextView identifier);

  // Null when the parts of enough other lengths are kept already.
  const TParts* PartsOfLength(std::size_t length);

  void SortEntries();
  void SortSuffixes();

  Text m_wholeText;
  std::vector<TEntry> m_entries;
  std::size_t m_longestEntry = 0;
  bool m_isSorted = true;                 // m_entries, by their texts
  std::vector<std::uint32_t> m_suffixes;  // starts in m_wholeText, sorted; made when first needed
  std::map<std::size_t, TParts> m_parts;  // by length, of the first lengths that were asked for
};

}  // namespace corvalt
