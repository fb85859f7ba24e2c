#include "base/text.h"

#include <limits>

#include "base/characters.h"

namespace corvalt {

namespace {

constexpr char16_t kBlank = u' ';

void AppendUtf8(std::string& bytes, char32_t point) {
  const auto add = [&bytes](char32_t byte) {
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
  };
  if (point < 0x80) {
    add(point);
  } else if (point < 0x800) {
    add(0xC0 | (point >> 6));
    add(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    add(0xE0 | (point >> 12));
    add(0x80 | ((point >> 6) & 0x3F));
    add(0x80 | (point & 0x3F));
  } else {
    add(0xF0 | (point >> 18));
    add(0x80 | ((point >> 12) & 0x3F));
    add(0x80 | ((point >> 6) & 0x3F));
    add(0x80 | (point & 0x3F));
  }
}

// Length of the UTF-8 sequence that the first byte announces, 0 when it can't begin one.
std::size_t SequenceLength(unsigned char first) {
  if (first < 0x80)
    return 1;
  if (first >= 0xC2 && first <= 0xDF)
    return 2;
  if (first >= 0xE0 && first <= 0xEF)
    return 3;
  if (first >= 0xF0 && first <= 0xF4)
    return 4;
  return 0;
}

// The code point of a sequence of the given length, or nullopt when it is overlong, a surrogate or out of
// range.
std::optional<char32_t> DecodeSequence(std::string_view bytes, std::size_t length) {
  const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (length == 1)
    return at(0);
  char32_t point = at(0) & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80)
      return std::nullopt;
    point = (point << 6) | (at(i) & 0x3Fu);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (point < kSmallest[length] || point > 0x10FFFF)
    return std::nullopt;
  if (point >= 0xD800 && point <= 0xDFFF)
    return std::nullopt;
  return point;
}

void AppendPoint(Text& text, char32_t point) {
  if (point < 0x10000) {
    text.push_back(static_cast<char16_t>(point));
    return;
  }
  point -= 0x10000;
  text.push_back(static_cast<char16_t>(0xD800 + (point >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
}

}  // namespace

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

Text Trim(TextView text) {
  std::size_t first = 0;
  while (first < text.size() && text[first] <= kBlank)
    ++first;
  std::size_t end = text.size();
  while (end > first && text[end - 1] <= kBlank)
    --end;
  return Text(text.substr(first, end - first));
}

Text TrimLeadingBlanks(TextView text) {
  const std::size_t first = text.find_first_not_of(kBlank);
  return first == TextView::npos ? Text() : Text(text.substr(first));
}

Text CutAt(TextView separator, TextView text) {
  if (separator.empty())
    return Text(text);
  return Text(text.substr(0, text.find(separator)));
}

Text ReplaceAll(TextView text, TextView from, TextView to) {
  if (from.empty())
    return Text(text);
  Text result;
  std::size_t done = 0;
  for (std::size_t at = text.find(from); at != TextView::npos; at = text.find(from, done)) {
    result.append(text.substr(done, at - done)).append(to);
    done = at + from.size();
  }
  return result.append(text.substr(done));
}

bool Contains(TextView text, TextView part) {
  return !part.empty() && text.find(part) != TextView::npos;
}

std::size_t LastPos(TextView sub, TextView text) {
  if (sub.empty())
    return 0;
  const std::size_t at = text.rfind(sub);
  return at == TextView::npos ? 0 : at + 1;
}

std::vector<Text> SplitLines(TextView text) {
  std::vector<Text> lines;
  VisitLines(text, [&lines](TextView line) { lines.emplace_back(line); });
  return lines;
}

Text WithTrailingBackslash(TextView text) {
  Text result(text);
  if (result.empty() || result.back() != u'\\')
    result.push_back(u'\\');
  return result;
}

TextView WithoutLeadingBackslash(TextView text) {
  if (!text.empty() && text.front() == u'\\')
    text.remove_prefix(1);
  return text;
}

bool HoldsNul(TextView text) {
  return text.find(u'\0') != TextView::npos;
}

Text DecimalText(std::int64_t number) {
  return FromAscii(std::to_string(number));
}

std::optional<std::int32_t> ParseInteger(TextView text) {
  const bool negative = !text.empty() && text.front() == u'-';
  if (negative || (!text.empty() && text.front() == u'+'))
    text.remove_prefix(1);
  if (text.empty())
    return std::nullopt;
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  std::int64_t value = 0;
  for (const char16_t unit : text) {
    if (unit < u'0' || unit > u'9')
      return std::nullopt;
    value = value * 10 + (unit - u'0');
    if (value > kLargest + 1)
      return std::nullopt;
  }
  if (!negative && value > kLargest)
    return std::nullopt;
  return static_cast<std::int32_t>(negative ? -value : value);
}

std::optional<Text> DecodeUtf8(std::string_view bytes) {
  Text text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = SequenceLength(static_cast<unsigned char>(bytes.front()));
    if (length == 0 || length > bytes.size())
      return std::nullopt;
    const std::optional<char32_t> point = DecodeSequence(bytes, length);
    if (!point)
      return std::nullopt;
    AppendPoint(text, *point);
    bytes.remove_prefix(length);
  }
  return text;
}

std::string EncodeUtf8(TextView text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const TCharacter character = FirstCharacter(text);
    AppendUtf8(bytes, character.IsHalf() ? kReplacementCharacter : character.Value);
    text.remove_prefix(character.Units);
  }
  return bytes;
}

Text FromAscii(std::string_view ascii) {
  return Text(ascii.begin(), ascii.end());
}

}  // namespace corvalt
