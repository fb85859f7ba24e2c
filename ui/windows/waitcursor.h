// The system's sign for "please wait", while this thread is busy and handles no messages.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

class TWaitCursor {
 public:
  TWaitCursor() : m_previous(Show()) {
  }
  ~TWaitCursor() {
    SetCursor(m_previous);
  }
  TWaitCursor(const TWaitCursor&) = delete;
  TWaitCursor& operator=(const TWaitCursor&) = delete;

  // Shows the sign again, after a message box has shown its own cursor. Returns the cursor before it.
  static HCURSOR Show() {
    return SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_WAIT)));
  }

 private:
  HCURSOR m_previous;
};

}  // namespace corvalt
