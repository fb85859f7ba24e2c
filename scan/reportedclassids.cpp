#include "scan/reportedclassids.h"

#include <algorithm>
#include <numeric>

namespace corvalt {

namespace {

// Suffixes are told apart by this many units, more than the name of a key has: it bounds the cost of sorting
// lists of long equal names.
constexpr std::size_t kSortedUnits = 256;

// Links name classes in a few lengths: with braces, without them. The parts of each take as much memory as
// the sorted suffixes, and looking for parts of a known length is ten times as fast.
constexpr std::size_t kMostPartLengths = 2;

}  // namespace

void TReportedClassIds::Append(TextView identifier) {
  if (!m_wholeText.empty())
    m_wholeText += u"\r\n";
  m_entries.push_back(
      {static_cast<std::uint32_t>(m_wholeText.size()), static_cast<std::uint32_t>(identifier.size())});
  m_wholeText += identifier;
  m_longestEntry = std::max(m_longestEntry, identifier.size());
  m_isSorted = false;
  m_suffixes.clear();
  m_parts.clear();
}

bool TReportedClassIds::Holds(TextView identifier) {
  if (identifier.empty())
    return false;
  SortEntries();
  if (IsEntry(identifier))
    return true;
  // A text that is no entry is part of a longer one, or stretches over a line break.
  const bool isOneLine = identifier.find_first_of(u"\r\n") == TextView::npos;
  if (isOneLine && identifier.size() >= m_longestEntry)
    return false;
  // Longer than the name of any key, so that no link holds it.
  if (identifier.size() > kSortedUnits)
    return Contains(m_wholeText, identifier);
  return isOneLine ? OccursInAnEntry(identifier) : OccursAnywhere(identifier);
}

TextView TReportedClassIds::TextOf(const TEntry& entry) const {
  return TextView(m_wholeText).substr(entry.Start, entry.Size);
}

bool TReportedClassIds::IsEntry(TextView identifier) const {
  const auto first =
      std::lower_bound(m_entries.begin(), m_entries.end(), identifier,
                       [this](const TEntry& entry, TextView wanted) { return TextOf(entry) < wanted; });
  return first != m_entries.end() && TextOf(*first) == identifier;
}

bool TReportedClassIds::OccursInAnEntry(TextView identifier) {
  const TParts* const parts = PartsOfLength(identifier.size());
  return parts == nullptr ? OccursAnywhere(identifier) : parts->contains(identifier);
}

const TReportedClassIds::TParts* TReportedClassIds::PartsOfLength(std::size_t length) {
  const auto known = m_parts.find(length);
  if (known != m_parts.end())
    return &known->second;
  if (m_parts.size() >= kMostPartLengths)
    return nullptr;
  TParts& parts = m_parts[length];
  for (const TEntry& entry : m_entries) {
    const TextView text = TextOf(entry);
    for (std::size_t start = 0; start + length <= text.size(); ++start)
      parts.insert(text.substr(start, length));
  }
  return &parts;
}

bool TReportedClassIds::OccursAnywhere(TextView identifier) {
  SortSuffixes();
  const TextView text = m_wholeText;
  const auto first = std::lower_bound(
      m_suffixes.begin(), m_suffixes.end(), identifier,
      [text](std::uint32_t start, TextView wanted) { return text.substr(start, wanted.size()) < wanted; });
  return first != m_suffixes.end() && text.substr(*first).starts_with(identifier);
}

void TReportedClassIds::SortEntries() {
  if (m_isSorted)
    return;
  std::sort(m_entries.begin(), m_entries.end(),
            [this](const TEntry& a, const TEntry& b) { return TextOf(a) < TextOf(b); });
  m_isSorted = true;
}

void TReportedClassIds::SortSuffixes() {
  if (!m_suffixes.empty())
    return;
  const TextView text = m_wholeText;
  m_suffixes.resize(m_wholeText.size());
  std::iota(m_suffixes.begin(), m_suffixes.end(), 0);
  std::sort(m_suffixes.begin(), m_suffixes.end(), [text](std::uint32_t a, std::uint32_t b) {
    return text.substr(a, kSortedUnits) < text.substr(b, kSortedUnits);
  });
}

}  // namespace corvalt
