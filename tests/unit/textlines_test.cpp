// A long text in lines, and the caret and selection in it.
#include "ui/text/textlines.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

constexpr bool kExtend = true;
constexpr bool kMove = false;

}  // namespace

TEST(TextLines, AnEmptyTextIsOneEmptyLine) {
  const TTextLines lines(u"");
  EXPECT_EQ(lines.Count(), 1U);
  EXPECT_EQ(lines.Line(0), u"");
}

TEST(TextLines, ALineIsWithoutItsEnd) {
  const TTextLines lines(u"one\r\n\r\nthree");
  ASSERT_EQ(lines.Count(), 3U);
  EXPECT_EQ(lines.Line(0), u"one");
  EXPECT_EQ(lines.Line(1), u"");
  EXPECT_EQ(lines.Line(2), u"three");
}

TEST(TextLines, AnEndAtTheTextsEndBeginsAnEmptyLine) {
  EXPECT_EQ(TTextLines(u"one\r\n").Count(), 2U);
}

TEST(TextLines, ALinesEndBelongsToItsLine) {
  const TTextLines lines(u"ab\r\ncd");
  EXPECT_EQ(lines.LineOf(0), 0U);
  EXPECT_EQ(lines.LineOf(2), 0U);
  EXPECT_EQ(lines.LineOf(4), 1U);
  EXPECT_EQ(lines.LineOf(6), 1U);
}

TEST(TextCursor, StepsOverALinesEndAtOnce) {
  const TTextLines lines(u"a\r\nb");
  TTextCursor cursor(lines);
  cursor.Go(1, kMove);
  cursor.Move(TTextMove::Right, kMove);
  EXPECT_EQ(cursor.Caret(), 3U);
  cursor.Move(TTextMove::Left, kMove);
  EXPECT_EQ(cursor.Caret(), 1U);
}

TEST(TextCursor, StepsOverAPairAtOnceAndOverALoneSurrogateAsOverAnyUnit) {
  const TTextLines lines(u"\U0001F600" + Text(1, char16_t{0xD800}));
  TTextCursor cursor(lines);
  cursor.Move(TTextMove::Right, kMove);
  EXPECT_EQ(cursor.Caret(), 2U);
  cursor.Move(TTextMove::Right, kMove);
  EXPECT_EQ(cursor.Caret(), 3U);
  cursor.Move(TTextMove::Left, kMove);
  cursor.Move(TTextMove::Left, kMove);
  EXPECT_EQ(cursor.Caret(), 0U);
}

TEST(TextCursor, StaysWithinTheText) {
  const TTextLines lines(u"ab");
  TTextCursor cursor(lines);
  cursor.Move(TTextMove::Left, kMove);
  EXPECT_EQ(cursor.Caret(), 0U);
  cursor.Go(99, kMove);
  cursor.Move(TTextMove::Right, kMove);
  EXPECT_EQ(cursor.Caret(), 2U);
  cursor.MoveLines(-5, kMove);
  EXPECT_EQ(cursor.Caret(), 2U);
  cursor.MoveLines(5, kMove);
  EXPECT_EQ(cursor.Caret(), 2U);
}

TEST(TextCursor, KeepsItsColumnUnlessTheLineIsShorter) {
  const TTextLines lines(u"abcd\r\nx\r\nefgh");
  TTextCursor cursor(lines);
  cursor.Go(3, kMove);
  cursor.MoveLines(2, kMove);
  EXPECT_EQ(cursor.Caret(), lines.StartOf(2) + 3);
  cursor.MoveLines(-1, kMove);
  EXPECT_EQ(cursor.Caret(), lines.EndOf(1));
}

TEST(TextCursor, GoesToTheEndsOfLineAndText) {
  const TTextLines lines(u"ab\r\ncdef");
  TTextCursor cursor(lines);
  cursor.Go(6, kMove);
  cursor.Move(TTextMove::LineStart, kMove);
  EXPECT_EQ(cursor.Caret(), 4U);
  cursor.Move(TTextMove::LineEnd, kMove);
  EXPECT_EQ(cursor.Caret(), 8U);
  cursor.Move(TTextMove::TextStart, kMove);
  EXPECT_EQ(cursor.Caret(), 0U);
  cursor.Move(TTextMove::TextEnd, kMove);
  EXPECT_EQ(cursor.Caret(), 8U);
}

TEST(TextCursor, SelectsFromWhereTheSelectionBeganInBothDirections) {
  const TTextLines lines(u"abcdef");
  TTextCursor cursor(lines);
  cursor.Go(3, kMove);
  cursor.Go(5, kExtend);
  EXPECT_EQ(cursor.Selected(), u"de");
  cursor.Go(1, kExtend);
  EXPECT_EQ(cursor.Selected(), u"bc");
  cursor.Move(TTextMove::Left, kMove);
  EXPECT_EQ(cursor.Selected(), u"");
}

TEST(TextCursor, ASelectionOverLinesHoldsTheirEnds) {
  const TTextLines lines(u"ab\r\ncd");
  TTextCursor cursor(lines);
  cursor.SelectAll();
  EXPECT_EQ(cursor.Selected(), u"ab\r\ncd");
}

TEST(TextCursor, ASelectionExtendedOverALinesEndTakesBothOfItsUnitsAtOnce) {
  const TTextLines lines(u"ab\r\n\r\ncd");
  TTextCursor cursor(lines);
  cursor.Go(1, kMove);
  cursor.Move(TTextMove::Right, kExtend);
  cursor.Move(TTextMove::Right, kExtend);
  EXPECT_EQ(cursor.Selected(), u"b\r\n");
  cursor.MoveLines(1, kExtend);
  EXPECT_EQ(cursor.Selected(), u"b\r\n\r\n");
  cursor.Move(TTextMove::Left, kExtend);
  EXPECT_EQ(cursor.Selected(), u"b\r\n");
}

TEST(TextCursor, GoesFromWordToWordOverBlanksAndLineEnds) {
  const TTextLines lines(u"one  two\r\n\r\n three");
  TTextCursor cursor(lines);
  std::vector<std::size_t> places;
  for (int i = 0; i < 4; ++i) {
    cursor.Move(TTextMove::WordRight, kMove);
    places.push_back(cursor.Caret());
  }
  EXPECT_EQ(places, (std::vector<std::size_t>{5, 13, 18, 18}));
  places.clear();
  for (int i = 0; i < 4; ++i) {
    cursor.Move(TTextMove::WordLeft, kMove);
    places.push_back(cursor.Caret());
  }
  EXPECT_EQ(places, (std::vector<std::size_t>{13, 5, 0, 0}));
}

TEST(TextCursor, ADoubleClickSelectsTheWordOrTheBlanksThatItHits) {
  const TTextLines lines(u"one  two\r\nthree\r\n");
  TTextCursor cursor(lines);
  const auto selected = [&](std::size_t place) {
    cursor.SelectWord(place);
    return Text(cursor.Selected());
  };
  EXPECT_EQ(selected(1), u"one");
  EXPECT_EQ(selected(4), u"  ");
  EXPECT_EQ(selected(5), u"two");
  EXPECT_EQ(selected(8), u"two");
  EXPECT_EQ(selected(10), u"three");
  EXPECT_EQ(selected(17), u"");
}

}  // namespace corvalt
