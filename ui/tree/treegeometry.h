// Where the parts of a tree's rows lie in its window, and how far the window is scrolled. Arithmetic in
// pixels, without a window.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ui/tree/treelayout.h"

namespace corvalt {

struct TBox {
  int Left = 0;
  int Top = 0;
  int Right = 0;
  int Bottom = 0;

  int Width() const {
    return Right - Left;
  }
  int Height() const {
    return Bottom - Top;
  }
  bool Holds(int x, int y) const {
    return x >= Left && x < Right && y >= Top && y < Bottom;
  }
  friend bool operator==(const TBox&, const TBox&) = default;
};

// Pixels.
struct TTreeMeasures {
  int RowUnit = 0;  // the height of a row of one line
  int HeaderHeight = 0;
  int Indent = 0;  // of each level
  int TextMargin = 0;
  int CheckBoxSize = 0;
  int CheckBoxRoom = 0;  // the check box and the gap behind it
  int ButtonSize = 0;    // of the button that opens and closes a row
  int ImageRoom = 0;     // a picture and the gap behind it
  int ImageTop = 0;      // below the row's top
  int ButtonReach = 0;   // how far outside a button a click still meets it
  int CheckBoxReach = 0;
};

// The measures on a display of this resolution, where a line of text has this height in pixels. A tree
// without a header has one column that is as wide as its window.
TTreeMeasures MeasureTree(int dotsPerInch, int textHeight, bool hasHeader);

enum class TTreePart { Outside, Button, CheckBox, Row };

class TTreeGeometry {
 public:
  explicit TTreeGeometry(const TTreeMeasures& measures) : m_measures(measures) {
  }

  const TTreeMeasures& Measures() const {
    return m_measures;
  }

  // The size of the window's inside.
  void SetWindow(int width, int height);
  // The width of the column, 0 for one that is as wide as the window, and the height of all rows.
  void SetContent(int columnWidth, std::int64_t totalHeight);

  // The part of the window that rows are drawn in.
  TBox RowsArea() const;
  // The width of a row.
  int RowWidth() const;

  // From a row's left to its text, for a row of this level.
  int TextLeft(int level) const;

  // In the window; far outside of it for rows far away.
  TBox PlaceOf(const TTreeRow& row) const;
  TBox ButtonPlace(const TTreeRow& row) const;
  TBox CheckBoxPlace(const TTreeRow& row) const;
  // Of a line of the row's text. The third line stands at the row's end and is as high as the controls that
  // ride on it.
  TBox LinePlace(const TTreeRow& row, std::size_t line, bool hasImage, int controlsHeight) const;

  // The distance of a place in the window from the first row's top.
  std::int64_t ContentTopAt(int y) const;
  // What lies at a place in the window that belongs to the row.
  TTreePart PartAt(const TTreeRow& row, int x, int y) const;
  // Whether any of the row is in sight.
  bool IsInSight(const TTreeRow& row) const;

  int ScrollLeft() const {
    return m_scrollLeft;
  }
  std::int64_t ScrollTop() const {
    return m_scrollTop;
  }
  // Scrolls as near to this place as the content allows; returns whether anything moved.
  bool ScrollTo(int left, std::int64_t top);
  // The scroll position that shows the whole row with the least movement.
  std::int64_t TopToShow(const TTreeRow& row) const;

 private:
  TBox Centred(int left, int size, const TBox& place) const;

  TTreeMeasures m_measures;
  int m_width = 0;
  int m_height = 0;
  int m_columnWidth = 0;
  std::int64_t m_totalHeight = 0;
  int m_scrollLeft = 0;
  std::int64_t m_scrollTop = 0;
};

}  // namespace corvalt
