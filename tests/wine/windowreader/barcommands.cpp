// The chooser on the selected row, the status bar and the toolbar.
#include "tests/wine/windowreader/commands.h"
#include "ui/windows/commands.h"

namespace corvalt {

int PrintChoices(const TProgram& program) {
  HWND chooser = FirstOfClass(program.Tree(u"results"), u"ComboBox");
  const LRESULT current = SendMessageW(chooser, CB_GETCURSEL, 0, 0);
  const LRESULT count = SendMessageW(chooser, CB_GETCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    Text choice(static_cast<std::size_t>(SendMessageW(chooser, CB_GETLBTEXTLEN, index, 0)) + 1, u'\0');
    SendMessageW(chooser, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(WideBuffer(choice)));
    choice.pop_back();
    Print((i == current ? u"*" : u" ") + choice + u"\n");
  }
  return kDone;
}

int PrintStatus(const TProgram& program) {
  HWND bar = FirstOfClass(program.Main(), u"msctls_statusbar32");
  const LRESULT parts = SendMessageW(bar, SB_GETPARTS, 0, 0);
  for (LRESULT part = 0; part < parts; ++part) {
    const auto index = static_cast<WPARAM>(part);
    Text text(LOWORD(SendMessageW(bar, SB_GETTEXTLENGTHW, index, 0)), u'\0');
    const TForeignMemory memory(bar, (text.size() + 1) * sizeof(char16_t));
    SendMessageW(bar, SB_GETTEXTW, index, reinterpret_cast<LPARAM>(memory.Address()));
    memory.Read(0, text.data(), text.size());
    Print(text + u"\n");
  }
  return kDone;
}

int WaitForTool(const TProgram& program, WPARAM command, TextView state) {
  const bool wanted = state == u"enabled";
  const auto isThere = [&] {
    const LRESULT enabled = SendMessageW(program.Control(kToolbarId), TB_ISBUTTONENABLED, command, 0);
    return (enabled != 0) == wanted && IsWindowEnabled(program.Main());
  };
  return WaitUntil(isThere) ? kDone : kDidNotCome;
}

}  // namespace corvalt
