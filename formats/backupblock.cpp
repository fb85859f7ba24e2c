#include "formats/backupblock.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "base/characters.h"
#include "formats/regfileformat.h"
#include "formats/textfile.h"

namespace corvalt {

namespace {

constexpr std::string_view kLineStart = ";Corvalt ";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kFormatWord = "format=";
constexpr std::string_view kCodePageWord = "codepage=";
constexpr std::string_view kViewWord = "view=";
constexpr std::string_view kComputerWord = "computer=";
constexpr std::string_view kUserWord = "user=";
constexpr std::string_view kEndWord = "end=";
constexpr std::string_view kEndLineStart = ";Corvalt end=";
constexpr char kEscape = '\\';
constexpr std::size_t kEscapedDigits = 4;
constexpr std::size_t kChecksumDigits = 8;

// A number in digits of the base; nullopt for anything else around it.
template <typename TNumber>
std::optional<TNumber> NumberOf(std::string_view digits, int base = 10) {
  TNumber number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (error != std::errc() || end != digits.data() + digits.size())
    return std::nullopt;
  return number;
}

bool IsPlain(char16_t unit) {
  return unit >= u' ' && unit < 0x7F && unit != u'\\';
}

// Printable 7-bit characters as they are, any other unit as "\" and four digits.
std::string Escaped(TextView text) {
  std::string escaped;
  for (const char16_t unit : text)
    escaped +=
        IsPlain(unit) ? std::string(1, static_cast<char>(unit)) : kEscape + HexDigits(unit, kEscapedDigits);
  return escaped;
}

// Empty for what Escaped doesn't make.
Text Unescaped(std::string_view escaped) {
  Text text;
  while (!escaped.empty()) {
    const char first = escaped.front();
    escaped.remove_prefix(1);
    if (first != kEscape) {
      text.push_back(static_cast<unsigned char>(first));
      continue;
    }
    const std::optional<std::uint16_t> unit = NumberOf<std::uint16_t>(escaped.substr(0, kEscapedDigits), 16);
    if (!unit || escaped.size() < kEscapedDigits)
      return {};
    text.push_back(*unit);
    escaped.remove_prefix(kEscapedDigits);
  }
  return text;
}

std::string Line(std::string_view word, std::string_view content) {
  std::string line(kLineStart);
  return line.append(word).append(content).append(kLineEnd);
}

std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_of(kLineEnd), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end);
  rest.remove_prefix(rest.starts_with(kLineEnd) ? kLineEnd.size() : std::min<std::size_t>(rest.size(), 1));
  return line;
}

// Without its end.
std::string_view LastLine(std::string_view file) {
  if (file.ends_with(kLineEnd))
    file.remove_suffix(kLineEnd.size());
  else if (!file.empty() && kLineEnd.find(file.back()) != std::string_view::npos)
    file.remove_suffix(1);
  const std::size_t before = file.find_last_of(kLineEnd);
  return before == std::string_view::npos ? file : file.substr(before + 1);
}

bool IsBlankLine(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

void ReadOriginLine(std::string_view line, TBackupOrigin& origin) {
  const auto takes = [&line](std::string_view word) {
    const bool found = line.starts_with(word);
    line.remove_prefix(found ? word.size() : 0);
    return found;
  };
  if (takes(kFormatWord))
    origin.Format = NumberOf<std::uint32_t>(line).value_or(0);
  else if (takes(kCodePageWord))
    origin.CodePage = NumberOf<std::uint32_t>(line).value_or(0);
  else if (takes(kViewWord))
    origin.ViewBits = NumberOf<std::uint32_t>(line).value_or(0);
  else if (takes(kComputerWord))
    origin.Computer = Unescaped(line);
  else if (takes(kUserWord))
    origin.UserSid = Unescaped(line);
}

std::uint32_t ChecksumOf(std::string_view bytes) {
  return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

// The parts of "a:b:c"; empty when there are more or fewer.
std::array<std::string_view, 3> ThreeParts(std::string_view text) {
  const std::size_t first = text.find(':');
  const std::size_t second = text.find(':', first + 1);
  if (first == std::string_view::npos || second == std::string_view::npos)
    return {};
  return {text.substr(0, first), text.substr(first + 1, second - first - 1), text.substr(second + 1)};
}

}  // namespace

std::string OriginLines(const TBackupOrigin& origin) {
  return Line(kFormatWord, std::to_string(origin.Format)) +
         Line(kCodePageWord, std::to_string(origin.CodePage)) +
         Line(kViewWord, std::to_string(origin.ViewBits)) + Line(kComputerWord, Escaped(origin.Computer)) +
         Line(kUserWord, Escaped(origin.UserSid));
}

std::string EndLine(std::span<const std::uint8_t> bytes, const TBackupEnd& end) {
  const std::string checksum = HexDigits(ChecksumOf(AsCharacters(bytes)), kChecksumDigits);
  return Line(kEndWord, std::to_string(end.Keys) + ":" + std::to_string(end.Values) + ":" + checksum);
}

std::optional<TBackupOrigin> ReadOrigin(std::span<const std::uint8_t> bytes) {
  std::string_view rest = AsCharacters(bytes);
  while (!rest.empty() && IsBlankLine(TakeLine(rest))) {
  }
  if (!rest.starts_with(kLineStart))
    return std::nullopt;
  TBackupOrigin origin;
  origin.Format = 0;
  while (rest.starts_with(kLineStart))
    ReadOriginLine(TakeLine(rest).substr(kLineStart.size()), origin);
  return origin;
}

bool HasEndLine(std::span<const std::uint8_t> bytes) {
  return LastLine(AsCharacters(bytes)).starts_with(kEndLineStart);
}

std::optional<TBackupEnd> ReadEnd(std::span<const std::uint8_t> bytes) {
  const std::string_view file = AsCharacters(bytes);
  const std::string_view line = LastLine(file);
  if (!line.starts_with(kEndLineStart))
    return std::nullopt;
  const auto [keys, values, checksum] = ThreeParts(line.substr(kEndLineStart.size()));
  const auto keyCount = NumberOf<std::size_t>(keys);
  const auto valueCount = NumberOf<std::size_t>(values);
  const auto before = static_cast<std::size_t>(line.data() - file.data());
  if (!keyCount || !valueCount || NumberOf<std::uint32_t>(checksum, 16) != ChecksumOf(file.substr(0, before)))
    return std::nullopt;
  return TBackupEnd{*keyCount, *valueCount};
}

}  // namespace corvalt
