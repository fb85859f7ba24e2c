#include "formats/regfilecursor.h"

#include <algorithm>
#include <array>

#include "base/lettercase.h"
#include "formats/regfileformat.h"

namespace corvalt {

namespace {

constexpr std::size_t kSkippedLinesKept = 20;
constexpr std::size_t kSkippedBytesKept = 200;
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

}  // namespace

TRegFileCursor::TRegFileCursor(std::span<const std::uint8_t> bytes, TCodePage codePage)
    : m_lines(bytes, codePage) {
}

bool TRegFileCursor::NextEntry() {
  m_entry.clear();
  return GoOn();
}

bool TRegFileCursor::GoOn() {
  const bool hasLine = m_lines.Next();
  m_rest = m_lines.Line();
  m_entry.push_back(m_lines.Place());
  return hasLine;
}

void TRegFileCursor::SkipBlanks() {
  while (!m_rest.empty() && IsBlank(m_rest.front()))
    m_rest.remove_prefix(1);
}

bool TRegFileCursor::AtEnd() const {
  return m_rest.empty() || m_rest.front() == u';';
}

bool TRegFileCursor::HasContent() {
  SkipBlanks();
  return !AtEnd() || IsOwnComment(m_rest);
}

bool TRegFileCursor::SkipBlanksAndFolds() {
  SkipBlanks();
  while (Take(u'\\')) {
    SkipBlanks();
    if (!AtEnd() || !GoOn())
      return false;
    while (!HasContent()) {
      m_entry.pop_back();
      if (!GoOn())
        return false;
    }
    if (IsOwnComment(m_rest))
      return false;
  }
  return true;
}

bool TRegFileCursor::Take(char16_t unit) {
  if (!m_rest.starts_with(unit))
    return false;
  m_rest.remove_prefix(1);
  return true;
}

bool TRegFileCursor::TakeWord(TextView word) {
  if (!EqualIgnoringCase(m_rest.substr(0, word.size()), word))
    return false;
  m_rest.remove_prefix(word.size());
  return true;
}

bool TRegFileCursor::TakeExact(TextView words) {
  if (!m_rest.starts_with(words))
    return false;
  m_rest.remove_prefix(words.size());
  return true;
}

bool TRegFileCursor::TakeDigit(std::uint32_t& digit) {
  digit = m_rest.empty() ? kNoDigit : DigitOf(m_rest.front());
  if (digit == kNoDigit)
    return false;
  m_rest.remove_prefix(1);
  return true;
}

// One digit or two.
bool TRegFileCursor::TakeByte(std::uint8_t& byte) {
  std::uint32_t high = 0;
  std::uint32_t low = 0;
  if (!TakeDigit(high))
    return false;
  byte = static_cast<std::uint8_t>(TakeDigit(low) ? high * 16 + low : high);
  return true;
}

bool TRegFileCursor::TakePair(std::uint8_t& byte) {
  return m_rest.size() >= 2 && DigitOf(m_rest[1]) != kNoDigit && TakeByte(byte);
}

bool TRegFileCursor::TakePairs(TextView continuation, TBytes& bytes) {
  std::uint8_t byte = 0;
  for (;;) {
    while (TakePair(byte))
      bytes.push_back(byte);
    if (m_rest.size() != 1 || m_rest.front() != kExactGoesOn)
      return true;
    if (!GoOn() || !TakeExact(continuation))
      return false;
  }
}

std::optional<std::uint32_t> TRegFileCursor::TakeNumber() {
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

TRegFileCursor::TStringEnd TRegFileCursor::TakeString(Text& text) {
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

bool TRegFileCursor::TakeStringOverLines(Text& text) {
  TStringEnd end = TStringEnd::Open;
  while (end == TStringEnd::Open) {
    text += m_lines.LineEnd();
    end = GoOn() ? TakeString(text) : TStringEnd::Malformed;
  }
  SkipBlanks();
  if (end == TStringEnd::Closed && m_rest.empty())
    return true;
  m_lines.GoBack(m_entry[1]);
  m_entry.resize(1);
  GoOn();
  return false;
}

void TRegFileCursor::SkipEntry() {
  Skip(m_entry.size());
}

void TRegFileCursor::SkipMalformed() {
  if (m_entry.size() == 1) {
    SkipEntry();
    return;
  }
  Skip(m_entry.size() - 1);
  m_lines.GoBack(m_entry.back());
}

void TRegFileCursor::Skip(std::size_t lines) {
  m_linesSkipped += lines;
  for (std::size_t i = 0; i < lines && m_firstSkipped.size() < kSkippedLinesKept; ++i) {
    const TLinePlace place = m_entry[i];
    m_firstSkipped.push_back({place.Number, m_lines.LineAt(place.Begin, kSkippedBytesKept)});
  }
}

}  // namespace corvalt
