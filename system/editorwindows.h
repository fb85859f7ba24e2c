// The windows of another program, the registry editor, and the keystrokes that drive it.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace corvalt {

// A window of this or another program; 0 is none.
using TWindowHandle = std::uintptr_t;

// Window messages that the registry editor is driven with (winuser.h).
inline constexpr std::uint32_t kWmKeyDown = 256;
inline constexpr std::uint32_t kWmChar = 258;
inline constexpr std::uint32_t kWmLButtonDown = 513;

class TEditorWindows {
 public:
  virtual ~TEditorWindows() = default;

  // Top-level window of a class; child of a class, direct or (deep) anywhere below its parent. 0 when there
  // is none.
  virtual TWindowHandle FindTopLevelWindow(TextView className) = 0;
  virtual TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) = 0;

  virtual void ShowWindow(TWindowHandle window) = 0;
  virtual void BringToForeground(TWindowHandle window) = 0;
  virtual void SetFocus(TWindowHandle window) = 0;

  // Waits until the window has handled the message.
  virtual void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                           std::intptr_t lParam) = 0;

  // Bits per pixel of the current display's graphics mode number 0; 0 when it can't be read.
  virtual std::uint32_t FirstDisplayModeBitsPerPixel() = 0;
};

}  // namespace corvalt
