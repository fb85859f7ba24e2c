// Gives the keyboard back to the control that had it when its window was left for another one.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

class TFocusKeeper {
 public:
  // For WM_ACTIVATE, instead of the system's own handling, which gives the keyboard to the window itself.
  // Where the control has gone, or takes no input now, the other one gets the keyboard.
  void OnActivate(HWND window, WPARAM wParam, HWND otherwise);

 private:
  HWND m_last = nullptr;
};

}  // namespace corvalt
