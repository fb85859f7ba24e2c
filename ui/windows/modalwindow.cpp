#include "ui/windows/modalwindow.h"

#include <algorithm>

#include "core/languagetexts.h"
#include "ui/windows/namedaccessible.h"

namespace corvalt {

namespace {

// Keeps the window within the work area of the screen that its owner is on.
POINT CentredOver(HWND owner, SIZE size) {
  RECT over = {};
  GetWindowRect(owner, &over);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &monitor);
  const RECT& work = monitor.rcWork;
  const LONG left = (over.left + over.right - size.cx) / 2;
  const LONG top = (over.top + over.bottom - size.cy) / 2;
  return {std::max(std::min(left, work.right - size.cx), work.left),
          std::max(std::min(top, work.bottom - size.cy), work.top)};
}

}  // namespace

void TModalWindow::CreateModal(TextView className, TextView caption, HWND owner, SIZE inside,
                               DWORD extraStyle) {
  m_owner = owner;
  const DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN | extraStyle;
  constexpr DWORD kExtendedStyle = WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT;
  RECT frame = {0, 0, m_scale(static_cast<int>(inside.cx)), m_scale(static_cast<int>(inside.cy))};
  AdjustWindowRectEx(&frame, style, FALSE, kExtendedStyle);
  const SIZE size = {frame.right - frame.left, frame.bottom - frame.top};
  const POINT place = CentredOver(owner, size);
  CreateHandle(className, caption, style, kExtendedStyle,
               {static_cast<int>(place.x), static_cast<int>(place.y), static_cast<int>(size.cx),
                static_cast<int>(size.cy)},
               owner, nullptr, 0);
}

HWND TModalWindow::AddControl(TextView className, TextView text, DWORD style, int id, int left, int top,
                              int width, int height, DWORD extendedStyle) {
  const HWND control =
      CreateWindowExW(extendedStyle, Wide(Text(className)), Wide(Text(text)), WS_CHILD | WS_VISIBLE | style,
                      m_scale(left), m_scale(top), m_scale(width), m_scale(height), Handle(),
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), ProgramInstance(), nullptr);
  ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(Font()), FALSE);
  return control;
}

HWND TModalWindow::AddButton(TextView text, int id, int left, int top, int width, int height,
                             bool isDefault) {
  if (isDefault)
    m_defaultButton = id;
  const DWORD style = WS_TABSTOP | (isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
  return AddControl(u"BUTTON", text, style, id, left, top, width, height);
}

void TModalWindow::Place(HWND control, int left, int top, int width, int height) {
  MoveWindow(control, left, top, width, height, TRUE);
}

void TModalWindow::ResizeInside(int width, int height) {
  RECT frame = {0, 0, width, height};
  AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
  const SIZE size = {frame.right - frame.left, frame.bottom - frame.top};
  const POINT place = CentredOver(m_owner, size);
  SetWindowPos(Handle(), nullptr, static_cast<int>(place.x), static_cast<int>(place.y),
               static_cast<int>(size.cx), static_cast<int>(size.cy), SWP_NOZORDER | SWP_NOACTIVATE);
}

int TModalWindow::ButtonWidth(std::initializer_list<TextView> captions, int usualAt96) const {
  constexpr int kRoom = 20;
  int width = m_scale(usualAt96);
  for (const TextView caption : captions)
    width = std::max(width, TextWidth(PlainText(caption)) + m_scale(kRoom));
  return width;
}

int TModalWindow::TextHeight(TextView text, int width) const {
  const TWindowDc dc(Handle());
  const TSelected font(dc.Get(), Font());
  RECT place = {0, 0, width, 0};
  DrawTextW(dc.Get(), WideUnits(text), static_cast<int>(text.size()), &place,
            DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
  return static_cast<int>(place.bottom);
}

void TModalWindow::RunModal() {
  m_closed = false;
  EnableWindow(m_owner, FALSE);
  ShowWindow(Handle(), SW_SHOW);
  if (const HWND first = GetNextDlgTabItem(Handle(), nullptr, FALSE))
    SetFocus(first);
  MSG message = {};
  while (!m_closed && GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (IsDialogMessageW(Handle(), &message))
      continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  // A quit that arrives here belongs to the program's own loop.
  if (message.message == WM_QUIT)
    PostQuitMessage(static_cast<int>(message.wParam));
  Hide();
  SetActiveWindow(m_owner);
}

// The owner first, so that the system gives the focus back to it and not to another program.
void TModalWindow::Hide() {
  EnableWindow(m_owner, TRUE);
  ShowWindow(Handle(), SW_HIDE);
}

void TModalWindow::Close() {
  m_closed = true;
  // Wakes the loop when the close came from within a routine that a worker sent.
  ::PostMessageW(Handle(), WM_NULL, 0, 0);
}

// The button that has the keyboard, or the default one.
LRESULT TModalWindow::ButtonOfEnter() const {
  const HWND focus = GetFocus();
  const bool isPushButton = IsChild(Handle(), focus) && (::SendMessageW(focus, WM_GETDLGCODE, 0, 0) &
                                                         (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
  const int id = isPushButton ? GetDlgCtrlID(focus) : m_defaultButton;
  return id == 0 ? 0 : MAKELRESULT(id, DC_HASDEFID);
}

// The visible texts of the dialog from top to bottom, a line each.
Text TModalWindow::SpokenText() const {
  Text spoken;
  for (HWND child = GetWindow(Handle(), GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    const bool isLabel = (::SendMessageW(child, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) != 0;
    const Text text = isLabel && IsWindowVisible(child) ? CaptionOf(child) : Text();
    if (!text.empty())
      spoken += (spoken.empty() ? u"" : u"\r\n") + text;
  }
  return spoken;
}

LRESULT TModalWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      // Escape and the cancel button.
      if (LOWORD(wParam) == IDCANCEL) {
        ::SendMessageW(Handle(), WM_CLOSE, 0, 0);
        return 0;
      }
      break;
    case DM_GETDEFID:
      return ButtonOfEnter();
    case WM_ACTIVATE:
      m_focus.OnActivate(Handle(), wParam, GetNextDlgTabItem(Handle(), nullptr, FALSE));
      return 0;
    case WM_GETOBJECT:
      if (static_cast<LONG>(lParam) == OBJID_CLIENT)
        return TNamedAccessible::Answer(Handle(), wParam,
                                        {CaptionOf(Handle()), SpokenText(), ROLE_SYSTEM_DIALOG});
      break;
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
      TellChildren(message, wParam, lParam);
      InvalidateRect(Handle(), nullptr, TRUE);
      return 0;
    case WM_CLOSE:
      Close();
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

}  // namespace corvalt
