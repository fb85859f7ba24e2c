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

TEST(FittingText, ALoneSurrogateTakesOneCell) {
  const Text text = {0xD83D, u'a'};
  EXPECT_EQ(FitIntoCells(text, 2).Cells, 2U);
}

}  // namespace corvalt
