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

}  // namespace corvalt
