// The windows of a registry editor that a test makes up.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "system/editorwindows.h"

namespace corvalt {

// Remembers what was done to the windows, one line a call; looking for them is not noted. The list, which
// other doubles may write into too, must outlive the object.
class TMemoryEditorWindows : public TEditorWindows {
 public:
  explicit TMemoryEditorWindows(std::vector<std::string>& calls) : m_calls(calls) {
  }

  TWindowHandle FindTopLevelWindow(TextView className) override;
  TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) override;
  void ShowWindow(TWindowHandle window) override;
  void BringToForeground(TWindowHandle window) override;
  void SetFocus(TWindowHandle window) override;
  void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                   std::intptr_t lParam) override;
  std::uint32_t FirstDisplayModeBitsPerPixel() override {
    return BitsPerPixel;
  }

  std::uint32_t BitsPerPixel = 32;
  // By class.
  std::map<Text, TWindowHandle> TopLevelWindows;
  std::map<Text, TWindowHandle> DirectChildren;
  std::map<Text, TWindowHandle> DeepChildren;

 private:
  std::vector<std::string>& m_calls;
};

}  // namespace corvalt
