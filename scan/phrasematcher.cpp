#include "scan/phrasematcher.h"

namespace corvalt {

// The phrases are taken unit by unit, all of them at once: first the first unit of each, then the second, and
// so on. A state's failure stands for a shorter text, so that it exists when the state is made.
TPhraseMatcher::TPhraseMatcher(const std::vector<Text>& phrases) : m_states(1), m_slots(16, kNone) {
  struct TGrowing {
    TextView Rest;
    TState State;
  };
  std::vector<TGrowing> growing;
  for (const Text& phrase : phrases) {
    if (!phrase.empty())
      growing.push_back({phrase, kRoot});
  }
  while (!growing.empty()) {
    for (TGrowing& phrase : growing) {
      phrase.State = Grow(phrase.State, phrase.Rest.front());
      phrase.Rest.remove_prefix(1);
      if (phrase.Rest.empty())
        m_states[phrase.State].IsMatch = true;
    }
    std::erase_if(growing, [](const TGrowing& phrase) { return phrase.Rest.empty(); });
  }
}

bool TPhraseMatcher::OccursIn(TextView text) const {
  TState state = kRoot;
  for (const char16_t unit : text) {
    state = Step(state, unit);
    if (m_states[state].IsMatch)
      return true;
  }
  return false;
}

// The state that the unit leads to from parent, made when there is none.
TPhraseMatcher::TState TPhraseMatcher::Grow(TState parent, char16_t unit) {
  const TState known = Next(parent, unit);
  if (known != kNone)
    return known;
  const TState failure = parent == kRoot ? kRoot : Step(m_states[parent].Failure, unit);
  const auto grown = static_cast<TState>(m_states.size());
  m_states.push_back({parent, failure, unit, m_states[failure].IsMatch});
  if (m_states.size() * 2 > m_slots.size()) {
    DoubleSlots();
  } else {
    m_slots[SlotOf(parent, unit)] = grown;
  }
  return grown;
}

TPhraseMatcher::TState TPhraseMatcher::Next(TState state, char16_t unit) const {
  return m_slots[SlotOf(state, unit)];
}

// Where the text read so far and the unit lead: the longest end of both that is a state.
TPhraseMatcher::TState TPhraseMatcher::Step(TState state, char16_t unit) const {
  for (;;) {
    const TState next = Next(state, unit);
    if (next != kNone)
      return next;
    if (state == kRoot)
      return kRoot;
    state = m_states[state].Failure;
  }
}

// The state's slot, or the empty one where it belongs.
std::size_t TPhraseMatcher::SlotOf(TState parent, char16_t unit) const {
  const std::size_t mask = m_slots.size() - 1;
  const std::uint64_t key = (std::uint64_t{parent} << 16) | unit;
  std::size_t slot = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ULL) >> 20) & mask;
  while (m_slots[slot] != kNone &&
         (m_states[m_slots[slot]].Parent != parent || m_states[m_slots[slot]].Unit != unit)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void TPhraseMatcher::DoubleSlots() {
  m_slots.assign(m_slots.size() * 2, kNone);
  for (TState state = kRoot + 1; state < m_states.size(); ++state)
    m_slots[SlotOf(m_states[state].Parent, m_states[state].Unit)] = state;
}

}  // namespace corvalt
