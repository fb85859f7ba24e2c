#include "formats/regfilewriter.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace corvalt {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kFold = "\\\r\n  ";
constexpr std::size_t kFoldIndent = 2;
// A line whose bytes reach beyond this column is folded: with the "\" none is longer than 80.
constexpr std::size_t kFoldColumn = 76;
constexpr std::size_t kExactColumns = 80;
constexpr char kDigits[] = "0123456789abcdef";

std::string Ascii(TextView text) {
  return {text.begin(), text.end()};
}

std::string HexNumber(std::uint32_t number) {
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  return {digits.data(), end};
}

std::string_view Chars(const TBytes& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

std::string TwoDigits(char byte) {
  const auto value = static_cast<std::uint8_t>(byte);
  return {kDigits[value >> 4], kDigits[value & 15]};
}

// The units as characters of a line's data.
std::string CharsOfUnits(TextView text) {
  std::string bytes;
  AppendUnits(text, bytes);
  return bytes;
}

std::string BigEndian(std::uint64_t number) {
  std::string bytes;
  for (int shift = 56; shift >= 0; shift -= 8)
    bytes.push_back(static_cast<char>(number >> shift & 0xFF));
  return bytes;
}

bool IsAscii(TextView text) {
  return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// Line breaks would end the line, and other control characters may be changed by an editor that saves the
// file.
bool HoldsControls(TextView text) {
  return std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit < u' ' && unit != u'\t'; });
}

}  // namespace

TRegFileWriter::TRegFileWriter(TLocale& locale, TBytes& bytes) : m_locale(locale), m_bytes(bytes) {
}

void TRegFileWriter::WriteHeader() {
  m_line = Ascii(kRegFileHeader);
  FlushLine();
}

void TRegFileWriter::WriteOrigin(const TBackupOrigin& origin) {
  const std::string lines = OriginLines(origin);
  m_bytes.insert(m_bytes.end(), lines.begin(), lines.end());
}

void TRegFileWriter::WriteEnd(const TBackupEnd& end) {
  FlushLine();
  const std::string line = EndLine(m_bytes, end);
  m_bytes.insert(m_bytes.end(), line.begin(), line.end());
}

void TRegFileWriter::WriteKey(TRootKey rootKey, TextView keyPath, const TRegFileAttributes& attributes) {
  FlushLine();
  WriteAttributes(attributes);
  m_line = '[';
  AppendPlain(RootKeyName(rootKey));
  m_keyIsExact = HoldsControls(keyPath) || (keyPath != u"\\" && !AppendPlain(keyPath));
  if (m_keyIsExact) {
    WriteExactKey(rootKey, keyPath);
    return;
  }
  m_line += ']';
  FlushLine();
}

void TRegFileWriter::WriteValue(const TRawValue& value) {
  if (m_keyIsExact || !WritePlainValue(value))
    WriteExactValue(value);
}

bool TRegFileWriter::WritePlainValue(const TRawValue& value) {
  m_line.clear();
  if (value.Name.empty())
    m_line += '@';
  else if (HoldsControls(value.Name) || !AppendQuoted(value.Name))
    return false;
  m_line += '=';
  if (!AppendPlainData(value))
    return false;
  FlushLine();
  return true;
}

bool TRegFileWriter::AppendPlainData(const TRawValue& value) {
  const TBytes& data = value.Data;
  if (IsTextType(value.Type) && !data.empty())
    return AppendTextData(value);
  if (value.Type == kRegDword && data.size() == 4) {
    m_line += Ascii(kDwordWord);
    std::for_each(data.rbegin(), data.rend(), [this](std::uint8_t byte) { AppendDigits(byte); });
    return true;
  }
  AppendHexData(value.Type, Chars(data));
  return true;
}

bool TRegFileWriter::AppendTextData(const TRawValue& value) {
  if (!EndsInNul(value.Data))
    return false;
  m_units = UnitsOf(value.Data);
  const TextView text = TextView(m_units).substr(0, m_units.size() - 1);
  if (value.Type != kRegMultiSz && HoldsNul(text))
    return false;
  if (value.Type == kRegSz && !HoldsControls(text))
    return AppendQuoted(text);
  const std::optional<std::string> bytes = m_locale.EncodeAnsiExact(m_units);
  if (bytes)
    AppendHexData(value.Type, *bytes);
  return bytes.has_value();
}

void TRegFileWriter::AppendHexData(std::uint32_t type, std::string_view data) {
  m_line += Ascii(kHexWord);
  if (type != kRegBinary)
    m_line += "(" + HexNumber(type) + ")";
  m_line += ':';
  AppendFoldedHex(data);
}

void TRegFileWriter::AppendFoldedHex(std::string_view data) {
  std::size_t column = m_line.size();
  for (std::size_t i = 0; i < data.size(); ++i) {
    AppendDigits(static_cast<std::uint8_t>(data[i]));
    if (i + 1 == data.size())
      break;
    m_line += ',';
    column += 3;
    if (column > kFoldColumn) {
      m_line += kFold;
      column = kFoldIndent;
    }
  }
}

// Appends the text; returns false and appends no part of it when the code page lacks one of its characters.
bool TRegFileWriter::AppendPlain(TextView text) {
  if (IsAscii(text)) {
    m_line.append(text.begin(), text.end());
    return true;
  }
  const std::optional<std::string> bytes = m_locale.EncodeAnsiExact(text);
  if (bytes)
    m_line += *bytes;
  return bytes.has_value();
}

bool TRegFileWriter::AppendQuoted(TextView text) {
  m_line += '"';
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of(u"\"\\"), text.size());
    if (!AppendPlain(text.substr(0, plain)))
      return false;
    text.remove_prefix(plain);
    if (!text.empty()) {
      m_line += '\\';
      m_line += static_cast<char>(text.front());
      text.remove_prefix(1);
    }
  }
  m_line += '"';
  return true;
}

void TRegFileWriter::WriteAttributes(const TRegFileAttributes& attributes) {
  if (attributes.Hive != kNoRootKey) {
    m_line = Ascii(kBackupLine) + Ascii(kHiveWord) + Ascii(RootKeyName(attributes.Hive));
    FlushLine();
  }
  if (!attributes.ClassName.empty())
    WriteAttribute(kClassWord, CharsOfUnits(attributes.ClassName));
  if (attributes.IsVolatile) {
    m_line = Ascii(kBackupLine) + Ascii(kVolatileLine);
    FlushLine();
  }
  if (!attributes.Security.empty())
    WriteAttribute(kSecurityWord, Chars(attributes.Security));
  if (attributes.LastWrite)
    WriteAttribute(kTimeWord, BigEndian(*attributes.LastWrite));
}

void TRegFileWriter::WriteAttribute(TextView word, std::string_view data) {
  m_line = Ascii(kBackupLine) + Ascii(word);
  for (const char byte : data)
    AppendFoldedWord(TwoDigits(byte), kBackupContinuation);
  FlushLine();
}

void TRegFileWriter::WriteExactKey(TRootKey rootKey, TextView keyPath) {
  m_line = Ascii(kExactLine) + Ascii(kExactKey) + Ascii(RootKeyName(rootKey));
  AppendExactWord(":");
  AppendExactText(keyPath);
  FlushLine();
}

void TRegFileWriter::WriteExactValue(const TRawValue& value) {
  m_line = Ascii(kExactLine) + Ascii(kExactValue);
  AppendExactText(value.Name);
  AppendExactWord(":" + HexNumber(value.Type) + ":");
  AppendExactBytes(Chars(value.Data));
  FlushLine();
}

void TRegFileWriter::AppendExactWord(std::string_view word) {
  AppendFoldedWord(word, kExactContinuation);
}

// Room is left for the sign that the line goes on.
void TRegFileWriter::AppendFoldedWord(std::string_view word, TextView continuation) {
  if (m_line.size() - m_lastFold + word.size() + 1 > kExactColumns) {
    m_line += static_cast<char>(kExactGoesOn);
    m_line += kLineEnd;
    m_lastFold = m_line.size();
    m_line.append(continuation.begin(), continuation.end());
  }
  m_line += word;
}

void TRegFileWriter::AppendExactBytes(std::string_view data) {
  for (const char byte : data)
    AppendExactWord(TwoDigits(byte));
}

void TRegFileWriter::AppendExactText(TextView text) {
  AppendExactBytes(CharsOfUnits(text));
}

void TRegFileWriter::AppendDigits(std::uint8_t byte) {
  m_line += kDigits[byte >> 4];
  m_line += kDigits[byte & 15];
}

void TRegFileWriter::FlushLine() {
  m_line += kLineEnd;
  m_bytes.insert(m_bytes.end(), m_line.begin(), m_line.end());
  m_line.clear();
  m_lastFold = 0;
}

}  // namespace corvalt
