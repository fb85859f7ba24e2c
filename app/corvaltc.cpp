// The program for the command line.

#include "app/startsequence.h"
#include "app/version.h"
#include "app/windowsconsole.h"
#include "platform/windows/windowssystem.h"
#include "ui/console/consoleprogram.h"

namespace corvalt {

namespace {

int RunProgram(int count, wchar_t** arguments) {
  std::vector<Text> texts;
  for (int i = 1; i < count; ++i)
    texts.emplace_back(FromWide(arguments[i]));
  TWindowsSystem windows;
  TSystem system = windows.Bundle();
  TWindowsConsole console;
  const Text version = FromAscii(CORVALT_VERSION_TEXT);
  const TExitCode code = RunConsoleProgram(texts, {system, console, version, RunStartSequence, ReadTexts});
  return static_cast<int>(code);
}

}  // namespace

}  // namespace corvalt

int wmain(int count, wchar_t** arguments) {
  return corvalt::RunProgram(count, arguments);
}
