#include "ui/tree/treegeometry.h"

#include <algorithm>

#include "base/rounding.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr int kIndent = 18;
constexpr int kTextMargin = 4;
constexpr int kCheckBoxSize = 13;
constexpr int kCheckBoxRoom = 18;
constexpr int kButtonSize = 9;
constexpr int kImageRoom = 20;
constexpr int kImageTop = 2;
constexpr int kHeaderHeight = 20;
constexpr int kButtonReach = 3;
constexpr int kCheckBoxReach = 1;

// The height of a row's line is this many times the height of its text; the second line is drawn closer to
// the first.
constexpr double kUnitsPerTextHeight = 1.7;
constexpr double kLineStep = 0.9;

// Pixels. A row further away is placed at this distance: its coordinates must fit into 32 bits, as those of
// RECT do, and it is far outside of the window all the same.
constexpr std::int64_t kFarAway = 1 << 28;

bool HoldsWithin(const TBox& box, int reach, int x, int y) {
  const TBox wide = {box.Left - reach, box.Top - reach, box.Right + reach, box.Bottom + reach};
  return wide.Holds(x, y);
}

}  // namespace

TTreeMeasures MeasureTree(int dotsPerInch, int textHeight, bool hasHeader) {
  const auto scaled = [dotsPerInch](int at96) { return (at96 * dotsPerInch + 48) / 96; };
  TTreeMeasures measures;
  measures.RowUnit = RoundHalfToEven(textHeight * kUnitsPerTextHeight);
  measures.HeaderHeight = hasHeader ? scaled(kHeaderHeight) : 0;
  measures.Indent = scaled(kIndent);
  measures.TextMargin = scaled(kTextMargin);
  measures.CheckBoxSize = scaled(kCheckBoxSize);
  measures.CheckBoxRoom = scaled(kCheckBoxRoom);
  measures.ButtonSize = scaled(kButtonSize);
  measures.ImageRoom = scaled(kImageRoom);
  measures.ImageTop = scaled(kImageTop);
  measures.ButtonReach = scaled(kButtonReach);
  measures.CheckBoxReach = scaled(kCheckBoxReach);
  return measures;
}

void TTreeGeometry::SetWindow(int width, int height) {
  m_width = width;
  m_height = height;
}

void TTreeGeometry::SetContent(int columnWidth, std::int64_t totalHeight) {
  m_columnWidth = columnWidth;
  m_totalHeight = totalHeight;
}

TBox TTreeGeometry::RowsArea() const {
  return {0, m_measures.HeaderHeight, m_width, m_height};
}

int TTreeGeometry::RowWidth() const {
  return m_columnWidth == 0 ? m_width : m_columnWidth;
}

int TTreeGeometry::TextLeft(int level) const {
  return m_measures.Indent * (level + 1) + m_measures.CheckBoxRoom + m_measures.TextMargin;
}

TBox TTreeGeometry::PlaceOf(const TTreeRow& row) const {
  const std::int64_t top = std::clamp(row.Top - m_scrollTop, -kFarAway, kFarAway) + m_measures.HeaderHeight;
  return {-m_scrollLeft, static_cast<int>(top), RowWidth() - m_scrollLeft,
          static_cast<int>(top) + row.Height};
}

// In the middle of the row's first line.
TBox TTreeGeometry::Centred(int left, int size, const TBox& place) const {
  const int top = place.Top + (m_measures.RowUnit - size) / 2;
  return {left, top, left + size, top + size};
}

TBox TTreeGeometry::ButtonPlace(const TTreeRow& row) const {
  const TBox place = PlaceOf(row);
  const int left =
      place.Left + m_measures.Indent * row.Level + (m_measures.Indent - m_measures.ButtonSize) / 2;
  return Centred(left, m_measures.ButtonSize, place);
}

TBox TTreeGeometry::CheckBoxPlace(const TTreeRow& row) const {
  const TBox place = PlaceOf(row);
  return Centred(place.Left + m_measures.Indent * (row.Level + 1), m_measures.CheckBoxSize, place);
}

TBox TTreeGeometry::LinePlace(const TTreeRow& row, std::size_t line, bool hasImage,
                              int controlsHeight) const {
  TBox place = PlaceOf(row);
  place.Left += TextLeft(row.Level) + (hasImage ? m_measures.ImageRoom : 0);
  place.Right -= m_measures.TextMargin + 1;
  const int step = RoundHalfToEven(m_measures.RowUnit * kLineStep);
  const int rowEnd = place.Bottom - 1;
  if (line == 0) {
    place.Bottom = place.Top + m_measures.RowUnit;
  } else if (line == 1) {
    place.Top += step;
    place.Bottom = place.Top + step;
  } else {
    place.Top = rowEnd - controlsHeight;
    place.Bottom = rowEnd;
  }
  return place;
}

std::int64_t TTreeGeometry::ContentTopAt(int y) const {
  return y - m_measures.HeaderHeight + m_scrollTop;
}

TTreePart TTreeGeometry::PartAt(const TTreeRow& row, int x, int y) const {
  if (x >= PlaceOf(row).Right)
    return TTreePart::Outside;
  if (!row.Node->Children.empty() && HoldsWithin(ButtonPlace(row), m_measures.ButtonReach, x, y))
    return TTreePart::Button;
  return HoldsWithin(CheckBoxPlace(row), m_measures.CheckBoxReach, x, y) ? TTreePart::CheckBox
                                                                         : TTreePart::Row;
}

bool TTreeGeometry::IsInSight(const TTreeRow& row) const {
  const TBox place = PlaceOf(row);
  const TBox area = RowsArea();
  return place.Bottom > area.Top && place.Top < area.Bottom;
}

bool TTreeGeometry::ScrollTo(int left, std::int64_t top) {
  const std::int64_t lowest = m_totalHeight - RowsArea().Height();
  const int oldLeft = m_scrollLeft;
  const std::int64_t oldTop = m_scrollTop;
  m_scrollLeft = std::clamp(left, 0, std::max(RowWidth() - m_width, 0));
  m_scrollTop = std::clamp<std::int64_t>(top, 0, std::max<std::int64_t>(lowest, 0));
  return m_scrollLeft != oldLeft || m_scrollTop != oldTop;
}

std::int64_t TTreeGeometry::TopToShow(const TTreeRow& row) const {
  const std::int64_t atTheEnd = row.Top + row.Height - RowsArea().Height();
  // A row that is higher than the window shows its beginning.
  return std::min(std::max(m_scrollTop, atTheEnd), row.Top);
}

}  // namespace corvalt
