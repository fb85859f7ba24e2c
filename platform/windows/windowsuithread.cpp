#include "platform/windows/windowsuithread.h"

namespace corvalt {

namespace {

constexpr wchar_t kClassName[] = L"CorvaltUiThread";
constexpr UINT kRunMessage = WM_APP;
constexpr UINT_PTR kRunTimer = 1;

void RegisterWindowClass(WNDPROC procedure) {
  WNDCLASSW description = {};
  description.lpfnWndProc = procedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = kClassName;
  RegisterClassW(&description);  // fails when it is registered already, and then it need not be
}

}  // namespace

TWindowsUiThread::TWindowsUiThread(TFailureHandler onFailure)
    : m_onFailure(std::move(onFailure)), m_thread(GetCurrentThreadId()) {
  RegisterWindowClass(&TWindowsUiThread::WindowProcedure);
  m_window = CreateWindowExW(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             GetModuleHandleW(nullptr), nullptr);
  if (m_window == nullptr)
    throw TSystemException(LastError());
  SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

TWindowsUiThread::~TWindowsUiThread() {
  Shut();
  DestroyWindow(m_window);
}

// One message a routine, so that the user's input gets its turn between two of them. A full message queue
// refuses posted messages: another thread then sends one without waiting, this thread sets a timer, which
// takes no place in the queue.
void TWindowsUiThread::Arrived() {
  if (PostMessageW(m_window, kRunMessage, 0, 0))
    return;
  if (GetCurrentThreadId() == m_thread) {
    SetTimer(m_window, kRunTimer, USER_TIMER_MINIMUM, nullptr);
  } else {
    SendNotifyMessageW(m_window, kRunMessage, 0, 0);
  }
}

// No exception may pass through the system's dispatching.
bool TWindowsUiThread::RunOneGuarded() {
  try {
    return RunOne();
  } catch (...) {
    m_onFailure(std::current_exception());
    return true;
  }
}

LRESULT CALLBACK TWindowsUiThread::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* const self = reinterpret_cast<TWindowsUiThread*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self != nullptr && message == kRunMessage) {
    self->RunOneGuarded();
    return 0;
  }
  if (self != nullptr && message == WM_TIMER && wParam == kRunTimer) {
    if (!self->RunOneGuarded())
      KillTimer(window, kRunTimer);
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace corvalt
