// What scroll bars and the wheel ask a window for that draws its rows itself.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

// The position that a message of the window's scroll bar asks for (SB_VERT, SB_HORZ; request is the low word
// of WM_VSCROLL, WM_HSCROLL), not yet kept to the bar's range. A line is so many positions.
int WantedScrollPosition(HWND window, int bar, int request, int line);

struct TScrollRange {
  int Last = 0;
  int Page = 0;
  bool IsAlwaysShown = false;  // without it the bar goes while all is in sight
};

// Drawing a scroll bar takes several times as long as drawing the rows of a page. So these two draw it only
// where it changes.
//
// Sets what a scroll bar stands for: the positions 0 to last, of which a page is in sight.
void ShowScrollRange(HWND window, int bar, const TScrollRange& range);
// Moves a scroll bar's thumb; in a long tree that is less than a pixel for most pages.
void ShowScrollPosition(HWND window, int bar, int position);

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
