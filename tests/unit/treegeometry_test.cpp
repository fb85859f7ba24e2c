// Where the parts of a tree's rows lie, at 96 dots per inch and a text height of 13 pixels: a row unit of 22.
#include <gtest/gtest.h>

#include "ui/tree/treegeometry.h"

namespace corvalt {

static void PrintTo(const TBox& box, std::ostream* out) {
  *out << box.Left << " " << box.Top << " " << box.Right << " " << box.Bottom;
}

namespace {

constexpr int kDotsPerInch = 96;
constexpr int kTextHeight = 13;
constexpr int kUnit = 22;

// A window of 200 by 120 pixels with a header over a column 300 wide.
TTreeGeometry WithHeader(std::int64_t totalHeight = 1000) {
  TTreeGeometry geometry(MeasureTree(kDotsPerInch, kTextHeight, true));
  geometry.SetWindow(200, 120);
  geometry.SetContent(300, totalHeight);
  return geometry;
}

TTreeGeometry WithoutHeader() {
  TTreeGeometry geometry(MeasureTree(kDotsPerInch, kTextHeight, false));
  geometry.SetWindow(200, 120);
  geometry.SetContent(0, 1000);
  return geometry;
}

TTreeRow RowAt(TTreeNode& node, std::int64_t top, int units, int level) {
  return {&node, top, units * kUnit, level};
}

struct TOpener : TTreeNode {
  TOpener() {
    Children.push_back(std::make_unique<TTreeNode>());
  }
};

}  // namespace

TEST(TreeGeometry, ARowUnitIsTheTextHeightTimesOnePointSeven) {
  EXPECT_EQ(MeasureTree(96, 13, true).RowUnit, 22);
  EXPECT_EQ(MeasureTree(96, 12, true).RowUnit, 20);
}

TEST(TreeGeometry, MeasuresGrowWithTheDisplay) {
  const TTreeMeasures measures = MeasureTree(144, 19, true);
  EXPECT_EQ(measures.Indent, 27);
  EXPECT_EQ(measures.CheckBoxSize, 20);
  EXPECT_EQ(measures.HeaderHeight, 30);
  EXPECT_EQ(MeasureTree(144, 19, false).HeaderHeight, 0);
}

TEST(TreeGeometry, RowsLieBelowTheHeader) {
  EXPECT_EQ(WithHeader().RowsArea(), (TBox{0, 20, 200, 120}));
  EXPECT_EQ(WithoutHeader().RowsArea(), (TBox{0, 0, 200, 120}));
}

TEST(TreeGeometry, ARowIsAsWideAsItsColumnAndWithoutOneAsTheWindow) {
  TTreeNode node;
  EXPECT_EQ(WithHeader().PlaceOf(RowAt(node, 44, 2, 0)), (TBox{0, 64, 300, 108}));
  EXPECT_EQ(WithoutHeader().PlaceOf(RowAt(node, 44, 2, 0)), (TBox{0, 44, 200, 88}));
}

TEST(TreeGeometry, ARowMovesWithTheScrolling) {
  TTreeNode node;
  TTreeGeometry geometry = WithHeader();
  EXPECT_TRUE(geometry.ScrollTo(30, 50));
  EXPECT_EQ(geometry.PlaceOf(RowAt(node, 44, 1, 0)), (TBox{-30, 14, 270, 36}));
  EXPECT_EQ(geometry.ContentTopAt(20), 50);
}

TEST(TreeGeometry, ARowBillionsOfPixelsAwayHasCoordinatesThatFitARectangle) {
  TTreeNode node;
  const TBox place = WithHeader().PlaceOf(RowAt(node, std::int64_t{1} << 40, 1, 0));
  EXPECT_GT(place.Top, 1000000);
  EXPECT_EQ(place.Height(), kUnit);
}

TEST(TreeGeometry, AtEachLevelButtonCheckBoxAndTextMoveByAnIndent) {
  TTreeNode node;
  const TTreeGeometry geometry = WithoutHeader();
  EXPECT_EQ(geometry.ButtonPlace(RowAt(node, 0, 1, 0)), (TBox{4, 6, 13, 15}));
  EXPECT_EQ(geometry.CheckBoxPlace(RowAt(node, 0, 1, 0)), (TBox{18, 4, 31, 17}));
  EXPECT_EQ(geometry.TextLeft(0), 40);
  EXPECT_EQ(geometry.CheckBoxPlace(RowAt(node, 0, 1, 1)).Left, 36);
  EXPECT_EQ(geometry.TextLeft(1), 58);
}

TEST(TreeGeometry, TheCheckBoxOfAHighRowStandsBesideItsFirstLine) {
  TTreeNode node;
  EXPECT_EQ(WithoutHeader().CheckBoxPlace(RowAt(node, 0, 3, 0)).Top, 4);
}

TEST(TreeGeometry, TheSecondLineIsCloserAndTheThirdStandsAtTheRowsEnd) {
  TTreeNode node;
  const TTreeGeometry geometry = WithoutHeader();
  const TTreeRow row = RowAt(node, 0, 3, 1);
  EXPECT_EQ(geometry.LinePlace(row, 0, false, 22), (TBox{58, 0, 195, 22}));
  EXPECT_EQ(geometry.LinePlace(row, 1, false, 22), (TBox{58, 20, 195, 40}));
  EXPECT_EQ(geometry.LinePlace(row, 2, false, 22), (TBox{58, 43, 195, 65}));
  EXPECT_EQ(geometry.LinePlace(row, 0, true, 0).Left, 78);
}

TEST(TreeGeometry, AClickNearTheButtonMeetsItOnlyInARowThatOpens) {
  TOpener opener;
  TTreeNode leaf;
  const TTreeGeometry geometry = WithoutHeader();
  EXPECT_EQ(geometry.PartAt(RowAt(opener, 0, 1, 0), 2, 4), TTreePart::Button);
  EXPECT_EQ(geometry.PartAt(RowAt(leaf, 0, 1, 0), 2, 4), TTreePart::Row);
  EXPECT_EQ(geometry.PartAt(RowAt(leaf, 0, 1, 0), 17, 10), TTreePart::CheckBox);
  EXPECT_EQ(geometry.PartAt(RowAt(leaf, 0, 1, 0), 33, 10), TTreePart::Row);
}

TEST(TreeGeometry, BesideTheColumnThereIsNoRow) {
  TTreeNode node;
  TTreeGeometry geometry(MeasureTree(kDotsPerInch, kTextHeight, true));
  geometry.SetWindow(200, 120);
  geometry.SetContent(150, 1000);
  EXPECT_EQ(geometry.PartAt(RowAt(node, 0, 1, 0), 149, 30), TTreePart::Row);
  EXPECT_EQ(geometry.PartAt(RowAt(node, 0, 1, 0), 150, 30), TTreePart::Outside);
}

TEST(TreeGeometry, ScrollingStopsAtTheContentsEnds) {
  TTreeGeometry geometry = WithHeader();
  EXPECT_TRUE(geometry.ScrollTo(1000, 5000));
  EXPECT_EQ(geometry.ScrollLeft(), 100);
  EXPECT_EQ(geometry.ScrollTop(), 900);
  EXPECT_FALSE(geometry.ScrollTo(100, 901));
  EXPECT_TRUE(geometry.ScrollTo(-5, -5));
  EXPECT_EQ(geometry.ScrollLeft(), 0);
  EXPECT_EQ(geometry.ScrollTop(), 0);
}

TEST(TreeGeometry, ContentThatFitsIsNotScrolled) {
  TTreeGeometry geometry = WithHeader(100);
  EXPECT_FALSE(geometry.ScrollTo(0, 10));
}

TEST(TreeGeometry, ARowIsShownWithTheLeastMovement) {
  TTreeNode node;
  TTreeGeometry geometry = WithHeader();
  geometry.ScrollTo(0, 100);
  EXPECT_EQ(geometry.TopToShow(RowAt(node, 120, 1, 0)), 100);
  EXPECT_EQ(geometry.TopToShow(RowAt(node, 88, 1, 0)), 88);
  EXPECT_EQ(geometry.TopToShow(RowAt(node, 190, 1, 0)), 112);
  // Higher than the window: its beginning.
  EXPECT_EQ(geometry.TopToShow(RowAt(node, 190, 10, 0)), 190);
}

TEST(TreeGeometry, ARowIsInSightWhileAnyOfItIsBelowTheHeader) {
  TTreeNode node;
  TTreeGeometry geometry = WithHeader();
  geometry.ScrollTo(0, 100);
  EXPECT_TRUE(geometry.IsInSight(RowAt(node, 79, 1, 0)));
  EXPECT_FALSE(geometry.IsInSight(RowAt(node, 78, 1, 0)));
  EXPECT_TRUE(geometry.IsInSight(RowAt(node, 199, 1, 0)));
  EXPECT_FALSE(geometry.IsInSight(RowAt(node, 200, 1, 0)));
}

}  // namespace corvalt
