// The system's own object for a window, as assistive technology sees it, with a name, a role or a description
// that the system has no way to find out.
#pragma once

#include <optional>

#include "base/text.h"
#include "ui/windows/accessible.h"

namespace corvalt {

struct TAccessibleFacts {
  Text Name;                 // empty: the system's
  Text Description;          // empty: the system's
  std::optional<LONG> Role;  // ROLE_SYSTEM_...; none: the system's
};

class TNamedAccessible final : public TAccessible {
 public:
  // The result of WM_GETOBJECT for the window's client object; 0 where the system has no object for it.
  static LRESULT Answer(HWND window, WPARAM wParam, TAccessibleFacts facts);

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP get_accParent(IDispatch** parent) override;
  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* description) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override;
  STDMETHODIMP get_accFocus(VARIANT* child) override;
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override;
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override;
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG direction, VARIANT start, VARIANT* end) override;
  STDMETHODIMP accHitTest(LONG left, LONG top, VARIANT* child) override;
  STDMETHODIMP accDoDefaultAction(VARIANT child) override;

 private:
  TNamedAccessible(HWND window, IAccessible* system, TAccessibleFacts facts);
  ~TNamedAccessible() override;

  IAccessible* m_system;
  TAccessibleFacts m_facts;
};

}  // namespace corvalt
