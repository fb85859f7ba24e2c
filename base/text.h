// Texts of the registry and the file system: sequences of 16-bit units that may be ill-formed UTF-16.
// They are carried unchanged from the registry to the tree, the backup and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalt {

using Text = std::u16string;
using TextView = std::u16string_view;

// The text without the characters up to and including the blank (U+0020) at both ends.
Text Trim(TextView text);

// The text without leading blanks (U+0020).
Text TrimLeadingBlanks(TextView text);

// The part of text before the first occurrence of separator, or the whole text when it does not occur.
// An empty separator never occurs.
Text CutAt(TextView separator, TextView text);

// The text with every occurrence of from, found from left to right in one pass, replaced by to.
Text ReplaceAll(TextView text, TextView from, TextView to);

// Whether part occurs anywhere in text. An empty part never occurs.
bool Contains(TextView text, TextView part);

// 1-based position of the last occurrence of sub in text, 0 when there is none.
std::size_t LastPos(TextView sub, TextView text);

// Calls visit with each line of a text, of 16-bit units or of characters, without its end (CR LF, LF or CR).
// A last line without an end counts, an empty one does not.
template <typename TUnit, typename TVisit>
void VisitLines(std::basic_string_view<TUnit> text, const TVisit& visit) {
  constexpr TUnit kEnds[] = {TUnit{'\r'}, TUnit{'\n'}, TUnit{}};
  while (!text.empty()) {
    const std::size_t end = text.find_first_of(kEnds);
    visit(text.substr(0, end));
    if (end == text.npos)
      return;
    const bool pair = text[end] == kEnds[0] && end + 1 < text.size() && text[end + 1] == kEnds[1];
    text.remove_prefix(end + (pair ? 2 : 1));
  }
}

// All lines at once.
std::vector<Text> SplitLines(TextView text);

// The text with a trailing "\" added when it has none. An empty text becomes "\".
Text WithTrailingBackslash(TextView text);

// The text without its first "\", if it begins with one.
TextView WithoutLeadingBackslash(TextView text);

// Whether the text holds a NUL unit. Windows ends a text at its first one, so that a name with one in it
// would mean another name.
bool HoldsNul(TextView text);

// Appends the units to a container of bytes, the low byte of each first.
template <typename TByteContainer>
void AppendUnits(TextView text, TByteContainer& bytes) {
  using TByte = typename TByteContainer::value_type;
  std::size_t at = bytes.size();
  bytes.resize(at + 2 * text.size());
  for (const char16_t unit : text) {
    bytes[at++] = static_cast<TByte>(unit & 0xFF);
    bytes[at++] = static_cast<TByte>(unit >> 8);
  }
}

// A whole number in decimal, with "-" before a negative one.
Text DecimalText(std::int64_t number);

// The number that the whole text is: an optional sign and decimal digits, within 32 bits. nullopt for any
// other text.
std::optional<std::int32_t> ParseInteger(TextView text);

// The first unit, and the second, of a character beyond U+FFFF; ill-formed text may hold one without the
// other.
bool IsHighSurrogate(char16_t unit);
bool IsLowSurrogate(char16_t unit);

// UTF-8 to 16-bit units. nullopt when the bytes are not valid UTF-8.
std::optional<Text> DecodeUtf8(std::string_view bytes);

// 16-bit units to UTF-8. A lone surrogate, which UTF-8 has no bytes for, becomes U+FFFD: for display and logs
// only, never on the way to a deletion or a backup.
std::string EncodeUtf8(TextView text);

// Widens the 7-bit characters of a literal or a decoded technical text. Expects bytes below 128.
Text FromAscii(std::string_view ascii);

}  // namespace corvalt
