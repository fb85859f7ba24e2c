// The program's start, from the creation of its process to a window that takes input, against a program that
// shows an empty window and does nothing else. Warm: what the first start reads from the disk is in memory,
// and the best of several rounds counts.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "ui/windows/controlsapi.h"

namespace corvalt {

namespace {

constexpr int kRounds = 9;
constexpr double kLimit = 3;
constexpr DWORD kPatience = 60000;  // milliseconds

// A program that was started, and its one window in sight.
class TStarted {
 public:
  explicit TStarted(std::wstring program) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    m_isStarted = CreateProcessW(nullptr, program.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                 &startup, &m_process) != 0;
  }
  // Closes the window and waits for the program's end.
  ~TStarted() {
    if (!m_isStarted)
      return;
    PostMessageW(Window(), WM_CLOSE, 0, 0);
    if (WaitForSingleObject(m_process.hProcess, kPatience) != WAIT_OBJECT_0)
      TerminateProcess(m_process.hProcess, 1);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
  }
  TStarted(const TStarted&) = delete;
  TStarted& operator=(const TStarted&) = delete;

  // Returns once the program waits for input and its window in sight answers a message; false if it never
  // does.
  bool TakesInput() const {
    if (!m_isStarted || WaitForInputIdle(m_process.hProcess, kPatience) != 0)
      return false;
    DWORD_PTR answer = 0;
    return Window() != nullptr &&
           SendMessageTimeoutW(Window(), WM_NULL, 0, 0, SMTO_NORMAL, kPatience, &answer) != 0;
  }

 private:
  HWND Window() const {
    HWND found = nullptr;
    EnumThreadWindows(
        m_process.dwThreadId,
        [](HWND window, LPARAM result) -> BOOL {
          if (!IsWindowVisible(window))
            return TRUE;
          *reinterpret_cast<HWND*>(result) = window;
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
  }

  PROCESS_INFORMATION m_process = {};
  bool m_isStarted = false;
};

// Keeps the least of the seconds that starts take; false if the program did not start.
bool MeasureStart(const std::wstring& program, double& least) {
  const auto begin = std::chrono::steady_clock::now();
  const TStarted started(program);
  if (!started.TakesInput())
    return false;
  least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
  return true;
}

// The build's folder, of which this program lies in bench\.
std::wstring BuildFolder() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  for (int level = 0; level < 2; ++level)
    path.resize(path.find_last_of(L'\\'));
  return path;
}

int RunBenchmark() {
  double ours = 1e9;
  double minimal = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    if (!MeasureStart(BuildFolder() + L"\\Corvalt\\corvalt.exe", ours) ||
        !MeasureStart(BuildFolder() + L"\\bench\\minimalwindow.exe", minimal)) {
      std::puts("A program did not start.");
      return 1;
    }
  }
  std::printf("Started after %.1f ms, a minimal window after %.1f ms: %.2f times (limit %.0f: %s).\n",
              ours * 1e3, minimal * 1e3, ours / minimal, kLimit, ours <= kLimit * minimal ? "met" : "MISSED");
  return 0;
}

}  // namespace

}  // namespace corvalt

int main() {
  return corvalt::RunBenchmark();
}
