#include "scan/phrasematcher.h"

#include <algorithm>

TPhraseMatcher::TPhraseMatcher(const std::vector<Text>& phrases)
    : m_edges(16), m_failures(1, kRoot), m_depths(1, 0), m_isMatch(1, false) {
  std::size_t longest = 0;
  for (const Text& phrase : phrases) {
    if (phrase.empty())
      continue;
    Add(phrase);
    longest = std::max(longest, phrase.size());
  }
  LinkFailures(longest);
}

void TPhraseMatcher::Add(TextView phrase) {
  TState state = kRoot;
  for (const char16_t unit : phrase) {
    TState next = Next(state, unit);
    if (next == kNone) {
      if ((m_edgeCount + 1) * 2 > m_edges.size())
        GrowEdges();
      next = static_cast<TState>(m_failures.size());
      m_edges[SlotOf(state, unit)] = {state, next, unit};
      ++m_edgeCount;
      m_failures.push_back(kRoot);
      m_depths.push_back(m_depths[state] + 1);
      m_isMatch.push_back(false);
    }
    state = next;
  }
  m_isMatch[state] = true;
}

// A state's failure is the longest proper suffix that is a state too; it is shallower, so that going through
// the edges by depth finds every failure it needs already set.
void TPhraseMatcher::LinkFailures(std::size_t longestPhrase) {
  std::vector<std::vector<TEdge>> byDepth(longestPhrase + 1);
  for (const TEdge& edge : m_edges) {
    if (edge.From != kNone)
      byDepth[m_depths[edge.To]].push_back(edge);
  }
  for (const std::vector<TEdge>& edges : byDepth) {
    for (const TEdge& edge : edges) {
      if (edge.From == kRoot)
        continue;
      TState failure = m_failures[edge.From];
      while (failure != kRoot && Next(failure, edge.Unit) == kNone)
        failure = m_failures[failure];
      const TState next = Next(failure, edge.Unit);
      m_failures[edge.To] = next == kNone ? kRoot : next;
      if (m_isMatch[m_failures[edge.To]])
        m_isMatch[edge.To] = true;
    }
  }
}

bool TPhraseMatcher::OccursIn(TextView text) const {
  TState state = kRoot;
  for (const char16_t unit : text) {
    TState next = Next(state, unit);
    while (next == kNone && state != kRoot) {
      state = m_failures[state];
      next = Next(state, unit);
    }
    state = next == kNone ? kRoot : next;
    if (m_isMatch[state])
      return true;
  }
  return false;
}

TPhraseMatcher::TState TPhraseMatcher::Next(TState state, char16_t unit) const {
  return m_edges[SlotOf(state, unit)].To;
}

// The edge's slot, or the empty one where it belongs.
std::size_t TPhraseMatcher::SlotOf(TState state, char16_t unit) const {
  const std::size_t mask = m_edges.size() - 1;
  const std::uint64_t key = (std::uint64_t{state} << 16) | unit;
  std::size_t slot = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ULL) >> 20) & mask;
  while (m_edges[slot].From != kNone && (m_edges[slot].From != state || m_edges[slot].Unit != unit)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void TPhraseMatcher::GrowEdges() {
  std::vector<TEdge> old(m_edges.size() * 2);
  old.swap(m_edges);
  for (const TEdge& edge : old) {
    if (edge.From != kNone)
      m_edges[SlotOf(edge.From, edge.Unit)] = edge;
  }
}
