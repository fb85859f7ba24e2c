// The windows of another program.
#pragma once

#include <cstdint>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/editorwindows.h"

namespace corvalt {

class TWindowsEditorWindows : public TEditorWindows {
 public:
  TWindowHandle FindTopLevelWindow(TextView className) override;
  TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) override;
  void ShowWindow(TWindowHandle window) override;
  void BringToForeground(TWindowHandle window) override;
  void SetFocus(TWindowHandle window) override;
  void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                   std::intptr_t lParam) override;
  std::uint32_t FirstDisplayModeBitsPerPixel() override;
};

}  // namespace corvalt
