#include "platform/windows/windowseditorwindows.h"

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr int kClassNameUnits = 257;  // the longest class name and its NUL (WNDCLASSEX, learn.microsoft.com)

HWND WindowOf(TWindowHandle window) {
  return reinterpret_cast<HWND>(window);
}
TWindowHandle HandleOf(HWND window) {
  return reinterpret_cast<TWindowHandle>(window);
}

struct TWantedWindow {
  Text ClassName;
  HWND Found = nullptr;
};

BOOL CALLBACK TakeIfWanted(HWND window, LPARAM parameter) {
  auto& wanted = *reinterpret_cast<TWantedWindow*>(parameter);
  Text name(kClassNameUnits, u'\0');
  const int length = GetClassNameW(window, WideBuffer(name), kClassNameUnits);
  name.resize(static_cast<std::size_t>(length));
  if (!EqualIgnoringCase(name, wanted.ClassName))
    return TRUE;
  wanted.Found = window;
  return FALSE;
}

}  // namespace

TWindowHandle TWindowsEditorWindows::FindTopLevelWindow(TextView className) {
  return HandleOf(FindWindowW(Wide(Text(className)), nullptr));
}

TWindowHandle TWindowsEditorWindows::FindChildWindow(TWindowHandle parent, TextView className, bool deep) {
  if (parent == 0)
    return 0;
  if (!deep)
    return HandleOf(FindWindowExW(WindowOf(parent), nullptr, Wide(Text(className)), nullptr));
  TWantedWindow wanted = {Text(className)};
  EnumChildWindows(WindowOf(parent), TakeIfWanted, reinterpret_cast<LPARAM>(&wanted));
  return HandleOf(wanted.Found);
}

void TWindowsEditorWindows::ShowWindow(TWindowHandle window) {
  ::ShowWindow(WindowOf(window), SW_SHOW);
}
void TWindowsEditorWindows::BringToForeground(TWindowHandle window) {
  SetForegroundWindow(WindowOf(window));
}
void TWindowsEditorWindows::SetFocus(TWindowHandle window) {
  ::SetFocus(WindowOf(window));
}

// The wide call: a character message then carries a 16-bit unit, as texts here have them. For the characters
// of ASCII both calls are one.
void TWindowsEditorWindows::SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                        std::intptr_t lParam) {
  SendMessageW(WindowOf(window), message, wParam, lParam);
}

std::uint32_t TWindowsEditorWindows::FirstDisplayModeBitsPerPixel() {
  DEVMODEW mode = {};
  mode.dmSize = sizeof(mode);
  return EnumDisplaySettingsW(nullptr, 0, &mode) ? mode.dmBitsPerPel : 0;
}

}  // namespace corvalt
