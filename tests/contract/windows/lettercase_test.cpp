#include <gtest/gtest.h>

#include "base/lettercase.h"
#include "platform/memory/lettercasetable.h"

namespace corvalt {

namespace {

TEST(LetterCaseContract, TheTableOfTheDoublesIsTheSystemsForAllUnits) {
  const auto upper = ExpandLetterCase(kUpperCaseRanges);
  const auto lower = ExpandLetterCase(kLowerCaseRanges);
  for (std::size_t unit = 0; unit < 0x10000; ++unit) {
    ASSERT_EQ(UpperUnit(static_cast<char16_t>(unit)), upper[unit]) << unit;
    ASSERT_EQ(LowerUnit(static_cast<char16_t>(unit)), lower[unit]) << unit;
  }
}

TEST(LetterCaseContract, SurrogatesHaveNoCase) {
  for (std::size_t unit = 0xD800; unit < 0xE000; ++unit) {
    ASSERT_EQ(UpperUnit(static_cast<char16_t>(unit)), unit);
    ASSERT_EQ(LowerUnit(static_cast<char16_t>(unit)), unit);
  }
}

}  // namespace

}  // namespace corvalt
