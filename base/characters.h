// The characters of a text, whose units are 16 bits, and numbers in hexadecimal digits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/text.h"

namespace corvalt {

struct TCharacter {
  std::size_t Units = 1;  // that it takes in the text: 2 beyond U+FFFF
  char32_t Value = 0;     // the unit itself for a half

  // A surrogate without the other one of its pair: no character, and UTF-8 has no bytes for it.
  bool IsHalf() const;
};

// The text must not be empty.
TCharacter FirstCharacter(TextView text);

// The lowest digits of the number, so many, in lower-case letters.
std::string HexDigits(std::uint32_t number, std::size_t count);

// Whether the unit is a control character: one of ASCII, or one of those above it (U+007F to U+009F), which a
// terminal may obey too.
bool IsControl(char16_t unit);

// What stands for text that can't be shown or encoded (U+FFFD).
inline constexpr char16_t kReplacementCharacter = u'\uFFFD';

}  // namespace corvalt
