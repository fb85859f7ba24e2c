// Upper and lower case, one 16-bit unit at a time by the system's own table: the way Windows compares key
// names and the program compares everything. No locale, no surrogate pairs.
#pragma once

#include <array>
#include <cstddef>

#include "base/text.h"

namespace corvalt {

struct TLetterCaseTable {
  std::array<char16_t, 0x10000> Upper;
  std::array<char16_t, 0x10000> Lower;
};

// The system's table. Defined by the platform library that the program links: what the real system
// returns on Windows, the same mapping written down as ranges elsewhere.
const TLetterCaseTable& SystemLetterCase();

char16_t UpperUnit(char16_t unit);
char16_t LowerUnit(char16_t unit);

Text UpperCase(TextView text);
Text LowerCase(TextView text);

bool EqualIgnoringCase(TextView a, TextView b);

// Negative, zero or positive, by the upper-cased units: the order in which Windows keeps key names.
int CompareIgnoringCase(TextView a, TextView b);

struct TLessIgnoringCase {
  using is_transparent = void;
  bool operator()(TextView a, TextView b) const {
    return CompareIgnoringCase(a, b) < 0;
  }
};

}  // namespace corvalt
