#include "base/characters.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

void ExpectFirst(TextView text, std::size_t units, char32_t value, bool isHalf = false) {
  const TCharacter character = FirstCharacter(text);
  EXPECT_EQ(character.Units, units);
  EXPECT_EQ(character.Value, value);
  EXPECT_EQ(character.IsHalf(), isHalf);
}

}  // namespace

TEST(FirstCharacter, IsOneUnitUpToTheLastOfThoseThatFitIntoOne) {
  ExpectFirst(u"ab", 1, U'a');
  ExpectFirst(Text(1, u'\0'), 1, 0);
  ExpectFirst(u"\uD7FF", 1, 0xD7FF);
  ExpectFirst(u"\uE000", 1, 0xE000);
  ExpectFirst(u"\uFFFF", 1, 0xFFFF);
}

TEST(FirstCharacter, IsAPairBeyondThem) {
  ExpectFirst(u"\U00010000b", 2, 0x10000);
  ExpectFirst(u"\U0001F600", 2, 0x1F600);
  ExpectFirst(u"\U0010FFFF", 2, 0x10FFFF);
}

TEST(FirstCharacter, IsAHalfWhereThePairIsNotWhole) {
  ExpectFirst(Text{0xD800}, 1, 0xD800, true);
  ExpectFirst(Text{0xD83D, u'a'}, 1, 0xD83D, true);
  ExpectFirst(Text{0xD83D, 0xD83D, 0xDE00}, 1, 0xD83D, true);
  ExpectFirst(Text{0xDE00, 0xD83D}, 1, 0xDE00, true);
  ExpectFirst(Text{0xDFFF}, 1, 0xDFFF, true);
}

TEST(HexDigits, AreTheLowestOfTheNumberInSmallLetters) {
  EXPECT_EQ(HexDigits(0, 4), "0000");
  EXPECT_EQ(HexDigits(0xAbC, 4), "0abc");
  EXPECT_EQ(HexDigits(0x12345678, 8), "12345678");
  EXPECT_EQ(HexDigits(0x12345678, 2), "78");
  EXPECT_EQ(HexDigits(5, 0), "");
}

}  // namespace corvalt
