// The program with the window.

#include "app/startsequence.h"
#include "platform/windows/windowssystem.h"

namespace {

constexpr wchar_t kClassName[] = L"CorvaltMain";

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY)
    PostQuitMessage(0);
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND CreateMainWindow(const Text& title) {
  WNDCLASSW description = {};
  description.lpfnWndProc = WindowProcedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
  description.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
  description.lpszClassName = kClassName;
  RegisterClassW(&description);
  const HWND window =
      CreateWindowExW(0, kClassName, Wide(title), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                      CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, description.hInstance, nullptr);
  if (window == nullptr)
    throw TSystemException(LastError());
  return window;
}

int RunMessageLoop() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

int RunProgram(TSystem& system, int show) {
  TGlobalVars vars;
  TGlobalReg reg;
  RunStartSequence(system, vars, reg);
  const HWND window = CreateMainWindow(PlainText(LanguageText(vars.Texts, TextId::ProgramTitle)));
  ShowWindow(window, show);
  return RunMessageLoop();
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int show) {
  TWindowsSystem windows;
  TSystem system = windows.Bundle();
  try {
    return RunProgram(system, show);
  } catch (...) {
    system.TheShell.ShowMessage(DescribeException(std::current_exception(), system.Locale), u"Corvalt",
                                TMessageKind::Failure);
    return 1;
  }
}
