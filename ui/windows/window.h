// Base of the program's own windows: one object for one window handle.
#pragma once

#include <exception>

#include "base/text.h"
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

  // Passes a message on to the controls in the window: the system sends changes of colours and settings to
  // top-level windows only.
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

  // Called for every message from WM_NCCREATE on; returns what the window procedure returns. Default does
  // what the system does with a message.
  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;

  // Called with an exception that OnMessage has thrown, because none may pass through the system's
  // dispatching. Passes it on to the parent or owner; the main window shows it to the user.
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

// A window's caption, or the text of a control of this program.
Text CaptionOf(HWND window);

}  // namespace corvalt
