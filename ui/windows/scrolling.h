// What scroll bars and the wheel ask a window for that draws its rows itself.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

// The position that a message of the window's scroll bar asks for (SB_VERT, SB_HORZ; request is the low word
// of WM_VSCROLL, WM_HSCROLL), not yet kept to the bar's range. A line is so many positions.
int WantedScrollPosition(HWND window, int bar, int request, int line);

// Turns of the mouse wheel. Fine wheels turn by less than a notch at a time: what is left over counts at the
// next turn.
class TWheel {
 public:
  // How many positions a WM_MOUSEWHEEL goes towards the beginning, where a line and a page are so many.
  int Distance(WPARAM wParam, int line, int page);

 private:
  int m_rest = 0;
};

}  // namespace corvalt
