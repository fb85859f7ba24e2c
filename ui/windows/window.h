// Base of the program's own windows: one object for one window handle.
#pragma once

#include <exception>

#include "ui/windows/controlsapi.h"

namespace corvalt {

class TWindow {
 public:
  TWindow() = default;
  virtual ~TWindow();
  TWindow(const TWindow&) = delete;
  TWindow& operator=(const TWindow&) = delete;

  HWND Handle() const {
    return m_handle;
  }

  // The system tells its top-level windows alone that colours or settings have changed; the controls in them
  // learn it from here.
  void TellChildren(UINT message, WPARAM wParam, LPARAM lParam) const;

  // Size of the inside, in pixels.
  SIZE ClientSize() const;

 protected:
  struct TPlace {
    int Left = CW_USEDEFAULT;
    int Top = CW_USEDEFAULT;
    int Width = CW_USEDEFAULT;
    int Height = CW_USEDEFAULT;
  };

  // Creates the handle; the class is registered when it is first used. Throws TSystemException, and what the
  // handling of WM_CREATE has thrown.
  void CreateHandle(TextView className, TextView title, DWORD style, DWORD extendedStyle, const TPlace& place,
                    HWND parent, HMENU menuOrId, UINT classStyle);

  // Called for every message from WM_NCCREATE on. An answer without the default handling is the message's
  // own.
  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;

  // Told of an exception that the handling of a message has thrown: none may pass through the system's
  // dispatching. It goes up to the window above this one; the topmost one says it.
  virtual void OnFailure(const std::exception_ptr& failure);

  LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(m_handle, message, wParam, lParam);
  }

 private:
  LRESULT Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  HWND m_handle = nullptr;
  std::exception_ptr m_creationFailure;
};

// The module that holds the program's resources.
HINSTANCE ProgramInstance();

}  // namespace corvalt
