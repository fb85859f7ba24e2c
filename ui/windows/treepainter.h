// Paints the rows of a tree control.
#pragma once

#include "base/text.h"
#include "ui/tree/row.h"
#include "ui/tree/treegeometry.h"
#include "ui/tree/treelayout.h"
#include "ui/tree/treemodel.h"
#include "ui/windows/gdi.h"

namespace corvalt {

inline RECT RectOf(const TBox& box) {
  return {box.Left, box.Top, box.Right, box.Bottom};
}

// What is drawn of a row besides its text.
struct TRowState {
  bool IsSelected = false;
  bool TreeHasFocus = false;
  bool MayCheck = true;
};

class TTreePainter {
 public:
  // The model must outlive the painter. highlightText: captions in the system's highlight colour.
  TTreePainter(const TTreeModel& model, bool highlightText);

  void SetImages(HIMAGELIST images) {
    m_images = images;
  }

  // Reads the window's themes and the user's contrast setting, also after they have changed.
  void OpenThemes(HWND window);

  void DrawRow(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row, const TRowLook& look,
               const TRowState& state);
  // A text in place of rows.
  void DrawHint(HDC dc, const Text& hint, const TBox& place) const;

  const TTextMeter& Meter() const {
    return m_meter;
  }
  int LineWidth(const TRowLine& line) const {
    return (line.Bold ? m_boldMeter : m_meter).Width(line.Content);
  }
  int DotsPerInch() const {
    return m_scale.DotsPerInch();
  }

 private:
  void DrawLines(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row) const;
  void DrawButton(HDC dc, bool isOpen, const RECT& place) const;
  void DrawCheckBox(HDC dc, TCheckState state, bool isEnabled, const RECT& place);
  void PaintCheckBox(HDC dc, TCheckState state, bool isEnabled, const RECT& place) const;
  void DrawText(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row, const TRowLook& look,
                bool isFocused) const;
  COLORREF TextColour(bool isGrey, bool isFocused) const;

  const TTreeModel& m_model;
  bool m_highlightText;
  TScale m_scale;
  TTextMeter m_meter;
  TTextMeter m_boldMeter;
  TGdiObject m_dots;
  TTheme m_treeTheme;
  TTheme m_buttonTheme;
  // Every look of a check box, side by side.
  TPaintBuffer m_checkBoxes;
  bool m_checkBoxesArePainted = false;
  bool m_isHighContrast = false;
  HIMAGELIST m_images = nullptr;
};

}  // namespace corvalt
