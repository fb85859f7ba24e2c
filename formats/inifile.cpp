#include "formats/inifile.h"

#include <algorithm>
#include <set>

#include "base/lettercase.h"
#include "formats/textfile.h"

namespace corvalt {

namespace {

constexpr TextView kLineEnd = u"\r\n";

// The name of a section line, trimmed; nothing for any other line, one without its "]" among them.
std::optional<TextView> SectionNameOf(const Text& line) {
  const std::size_t open = line.find_first_not_of(u" \t");
  if (open == Text::npos || line[open] != u'[')
    return std::nullopt;
  const std::size_t close = line.find(u']', open);
  if (close == Text::npos)
    return std::nullopt;
  return TextView(line).substr(open + 1, close - open - 1);
}

bool IsSection(const Text& line, const Text& trimmedName) {
  const std::optional<TextView> name = SectionNameOf(line);
  return name && EqualIgnoringCase(Trim(*name), trimmedName);
}

// Where the value of a line with this key begins; nothing for any other line.
std::optional<std::size_t> ValueStart(const Text& line, const Text& trimmedKey) {
  const std::size_t equals = line.find(u'=');
  if (equals == Text::npos)
    return std::nullopt;
  const Text key = Trim(TextView(line).substr(0, equals));
  if (key.starts_with(u';') || !EqualIgnoringCase(key, trimmedKey))
    return std::nullopt;
  return equals + 1;
}

bool HasQuotes(TextView value) {
  return value.size() > 1 && value.front() == value.back() &&
         (value.front() == u'"' || value.front() == u'\'');
}

Text ValueOf(TextView text) {
  Text value = Trim(text);
  return HasQuotes(value) ? value.substr(1, value.size() - 2) : value;
}

// The value as it stands in a line: in quotes when reading it would lose something otherwise.
Text Written(TextView value) {
  return ValueOf(value) == value ? Text(value) : u"\"" + Text(value) + u"\"";
}

bool IsBlank(const Text& line) {
  return Trim(line).empty();
}

}  // namespace

TIniFile::TDecoded TIniFile::Decode(std::span<const std::uint8_t> bytes, TLocale& locale) {
  const std::string_view characters = AsCharacters(bytes);
  if (characters.starts_with(kUtf16LittleEndianMark))
    return {TEncoding::Utf16, DecodeUtf16LittleEndian(characters.substr(kUtf16LittleEndianMark.size()))};
  if (characters.starts_with(kUtf8Mark)) {
    if (std::optional<Text> text = DecodeUtf8(characters.substr(kUtf8Mark.size())))
      return {TEncoding::Utf8, *std::move(text)};
  }
  return {TEncoding::Ansi, locale.DecodeAnsi(characters)};
}

TIniFile TIniFile::FromBytes(std::span<const std::uint8_t> bytes, TLocale& locale) {
  TIniFile file;
  TDecoded decoded = Decode(bytes, locale);
  file.m_encoding = decoded.Encoding;
  TextView rest = decoded.Content;
  while (!rest.empty()) {
    const std::size_t contentEnd = std::min(rest.find_first_of(kLineEnd), rest.size());
    TextView end = rest.substr(contentEnd);
    end = end.substr(0, end.starts_with(kLineEnd) ? 2 : 1);
    file.m_lines.push_back({Text(rest.substr(0, contentEnd)), Text(end)});
    rest.remove_prefix(contentEnd + end.size());
  }
  return file;
}

std::vector<Text> TIniFile::SectionNames() const {
  std::vector<Text> names;
  std::set<Text, TLessIgnoringCase> known;
  for (const TLine& line : m_lines) {
    if (const std::optional<TextView> section = SectionNameOf(line.Content)) {
      Text name = Trim(*section);
      if (known.insert(name).second)
        names.push_back(std::move(name));
    }
  }
  return names;
}

std::optional<std::size_t> TIniFile::FindSection(const Text& section) const {
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    if (IsSection(m_lines[i].Content, section))
      return i;
  }
  return std::nullopt;
}

std::size_t TIniFile::SectionEnd(std::size_t header) const {
  std::size_t end = header + 1;
  while (end < m_lines.size() && !SectionNameOf(m_lines[end].Content))
    ++end;
  return end;
}

std::optional<Text> TIniFile::Read(TextView section, TextView key) const {
  const std::optional<std::size_t> header = FindSection(Trim(section));
  if (!header)
    return std::nullopt;
  const Text trimmedKey = Trim(key);
  const std::size_t end = SectionEnd(*header);
  for (std::size_t i = *header + 1; i < end; ++i) {
    const Text& line = m_lines[i].Content;
    if (const std::optional<std::size_t> start = ValueStart(line, trimmedKey))
      return ValueOf(TextView(line).substr(*start));
  }
  return std::nullopt;
}

void TIniFile::InsertLine(std::size_t at, Text content) {
  // A last line that had no end gets one before another follows it.
  if (at > 0 && m_lines[at - 1].End.empty())
    m_lines[at - 1].End = kLineEnd;
  m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(at), {std::move(content), Text(kLineEnd)});
}

void TIniFile::Write(TextView section, TextView key, TextView value) {
  const Text sectionName = Trim(section);
  const Text trimmedKey = Trim(key);
  if (!FindSection(sectionName))
    InsertLine(m_lines.size(), u"[" + sectionName + u"]");
  const std::size_t header = *FindSection(sectionName);
  std::size_t end = SectionEnd(header);
  for (std::size_t i = header + 1; i < end; ++i) {
    Text& line = m_lines[i].Content;
    if (const std::optional<std::size_t> start = ValueStart(line, trimmedKey)) {
      line = line.substr(0, *start) + Written(value);
      return;
    }
  }
  // Blank lines before the next section stay between the two.
  while (end > header + 1 && IsBlank(m_lines[end - 1].Content))
    --end;
  InsertLine(end, trimmedKey + u"=" + Written(value));
}

void TIniFile::EraseSection(TextView section) {
  const Text name = Trim(section);
  bool inside = false;
  std::erase_if(m_lines, [&](const TLine& line) {
    if (SectionNameOf(line.Content))
      inside = IsSection(line.Content, name);
    return inside;
  });
}

Text TIniFile::Content() const {
  Text content;
  for (const TLine& line : m_lines)
    content.append(line.Content).append(line.End);
  return content;
}

std::vector<std::uint8_t> TIniFile::ToBytes(TLocale& locale) const {
  const Text content = Content();
  std::string bytes;
  if (m_encoding == TEncoding::Ansi)
    bytes = locale.EncodeAnsi(content);
  else if (m_encoding == TEncoding::Utf8)
    bytes = std::string(kUtf8Mark) + EncodeUtf8(content);
  std::vector<std::uint8_t> result(bytes.begin(), bytes.end());
  // Reading back finds every loss: characters that the encoding lacks, a content that begins like a mark.
  if (m_encoding != TEncoding::Utf16 && Decode(result, locale) == TDecoded{m_encoding, content})
    return result;
  result.assign(kUtf16LittleEndianMark.begin(), kUtf16LittleEndianMark.end());
  for (const char16_t unit : content) {
    result.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    result.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return result;
}

}  // namespace corvalt
