// A control of the system whose messages are looked at before it handles them.
#pragma once

#include <functional>
#include <optional>

#include "ui/windows/controlsapi.h"

namespace corvalt {

class TSubclass {
 public:
  // Returns the result of the message, or nullopt for what the control itself does with it.
  using THandler = std::function<std::optional<LRESULT>(UINT message, WPARAM wParam, LPARAM lParam)>;

  TSubclass() = default;
  ~TSubclass();
  TSubclass(const TSubclass&) = delete;
  TSubclass& operator=(const TSubclass&) = delete;

  // Expects a control of this thread whose user data (GWLP_USERDATA) is not used otherwise. The handler is
  // called until the control or this object goes.
  void Attach(HWND control, THandler handler);

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void Detach();

  HWND m_control = nullptr;
  WNDPROC m_own = nullptr;
  THandler m_handler;
};

}  // namespace corvalt
