// The commands about windows and their controls.
#include "tests/wine/windowreader/commands.h"

namespace corvalt {

namespace {

Text WindowLine(HWND window) {
  std::vector<Text> fields = {HandleText(window), Number(ProcessOf(window)), ClassOf(window),
                              StateOf(window)};
  for (const Text& field : PlaceFields(PlaceOf(window)))
    fields.push_back(field);
  fields.push_back(OneLine(TextOf(window)));
  return Fields(fields);
}

Text ControlLine(HWND window) {
  std::vector<Text> fields = {HandleText(window), ClassOf(window), Number(GetDlgCtrlID(window)),
                              StateOf(window)};
  for (const Text& field : PlaceFields(PlaceOf(window)))
    fields.push_back(field);
  const bool isProgress = ClassOf(window) == u"msctls_progress32";
  fields.push_back(isProgress ? Number(SendMessageW(window, PBM_GETPOS, 0, 0)) : OneLine(TextOf(window)));
  return Fields(fields);
}

}  // namespace

int PrintWindows(const TProgram& program) {
  for (HWND window : program.VisibleWindows())
    Print(WindowLine(window));
  return kDone;
}

int WaitForWindow(const TProgram& program, TextView title) {
  HWND window = nullptr;
  const bool came = WaitUntil([&] {
    window = program.WindowOf(title);
    return window != nullptr && IsWindowEnabled(window) && GetForegroundWindow() == window;
  });
  if (!came)
    return kDidNotCome;
  Print(WindowLine(window));
  return kDone;
}

int WaitUntilGone(const TProgram& program, TextView title) {
  return WaitUntil([&] { return program.WindowOf(title) == nullptr; }) ? kDone : kDidNotCome;
}

int WaitUntilSaid(const TProgram& program, TextView title, TextView text) {
  HWND saying = nullptr;
  const auto look = [&] {
    const HWND window = program.WindowOf(title);
    if (window == nullptr)
      return false;
    ForEachBelow(window, [&](HWND control) {
      if (IsWindowVisible(control) && TextOf(control).starts_with(text))
        saying = control;
    });
    return saying != nullptr;
  };
  if (!WaitUntil(look))
    return kDidNotCome;
  Print(ControlLine(saying));
  return kDone;
}

int PrintControls(const TProgram& program, TextView title) {
  ForEachBelow(program.Existing(title), [](HWND control) { Print(ControlLine(control)); });
  return kDone;
}

int AskToClose(const TProgram& program) {
  PostMessageW(program.Main(), WM_CLOSE, 0, 0);
  return kDone;
}

}  // namespace corvalt
