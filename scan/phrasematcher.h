// Whether any of many phrases occurs in a text. The ignore lists are tested against every problem found, so
// the cost of one test must not grow with the number of entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/text.h"

// An automaton after Aho and Corasick over 16-bit units. Exact letter case: callers fold both sides.
class TPhraseMatcher {
 public:
  // Empty phrases never match.
  explicit TPhraseMatcher(const std::vector<Text>& phrases);

  // Time proportional to the text's length, whatever the number of phrases.
  bool OccursIn(TextView text) const;

 private:
  using TState = std::uint32_t;
  static constexpr TState kRoot = 0;
  static constexpr TState kNone = 0xFFFFFFFF;

  struct TEdge {
    TState From = kNone;
    TState To = kNone;
    char16_t Unit = 0;
  };

  void Add(TextView phrase);
  void LinkFailures(std::size_t longestPhrase);
  TState Next(TState state, char16_t unit) const;
  std::size_t SlotOf(TState state, char16_t unit) const;
  void GrowEdges();

  std::vector<TEdge> m_edges;  // open addressing; its size is a power of two
  std::size_t m_edgeCount = 0;
  std::vector<TState> m_failures;
  std::vector<std::uint32_t> m_depths;
  std::vector<bool> m_isMatch;
};
