// What assistive technology sees of a text view: a text that can't be changed. The system's own object for
// text boxes works for windows of their class only, and not every system has it.
#pragma once

#include "ui/windows/accessible.h"

namespace corvalt {

class TTextAccessible final : public TAccessible {
 public:
  // The result of WM_GETOBJECT for the window's client object.
  static LRESULT Answer(HWND window, WPARAM wParam);

  // IAccessible
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;

 private:
  using TAccessible::TAccessible;
};

}  // namespace corvalt
