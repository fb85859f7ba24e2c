// Columns of a terminal, for characters named in Unicode Standard Annex 11 (unicode.org/reports/tr11).

#include "ui/console/cells.h"

#include <gtest/gtest.h>

namespace corvalt {

TEST(Cells, ALatinLetterTakesOne) {
  EXPECT_EQ(CellsOf(U'a'), 1);
  EXPECT_EQ(CellsOf(U'\u00E9'), 1);
  EXPECT_EQ(CellsOf(U'\u0416'), 1);
}

TEST(Cells, IdeographsSyllablesAndFullWidthFormsTakeTwo) {
  for (const char32_t character :
       {U'\u4E2D', U'\u3042', U'\uAC00', U'\uFF21', U'\u3000', U'\U00020000', U'\U0001F600'})
    EXPECT_EQ(CellsOf(character), 2) << static_cast<unsigned>(character);
}

TEST(Cells, AHalfWidthFormTakesOne) {
  EXPECT_EQ(CellsOf(U'\uFF71'), 1);
}

TEST(Cells, ACombiningMarkTakesNone) {
  EXPECT_EQ(CellsOf(U'\u0301'), 0);
}

TEST(FittingText, IsTheWholeTextWhereItFits) {
  const TFittingText fitting = FitIntoCells(u"a\x4E2D\x6587", 5);
  EXPECT_EQ(fitting.Text, u"a\x4E2D\x6587");
  EXPECT_EQ(fitting.Cells, 5U);
}

TEST(FittingText, LeavesOutAWideCharacterThatHasHalfItsRoom) {
  const TFittingText fitting = FitIntoCells(u"a\x4E2D\x6587", 4);
  EXPECT_EQ(fitting.Text, u"a\x4E2D");
  EXPECT_EQ(fitting.Cells, 3U);
}

TEST(FittingText, NeverCutsAPairOfSurrogates) {
  const Text text = {u'a', 0xD83D, 0xDE00};
  EXPECT_EQ(FitIntoCells(text, 2).Text, u"a");
  EXPECT_EQ(FitIntoCells(text, 3).Text, text);
}

TEST(LineLength, IsTheWholeTextWhereItFits) {
  EXPECT_EQ(LineLength(u"one two", 7), 7U);
  EXPECT_EQ(LineLength(u"", 7), 0U);
}

TEST(LineLength, EndsBeforeTheLastBlankThatFits) {
  EXPECT_EQ(LineLength(u"one two three", 9), 7U);
  EXPECT_EQ(LineLength(u"one two three", 7), 7U);
  EXPECT_EQ(LineLength(u"one two three", 6), 3U);
}

TEST(LineLength, AWordThatIsTooLongIsNotCut) {
  EXPECT_EQ(LineLength(u"abcdefgh ij", 3), 8U);
  EXPECT_EQ(LineLength(u"abcdefgh", 3), 8U);
}

TEST(LineLength, ChineseAndJapaneseAreCutBetweenCharacters) {
  EXPECT_EQ(LineLength(u"\x4E2D\x6587\x4E2D\x6587", 5), 2U);
  EXPECT_EQ(LineLength(u"ab \x30AB\x30CA\x30AB", 7), 5U);
}

TEST(LineLength, NoClosingMarkBeginsALineAndNoOpeningOneEndsIt) {
  EXPECT_EQ(LineLength(u"\x4E2D\x6587\x4E2D\x3002\x6587", 6), 2U);
  EXPECT_EQ(LineLength(u"\x4E2D\x6587\x300C\x4E2D\x300D", 6), 2U);
}

TEST(LineLength, KoreanIsCutAtBlanks) {
  EXPECT_EQ(LineLength(u"\xD55C\xAE00 \xD55C\xAE00\xD55C", 9), 2U);
}

TEST(FittingText, ALoneSurrogateTakesOneCell) {
  const Text text = {0xD83D, u'a'};
  EXPECT_EQ(FitIntoCells(text, 2).Cells, 2U);
}

}  // namespace corvalt
