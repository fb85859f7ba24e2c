// Presses the interrupt key in the middle of a program's work:
//   wine_interrupt TEXT PROGRAM [ARGUMENT...]
// gives the program a console of its own, presses Ctrl-C when TEXT stands on it, prints what stands there at
// the end, and answers the program's exit code; 100 when TEXT never came, 101 when the program can't be
// started so.

#include <optional>
#include <string>

#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr int kTextNeverCame = 100;
constexpr int kNotStarted = 101;
constexpr DWORD kPatience = 60000;  // milliseconds

BOOL WINAPI IgnoreInterrupt(DWORD) {
  return TRUE;
}

// The screen's lines, without the blanks at their ends.
Text ScreenText(HANDLE screen) {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  GetConsoleScreenBufferInfo(screen, &info);
  const auto width = static_cast<DWORD>(info.dwSize.X);
  Text text;
  for (SHORT y = 0; y <= info.dwCursorPosition.Y; ++y) {
    Text line(width, u' ');
    DWORD read = 0;
    ReadConsoleOutputCharacterW(screen, WideBuffer(line), width, COORD{0, y}, &read);
    line.resize(line.find_last_not_of(u' ', read) + 1);
    text += line + u"\n";
  }
  return text;
}

Text QuotedCommandLine(int count, wchar_t** arguments) {
  Text line;
  for (int i = 0; i < count; ++i)
    line += u"\"" + Text(FromWide(arguments[i])) + u"\" ";
  return line;
}

std::optional<PROCESS_INFORMATION> StartOn(HANDLE screen, Text commandLine) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = screen;
  startup.hStdError = screen;
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, WideBuffer(commandLine), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                      &process))
    return std::nullopt;
  return process;
}

// Whether the text came before the program ended.
bool WaitForText(HANDLE screen, TextView wanted, HANDLE process) {
  const DWORD begin = GetTickCount();
  while (GetTickCount() - begin < kPatience) {
    if (Contains(ScreenText(screen), wanted))
      return true;
    if (WaitForSingleObject(process, 1) == WAIT_OBJECT_0)
      return false;
  }
  return false;
}

int Run(HANDLE screen, TextView wanted, const PROCESS_INFORMATION& process) {
  const bool came = WaitForText(screen, wanted, process.hProcess);
  if (came)
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0)
    TerminateProcess(process.hProcess, kTextNeverCame);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  return came ? static_cast<int>(code) : kTextNeverCame;
}

int RunTool(int count, wchar_t** arguments) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  FreeConsole();
  if (count < 3 || !AllocConsole())
    return kNotStarted;
  SetConsoleCtrlHandler(IgnoreInterrupt, TRUE);
  SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const TOwnedFile screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0,
                                      nullptr));
  const auto process = StartOn(screen.Get(), QuotedCommandLine(count - 2, arguments + 2));
  if (!process)
    return kNotStarted;
  const TOwnedObject processOwner(process->hProcess);
  const TOwnedObject threadOwner(process->hThread);
  const int code = Run(screen.Get(), FromWide(arguments[1]), *process);
  const std::string text = EncodeUtf8(ScreenText(screen.Get()));
  DWORD written = 0;
  WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  return code;
}

}  // namespace

}  // namespace corvalt

int wmain(int count, wchar_t** arguments) {
  return corvalt::RunTool(count, arguments);
}
