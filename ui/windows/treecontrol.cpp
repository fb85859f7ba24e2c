#include "ui/windows/treecontrol.h"

#include <algorithm>

#include "base/rounding.h"
#include "ui/windows/treeaccessible.h"

namespace corvalt {

namespace {

constexpr TextView kClassName = u"TessalyTree";

// Sizes at 96 dots per inch.
constexpr int kIndent = 18;
constexpr int kTextMargin = 4;
constexpr int kCheckBoxSize = 13;
constexpr int kCheckBoxRoom = 18;
constexpr int kButtonSize = 9;
constexpr int kImageRoom = 20;
constexpr int kHeaderHeight = 20;

// A row's text height fills its unit to 1 / 1.7; lines below the first are drawn a little closer.
constexpr double kUnitsPerTextHeight = 1.7;
constexpr double kLineStep = 0.9;

// How long rows that were added in a row wait to be shown, in milliseconds.
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshDelay = 100;

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

RECT Centred(int left, int size, const RECT& rect, int unit) {
  const int top = static_cast<int>(rect.top) + (unit - size) / 2;
  return {left, top, left + size, top + size};
}

bool IsBelow(const TTreeNode* node, const TTreeNode* above) {
  while (node != nullptr && node->Parent != above)
    node = node->Parent;
  return node != nullptr;
}

TTreeKey KeyOf(WPARAM key, bool& known) {
  known = true;
  switch (key) {
    case VK_UP:
      return TTreeKey::Up;
    case VK_DOWN:
      return TTreeKey::Down;
    case VK_LEFT:
      return TTreeKey::Left;
    case VK_RIGHT:
      return TTreeKey::Right;
    case VK_HOME:
      return TTreeKey::Home;
    case VK_END:
      return TTreeKey::End;
    case VK_PRIOR:
      return TTreeKey::PageUp;
    case VK_NEXT:
      return TTreeKey::PageDown;
    default:
      known = false;
      return TTreeKey::Home;
  }
}

}  // namespace

TTreeControl::TTreeControl(TTreeModel& model, TTreeControlOwner& owner, TTreeOptions options)
    : m_model(model),
      m_owner(owner),
      m_options(options),
      m_layout(model, [this](const TTreeNode& node) { return m_owner.RowUnits(node) * m_rowUnit; }),
      m_keys(model, m_layout, options.NodesClose),
      m_meter(m_scale, false),
      m_boldMeter(m_scale, true),
      m_dots(MakeDots()) {
}

TTreeControl::~TTreeControl() = default;

void TTreeControl::Create(HWND parent, int id, HIMAGELIST images) {
  m_images = images;
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPCHILDREN | WS_VSCROLL | WS_HSCROLL;
  CreateHandle(kClassName, {}, kStyle, 0, {0, 0, 0, 0}, parent,
               reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), CS_DBLCLKS);
}

void TTreeControl::OnCreate() {
  m_rowUnit = RoundHalfToEven(m_meter.Height() * kUnitsPerTextHeight);
  OpenThemes();
  CreateTip();
  if (m_options.HasHeader) {
    m_header = CreateWindowExW(0, WC_HEADERW, L"", WS_CHILD | WS_VISIBLE | HDS_HORZ, 0, 0, 0, 0, Handle(),
                               nullptr, ProgramInstance(), nullptr);
    ::SendMessageW(m_header, WM_SETFONT, reinterpret_cast<WPARAM>(Font()), FALSE);
    HDITEMW item = {};
    item.mask = HDI_WIDTH;
    ::SendMessageW(m_header, HDM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    ColumnChanged();
  }
}

void TTreeControl::SetHeaderCaption(TextView caption) {
  Text text(caption);
  HDITEMW item = {};
  item.mask = HDI_TEXT | HDI_FORMAT;
  item.fmt = HDF_STRING | HDF_LEFT;
  item.pszText = WideBuffer(text);
  ::SendMessageW(m_header, HDM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

LRESULT TTreeControl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      OnCreate();
      return 0;
    case WM_PAINT:
      OnPaint();
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_SIZE:
      OnSize();
      return 0;
    case WM_VSCROLL:
      OnScroll(SB_VERT, wParam);
      return 0;
    case WM_HSCROLL:
      OnScroll(SB_HORZ, wParam);
      return 0;
    case WM_MOUSEWHEEL:
      OnWheel(wParam);
      return 0;
    case WM_MOUSEMOVE:
      OnMouseMove({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      OnButtonDown({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}, message == WM_LBUTTONDBLCLK);
      return 0;
    case WM_TIMER:
      KillTimer(Handle(), kRefreshTimer);
      m_refreshIsDue = false;
      Refresh();
      return 0;
    case WM_KEYDOWN:
      if (OnKeyDown(wParam))
        return 0;
      break;
    case WM_CHAR:
      OnCharacter(static_cast<char16_t>(wParam));
      return 0;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      if (m_model.Selected() != nullptr)
        RepaintRow(m_model.Selected());
      if (message == WM_SETFOCUS && m_model.Selected() != nullptr)
        Announce(EVENT_OBJECT_FOCUS, m_model.Selected());
      return 0;
    case WM_NOTIFY:
      return OnNotify(reinterpret_cast<const NMHDR*>(lParam));
    case WM_COMMAND:
    case WM_MEASUREITEM:
    case WM_DRAWITEM:
      // The controls that ride on the selected row speak to the owner's window.
      return ::SendMessageW(GetParent(Handle()), message, wParam, lParam);
    case WM_THEMECHANGED:
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
      OpenThemes();
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    case WM_GETOBJECT:
      if (static_cast<LONG>(lParam) == OBJID_CLIENT)
        return TTreeAccessible::Answer(*this, wParam);
      break;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

void TTreeControl::OpenThemes() {
  m_treeTheme.Close();
  m_buttonTheme.Close();
  m_treeTheme = TTheme(OpenThemeData(Handle(), L"TREEVIEW"));
  m_buttonTheme = TTheme(OpenThemeData(Handle(), L"BUTTON"));
  m_isHighContrast = IsHighContrast();
  m_checkBoxesArePainted = false;
}

void TTreeControl::Refresh() {
  // Another row may lie under the mouse now, or another text in the row.
  m_tipNode = nullptr;
  UpdateScrollBars();
  InvalidateRect(Handle(), nullptr, FALSE);
  m_owner.RowsMoved();
  AnnounceRows();
}

void TTreeControl::RefreshSoon() {
  if (m_refreshIsDue)
    return;
  m_refreshIsDue = SetTimer(Handle(), kRefreshTimer, kRefreshDelay, nullptr) != 0;
  if (!m_refreshIsDue)
    Refresh();
}

void TTreeControl::RepaintRow(TTreeNode* node) {
  const RECT rect = RowRect(node);
  InvalidateRect(Handle(), &rect, FALSE);
}

// Painting

void TTreeControl::OnPaint() {
  PAINTSTRUCT paint = {};
  HDC window = BeginPaint(Handle(), &paint);
  const SIZE size = ClientSize();
  if (HDC dc = m_buffer.Begin(window, size)) {
    Draw(dc, paint.rcPaint);
    m_buffer.Show(window, paint.rcPaint);
  }
  EndPaint(Handle(), &paint);
}

void TTreeControl::Draw(HDC dc, const RECT& area) {
  FillRect(dc, &area, GetSysColorBrush(COLOR_WINDOW));
  SetBkMode(dc, TRANSPARENT);
  const RECT rows = RowsArea();
  const std::int64_t from = std::max(area.top, rows.top) - rows.top + m_scrollTop;
  if (m_layout.RowCount() == 0)
    DrawHint(dc);
  std::optional<TTreeRow> row = m_layout.RowAt(from);
  while (row) {
    const RECT rect = RectOf(*row);
    if (rect.top >= area.bottom)
      return;
    DrawRow(dc, *row, rect);
    TTreeNode* next = m_layout.NextRow(row->Node);
    if (next == nullptr)
      return;
    row = TTreeRow{next, row->Top + row->Height, m_owner.RowUnits(*next) * m_rowUnit,
                   TTreeLayout::LevelOf(*next)};
  }
}

void TTreeControl::DrawHint(HDC dc) {
  const Text hint = m_owner.EmptyHint();
  RECT place = RowsArea();
  InflateRect(&place, -m_rowUnit, -m_rowUnit);
  const TSelected font(dc, Font());
  SetTextColor(dc, TextColour({hint, false, true}, false));
  DrawTextW(dc, Wide(hint), -1, &place, DT_WORDBREAK | DT_NOPREFIX);
}

void TTreeControl::DrawRow(HDC dc, const TTreeRow& row, const RECT& rect) {
  const bool hasFocus = GetFocus() == Handle();
  if (m_model.Selected() == row.Node) {
    RECT bar = rect;
    bar.left += m_scale(kIndent) * (row.Level + 1) + m_scale(kCheckBoxRoom);
    FillRect(dc, &bar, GetSysColorBrush(hasFocus ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
  }
  DrawLines(dc, row, rect);
  if (!row.Node->Children.empty())
    DrawButton(dc, *row.Node, ButtonPlace(row, rect));
  DrawCheckBox(dc, row.Node->State, CheckBoxPlace(row, rect));
  DrawRowText(dc, row, rect, m_owner.LookOf(*row.Node));
}

// A dotted line from each row to its parent and its next sibling.
void TTreeControl::DrawLines(HDC dc, const TTreeRow& row, const RECT& rect) {
  SetTextColor(dc, GetSysColor(COLOR_WINDOW));
  SetBkColor(dc, GetSysColor(COLOR_BTNSHADOW));
  // The pattern keeps to the rows while they scroll.
  SetBrushOrgEx(dc, -m_scrollLeft & 7, static_cast<int>(-m_scrollTop & 7), nullptr);
  const auto fill = [this, dc](int left, int top, int right, int bottom) {
    const RECT line = {left, top, right, bottom};
    FillRect(dc, &line, static_cast<HBRUSH>(m_dots.Get()));
  };
  const int indent = m_scale(kIndent);
  const int middle = static_cast<int>(rect.top) + m_rowUnit / 2;
  int centre = static_cast<int>(rect.left) + indent * row.Level + indent / 2;
  const bool isFirst = row.Node->Parent == nullptr && row.Node->Index == 0;
  const bool isLast = m_model.NextSibling(row.Node) == nullptr;
  fill(centre, middle, centre + indent - m_scale(kTextMargin), middle + 1);
  fill(centre, isFirst ? middle : static_cast<int>(rect.top), centre + 1,
       isLast ? middle + 1 : static_cast<int>(rect.bottom));
  for (const TTreeNode* above = row.Node->Parent; above != nullptr; above = above->Parent) {
    centre -= indent;
    if (m_model.NextSibling(above) != nullptr) {
      fill(centre, static_cast<int>(rect.top), centre + 1, static_cast<int>(rect.bottom));
    }
  }
}

void TTreeControl::DrawButton(HDC dc, const TTreeNode& node, const RECT& place) {
  FillRect(dc, &place, GetSysColorBrush(COLOR_WINDOW));
  if (m_treeTheme) {
    DrawThemeBackground(m_treeTheme.Get(), dc, TVP_GLYPH, node.Expanded ? GLPS_OPENED : GLPS_CLOSED, &place,
                        nullptr);
    return;
  }
  FrameRect(dc, &place, GetSysColorBrush(COLOR_BTNSHADOW));
  const int middleX = static_cast<int>(place.left + place.right) / 2;
  const int middleY = static_cast<int>(place.top + place.bottom) / 2;
  const int gap = m_scale(2);
  const RECT across = {place.left + gap, middleY, place.right - gap, middleY + 1};
  FillRect(dc, &across, GetSysColorBrush(COLOR_WINDOWTEXT));
  if (node.Expanded)
    return;
  const RECT down = {middleX, place.top + gap, middleX + 1, place.bottom - gap};
  FillRect(dc, &down, GetSysColorBrush(COLOR_WINDOWTEXT));
}

// Painting the theme's takes longer than the rest of a row.
void TTreeControl::DrawCheckBox(HDC dc, TCheckState state, const RECT& place) {
  const LONG size = place.right - place.left;
  const auto leftOf = [size](TCheckState look, bool isEnabled) {
    return size * (static_cast<LONG>(look) + (isEnabled ? 0 : kCheckBoxLooks));
  };
  const RECT all = {0, 0, size * kCheckBoxLooks * 2, size};
  HDC memory = m_checkBoxes.Begin(dc, {all.right, all.bottom});
  if (memory == nullptr) {
    PaintCheckBox(dc, state, m_owner.MayCheck(), place);
    return;
  }
  if (!m_checkBoxesArePainted) {
    FillRect(memory, &all, GetSysColorBrush(COLOR_WINDOW));
    for (const TCheckState look : {TCheckState::Unchecked, TCheckState::Checked, TCheckState::Mixed}) {
      for (const bool isEnabled : {false, true}) {
        const LONG left = leftOf(look, isEnabled);
        PaintCheckBox(memory, look, isEnabled, {left, 0, left + size, size});
      }
    }
    m_checkBoxesArePainted = true;
  }
  m_checkBoxes.Copy(dc, place, {leftOf(state, m_owner.MayCheck()), 0});
}

void TTreeControl::PaintCheckBox(HDC dc, TCheckState state, bool isEnabled, const RECT& place) const {
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

void TTreeControl::DrawRowText(HDC dc, const TTreeRow& row, const RECT& rect, const TRowLook& look) {
  const bool isFocused = m_model.Selected() == row.Node && GetFocus() == Handle();
  RECT place = rect;
  place.left += TextLeft(row.Level);
  place.right -= m_scale(kTextMargin) + 1;
  place.bottom -= 1;
  if (look.Image != kNoImage) {
    ImageList_Draw(m_images, look.Image, dc, static_cast<int>(place.left),
                   static_cast<int>(place.top) + m_scale(2), ILD_TRANSPARENT);
    place.left += m_scale(kImageRoom);
  }
  const int step = RoundHalfToEven(m_rowUnit * kLineStep);
  RECT line = place;
  line.bottom = line.top + m_rowUnit;
  for (std::size_t i = 0; i < look.Lines.size(); ++i) {
    const TRowLine& content = look.Lines[i];
    if (i == 1) {
      line.top += step;
      line.bottom = line.top + step;
    } else if (i == 2) {
      // The third line stands at the row's end, as high as the controls of the selected row.
      line = place;
      line.top = line.bottom - look.ControlsHeight;
    }
    const TSelected font(dc, (content.Bold ? m_boldMeter : m_meter).Font());
    SetTextColor(dc, TextColour(content, isFocused));
    DrawTextW(dc, WideUnits(content.Content), static_cast<int>(content.Content.size()), &line,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  }
}

COLORREF TTreeControl::TextColour(const TRowLine& line, bool isFocused) const {
  if (isFocused)
    return GetSysColor(COLOR_HIGHLIGHTTEXT);
  if (line.Grey)
    return m_isHighContrast ? GetSysColor(COLOR_GRAYTEXT) : kGreyText;
  return GetSysColor(m_options.HighlightText ? COLOR_HIGHLIGHT : COLOR_WINDOWTEXT);
}

// The whole text of a row that is cut off

Text TTreeControl::TipOf(const TTreeRow& row) const {
  const TRowLook look = m_owner.LookOf(*row.Node);
  const RECT rect = RectOf(row);
  const int left =
      static_cast<int>(rect.left) + TextLeft(row.Level) + (look.Image != kNoImage ? m_scale(kImageRoom) : 0);
  const int right = static_cast<int>(std::min(rect.right, RowsArea().right)) - m_scale(kTextMargin) - 1;
  const bool isCut = std::any_of(look.Lines.begin(), look.Lines.end(), [&](const TRowLine& line) {
    return left + (line.Bold ? m_boldMeter : m_meter).Width(line.Content) > right;
  });
  return isCut ? RowName(*row.Node) : Text();
}

void TTreeControl::CreateTip() {
  m_tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                          CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, Handle(), nullptr,
                          ProgramInstance(), nullptr);
  // Without a width a tip shows its first line alone.
  constexpr int kWidestTip = 600;
  ::SendMessageW(m_tip, TTM_SETMAXTIPWIDTH, 0, m_scale(kWidestTip));
}

void TTreeControl::OnMouseMove(POINT point) {
  const RECT area = RowsArea();
  const std::optional<TTreeRow> row =
      PtInRect(&area, point) ? m_layout.RowAt(point.y - area.top + m_scrollTop) : std::nullopt;
  const TTreeNode* node = row ? row->Node : nullptr;
  if (node == m_tipNode)
    return;
  m_tipNode = node;
  SetTip(row ? TipOf(*row) : Text());
}

void TTreeControl::SetTip(Text tip) {
  TTTOOLINFOW tool = {};
  // The size that XP knows; later fields are not used.
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = Handle();
  tool.uId = reinterpret_cast<UINT_PTR>(Handle());
  tool.lpszText = WideBuffer(tip);
  ::SendMessageW(m_tip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  if (!tip.empty())
    ::SendMessageW(m_tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

// Geometry

int TTreeControl::TextLeft(int level) const {
  return m_scale(kIndent) * (level + 1) + m_scale(kCheckBoxRoom) + m_scale(kTextMargin);
}

RECT TTreeControl::ButtonPlace(const TTreeRow& row, const RECT& rect) const {
  const int size = m_scale(kButtonSize);
  const int indent = m_scale(kIndent);
  return Centred(static_cast<int>(rect.left) + indent * row.Level + (indent - size) / 2, size, rect,
                 m_rowUnit);
}

RECT TTreeControl::CheckBoxPlace(const TTreeRow& row, const RECT& rect) const {
  const int left = static_cast<int>(rect.left) + m_scale(kIndent) * (row.Level + 1);
  return Centred(left, m_scale(kCheckBoxSize), rect, m_rowUnit);
}

RECT TTreeControl::RowsArea() const {
  const SIZE size = ClientSize();
  return {0, m_options.HasHeader ? m_scale(kHeaderHeight) : 0, size.cx, size.cy};
}

RECT TTreeControl::RectOf(const TTreeRow& row) const {
  const RECT area = RowsArea();
  // Rows far outside the window keep coordinates that a rectangle can hold.
  constexpr std::int64_t kFarAway = 1 << 28;
  const std::int64_t top = std::clamp(row.Top - m_scrollTop, -kFarAway, kFarAway) + area.top;
  const int width = m_options.HasHeader ? m_owner.ColumnWidth() : static_cast<int>(area.right);
  return {-m_scrollLeft, static_cast<LONG>(top), width - m_scrollLeft, static_cast<LONG>(top + row.Height)};
}

RECT TTreeControl::RowRect(TTreeNode* node) {
  return RectOf(m_layout.RowOf(node));
}

bool TTreeControl::IsInSight(TTreeNode* node) {
  const RECT row = RowRect(node);
  const RECT area = RowsArea();
  return row.bottom > area.top && row.top < area.bottom;
}

TTreeNode* TTreeControl::RowAtPoint(POINT client) {
  return HitTest(client).Node;
}

TTreeControl::THit TTreeControl::HitTest(POINT point) {
  const RECT area = RowsArea();
  if (!PtInRect(&area, point))
    return {};
  const std::optional<TTreeRow> row = m_layout.RowAt(point.y - area.top + m_scrollTop);
  if (!row)
    return {};
  const RECT rect = RectOf(*row);
  if (point.x >= rect.right)
    return {};
  RECT button = ButtonPlace(*row, rect);
  InflateRect(&button, m_scale(3), m_scale(3));
  RECT checkBox = CheckBoxPlace(*row, rect);
  InflateRect(&checkBox, m_scale(1), m_scale(1));
  return {row->Node, !row->Node->Children.empty() && PtInRect(&button, point) != FALSE,
          PtInRect(&checkBox, point) != FALSE};
}

// Scrolling

void TTreeControl::OnSize() {
  if (m_header != nullptr) {
    const SIZE size = ClientSize();
    if (m_owner.ColumnWidth() < size.cx)
      m_owner.SetColumnWidth(static_cast<int>(size.cx));
  }
  UpdateScrollBars();
  m_owner.RowsMoved();
}

void TTreeControl::ColumnChanged() {
  HDITEMW item = {};
  item.mask = HDI_WIDTH;
  item.cxy = m_owner.ColumnWidth();
  ::SendMessageW(m_header, HDM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
  UpdateScrollBars();
  InvalidateRect(Handle(), nullptr, FALSE);
}

void TTreeControl::UpdateScrollBars() {
  const RECT area = RowsArea();
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_RANGE | SIF_PAGE;
  info.nMax = static_cast<int>(std::max<std::int64_t>(m_layout.TotalHeight() - 1, 0));
  info.nPage = static_cast<UINT>(std::max<LONG>(area.bottom - area.top, 0));
  SetScrollInfo(Handle(), SB_VERT, &info, TRUE);
  info.nMax = m_options.HasHeader ? std::max(m_owner.ColumnWidth() - 1, 0) : 0;
  info.nPage = static_cast<UINT>(std::max<LONG>(ClientSize().cx, 0));
  SetScrollInfo(Handle(), SB_HORZ, &info, TRUE);
  ScrollTo(m_scrollLeft, m_scrollTop);
  if (m_header != nullptr) {
    MoveWindow(m_header, -m_scrollLeft, 0,
               std::max(m_owner.ColumnWidth(), static_cast<int>(ClientSize().cx)) + m_scrollLeft,
               m_scale(kHeaderHeight), TRUE);
  }
}

void TTreeControl::ScrollTo(int left, std::int64_t top) {
  const RECT area = RowsArea();
  const std::int64_t height = area.bottom - area.top;
  const int width = m_options.HasHeader ? m_owner.ColumnWidth() : 0;
  left = std::clamp(left, 0, std::max(width - static_cast<int>(area.right), 0));
  top = std::clamp<std::int64_t>(top, 0, std::max<std::int64_t>(m_layout.TotalHeight() - height, 0));
  if (left == m_scrollLeft && top == m_scrollTop)
    return;
  m_scrollLeft = left;
  m_scrollTop = top;
  m_tipNode = nullptr;
  SetScrollPos(Handle(), SB_VERT, static_cast<int>(top), TRUE);
  SetScrollPos(Handle(), SB_HORZ, left, TRUE);
  if (m_header != nullptr) {
    SetWindowPos(m_header, nullptr, -left, 0,
                 std::max(m_owner.ColumnWidth(), static_cast<int>(area.right)) + left, m_scale(kHeaderHeight),
                 SWP_NOZORDER | SWP_NOACTIVATE);
  }
  InvalidateRect(Handle(), nullptr, FALSE);
  m_owner.RowsMoved();
}

void TTreeControl::OnScroll(int bar, WPARAM wParam) {
  const int position = WantedScrollPosition(Handle(), bar, LOWORD(wParam), m_rowUnit);
  ScrollTo(bar == SB_HORZ ? position : m_scrollLeft, bar == SB_VERT ? position : m_scrollTop);
}

void TTreeControl::OnWheel(WPARAM wParam) {
  const int page = static_cast<int>(RowsArea().bottom - RowsArea().top);
  ScrollTo(m_scrollLeft, m_scrollTop - m_wheel.Distance(wParam, m_rowUnit, page));
}

void TTreeControl::BringIntoSight(TTreeNode* node) {
  for (TTreeNode* above = node->Parent; above != nullptr; above = above->Parent) {
    if (!above->Expanded)
      m_model.SetExpanded(above, true);
  }
  const TTreeRow row = m_layout.RowOf(node);
  const RECT area = RowsArea();
  const std::int64_t height = area.bottom - area.top;
  std::int64_t top = m_scrollTop;
  if (row.Top + row.Height > top + height)
    top = row.Top + row.Height - height;
  if (row.Top < top)
    top = row.Top;
  UpdateScrollBars();
  ScrollTo(m_scrollLeft, top);
}

// Input

void TTreeControl::OnButtonDown(POINT point, bool isDouble) {
  SetFocus(Handle());
  const THit hit = HitTest(point);
  if (hit.Node == nullptr)
    return;
  const bool opensByDoubleClick = isDouble && !hit.OnCheckBox && !hit.Node->Children.empty();
  if (hit.OnButton || opensByDoubleClick) {
    SetOpen(hit.Node, !hit.Node->Expanded);
  } else if (hit.OnCheckBox) {
    ToggleCheck(hit.Node);
  } else {
    MoveSelection(hit.Node);
  }
}

bool TTreeControl::OnKeyDown(WPARAM key) {
  if (key == VK_SPACE) {
    if (m_model.Selected() != nullptr)
      ToggleCheck(m_model.Selected());
    return true;
  }
  bool known = false;
  const TTreeKey treeKey = KeyOf(key, known);
  if (!known)
    return false;
  Press(treeKey);
  return true;
}

void TTreeControl::Press(TTreeKey key) {
  const RECT area = RowsArea();
  const std::int64_t rows = m_layout.RowCount();
  TTreeNode* target = m_keys.Press(key, static_cast<int>(area.bottom - area.top));
  if (target != nullptr && target != m_model.Selected()) {
    MoveSelection(target);
    return;
  }
  Refresh();
  if (m_layout.RowCount() != rows)
    Announce(EVENT_OBJECT_STATECHANGE, target);
}

void TTreeControl::OnCharacter(char16_t unit) {
  // The space bar has checked the row already; what is below it is no text.
  if (unit <= u' ')
    return;
  if (unit == u'+' || unit == u'-' || unit == u'*') {
    Press(unit == u'+' ? TTreeKey::Open : unit == u'-' ? TTreeKey::Close : TTreeKey::OpenAll);
    return;
  }
  TTreeNode* row =
      m_keys.Type(unit, GetTickCount(), [this](const TTreeNode& node) { return m_owner.SearchText(node); });
  if (row != nullptr)
    MoveSelection(row);
}

LRESULT TTreeControl::OnNotify(const NMHDR* notice) {
  if (notice->hwndFrom == m_header && notice->code == HDN_ITEMCHANGEDW) {
    const auto* change = reinterpret_cast<const NMHEADERW*>(notice);
    const bool isWidth = change->pitem != nullptr && (change->pitem->mask & HDI_WIDTH) != 0;
    if (isWidth)
      m_owner.SetColumnWidth(change->pitem->cxy);
  }
  return ::SendMessageW(GetParent(Handle()), WM_NOTIFY, notice->idFrom, reinterpret_cast<LPARAM>(notice));
}

void TTreeControl::SelectRow(TTreeNode* node) {
  MoveSelection(node);
}

void TTreeControl::MoveSelection(TTreeNode* node) {
  if (node != m_model.Selected())
    m_owner.RowSelected(node);
  BringIntoSight(node);
  Refresh();
  Announce(EVENT_OBJECT_FOCUS, node);
  Announce(EVENT_OBJECT_SELECTION, node);
}

void TTreeControl::SetOpen(TTreeNode* node, bool open) {
  if (!open && !m_options.NodesClose)
    return;
  m_model.SetExpanded(node, open);
  Refresh();
  Announce(EVENT_OBJECT_STATECHANGE, node);
  // A row that is hidden can't stay selected: keys would act on what nobody sees.
  if (!open && IsBelow(m_model.Selected(), node))
    MoveSelection(node);
}

void TTreeControl::ToggleCheck(TTreeNode* node) {
  if (!m_owner.MayCheck())
    return;
  m_model.SetChecked(node, node->State != TCheckState::Checked);
  m_owner.RowChecked(node);
  InvalidateRect(Handle(), nullptr, FALSE);
  Announce(EVENT_OBJECT_STATECHANGE, node);
}

Text TTreeControl::RowName(const TTreeNode& node) const {
  Text name;
  for (const TRowLine& line : m_owner.LookOf(node).Lines)
    name += (name.empty() ? u"" : u"\r\n") + line.Content;
  return name;
}

Text TTreeControl::ActionName(const TTreeNode& node) const {
  return m_owner.ActionName(node.State != TCheckState::Checked);
}

// Rows are known by their numbers, which mean other rows now.
void TTreeControl::AnnounceRows() {
  if (m_layout.RowCount() == m_announcedRows)
    return;
  m_announcedRows = m_layout.RowCount();
  NotifyWinEvent(EVENT_OBJECT_REORDER, Handle(), OBJID_CLIENT, CHILDID_SELF);
}

void TTreeControl::Announce(DWORD event, const TTreeNode* node) {
  NotifyWinEvent(event, Handle(), OBJID_CLIENT, static_cast<LONG>(m_layout.NumberOfRow(node)) + 1);
}

}  // namespace corvalt
