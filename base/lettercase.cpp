#include "base/lettercase.h"

#include <algorithm>

namespace corvalt {

char16_t UpperUnit(char16_t unit) {
  return SystemLetterCase().Upper[unit];
}
char16_t LowerUnit(char16_t unit) {
  return SystemLetterCase().Lower[unit];
}

namespace {

Text Mapped(TextView text, const std::array<char16_t, 0x10000>& table) {
  Text result(text);
  for (char16_t& unit : result)
    unit = table[unit];
  return result;
}

}  // namespace

Text UpperCase(TextView text) {
  return Mapped(text, SystemLetterCase().Upper);
}
Text LowerCase(TextView text) {
  return Mapped(text, SystemLetterCase().Lower);
}

bool EqualIgnoringCase(TextView a, TextView b) {
  return a.size() == b.size() && CompareIgnoringCase(a, b) == 0;
}

int CompareIgnoringCase(TextView a, TextView b) {
  const auto& upper = SystemLetterCase().Upper;
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const char16_t left = upper[a[i]];
    const char16_t right = upper[b[i]];
    if (left != right)
      return left < right ? -1 : 1;
  }
  if (a.size() == b.size())
    return 0;
  return a.size() < b.size() ? -1 : 1;
}

}  // namespace corvalt
