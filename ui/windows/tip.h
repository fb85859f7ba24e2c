// A tip: a text that the system shows while the mouse rests on a control.
#pragma once

#include "base/text.h"
#include "ui/windows/controlsapi.h"

namespace corvalt {

class TTip {
 public:
  // The tip belongs to this window and goes with it.
  void Create(HWND owner);

  // A tip that is longer than one line is broken into lines of this width, in pixels; without it the system
  // shows the first line only.
  void SetWidth(int width);

  // Shows the text over the control from now on; an empty one shows no tip.
  void Set(HWND control, Text text);

 private:
  HWND m_owner = nullptr;
  HWND m_tip = nullptr;
};

}  // namespace corvalt
