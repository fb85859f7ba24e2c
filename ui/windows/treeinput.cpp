// The tree control's scrolling, and what mouse and keyboard do in it.
#include "ui/windows/treecontrol.h"

#include <algorithm>

namespace corvalt {

namespace {

bool IsBelow(const TTreeNode* node, const TTreeNode* above) {
  while (node != nullptr && node->Parent != above)
    node = node->Parent;
  return node != nullptr;
}

std::optional<TTreeKey> KeyOf(WPARAM key) {
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
      return std::nullopt;
  }
}

}  // namespace

// Scrolling

void TTreeControl::OnSize() {
  const SIZE size = ClientSize();
  m_geometry.SetWindow(static_cast<int>(size.cx), static_cast<int>(size.cy));
  if (m_header != nullptr && m_owner.ColumnWidth() < size.cx)
    m_owner.SetColumnWidth(static_cast<int>(size.cx));
  UpdateScrollBars();
  // Captions that are cut off, and the hint, look different at another width.
  InvalidateRect(Handle(), nullptr, FALSE);
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
  const std::int64_t height = m_layout.TotalHeight();
  // Without rows there is no text to be scrolled to, however wide the column was made for earlier ones.
  m_geometry.SetContent(m_options.HasHeader && height > 0 ? m_owner.ColumnWidth() : 0, height);
  const int last = static_cast<int>(std::max<std::int64_t>(height - 1, 0));
  ShowScrollRange(Handle(), SB_VERT, {last, m_geometry.RowsArea().Height()});
  const int lastAcross = m_options.HasHeader ? std::max(m_geometry.RowWidth() - 1, 0) : 0;
  ShowScrollRange(Handle(), SB_HORZ, {lastAcross, static_cast<int>(ClientSize().cx)});
  ScrollTo(m_geometry.ScrollLeft(), m_geometry.ScrollTop());
  PlaceHeader();
}

// The header scrolls sideways with the rows.
void TTreeControl::PlaceHeader() {
  if (m_header == nullptr)
    return;
  const int left = m_geometry.ScrollLeft();
  const int width = std::max(m_geometry.RowWidth(), static_cast<int>(ClientSize().cx)) + left;
  MoveWindow(m_header, -left, 0, width, m_geometry.Measures().HeaderHeight, TRUE);
}

void TTreeControl::ScrollTo(int left, std::int64_t top) {
  if (!m_geometry.ScrollTo(left, top))
    return;
  m_tipNode = nullptr;
  ShowScrollPosition(Handle(), SB_VERT, static_cast<int>(m_geometry.ScrollTop()));
  ShowScrollPosition(Handle(), SB_HORZ, m_geometry.ScrollLeft());
  PlaceHeader();
  InvalidateRect(Handle(), nullptr, FALSE);
  m_owner.RowsMoved();
}

void TTreeControl::OnScroll(int bar, WPARAM wParam) {
  const int position = WantedScrollPosition(Handle(), bar, LOWORD(wParam), m_geometry.Measures().RowUnit);
  if (bar == SB_HORZ)
    ScrollTo(position, m_geometry.ScrollTop());
  else
    ScrollTo(m_geometry.ScrollLeft(), position);
}

void TTreeControl::OnWheel(WPARAM wParam) {
  const int page = m_geometry.RowsArea().Height();
  const int distance = m_wheel.Distance(wParam, m_geometry.Measures().RowUnit, page);
  ScrollTo(m_geometry.ScrollLeft(), m_geometry.ScrollTop() - distance);
}

void TTreeControl::OnSidewaysWheel(WPARAM wParam, bool isToTheRight) {
  const int page = static_cast<int>(ClientSize().cx);
  const int distance = m_sidewaysWheel.Distance(wParam, m_geometry.Measures().RowUnit, page);
  ScrollTo(m_geometry.ScrollLeft() + (isToTheRight ? distance : -distance), m_geometry.ScrollTop());
}

int TTreeControl::WantedWidth() {
  int widest = 0;
  for (TTreeNode* node = m_layout.FirstRow(); node != nullptr; node = m_layout.NextRow(node)) {
    const TRowLook look = m_owner.LookOf(*node);
    const int left = m_geometry.LinePlace(m_layout.RowOf(node), 0, look.Image != kNoImage, 0).Left;
    for (const TRowLine& line : look.Lines)
      widest = std::max(widest, left + m_painter.LineWidth(line));
  }
  return widest + m_geometry.Measures().TextMargin + 1 + GetSystemMetrics(SM_CXVSCROLL);
}

void TTreeControl::BringIntoSight(TTreeNode* node) {
  for (TTreeNode* above = node->Parent; above != nullptr; above = above->Parent) {
    if (!above->Expanded)
      m_model.SetExpanded(above, true);
  }
  UpdateScrollBars();
  ScrollTo(m_geometry.ScrollLeft(), m_geometry.TopToShow(m_layout.RowOf(node)));
}

// Input

void TTreeControl::OnButtonDown(POINT point, bool isDouble) {
  SetFocus(Handle());
  const THit hit = HitTest(point);
  if (hit.Node == nullptr)
    return;
  const bool hasChildren = !hit.Node->Children.empty();
  if (hit.Part == TTreePart::Button || (isDouble && hit.Part == TTreePart::Row && hasChildren)) {
    SetOpen(hit.Node, !hit.Node->Expanded);
  } else if (hit.Part == TTreePart::CheckBox) {
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
  if (GetKeyState(VK_CONTROL) < 0 && (key == VK_LEFT || key == VK_RIGHT)) {
    const int step = key == VK_LEFT ? -m_geometry.Measures().RowUnit : m_geometry.Measures().RowUnit;
    ScrollTo(m_geometry.ScrollLeft() + step, m_geometry.ScrollTop());
    return true;
  }
  const std::optional<TTreeKey> treeKey = KeyOf(key);
  if (treeKey)
    Press(*treeKey);
  return treeKey.has_value();
}

void TTreeControl::Press(TTreeKey key) {
  const std::int64_t rows = m_layout.RowCount();
  TTreeNode* target = m_keys.Press(key, m_geometry.RowsArea().Height());
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
  // A row that is hidden can't stay selected: keys would act on a row that the user does not see.
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

}  // namespace corvalt
