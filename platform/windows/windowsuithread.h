// The user-interface thread of a program with windows: whatever dispatches messages there, the program's own
// loop, a message box or a menu, also runs what the workers hand over.
#pragma once

#include <exception>
#include <functional>

#include "platform/windows/windowsapi.h"
#include "system/queueuithread.h"

namespace corvalt {

class TWindowsUiThread : public TQueueUiThread {
 public:
  // Called with an exception that a posted routine throws, on the user-interface thread.
  using TFailureHandler = std::function<void(std::exception_ptr)>;

  // Created and destroyed on the thread that it stands for. Throws TSystemException when there can be no
  // window.
  explicit TWindowsUiThread(TFailureHandler onFailure);
  ~TWindowsUiThread() override;
  TWindowsUiThread(const TWindowsUiThread&) = delete;
  TWindowsUiThread& operator=(const TWindowsUiThread&) = delete;

 protected:
  void Arrived() override;

 private:
  static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  bool RunOneGuarded();

  TFailureHandler m_onFailure;
  HWND m_window = nullptr;
  DWORD m_thread = 0;
};

}  // namespace corvalt
