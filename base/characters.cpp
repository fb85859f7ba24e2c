#include "base/characters.h"

namespace corvalt {

bool TCharacter::IsHalf() const {
  return Value >= 0xD800 && Value <= 0xDFFF;
}

TCharacter FirstCharacter(TextView text) {
  if (text.size() < 2 || !IsHighSurrogate(text[0]) || !IsLowSurrogate(text[1]))
    return {1, text[0]};
  return {2, 0x10000 + (static_cast<char32_t>(text[0] - 0xD800) << 10) + (text[1] - 0xDC00U)};
}

std::string HexDigits(std::uint32_t number, std::size_t count) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits(count, '0');
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, number >>= 4)
    *digit = kDigits[number & 15];
  return digits;
}

bool IsControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
}

}  // namespace corvalt
