#include "ui/windows/window.h"

namespace corvalt {

namespace {

void RegisterOnce(TextView className, UINT classStyle, WNDPROC procedure) {
  const Text name(className);
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  if (GetClassInfoExW(ProgramInstance(), Wide(name), &windowClass))
    return;
  windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = classStyle;
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = ProgramInstance();
  windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
  windowClass.hIcon = LoadIconW(ProgramInstance(), MAKEINTRESOURCEW(1));
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<LONG_PTR>(COLOR_BTNFACE + 1));
  windowClass.lpszClassName = Wide(name);
  if (!RegisterClassExW(&windowClass))
    throw TSystemException(LastError());
}

}  // namespace

HINSTANCE ProgramInstance() {
  return GetModuleHandleW(nullptr);
}

TWindow::~TWindow() {
  if (m_handle == nullptr)
    return;
  // The derived part of this object has gone, so that it can't handle messages any more.
  SetWindowLongPtrW(m_handle, GWLP_USERDATA, 0);
  DestroyWindow(m_handle);
}

SIZE TWindow::ClientSize() const {
  RECT client = {};
  GetClientRect(m_handle, &client);
  return {client.right, client.bottom};
}

void TWindow::TellChildren(UINT message, WPARAM wParam, LPARAM lParam) const {
  for (HWND child = GetWindow(m_handle, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    ::SendMessageW(child, message, wParam, lParam);
}

void TWindow::CreateHandle(TextView className, TextView title, DWORD style, DWORD extendedStyle,
                           const TPlace& place, HWND parent, HMENU menuOrId, UINT classStyle) {
  RegisterOnce(className, classStyle, &TWindow::Procedure);
  CreateWindowExW(extendedStyle, Wide(Text(className)), Wide(Text(title)), style, place.Left, place.Top,
                  place.Width, place.Height, parent, menuOrId, ProgramInstance(), this);
  if (m_creationFailure)
    std::rethrow_exception(m_creationFailure);
  if (m_handle == nullptr)
    throw TSystemException(LastError());
}

void TWindow::OnFailure(const std::exception_ptr& failure) {
  // The parent of a control, the owner of a dialog.
  const HWND above = GetParent(m_handle);
  if (auto* window = reinterpret_cast<TWindow*>(GetWindowLongPtrW(above, GWLP_USERDATA)))
    window->OnFailure(failure);
}

LRESULT TWindow::Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    return OnMessage(message, wParam, lParam);
  } catch (...) {
    if (message != WM_CREATE) {
      OnFailure(std::current_exception());
      return 0;
    }
    // Returning -1 makes the system destroy the window. This object gets no message of that any more, and
    // CreateHandle throws the exception.
    m_creationFailure = std::current_exception();
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    m_handle = nullptr;
    return -1;
  }
}

LRESULT CALLBACK TWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* created = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    auto* self = static_cast<TWindow*>(created->lpCreateParams);
    self->m_handle = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* self = reinterpret_cast<TWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr)
    return DefWindowProcW(window, message, wParam, lParam);
  const LRESULT result = self->Answer(window, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    self->m_handle = nullptr;
  }
  return result;
}

Text CaptionOf(HWND window) {
  Text text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
  const int length = GetWindowTextW(window, WideBuffer(text), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace corvalt
