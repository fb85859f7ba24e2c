#include "formats/inifile.h"

#include <algorithm>
#include <set>

#include "base/lettercase.h"
#include "formats/textfile.h"

namespace corvalt {

namespace {

constexpr TextView kLineEnd = u"\r\n";

// The name of a section line, not trimmed; nullopt for any other line, one without its "]" among them.
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

// Where the value of a line with this key begins; nullopt for any other line.
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

TIniFile::TEncoding TIniFile::EncodingOf(std::string_view bytes) {
  if (bytes.starts_with(kUtf16LittleEndianMark))
    return TEncoding::Utf16;
  const bool isUtf8 = bytes.starts_with(kUtf8Mark) && DecodeUtf8(bytes.substr(kUtf8Mark.size()));
  return isUtf8 ? TEncoding::Utf8 : TEncoding::Ansi;
}

TIniFile TIniFile::FromBytes(std::span<const std::uint8_t> bytes, TLocale& locale) {
  TIniFile file;
  const std::string_view characters = AsCharacters(bytes);
  file.m_encoding = EncodingOf(characters);
  if (file.m_encoding == TEncoding::Utf16)
    file.AddUtf16Lines(characters.substr(kUtf16LittleEndianMark.size()));
  else
    file.AddLines(characters.substr(file.m_encoding == TEncoding::Utf8 ? kUtf8Mark.size() : 0), locale);
  return file;
}

// No code page has a byte of a line end inside a character, so that each line can be taken by itself.
void TIniFile::AddLines(std::string_view bytes, TLocale& locale) {
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
    std::string_view end = bytes.substr(line.size());
    end = end.substr(0, end.starts_with("\r\n") ? 2 : 1);
    bytes.remove_prefix(line.size() + end.size());
    const std::optional<Text> utf8 = m_encoding == TEncoding::Utf8 ? DecodeUtf8(line) : std::nullopt;
    m_lines.push_back({utf8 ? *utf8 : locale.DecodeAnsi(line), FromAscii(end), std::string(line)});
  }
}

void TIniFile::AddUtf16Lines(std::string_view bytes) {
  const Text content = DecodeUtf16LittleEndian(bytes);
  TextView rest = content;
  while (!rest.empty()) {
    const TextView line = rest.substr(0, rest.find_first_of(kLineEnd));
    TextView end = rest.substr(line.size());
    end = end.substr(0, end.starts_with(kLineEnd) ? 2 : 1);
    rest.remove_prefix(line.size() + end.size());
    m_lines.push_back({Text(line), Text(end), std::nullopt});
  }
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
  m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(at),
                 {std::move(content), Text(kLineEnd), std::nullopt});
}

void TIniFile::Write(TextView section, TextView key, TextView value) {
  const Text sectionName = Trim(section);
  const Text trimmedKey = Trim(key);
  if (!FindSection(sectionName))
    InsertLine(m_lines.size(), u"[" + sectionName + u"]");
  const std::size_t header = *FindSection(sectionName);
  std::size_t end = SectionEnd(header);
  for (std::size_t i = header + 1; i < end; ++i) {
    TLine& line = m_lines[i];
    if (const std::optional<std::size_t> start = ValueStart(line.Content, trimmedKey)) {
      Text changed = line.Content.substr(0, *start) + Written(value);
      if (changed != line.Content)
        line = {std::move(changed), line.End, std::nullopt};
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

bool TIniFile::SameText(const TIniFile& other) const {
  return m_encoding == other.m_encoding &&
         std::equal(m_lines.begin(), m_lines.end(), other.m_lines.begin(), other.m_lines.end(),
                    [](const TLine& a, const TLine& b) { return a.Content == b.Content && a.End == b.End; });
}

std::string TIniFile::Encoded(TLocale& locale) const {
  const bool isUtf8 = m_encoding == TEncoding::Utf8;
  std::string bytes(isUtf8 ? kUtf8Mark : std::string_view());
  for (const TLine& line : m_lines) {
    if (line.Bytes)
      bytes += *line.Bytes;
    else
      bytes += isUtf8 ? EncodeUtf8(line.Content) : locale.EncodeAnsi(line.Content);
    bytes += EncodeUtf8(line.End);
  }
  return bytes;
}

std::string TIniFile::EncodedAsUtf16() const {
  std::string bytes(kUtf16LittleEndianMark);
  for (const TLine& line : m_lines)
    AppendUnits(line.Content + line.End, bytes);
  return bytes;
}

std::vector<std::uint8_t> TIniFile::ToBytes(TLocale& locale) const {
  if (m_encoding != TEncoding::Utf16) {
    const std::string encoded = Encoded(locale);
    std::vector<std::uint8_t> bytes(encoded.begin(), encoded.end());
    // Reading back finds every loss: characters that the encoding lacks, a content that begins like a mark.
    if (FromBytes(bytes, locale).SameText(*this))
      return bytes;
  }
  const std::string encoded = EncodedAsUtf16();
  return {encoded.begin(), encoded.end()};
}

}  // namespace corvalt
