#include "ui/windows/subclass.h"

namespace corvalt {

TSubclass::~TSubclass() {
  Detach();
}

// Not SetWindowSubclass: the common controls of Windows XP export it without a name.
void TSubclass::Attach(HWND control, THandler handler) {
  m_control = control;
  m_handler = std::move(handler);
  SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  m_own = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&TSubclass::Procedure)));
}

void TSubclass::Detach() {
  if (m_control == nullptr)
    return;
  SetWindowLongPtrW(m_control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_own));
  SetWindowLongPtrW(m_control, GWLP_USERDATA, 0);
  m_control = nullptr;
}

LRESULT CALLBACK TSubclass::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = reinterpret_cast<TSubclass*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  const WNDPROC own = self->m_own;
  if (message == WM_NCDESTROY) {
    self->Detach();
    return CallWindowProcW(own, window, message, wParam, lParam);
  }
  const std::optional<LRESULT> answer = self->m_handler(message, wParam, lParam);
  return answer ? *answer : CallWindowProcW(own, window, message, wParam, lParam);
}

}  // namespace corvalt
