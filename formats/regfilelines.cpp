#include "formats/regfilelines.h"

#include <algorithm>

namespace corvalt {

TRegFileLines::TRegFileLines(std::span<const std::uint8_t> bytes, TCodePage codePage)
    : m_bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size()), m_codePage(codePage) {
}

bool TRegFileLines::Next() {
  m_begin = m_next;
  m_end = m_begin;
  m_line.clear();
  ++m_number;
  if (m_begin >= m_bytes.size())
    return false;
  unsigned char bits = 0;
  while (m_end < m_bytes.size() && m_bytes[m_end] != '\r' && m_bytes[m_end] != '\n')
    bits |= static_cast<unsigned char>(m_bytes[m_end++]);
  m_next = std::min(m_end + 1, m_bytes.size());
  if (m_end + 1 < m_bytes.size() && m_bytes[m_end] == '\r' && m_bytes[m_end + 1] == '\n')
    ++m_next;
  const std::string_view line = m_bytes.substr(m_begin, m_end - m_begin);
  // Every ANSI code page has the 7-bit characters in their places.
  if (bits < 0x80)
    m_line.assign(line.begin(), line.end());
  else
    m_line = m_codePage.Decode(line);
  return true;
}

TextView TRegFileLines::LineEnd() const {
  if (m_next - m_end == 2)
    return u"\r\n";
  if (m_next == m_end)
    return {};
  return m_bytes[m_end] == '\r' ? u"\r" : u"\n";
}

Text TRegFileLines::LineAt(std::size_t begin, std::size_t mostBytes) const {
  const std::string_view rest = m_bytes.substr(std::min(begin, m_bytes.size()), mostBytes);
  return m_codePage.Decode(rest.substr(0, rest.find_first_of("\r\n")));
}

}  // namespace corvalt
