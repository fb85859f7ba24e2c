#include "scan/reportedclassids.h"

#include <algorithm>

namespace {

// Suffixes are told apart by this many units, more than an identifier in braces has: it bounds the cost of
// sorting lists of long equal names.
constexpr std::size_t kSortedUnits = 64;

}  // namespace

void TReportedClassIds::Append(TextView identifier) {
  if (!m_wholeText.empty())
    m_wholeText += u"\r\n";
  m_wholeText += identifier;
  m_entries.emplace(identifier);
  m_suffixes.clear();
}

bool TReportedClassIds::Holds(TextView identifier) {
  if (identifier.empty() || identifier.size() > m_wholeText.size())
    return false;
  if (m_entries.find(identifier) != m_entries.end())
    return true;
  if (m_suffixes.empty())
    SortSuffixes();
  const TextView text = m_wholeText;
  const TextView key = identifier.substr(0, kSortedUnits);
  const auto first = std::lower_bound(
      m_suffixes.begin(), m_suffixes.end(), key,
      [text](std::uint32_t start, TextView wanted) { return text.substr(start, wanted.size()) < wanted; });
  for (auto suffix = first; suffix != m_suffixes.end() && text.substr(*suffix, key.size()) == key; ++suffix) {
    if (text.substr(*suffix, identifier.size()) == identifier)
      return true;
  }
  return false;
}

void TReportedClassIds::SortSuffixes() {
  const TextView text = m_wholeText;
  m_suffixes.resize(m_wholeText.size());
  for (std::size_t start = 0; start < m_suffixes.size(); ++start) {
    m_suffixes[start] = static_cast<std::uint32_t>(start);
  }
  std::sort(m_suffixes.begin(), m_suffixes.end(), [text](std::uint32_t a, std::uint32_t b) {
    return text.substr(a, kSortedUnits) < text.substr(b, kSortedUnits);
  });
}
