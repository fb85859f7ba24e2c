#include "ui/windows/treecontrol.h"

#include <algorithm>

#include "ui/windows/treeaccessible.h"

namespace corvalt {

namespace {

constexpr TextView kClassName = u"TessalyTree";

// WM_MOUSEHWHEEL, which the headers declare for Windows Vista and later only.
constexpr UINT kMouseTilt = 0x020E;

constexpr int kWidestTip = 600;  // at 96 dots per inch

// How long rows that were added one after the other wait to be shown, in milliseconds.
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshDelay = 100;

}  // namespace

TTreeControl::TTreeControl(TTreeModel& model, TTreeControlOwner& owner, TTreeOptions options)
    : m_model(model),
      m_owner(owner),
      m_options(options),
      m_painter(model, options.HighlightText),
      m_geometry(MeasureTree(m_painter.DotsPerInch(), m_painter.Meter().Height(), options.HasHeader)),
      m_layout(
          model,
          [this](const TTreeNode& node) { return m_owner.RowUnits(node) * m_geometry.Measures().RowUnit; }),
      m_keys(model, m_layout, options.NodesClose) {
}

TTreeControl::~TTreeControl() = default;

void TTreeControl::Create(HWND parent, int id, HIMAGELIST images) {
  m_painter.SetImages(images);
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPCHILDREN | WS_VSCROLL | WS_HSCROLL;
  CreateHandle(kClassName, {}, kStyle, 0, {0, 0, 0, 0}, parent,
               reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), CS_DBLCLKS);
}

void TTreeControl::OnCreate() {
  m_painter.OpenThemes(Handle());
  m_tip.Create(Handle());
  m_tip.SetWidth(TScale()(kWidestTip));
  if (!m_options.HasHeader)
    return;
  m_header = CreateWindowExW(0, WC_HEADERW, L"", WS_CHILD | WS_VISIBLE | HDS_HORZ, 0, 0, 0, 0, Handle(),
                             nullptr, ProgramInstance(), nullptr);
  ::SendMessageW(m_header, WM_SETFONT, reinterpret_cast<WPARAM>(Font()), FALSE);
  HDITEMW item = {};
  item.mask = HDI_WIDTH;
  ::SendMessageW(m_header, HDM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
  ColumnChanged();
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
      // With Shift the wheel goes sideways: up is to the left.
      if ((GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) != 0)
        OnSidewaysWheel(wParam, false);
      else
        OnWheel(wParam);
      return 0;
    case kMouseTilt:
      OnSidewaysWheel(wParam, true);
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
      // The controls on the selected row send their notices to the owner's window.
      return ::SendMessageW(GetParent(Handle()), message, wParam, lParam);
    case WM_THEMECHANGED:
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
      m_painter.OpenThemes(Handle());
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
  const TBox rows = m_geometry.RowsArea();
  const int unit = m_geometry.Measures().RowUnit;
  if (m_layout.RowCount() == 0) {
    m_painter.DrawHint(dc, m_owner.EmptyHint(),
                       {rows.Left + unit, rows.Top + unit, rows.Right - unit, rows.Bottom - unit});
  }
  std::optional<TTreeRow> row =
      m_layout.RowAt(m_geometry.ContentTopAt(std::max(static_cast<int>(area.top), rows.Top)));
  const bool hasFocus = GetFocus() == Handle();
  const bool mayCheck = m_owner.MayCheck();
  while (row && m_geometry.PlaceOf(*row).Top < area.bottom) {
    m_painter.DrawRow(dc, m_geometry, *row, m_owner.LookOf(*row->Node),
                      {m_model.Selected() == row->Node, hasFocus, mayCheck});
    TTreeNode* next = m_layout.NextRow(row->Node);
    if (next == nullptr)
      return;
    row = TTreeRow{next, row->Top + row->Height, m_owner.RowUnits(*next) * unit, TTreeLayout::LevelOf(*next)};
  }
}

// The whole text of a row that is cut off

Text TTreeControl::TipOf(const TTreeRow& row) const {
  const TRowLook look = m_owner.LookOf(*row.Node);
  const TBox place = m_geometry.LinePlace(row, 0, look.Image != kNoImage, 0);
  const int end = m_geometry.RowsArea().Right - m_geometry.Measures().TextMargin - 1;
  const int right = std::min(place.Right, end);
  const bool isCut = std::any_of(look.Lines.begin(), look.Lines.end(), [&](const TRowLine& line) {
    return place.Left + m_painter.LineWidth(line) > right;
  });
  return isCut ? RowName(*row.Node) : Text();
}

void TTreeControl::OnMouseMove(POINT point) {
  const std::optional<TTreeRow> row = RowUnder(point);
  const TTreeNode* node = row ? row->Node : nullptr;
  if (node == m_tipNode)
    return;
  m_tipNode = node;
  m_tip.Set(Handle(), row ? TipOf(*row) : Text());
}

// Places

int TTreeControl::TextLeft(int level) const {
  return m_geometry.TextLeft(level);
}

RECT TTreeControl::RowRect(TTreeNode* node) {
  return RectOf(m_geometry.PlaceOf(m_layout.RowOf(node)));
}

bool TTreeControl::IsInSight(TTreeNode* node) {
  return m_geometry.IsInSight(m_layout.RowOf(node));
}

std::optional<TTreeRow> TTreeControl::RowUnder(POINT point) {
  if (!m_geometry.RowsArea().Holds(static_cast<int>(point.x), static_cast<int>(point.y)))
    return std::nullopt;
  return m_layout.RowAt(m_geometry.ContentTopAt(static_cast<int>(point.y)));
}

TTreeControl::THit TTreeControl::HitTest(POINT point) {
  const std::optional<TTreeRow> row = RowUnder(point);
  if (!row)
    return {};
  const TTreePart part = m_geometry.PartAt(*row, static_cast<int>(point.x), static_cast<int>(point.y));
  return part == TTreePart::Outside ? THit() : THit{row->Node, part};
}

TTreeNode* TTreeControl::RowAtPoint(POINT client) {
  return HitTest(client).Node;
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
