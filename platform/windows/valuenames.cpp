#include "platform/windows/valuenames.h"

#include "base/lettercase.h"

namespace corvalt {

Text TValueNames::AsStored(const TKeptKey& key, const Text& name) {
  TKeyCounts counts;
  if (m_calls.Counts(key.Key.Get(), counts) != ERROR_SUCCESS)
    return name;
  if (!IsOf(key) || counts != m_counts)
    List(key, counts);
  const auto found = m_names.find(UpperCase(name));
  return found == m_names.end() ? name : found->second;
}

bool TValueNames::IsOf(const TKeptKey& key) const {
  return m_rootKey == key.RootKey && EqualIgnoringCase(m_path, key.Path);
}

void TValueNames::List(const TKeptKey& key, const TKeyCounts& counts) {
  m_rootKey = key.RootKey;
  m_path = key.Path;
  m_counts = counts;
  m_names.clear();
  m_buffer.Reserve(counts, 0);
  for (DWORD i = 0; i < counts.Values; ++i) {
    if (m_calls.EnumValue(key.Key.Get(), i, 0, m_buffer) == ERROR_SUCCESS)
      m_names[UpperCase(m_buffer.Name())] = Text(m_buffer.Name());
  }
}

void TValueNames::Drop(const TKeptKey& key, const Text& name) {
  if (IsOf(key) && m_calls.Counts(key.Key.Get(), m_counts) == ERROR_SUCCESS)
    m_names.erase(UpperCase(name));
}

}  // namespace corvalt
