#include "formats/regfilereader.h"

#include <algorithm>
#include <array>

#include "base/lettercase.h"
#include "formats/regfileformat.h"

namespace corvalt {

namespace {

constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 128> HexDigits() {
  std::array<std::uint8_t, 128> digits{};
  digits.fill(kNoDigit);
  for (std::uint8_t i = 0; i < 10; ++i)
    digits[static_cast<std::size_t>('0' + i)] = i;
  for (std::uint8_t i = 0; i < 6; ++i) {
    digits[static_cast<std::size_t>('a' + i)] = static_cast<std::uint8_t>(10 + i);
    digits[static_cast<std::size_t>('A' + i)] = static_cast<std::uint8_t>(10 + i);
  }
  return digits;
}

constexpr std::array<std::uint8_t, 128> kHexDigits = HexDigits();

std::uint8_t DigitOf(char16_t unit) {
  return unit < kHexDigits.size() ? kHexDigits[unit] : kNoDigit;
}

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}

TextView WithoutBlanks(TextView text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

bool IsExactLine(TextView line) {
  return line.starts_with(kExactLine) || line.starts_with(kExactContinuation);
}

void AppendUnits(TextView text, TBytes& bytes) {
  std::size_t at = bytes.size();
  bytes.resize(at + 2 * text.size());
  for (const char16_t unit : text) {
    bytes[at++] = static_cast<std::uint8_t>(unit & 0xFF);
    bytes[at++] = static_cast<std::uint8_t>(unit >> 8);
  }
}

}  // namespace

TRegFileReader::TRegFileReader(std::span<const std::uint8_t> bytes, TLocale& locale)
    : m_lines(bytes, locale), m_locale(locale) {
  while (m_lines.Next()) {
    const TextView line = WithoutBlanks(m_lines.Line());
    if (line.empty())
      continue;
    m_hasHeader = line == kRegFileHeader;
    break;
  }
}

const TRegFileEntry* TRegFileReader::Next() {
  while (m_hasHeader && m_lines.Next()) {
    m_rest = m_lines.Line();
    m_linesDone = 0;
    if (!SaysSomething())
      continue;
    if (!ReadEntry())
      SkipMalformed();
    else if (!m_hasKey && m_entry.Kind != TRegFileEntry::TKind::DeleteKey)
      m_linesSkipped += m_linesDone + 1;
    else
      return &m_entry;
  }
  return nullptr;
}

bool TRegFileReader::SaysSomething() {
  SkipBlanks();
  return !AtEnd() || IsExactLine(m_rest);
}

bool TRegFileReader::ReadEntry() {
  if (m_rest.front() == u'[')
    return ReadKeyLine();
  if (IsExactLine(m_rest))
    return ReadExactLine();
  if (m_rest.front() == u'"' || m_rest.front() == u'@')
    return ReadValueLine();
  // A key line with a damaged beginning must end the key before it.
  if (WithoutBlanks(m_rest).ends_with(u']'))
    m_hasKey = false;
  return false;
}

// The line on which a folded entry went wrong may be an entry itself, so reading goes on with that one.
void TRegFileReader::SkipMalformed() {
  if (m_linesDone == 0) {
    ++m_linesSkipped;
    return;
  }
  m_linesSkipped += m_linesDone;
  m_lines.GoBack(m_lines.Begin());
}

// A key's name may hold "]": the last one ends the line.
bool TRegFileReader::ReadKeyLine() {
  m_hasKey = false;
  const std::size_t close = m_rest.rfind(u']');
  if (close == TextView::npos)
    return false;
  TextView name = m_rest.substr(1, close - 1);
  m_rest.remove_prefix(close + 1);
  SkipBlanks();
  if (!AtEnd())
    return false;
  const bool isDeletion = name.starts_with(u'-');
  if (isDeletion)
    name.remove_prefix(1);
  const std::size_t rootEnd = std::min(name.find(u'\\'), name.size());
  const TextView keyPath = rootEnd == name.size() ? TextView(u"\\") : name.substr(rootEnd);
  if (!SetKey(name.substr(0, rootEnd), keyPath))
    return false;
  m_hasKey = !isDeletion;
  m_entry.Kind = isDeletion ? TRegFileEntry::TKind::DeleteKey : TRegFileEntry::TKind::Key;
  return true;
}

bool TRegFileReader::SetKey(TextView rootName, TextView keyPath) {
  const Text root = UpperCase(rootName);
  if (!IsRootKeyName(root) || keyPath.find(u'\0') != TextView::npos || !OpensKey(keyPath))
    return false;
  m_entry.RootKey = RootKeyFromName(root);
  m_entry.KeyPath = keyPath;
  return true;
}

bool TRegFileReader::ReadValueLine() {
  if (!ReadName())
    return false;
  SkipBlanks();
  if (!Take(u'='))
    return false;
  SkipBlanks();
  m_entry.Value.Type = kRegNone;
  m_entry.Value.Data.clear();
  return ReadData();
}

bool TRegFileReader::ReadName() {
  m_entry.Value.Name.clear();
  if (Take(u'@'))
    return true;
  return Take(u'"') && TakeString(m_entry.Value.Name) == TStringEnd::Closed;
}

bool TRegFileReader::ReadData() {
  m_entry.Kind = TRegFileEntry::TKind::Value;
  if (Take(u'"'))
    return ReadString();
  if (TakeWord(kDwordWord))
    return ReadDword();
  if (TakeWord(kHexWord))
    return ReadHex();
  m_entry.Kind = TRegFileEntry::TKind::DeleteValue;
  if (!Take(u'-'))
    return false;
  SkipBlanks();
  return AtEnd();
}

bool TRegFileReader::ReadString() {
  m_string.clear();
  const TStringEnd end = TakeString(m_string);
  if (end == TStringEnd::Malformed)
    return false;
  if (end == TStringEnd::Open && !ReadStringOverLines(m_string))
    return false;
  SkipBlanks();
  if (!AtEnd())
    return false;
  m_string += u'\0';
  m_entry.Value.Type = kRegSz;
  AppendUnits(m_string, m_entry.Value.Data);
  return true;
}

// Windows' editor writes a line break in a string as it is. Only a quote that ends its line ends such a
// string: otherwise the first line lacks its closing quote, and the lines after it are read for themselves.
bool TRegFileReader::ReadStringOverLines(Text& text) {
  TStringEnd end = TStringEnd::Open;
  std::size_t secondLine = 0;
  while (end == TStringEnd::Open) {
    text += m_lines.LineEnd();
    const bool hasLine = m_lines.Next();
    if (m_linesDone++ == 0)
      secondLine = m_lines.Begin();
    m_rest = m_lines.Line();
    end = hasLine ? TakeString(text) : TStringEnd::Malformed;
  }
  if (end == TStringEnd::Closed && WithoutBlanks(m_rest).empty())
    return true;
  m_lines.GoBack(secondLine);
  m_lines.Next();
  m_linesDone = 1;
  return false;
}

bool TRegFileReader::ReadDword() {
  SkipBlanks();
  const std::optional<std::uint32_t> number = TakeNumber();
  SkipBlanks();
  if (!number || !AtEnd())
    return false;
  m_entry.Value.Type = kRegDword;
  for (int shift = 0; shift < 32; shift += 8)
    m_entry.Value.Data.push_back(static_cast<std::uint8_t>(*number >> shift));
  return true;
}

bool TRegFileReader::ReadHex() {
  std::optional<std::uint32_t> type = kRegBinary;
  if (Take(u'(')) {
    type = TakeNumber();
    if (!type || !Take(u')'))
      return false;
  }
  TBytes& data = m_entry.Value.Data;
  if (!Take(u':') || !ReadHexBytes(data))
    return false;
  m_entry.Value.Type = *type;
  if (IsTextType(*type)) {
    const Text text = m_locale.DecodeAnsi({reinterpret_cast<const char*>(data.data()), data.size()});
    data.clear();
    AppendUnits(text, data);
  }
  return true;
}

bool TRegFileReader::ReadHexBytes(TBytes& bytes) {
  if (!SkipBlanksAndFolds())
    return false;
  if (AtEnd())
    return true;
  std::uint8_t byte = 0;
  while (TakeByte(byte)) {
    bytes.push_back(byte);
    if (!SkipBlanksAndFolds())
      return false;
    if (AtEnd())
      return true;
    if (!Take(u',') || !SkipBlanksAndFolds())
      return false;
  }
  return false;
}

bool TRegFileReader::ReadExactLine() {
  if (!m_rest.starts_with(kExactLine))
    return false;
  m_rest.remove_prefix(kExactLine.size());
  if (TakeWord(kExactValue))
    return ReadExactValue();
  // A comment of this form that is no value may be a damaged key line.
  m_hasKey = false;
  return TakeWord(kExactKey) && ReadExactKey();
}

bool TRegFileReader::ReadExactKey() {
  const std::size_t rootEnd = m_rest.find(kExactSeparator);
  if (rootEnd == TextView::npos)
    return false;
  const Text rootName(m_rest.substr(0, rootEnd));
  m_rest.remove_prefix(rootEnd + 1);
  Text keyPath;
  if (!ReadExactText(keyPath) || !m_rest.empty() || !keyPath.starts_with(u'\\') || !SetKey(rootName, keyPath))
    return false;
  m_hasKey = true;
  m_entry.Kind = TRegFileEntry::TKind::Key;
  return true;
}

bool TRegFileReader::ReadExactValue() {
  TRawValue& value = m_entry.Value;
  if (!ReadExactText(value.Name) || value.Name.find(u'\0') != Text::npos || !Take(kExactSeparator))
    return false;
  const std::optional<std::uint32_t> type = TakeNumber();
  value.Data.clear();
  if (!type || !Take(kExactSeparator) || !ReadExactBytes(value.Data) || !m_rest.empty())
    return false;
  value.Type = *type;
  m_entry.Kind = TRegFileEntry::TKind::Value;
  return true;
}

bool TRegFileReader::ReadExactText(Text& text) {
  TBytes bytes;
  if (!ReadExactBytes(bytes) || bytes.size() % 2 != 0)
    return false;
  text.clear();
  for (std::size_t i = 0; i < bytes.size(); i += 2)
    text.push_back(static_cast<char16_t>(bytes[i] | (bytes[i + 1] << 8)));
  return true;
}

// As many bytes as stand here and on the lines that it goes on with.
bool TRegFileReader::ReadExactBytes(TBytes& bytes) {
  std::uint8_t byte = 0;
  for (;;) {
    while (TakePair(byte))
      bytes.push_back(byte);
    if (m_rest.size() != 1 || m_rest.front() != kExactGoesOn)
      return true;
    if (!GoOn() || !m_rest.starts_with(kExactContinuation))
      return false;
    m_rest.remove_prefix(kExactContinuation.size());
  }
}

void TRegFileReader::SkipBlanks() {
  while (!m_rest.empty() && IsBlank(m_rest.front()))
    m_rest.remove_prefix(1);
}

// A line ends, or a comment begins.
bool TRegFileReader::AtEnd() const {
  return m_rest.empty() || m_rest.front() == u';';
}

// To the next line of the same entry.
bool TRegFileReader::GoOn() {
  ++m_linesDone;
  const bool hasLine = m_lines.Next();
  m_rest = m_lines.Line();
  return hasLine;
}

// To the next token, also on a later line, where blank lines and comments don't count. False when a fold
// leads nowhere.
bool TRegFileReader::SkipBlanksAndFolds() {
  SkipBlanks();
  while (Take(u'\\')) {
    SkipBlanks();
    if (!AtEnd() || !GoOn())
      return false;
    while (!SaysSomething()) {
      if (!m_lines.Next())
        return false;
      m_rest = m_lines.Line();
    }
    if (IsExactLine(m_rest))
      return false;
  }
  return true;
}

bool TRegFileReader::Take(char16_t unit) {
  if (!m_rest.starts_with(unit))
    return false;
  m_rest.remove_prefix(1);
  return true;
}

bool TRegFileReader::TakeWord(TextView word) {
  if (!EqualIgnoringCase(m_rest.substr(0, word.size()), word))
    return false;
  m_rest.remove_prefix(word.size());
  return true;
}

bool TRegFileReader::TakeDigit(std::uint32_t& digit) {
  digit = m_rest.empty() ? kNoDigit : DigitOf(m_rest.front());
  if (digit == kNoDigit)
    return false;
  m_rest.remove_prefix(1);
  return true;
}

// One digit or two.
bool TRegFileReader::TakeByte(std::uint8_t& byte) {
  std::uint32_t high = 0;
  std::uint32_t low = 0;
  if (!TakeDigit(high))
    return false;
  byte = static_cast<std::uint8_t>(TakeDigit(low) ? high * 16 + low : high);
  return true;
}

bool TRegFileReader::TakePair(std::uint8_t& byte) {
  return m_rest.size() >= 2 && DigitOf(m_rest[1]) != kNoDigit && TakeByte(byte);
}

// Up to eight digits.
std::optional<std::uint32_t> TRegFileReader::TakeNumber() {
  constexpr int kMostDigits = 8;
  std::uint32_t number = 0;
  std::uint32_t digit = 0;
  int digits = 0;
  for (; TakeDigit(digit); ++digits)
    number = number * 16 + digit;
  if (digits == 0 || digits > kMostDigits)
    return std::nullopt;
  return number;
}

// To the closing quote. Editors escape quotes and backslashes, some of them line breaks too.
TRegFileReader::TStringEnd TRegFileReader::TakeString(Text& text) {
  constexpr TextView kSpecial(u"\"\\\0", 3);
  for (;;) {
    const std::size_t plain = std::min(m_rest.find_first_of(kSpecial), m_rest.size());
    text += m_rest.substr(0, plain);
    m_rest.remove_prefix(plain);
    if (m_rest.empty())
      return TStringEnd::Open;
    if (Take(u'"'))
      return TStringEnd::Closed;
    if (!Take(u'\\') || m_rest.empty())
      return TStringEnd::Malformed;
    const char16_t escaped = m_rest.front();
    m_rest.remove_prefix(1);
    if (escaped == u'\\' || escaped == u'"')
      text.push_back(escaped);
    else if (escaped == u'n')
      text.push_back(u'\n');
    else if (escaped == u'r')
      text.push_back(u'\r');
    else
      return TStringEnd::Malformed;
  }
}

}  // namespace corvalt
