#include "ui/windows/textview.h"

#include <algorithm>

#include "ui/windows/textaccessible.h"

namespace corvalt {

namespace {

constexpr int kMargin = 4;  // at 96 dots per inch

bool IsDown(int key) {
  return GetKeyState(key) < 0;
}

struct TMemoryTraits {
  using THandle = HGLOBAL;
  static HGLOBAL None() {
    return nullptr;
  }
  static void Close(HGLOBAL memory) {
    GlobalFree(memory);
  }
};
using TMemory = TOwned<TMemoryTraits>;

TMemory ClipboardText(TextView text) {
  TMemory memory(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, (text.size() + 1) * sizeof(char16_t)));
  if (auto* units = static_cast<char16_t*>(memory ? GlobalLock(memory.Get()) : nullptr)) {
    std::copy(text.begin(), text.end(), units);
    GlobalUnlock(memory.Get());
  }
  return memory;
}

}  // namespace

TTextView::TTextView(Text content) : m_lines(std::move(content)) {
}

void TTextView::Create(HWND parent, int id) {
  // A text box's styles: other programs ask for them.
  constexpr DWORD kStyle =
      WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY;
  CreateHandle(u"TessalyTextView", {}, kStyle, WS_EX_CLIENTEDGE, {0, 0, 0, 0}, parent,
               reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), CS_DBLCLKS);
}

LRESULT TTextView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT:
      OnPaint();
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_SIZE:
      UpdateScrollBars();
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    case WM_VSCROLL:
      OnScroll(SB_VERT, wParam);
      return 0;
    case WM_HSCROLL:
      OnScroll(SB_HORZ, wParam);
      return 0;
    case WM_MOUSEWHEEL:
      ScrollTo(m_scrollLeft, m_topLine - m_wheel.Distance(wParam, 1, LinesInSight()));
      return 0;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN:
      if (OnKeyDown(wParam))
        return 0;
      break;
    case WM_COPY:
      Copy();
      return 0;
    case WM_SETCURSOR:
      if (LOWORD(lParam) != HTCLIENT)
        break;
      SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_IBEAM)));
      return TRUE;
    case WM_LBUTTONDOWN:
      SetFocus(Handle());
      SetCapture(Handle());
      m_cursor.Go(PlaceAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}), (wParam & MK_SHIFT) != 0);
      CursorMoved();
      return 0;
    case WM_LBUTTONDBLCLK:
      m_cursor.SelectWord(PlaceAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}));
      CursorMoved();
      return 0;
    case WM_MOUSEMOVE:
      if (GetCapture() == Handle()) {
        m_cursor.Go(PlaceAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}), true);
        CursorMoved();
      }
      return 0;
    case WM_LBUTTONUP:
      ReleaseCapture();
      return 0;
    case WM_SETFOCUS:
      CreateCaret(Handle(), nullptr, m_scale(1), m_lineHeight);
      PlaceCaret();
      ShowCaret(Handle());
      return 0;
    case WM_KILLFOCUS:
      DestroyCaret();
      return 0;
    case WM_SYSCOLORCHANGE:
      InvalidateRect(Handle(), nullptr, FALSE);
      return 0;
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(m_lines.Content().size());
    case WM_GETTEXT: {
      if (wParam == 0)
        return 0;
      auto* buffer = reinterpret_cast<char16_t*>(lParam);
      const std::size_t length = m_lines.Content().copy(buffer, wParam - 1);
      buffer[length] = u'\0';
      return static_cast<LRESULT>(length);
    }
    case WM_GETOBJECT:
      if (static_cast<LONG>(lParam) == OBJID_CLIENT)
        return TTextAccessible::Answer(Handle(), wParam);
      break;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

// Drawing

void TTextView::OnPaint() {
  PAINTSTRUCT paint = {};
  HDC window = BeginPaint(Handle(), &paint);
  if (HDC dc = m_buffer.Begin(window, ClientSize())) {
    Draw(dc, paint.rcPaint);
    m_buffer.Show(window, paint.rcPaint);
  }
  EndPaint(Handle(), &paint);
}

void TTextView::Draw(HDC dc, const RECT& area) {
  FillRect(dc, &area, GetSysColorBrush(COLOR_WINDOW));
  const TSelected font(dc, m_meter.Font());
  const int first = static_cast<int>(area.top) / m_lineHeight;
  const auto topLine = static_cast<std::size_t>(m_topLine);
  for (int row = first; row * m_lineHeight < area.bottom; ++row) {
    const std::size_t number = topLine + static_cast<std::size_t>(row);
    if (number >= m_lines.Count())
      return;
    DrawLine(dc, number, row * m_lineHeight);
  }
}

void TTextView::DrawLine(HDC dc, std::size_t number, int top) {
  const int right = static_cast<int>(ClientSize().cx);
  const int origin = m_scale(kMargin) - m_scrollLeft;
  m_geometry.ForPieces(number, -origin, m_cursor, [&](const TTextPiece& piece) {
    const int left = origin + piece.Left;
    const bool isSelected = piece.Start >= m_cursor.SelectionStart() && piece.End <= m_cursor.SelectionEnd();
    SetTextColor(dc, GetSysColor(isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const RECT place = {left, top, left + piece.Width, top + m_lineHeight};
    ExtTextOutW(dc, left, top, ETO_OPAQUE, &place, WideUnits(TextView(m_lines.Content()).substr(piece.Start)),
                static_cast<UINT>(piece.End - piece.Start), nullptr);
    return left + piece.Width < right;
  });
}

int TTextView::LinesInSight() const {
  return std::max(static_cast<int>(ClientSize().cy) / m_lineHeight, 1);
}

std::size_t TTextView::PlaceAt(POINT point) {
  const int row = std::max(static_cast<int>(point.y), -m_lineHeight) / m_lineHeight - (point.y < 0 ? 1 : 0);
  const int last = static_cast<int>(m_lines.Count()) - 1;
  const auto number = static_cast<std::size_t>(std::clamp(m_topLine + row, 0, last));
  const int wanted = static_cast<int>(point.x) - m_scale(kMargin) + m_scrollLeft;
  return m_geometry.PlaceAt(number, wanted);
}

// Scrolling

void TTextView::UpdateScrollBars() {
  ShowScrollRange(Handle(), SB_VERT, {static_cast<int>(m_lines.Count()) - 1, LinesInSight(), true});
  const int lastAcross = m_geometry.Widest() + 2 * m_scale(kMargin) - 1;
  ShowScrollRange(Handle(), SB_HORZ, {lastAcross, static_cast<int>(ClientSize().cx), true});
  ScrollTo(m_scrollLeft, m_topLine);
}

void TTextView::OnScroll(int bar, WPARAM wParam) {
  if (bar == SB_VERT)
    ScrollTo(m_scrollLeft, WantedScrollPosition(Handle(), bar, LOWORD(wParam), 1));
  else
    ScrollTo(WantedScrollPosition(Handle(), bar, LOWORD(wParam), m_lineHeight), m_topLine);
}

void TTextView::ScrollTo(int left, int line) {
  const int width = m_geometry.Widest() + 2 * m_scale(kMargin);
  left = std::clamp(left, 0, std::max(width - static_cast<int>(ClientSize().cx), 0));
  line = std::clamp(line, 0, std::max(static_cast<int>(m_lines.Count()) - LinesInSight(), 0));
  if (left == m_scrollLeft && line == m_topLine)
    return;
  m_scrollLeft = left;
  m_topLine = line;
  ShowScrollPosition(Handle(), SB_VERT, line);
  ShowScrollPosition(Handle(), SB_HORZ, left);
  InvalidateRect(Handle(), nullptr, FALSE);
  PlaceCaret();
}

// Input

bool TTextView::OnKeyDown(WPARAM key) {
  const bool extend = IsDown(VK_SHIFT);
  const bool control = IsDown(VK_CONTROL);
  switch (key) {
    case VK_UP:
      m_cursor.MoveLines(-1, extend);
      break;
    case VK_DOWN:
      m_cursor.MoveLines(1, extend);
      break;
    case VK_PRIOR:
      m_cursor.MoveLines(-LinesInSight(), extend);
      break;
    case VK_NEXT:
      m_cursor.MoveLines(LinesInSight(), extend);
      break;
    case VK_LEFT:
      m_cursor.Move(control ? TTextMove::WordLeft : TTextMove::Left, extend);
      break;
    case VK_RIGHT:
      m_cursor.Move(control ? TTextMove::WordRight : TTextMove::Right, extend);
      break;
    case VK_HOME:
      m_cursor.Move(control ? TTextMove::TextStart : TTextMove::LineStart, extend);
      break;
    case VK_END:
      m_cursor.Move(control ? TTextMove::TextEnd : TTextMove::LineEnd, extend);
      break;
    case 'A':
      if (!control)
        return false;
      // The picture stays where it is.
      m_cursor.SelectAll();
      InvalidateRect(Handle(), nullptr, FALSE);
      return true;
    case 'C':
    case VK_INSERT:
      if (control)
        Copy();
      return control;
    default:
      return false;
  }
  CursorMoved();
  return true;
}

void TTextView::CursorMoved() {
  const int line = static_cast<int>(m_lines.LineOf(m_cursor.Caret()));
  const int top = std::min(std::max(m_topLine, line - LinesInSight() + 1), line);
  const int caret = m_geometry.LeftOf(m_cursor.Caret()) + m_scale(kMargin);
  const int width = static_cast<int>(ClientSize().cx);
  // A line that is left takes a good piece into sight, not a character at a time.
  int left = m_scrollLeft;
  if (caret < left)
    left = std::max(caret - width / 4, 0);
  if (caret > left + width - m_scale(kMargin))
    left = caret - width + width / 4;
  ScrollTo(left, top);
  InvalidateRect(Handle(), nullptr, FALSE);
  PlaceCaret();
}

void TTextView::PlaceCaret() {
  if (GetFocus() != Handle())
    return;
  const int row = static_cast<int>(m_lines.LineOf(m_cursor.Caret())) - m_topLine;
  SetCaretPos(m_geometry.LeftOf(m_cursor.Caret()) + m_scale(kMargin) - m_scrollLeft, row * m_lineHeight);
}

void TTextView::Copy() const {
  if (m_cursor.Selected().empty() || !OpenClipboard(Handle()))
    return;
  EmptyClipboard();
  TMemory memory = ClipboardText(m_cursor.Selected());
  // The clipboard owns what it takes.
  if (memory && SetClipboardData(CF_UNICODETEXT, memory.Get()) != nullptr)
    memory.Release();
  CloseClipboard();
}

}  // namespace corvalt
