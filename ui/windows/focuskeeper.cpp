#include "ui/windows/focuskeeper.h"

namespace corvalt {

void TFocusKeeper::OnActivate(HWND window, WPARAM wParam, HWND otherwise) {
  if (LOWORD(wParam) == WA_INACTIVE) {
    const HWND focus = GetFocus();
    if (IsChild(window, focus))
      m_last = focus;
    return;
  }
  // A window that is activated while it is minimised gets no keyboard.
  if (HIWORD(wParam) != 0)
    return;
  const bool isThere = m_last != nullptr && IsChild(window, m_last) && IsWindowEnabled(m_last) &&
                       (GetWindowLongPtrW(m_last, GWL_STYLE) & WS_VISIBLE) != 0;
  SetFocus(isThere ? m_last : otherwise);
}

}  // namespace corvalt
