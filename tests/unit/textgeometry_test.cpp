// Where the places of a text lie: a character is as wide as its last decimal digit says, any other 10 pixels.
#include "ui/text/textgeometry.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

int WidthOf(TextView text) {
  int width = 0;
  for (const char16_t unit : text)
    width += unit >= u'0' && unit <= u'9' ? unit - u'0' : 10;
  return width;
}

struct TLaidOut {
  explicit TLaidOut(Text text)
      : Lines(std::move(text)), Geometry(Lines, [this](TextView part) {
          Measured += part.size();
          Longest = std::max(Longest, part.size());
          return WidthOf(part);
        }) {
  }

  // "start-end at left" of each piece from this place of the line on, to the line's end or the right border.
  std::vector<std::string> Pieces(std::size_t line, int from, int right = 1 << 30) {
    std::vector<std::string> pieces;
    Geometry.ForPieces(line, from, Cursor, [&](const TTextPiece& piece) {
      pieces.push_back(std::to_string(piece.Start) + "-" + std::to_string(piece.End) + " at " +
                       std::to_string(piece.Left));
      return piece.Left + piece.Width < right;
    });
    return pieces;
  }

  // Units that were measured, and the most at once.
  std::size_t Measured = 0;
  std::size_t Longest = 0;
  TTextLines Lines;
  TTextCursor Cursor{Lines};
  TTextGeometry Geometry;
};

using TPieces = std::vector<std::string>;

constexpr std::size_t kLong = 1000000;

}  // namespace

TEST(TextGeometry, AnEmptyTextHasNoWidthAndNoPieces) {
  TLaidOut text(u"");
  EXPECT_EQ(text.Geometry.Widest(), 0);
  EXPECT_EQ(text.Geometry.LeftOf(0), 0);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 50), 0U);
  EXPECT_EQ(text.Pieces(0, 0), TPieces());
}

TEST(TextGeometry, APlaceLiesBehindWhatStandsBeforeItInItsLine) {
  TLaidOut text(u"a12\r\n34");
  EXPECT_EQ(text.Geometry.Widest(), 13);
  EXPECT_EQ(text.Geometry.LeftOf(0), 0);
  EXPECT_EQ(text.Geometry.LeftOf(2), 11);
  EXPECT_EQ(text.Geometry.LeftOf(3), 13);
  EXPECT_EQ(text.Geometry.LeftOf(5), 0);
  EXPECT_EQ(text.Geometry.LeftOf(7), 7);
}

TEST(TextGeometry, ThePlaceOfAPointIsTheNearestGapBetweenCharacters) {
  TLaidOut text(u"ab\r\ncd");
  EXPECT_EQ(text.Geometry.PlaceAt(0, -5), 0U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 4), 0U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 5), 1U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 14), 1U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 500), 2U);
  EXPECT_EQ(text.Geometry.PlaceAt(1, 12), 5U);
}

TEST(TextGeometry, NoPointLiesWithinASurrogatePair) {
  TLaidOut text(u"\U0001F600\U0001F600");
  EXPECT_EQ(text.Geometry.PlaceAt(0, 9), 0U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 11), 2U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 31), 4U);
}

TEST(TextGeometry, APieceLiesWithinTheSelectionOrOutsideOfIt) {
  TLaidOut text(u"0123456789");
  text.Cursor.Go(2, false);
  text.Cursor.Go(5, true);
  EXPECT_EQ(text.Pieces(0, 0), TPieces({"0-2 at 0", "2-5 at 1", "5-10 at 10"}));
}

TEST(TextGeometry, ASelectionOfOtherLinesCutsNoPiece) {
  TLaidOut text(u"ab\r\ncd\r\nef");
  text.Cursor.Go(1, false);
  text.Cursor.Go(9, true);
  EXPECT_EQ(text.Pieces(1, 0), TPieces({"4-6 at 0"}));
}

TEST(TextGeometry, ALongLineIsGoneThroughFromThePieceThatIsAskedFor) {
  TLaidOut text(Text(kLong, u'x'));
  EXPECT_EQ(text.Geometry.Widest(), 10000000);
  EXPECT_EQ(text.Pieces(0, 2561, 2570), TPieces({"256-512 at 2560"}));
  EXPECT_EQ(text.Pieces(0, 2560, 5121), TPieces({"256-512 at 2560", "512-768 at 5120"}));
  EXPECT_EQ(text.Geometry.LeftOf(777777), 7777770);
  EXPECT_EQ(text.Geometry.LeftOf(kLong), 10000000);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 7777771), 777777U);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 1 << 29), kLong);
}

TEST(TextGeometry, ALineOfWholePiecesEndsWhereItsLastOneDoes) {
  TLaidOut text(Text(512, u'x') + u"\r\ny");
  EXPECT_EQ(text.Geometry.LeftOf(512), 5120);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 6000), 512U);
  EXPECT_EQ(text.Pieces(0, 9999), TPieces({"256-512 at 2560"}));
}

TEST(TextGeometry, NoPieceOfALongLineCutsAPair) {
  TLaidOut text(Text(255, u'x') + u"\U0001F600" + Text(300, u'x'));
  EXPECT_EQ(text.Pieces(0, 0), TPieces({"0-255 at 0", "255-512 at 2550", "512-557 at 5120"}));
  EXPECT_EQ(text.Geometry.LeftOf(255), 2550);
  EXPECT_EQ(text.Geometry.LeftOf(257), 2570);
  EXPECT_EQ(text.Geometry.PlaceAt(0, 2566), 257U);
}

TEST(TextGeometry, ALongLineIsNeverMeasuredAtOnceAndAsAWholeOnlyOnce) {
  TLaidOut text(Text(kLong, u'x'));
  text.Geometry.LeftOf(kLong);
  const std::size_t atFirst = text.Measured;
  EXPECT_LE(atFirst, 2 * kLong + 1000);
  text.Geometry.LeftOf(kLong - 7);
  text.Geometry.LeftOf(kLong / 2);
  text.Pieces(0, 9000000, 9003000);
  EXPECT_LT(text.Measured - atFirst, 5000U);
  EXPECT_LE(text.Longest, 256U);
}

TEST(TextGeometry, WhatIsTooFarToTheRightLiesAtTheEndOfTheWorld) {
  constexpr int kFarthest = 1 << 30;
  const TTextLines lines(Text(10000, u'x'));
  TTextGeometry geometry(lines, [](TextView part) { return static_cast<int>(part.size()) * 1000000; });
  EXPECT_EQ(geometry.Widest(), kFarthest);
  EXPECT_EQ(geometry.LeftOf(9999), kFarthest);
  EXPECT_EQ(geometry.LeftOf(100), 100000000);
}

}  // namespace corvalt
