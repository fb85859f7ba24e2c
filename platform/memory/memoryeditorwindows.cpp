#include "platform/memory/memoryeditorwindows.h"

namespace corvalt {

namespace {

TWindowHandle WindowOf(const std::map<Text, TWindowHandle>& windows, TextView className) {
  const auto found = windows.find(Text(className));
  return found == windows.end() ? 0 : found->second;
}

}  // namespace

TWindowHandle TMemoryEditorWindows::FindTopLevelWindow(TextView className) {
  return WindowOf(TopLevelWindows, className);
}

TWindowHandle TMemoryEditorWindows::FindChildWindow(TWindowHandle parent, TextView className, bool deep) {
  return parent == 0 ? 0 : WindowOf(deep ? DeepChildren : DirectChildren, className);
}

void TMemoryEditorWindows::ShowWindow(TWindowHandle window) {
  m_calls.push_back("show " + std::to_string(window));
}
void TMemoryEditorWindows::BringToForeground(TWindowHandle window) {
  m_calls.push_back("foreground " + std::to_string(window));
}
void TMemoryEditorWindows::SetFocus(TWindowHandle window) {
  m_calls.push_back("focus " + std::to_string(window));
}

void TMemoryEditorWindows::SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                       std::intptr_t lParam) {
  m_calls.push_back("message " + std::to_string(window) + " " + std::to_string(message) + " " +
                    std::to_string(wParam) + " " + std::to_string(lParam));
}

}  // namespace corvalt
