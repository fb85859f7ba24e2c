#include "ui/windows/treepainter.h"

namespace corvalt {

namespace {

constexpr LONG kCheckBoxLooks = 3;

constexpr COLORREF kGreyText = RGB(128, 128, 128);

bool IsHighContrast() {
  HIGHCONTRASTW contrast = {};
  contrast.cbSize = sizeof contrast;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

// A brush that paints every other pixel: the dotted lines of a tree.
TGdiObject MakeDots() {
  constexpr WORD kPattern[8] = {0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA};
  const TGdiObject bitmap(CreateBitmap(8, 8, 1, 1, kPattern));
  return TGdiObject(CreatePatternBrush(static_cast<HBITMAP>(bitmap.Get())));
}

}  // namespace

TTreePainter::TTreePainter(const TTreeModel& model, bool highlightText)
    : m_model(model),
      m_highlightText(highlightText),
      m_meter(m_scale, false),
      m_boldMeter(m_scale, true),
      m_dots(MakeDots()) {
}

void TTreePainter::OpenThemes(HWND window) {
  m_treeTheme.Close();
  m_buttonTheme.Close();
  m_treeTheme = TTheme(OpenThemeData(window, L"TREEVIEW"));
  m_buttonTheme = TTheme(OpenThemeData(window, L"BUTTON"));
  m_isHighContrast = IsHighContrast();
  m_checkBoxesArePainted = false;
}

void TTreePainter::DrawHint(HDC dc, const Text& hint, const TBox& place) const {
  RECT rect = RectOf(place);
  const TSelected font(dc, m_meter.Font());
  SetTextColor(dc, TextColour(true, false));
  DrawTextW(dc, Wide(hint), -1, &rect, DT_WORDBREAK | DT_NOPREFIX);
}

void TTreePainter::DrawRow(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row, const TRowLook& look,
                           const TRowState& state) {
  if (state.IsSelected) {
    RECT bar = RectOf(geometry.PlaceOf(row));
    bar.left = geometry.CheckBoxPlace(row).Left + geometry.Measures().CheckBoxRoom;
    FillRect(dc, &bar, GetSysColorBrush(state.TreeHasFocus ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
  }
  DrawLines(dc, geometry, row);
  if (!row.Node->Children.empty())
    DrawButton(dc, row.Node->Expanded, RectOf(geometry.ButtonPlace(row)));
  DrawCheckBox(dc, row.Node->State, state.MayCheck, RectOf(geometry.CheckBoxPlace(row)));
  DrawText(dc, geometry, row, look, state.IsSelected && state.TreeHasFocus);
}

// A dotted line from each row to its parent and its next sibling.
void TTreePainter::DrawLines(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row) const {
  SetTextColor(dc, GetSysColor(COLOR_WINDOW));
  SetBkColor(dc, GetSysColor(COLOR_BTNSHADOW));
  // The pattern keeps to the rows while they scroll.
  SetBrushOrgEx(dc, -geometry.ScrollLeft() & 7, static_cast<int>(-geometry.ScrollTop() & 7), nullptr);
  const auto fill = [this, dc](int left, int top, int right, int bottom) {
    const RECT line = {left, top, right, bottom};
    FillRect(dc, &line, static_cast<HBRUSH>(m_dots.Get()));
  };
  const TBox place = geometry.PlaceOf(row);
  const int indent = geometry.Measures().Indent;
  const int middle = place.Top + geometry.Measures().RowUnit / 2;
  int centre = place.Left + indent * row.Level + indent / 2;
  const bool isFirst = row.Node->Parent == nullptr && row.Node->Index == 0;
  const bool isLast = m_model.NextSibling(row.Node) == nullptr;
  fill(centre, middle, centre + indent - geometry.Measures().TextMargin, middle + 1);
  fill(centre, isFirst ? middle : place.Top, centre + 1, isLast ? middle + 1 : place.Bottom);
  for (const TTreeNode* above = row.Node->Parent; above != nullptr; above = above->Parent) {
    centre -= indent;
    if (m_model.NextSibling(above) != nullptr)
      fill(centre, place.Top, centre + 1, place.Bottom);
  }
}

void TTreePainter::DrawButton(HDC dc, bool isOpen, const RECT& place) const {
  FillRect(dc, &place, GetSysColorBrush(COLOR_WINDOW));
  if (m_treeTheme) {
    DrawThemeBackground(m_treeTheme.Get(), dc, TVP_GLYPH, isOpen ? GLPS_OPENED : GLPS_CLOSED, &place,
                        nullptr);
    return;
  }
  FrameRect(dc, &place, GetSysColorBrush(COLOR_BTNSHADOW));
  const int middleX = static_cast<int>(place.left + place.right) / 2;
  const int middleY = static_cast<int>(place.top + place.bottom) / 2;
  const int gap = m_scale(2);
  const RECT across = {place.left + gap, middleY, place.right - gap, middleY + 1};
  FillRect(dc, &across, GetSysColorBrush(COLOR_WINDOWTEXT));
  if (isOpen)
    return;
  const RECT down = {middleX, place.top + gap, middleX + 1, place.bottom - gap};
  FillRect(dc, &down, GetSysColorBrush(COLOR_WINDOWTEXT));
}

// Painting a check box of the theme takes longer than the rest of a row: every look is painted once and
// copied.
void TTreePainter::DrawCheckBox(HDC dc, TCheckState state, bool isEnabled, const RECT& place) {
  const LONG size = place.right - place.left;
  const auto leftOf = [size](TCheckState look, bool enabled) {
    return size * (static_cast<LONG>(look) + (enabled ? 0 : kCheckBoxLooks));
  };
  const RECT all = {0, 0, size * kCheckBoxLooks * 2, size};
  HDC memory = m_checkBoxes.Begin(dc, {all.right, all.bottom});
  if (memory == nullptr) {
    PaintCheckBox(dc, state, isEnabled, place);
    return;
  }
  if (!m_checkBoxesArePainted) {
    FillRect(memory, &all, GetSysColorBrush(COLOR_WINDOW));
    for (const TCheckState look : {TCheckState::Unchecked, TCheckState::Checked, TCheckState::Mixed}) {
      for (const bool enabled : {false, true}) {
        const LONG left = leftOf(look, enabled);
        PaintCheckBox(memory, look, enabled, {left, 0, left + size, size});
      }
    }
    m_checkBoxesArePainted = true;
  }
  m_checkBoxes.Copy(dc, place, {leftOf(state, isEnabled), 0});
}

void TTreePainter::PaintCheckBox(HDC dc, TCheckState state, bool isEnabled, const RECT& place) const {
  if (m_buttonTheme) {
    constexpr int kDisabledStep = CBS_UNCHECKEDDISABLED - CBS_UNCHECKEDNORMAL;
    const int normal = state == TCheckState::Checked     ? CBS_CHECKEDNORMAL
                       : state == TCheckState::Unchecked ? CBS_UNCHECKEDNORMAL
                                                         : CBS_MIXEDNORMAL;
    DrawThemeBackground(m_buttonTheme.Get(), dc, BP_CHECKBOX, normal + (isEnabled ? 0 : kDisabledStep),
                        &place, nullptr);
    return;
  }
  UINT look = state == TCheckState::Mixed ? DFCS_BUTTON3STATE | DFCS_CHECKED : DFCS_BUTTONCHECK;
  if (state == TCheckState::Checked)
    look |= DFCS_CHECKED;
  if (!isEnabled)
    look |= DFCS_INACTIVE;
  RECT frame = place;
  DrawFrameControl(dc, &frame, DFC_BUTTON, look);
}

void TTreePainter::DrawText(HDC dc, const TTreeGeometry& geometry, const TTreeRow& row, const TRowLook& look,
                            bool isFocused) const {
  const bool hasImage = look.Image != kNoImage;
  if (hasImage) {
    const TBox place = geometry.PlaceOf(row);
    ImageList_Draw(m_images, look.Image, dc, place.Left + geometry.TextLeft(row.Level),
                   place.Top + geometry.Measures().ImageTop, ILD_TRANSPARENT);
  }
  for (std::size_t i = 0; i < look.Lines.size(); ++i) {
    const TRowLine& line = look.Lines[i];
    RECT place = RectOf(geometry.LinePlace(row, i, hasImage, look.ControlsHeight));
    const TSelected font(dc, (line.Bold ? m_boldMeter : m_meter).Font());
    SetTextColor(dc, TextColour(line.Grey, isFocused));
    DrawTextW(dc, WideUnits(line.Content), static_cast<int>(line.Content.size()), &place,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  }
}

COLORREF TTreePainter::TextColour(bool isGrey, bool isFocused) const {
  if (isFocused)
    return GetSysColor(COLOR_HIGHLIGHTTEXT);
  if (isGrey)
    return m_isHighContrast ? GetSysColor(COLOR_GRAYTEXT) : kGreyText;
  return GetSysColor(m_highlightText ? COLOR_HIGHLIGHT : COLOR_WINDOWTEXT);
}

}  // namespace corvalt
