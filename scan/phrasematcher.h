// Whether any of many phrases occurs in a text. The ignore lists are tested against every problem found, so
// the cost of one test must not grow with the number of entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/text.h"

namespace corvalt {

// An automaton after Aho and Corasick over 16-bit units. Exact letter case: callers fold both sides.
class TPhraseMatcher {
 public:
  // Empty phrases never match.
  explicit TPhraseMatcher(const std::vector<Text>& phrases);

  // Time proportional to the text's length, whatever the number of phrases.
  bool OccursIn(TextView text) const;

 private:
  // A number in m_states. Every state but the root stands for a beginning of a phrase.
  using TState = std::uint32_t;
  static constexpr TState kRoot = 0;
  static constexpr TState kNone = 0xFFFFFFFF;

  struct TStateData {
    TState Parent = kNone;
    TState Failure = kRoot;  // the longest proper end of it that is a state too
    char16_t Unit = 0;       // by which the parent leads here
    bool IsMatch = false;    // a phrase ends here
  };

  TState Grow(TState parent, char16_t unit);
  TState Next(TState state, char16_t unit) const;
  TState Step(TState state, char16_t unit) const;
  std::size_t SlotOf(TState parent, char16_t unit) const;
  void DoubleSlots();

  std::vector<TStateData> m_states;
  std::vector<TState> m_slots;  // the states by parent and unit, open addressing; the size is a power of two
};

}  // namespace corvalt
