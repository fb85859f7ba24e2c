#include "ui/windows/textview.h"

#include <algorithm>

namespace {

// Lines are measured and drawn in pieces: one line may be as long as the text.
constexpr std::size_t kPieceLength = 256;
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

TTextView::TTextView(Text content) : m_lines(std::move(content)), m_lineHeight(m_meter.Height()) {
  for (std::size_t number = 0; number < m_lines.Count(); ++number)
    m_widest = std::max(m_widest, m_meter.Width(m_lines.Line(number)));
}

void TTextView::Create(HWND parent, int id) {
  // A text box's styles: assistive technology asks for them.
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
        return AccessibleAnswer(wParam, lParam);
      break;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

// Assistive technology reads it as the text box whose styles it has, where the system lends one.
LRESULT TTextView::AccessibleAnswer(WPARAM wParam, LPARAM lParam) {
  void* object = nullptr;
  if (FAILED(CreateStdAccessibleProxyW(Handle(), WC_EDITW, OBJID_CLIENT, __uuidof(IAccessible), &object)) ||
      object == nullptr)
    return Default(WM_GETOBJECT, wParam, lParam);
  auto* accessible = static_cast<IAccessible*>(object);
  const LRESULT answer = LresultFromObject(__uuidof(IAccessible), wParam, accessible);
  accessible->Release();
  return answer;
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
  for (int row = first; row * m_lineHeight < area.bottom; ++row) {
    const auto number = static_cast<std::size_t>(m_topLine + row);
    if (number >= m_lines.Count())
      return;
    DrawLine(dc, number, row * m_lineHeight);
  }
}

void TTextView::DrawLine(HDC dc, std::size_t number, int top) {
  const int right = static_cast<int>(ClientSize().cx);
  ForPieces(number, [&](std::size_t start, std::size_t end, int left, int width) {
    left += m_scale(kMargin) - m_scrollLeft;
    if (left + width < 0)
      return true;
    const bool isSelected = start >= m_cursor.SelectionStart() && end <= m_cursor.SelectionEnd();
    SetTextColor(dc, GetSysColor(isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const RECT place = {left, top, left + width, top + m_lineHeight};
    ExtTextOutW(dc, left, top, ETO_OPAQUE, &place, WideUnits(TextView(m_lines.Content()).substr(start)),
                static_cast<UINT>(end - start), nullptr);
    return left + width < right;
  });
}

void TTextView::ForPieces(std::size_t number, const TOnPiece& onPiece) const {
  const TextView text = m_lines.Content();
  const std::size_t lineEnd = m_lines.EndOf(number);
  int left = 0;
  for (std::size_t start = m_lines.StartOf(number); start < lineEnd;) {
    std::size_t end = std::min(start + kPieceLength, lineEnd);
    // A piece is selected as a whole or not at all, and no pair is cut.
    for (const std::size_t border : {m_cursor.SelectionStart(), m_cursor.SelectionEnd()}) {
      if (border > start)
        end = std::min(end, border);
    }
    if (end < lineEnd && IsLowSurrogate(text[end]) && end - start == kPieceLength)
      --end;
    const int width = m_meter.Width(text.substr(start, end - start));
    if (!onPiece(start, end, left, width))
      return;
    left += width;
    start = end;
  }
}

int TTextView::LinesInSight() const {
  return std::max(static_cast<int>(ClientSize().cy) / m_lineHeight, 1);
}

int TTextView::LeftOf(std::size_t place) const {
  int found = 0;
  ForPieces(m_lines.LineOf(place), [&](std::size_t start, std::size_t end, int left, int width) {
    const TextView before = TextView(m_lines.Content()).substr(start, std::min(place, end) - start);
    found = place >= end ? left + width : left + m_meter.Width(before);
    return place > end;
  });
  return found;
}

std::size_t TTextView::PlaceAt(POINT point) const {
  const int row = std::max(static_cast<int>(point.y), -m_lineHeight) / m_lineHeight - (point.y < 0 ? 1 : 0);
  const int last = static_cast<int>(m_lines.Count()) - 1;
  const auto number = static_cast<std::size_t>(std::clamp(m_topLine + row, 0, last));
  const int wanted = static_cast<int>(point.x) - m_scale(kMargin) + m_scrollLeft;
  std::size_t found = m_lines.StartOf(number);
  ForPieces(number, [&](std::size_t start, std::size_t end, int left, int width) {
    found = end;
    if (left + width <= wanted)
      return true;
    // The gap between two characters that lies nearest.
    const TextView piece = TextView(m_lines.Content()).substr(start, end - start);
    found = start;
    int edge = left;
    for (std::size_t i = 0; i < piece.size(); ++i) {
      const int next = left + m_meter.Width(piece.substr(0, i + 1));
      if (wanted < (edge + next) / 2)
        break;
      edge = next;
      found = start + i + 1;
    }
    return false;
  });
  return found;
}

// Scrolling

void TTextView::UpdateScrollBars() {
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
  info.nMax = static_cast<int>(m_lines.Count()) - 1;
  info.nPage = static_cast<UINT>(LinesInSight());
  SetScrollInfo(Handle(), SB_VERT, &info, TRUE);
  info.nMax = m_widest + 2 * m_scale(kMargin) - 1;
  info.nPage = static_cast<UINT>(std::max<LONG>(ClientSize().cx, 0));
  SetScrollInfo(Handle(), SB_HORZ, &info, TRUE);
  ScrollTo(m_scrollLeft, m_topLine);
}

void TTextView::OnScroll(int bar, WPARAM wParam) {
  if (bar == SB_VERT)
    ScrollTo(m_scrollLeft, WantedScrollPosition(Handle(), bar, LOWORD(wParam), 1));
  else
    ScrollTo(WantedScrollPosition(Handle(), bar, LOWORD(wParam), m_lineHeight), m_topLine);
}

void TTextView::ScrollTo(int left, int line) {
  const int width = m_widest + 2 * m_scale(kMargin);
  left = std::clamp(left, 0, std::max(width - static_cast<int>(ClientSize().cx), 0));
  line = std::clamp(line, 0, std::max(static_cast<int>(m_lines.Count()) - LinesInSight(), 0));
  if (left == m_scrollLeft && line == m_topLine)
    return;
  m_scrollLeft = left;
  m_topLine = line;
  SetScrollPos(Handle(), SB_VERT, line, TRUE);
  SetScrollPos(Handle(), SB_HORZ, left, TRUE);
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
      m_cursor.Move(TTextMove::Left, extend);
      break;
    case VK_RIGHT:
      m_cursor.Move(TTextMove::Right, extend);
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
  const int caret = LeftOf(m_cursor.Caret()) + m_scale(kMargin);
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

void TTextView::PlaceCaret() const {
  if (GetFocus() != Handle())
    return;
  const int row = static_cast<int>(m_lines.LineOf(m_cursor.Caret())) - m_topLine;
  SetCaretPos(LeftOf(m_cursor.Caret()) + m_scale(kMargin) - m_scrollLeft, row * m_lineHeight);
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
