#include "app/windowsconsole.h"

#include <algorithm>
#include <tuple>

#include "ui/console/cells.h"

namespace corvalt {

namespace {

constexpr DWORD kBlock = 65536;  // bytes of one writing
constexpr DWORD kConsoleBlock =
    4096;  // units of one writing (WriteConsole, learn.microsoft.com: under 64 KB)
constexpr SHORT kUsualWidth = 80;

// The system hands the interrupt to a routine without an argument, on a thread of its own.
struct TInterrupt {
  std::mutex Mutex;
  std::function<void()> Handler;
};

TInterrupt& Interrupt() {
  static TInterrupt interrupt;
  return interrupt;
}

bool IsTerminal(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

TSystemError WriteBytes(HANDLE handle, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    const DWORD size = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), kBlock));
    if (!WriteFile(handle, bytes.data(), size, &written, nullptr))
      return LastError();
    bytes.remove_prefix(written);
  }
  return {};
}

TSystemError WriteUnits(HANDLE handle, TextView text) {
  while (!text.empty()) {
    DWORD written = 0;
    const DWORD size = static_cast<DWORD>(std::min<std::size_t>(text.size(), kConsoleBlock));
    if (!WriteConsoleW(handle, text.data(), size, &written, nullptr))
      return LastError();
    text.remove_prefix(written);
  }
  return {};
}

// A console takes units, whatever its code page; everything else takes UTF-8.
TSystemError WriteText(HANDLE handle, TextView text) {
  return IsTerminal(handle) ? WriteUnits(handle, text) : WriteBytes(handle, EncodeUtf8(text));
}

// Cells that fit on one line without moving to the next.
std::size_t LineWidth(HANDLE terminal) {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  const SHORT width =
      GetConsoleScreenBufferInfo(terminal, &info) && info.dwSize.X > 1 ? info.dwSize.X : kUsualWidth;
  return static_cast<std::size_t>(width) - 1;
}

}  // namespace

TWindowsConsole::TWindowsConsole()
    : m_output(GetStdHandle(STD_OUTPUT_HANDLE)),
      m_error(GetStdHandle(STD_ERROR_HANDLE)),
      m_errorIsTerminal(IsTerminal(m_error)) {
  SetConsoleCtrlHandler(&TWindowsConsole::OnControl, TRUE);
}

TWindowsConsole::~TWindowsConsole() {
  SetConsoleCtrlHandler(&TWindowsConsole::OnControl, FALSE);
}

TSystemError TWindowsConsole::Write(std::string_view utf8) {
  if (!IsTerminal(m_output))
    return WriteBytes(m_output, utf8);
  const std::optional<Text> text = DecodeUtf8(utf8);
  return text ? WriteUnits(m_output, *text) : TSystemError{kErrorInvalidData};
}

void TWindowsConsole::Tell(TextView line) {
  ShowProgress({});
  // There is no place left where a failure could be reported.
  std::ignore = WriteText(m_error, Text(line) + u"\n");
}

void TWindowsConsole::ShowProgress(TextView line) {
  if (!m_errorIsTerminal || (line.empty() && m_progressLength == 0))
    return;
  const TFittingText fitting = FitIntoCells(line, LineWidth(m_error));
  Text shown(fitting.Text);
  std::replace_if(
      shown.begin(), shown.end(), [](char16_t unit) { return unit < u' '; }, u' ');
  // Blanks cover the rest of the line before.
  shown.append(m_progressLength - std::min(m_progressLength, fitting.Cells), u' ');
  std::ignore = WriteUnits(m_error, u"\r" + shown + (fitting.Cells == 0 ? u"\r" : u""));
  m_progressLength = fitting.Cells;
}

void TWindowsConsole::SetInterruptHandler(std::function<void()> handler) {
  TInterrupt& interrupt = Interrupt();
  const std::lock_guard<std::mutex> hold(interrupt.Mutex);
  interrupt.Handler = std::move(handler);
}

BOOL TWindowsConsole::OnControl(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
    return FALSE;
  TInterrupt& interrupt = Interrupt();
  const std::lock_guard<std::mutex> hold(interrupt.Mutex);
  if (!interrupt.Handler)
    return FALSE;
  interrupt.Handler();
  return TRUE;
}

}  // namespace corvalt
