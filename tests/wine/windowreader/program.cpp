#include "tests/wine/windowreader/program.h"

#include "ui/windows/commands.h"

namespace corvalt {

namespace {

constexpr TextView kMainClass = u"TfrmRegMain";

}  // namespace

HWND TProgram::Main() const {
  HWND found = nullptr;
  ForEachTopLevel([&](HWND window) {
    if (ClassOf(window) == kMainClass && IsOf(window))
      found = window;
  });
  if (found == nullptr)
    Refuse("the program's window is not there");
  return found;
}

std::vector<HWND> TProgram::VisibleWindows() const {
  std::vector<HWND> windows;
  ForEachTopLevel([&](HWND window) {
    if (IsWindowVisible(window) && IsOf(window))
      windows.push_back(window);
  });
  return windows;
}

HWND TProgram::WindowOf(TextView title) const {
  for (HWND window : VisibleWindows()) {
    if (TextOf(window).starts_with(title))
      return window;
  }
  return nullptr;
}

HWND TProgram::Existing(TextView title) const {
  HWND window = WindowOf(title);
  if (window == nullptr)
    Refuse("no such window");
  return window;
}

HWND TProgram::Control(int number) const {
  HWND control = nullptr;
  ForEachBelow(Main(), [&](HWND window) {
    if (GetDlgCtrlID(window) == number)
      control = window;
  });
  if (control == nullptr)
    Refuse("no such control");
  return control;
}

HWND TProgram::Tree(TextView name) const {
  return Control(name == u"sections" ? kSectionsTreeId : kResultsTreeId);
}

bool TProgram::IsOf(HWND window) const {
  return m_process == 0 || ProcessOf(window) == m_process;
}

}  // namespace corvalt
