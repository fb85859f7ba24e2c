// The least that a program with a window does: one class, one empty window, the message loop. The start of
// the program is held against it.
#include "ui/windows/controlsapi.h"

namespace {

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY)
    PostQuitMessage(0);
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int nShowCmd) {
  WNDCLASSW windowClass = {};
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = instance;
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<LONG_PTR>(COLOR_WINDOW + 1));
  windowClass.lpszClassName = L"MinimalWindow";
  RegisterClassW(&windowClass);
  HWND window = CreateWindowExW(0, L"MinimalWindow", L"Minimal", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                CW_USEDEFAULT, 750, 527, nullptr, nullptr, instance, nullptr);
  ShowWindow(window, nShowCmd);
  UpdateWindow(window);
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0)
    DispatchMessageW(&message);
  return 0;
}
