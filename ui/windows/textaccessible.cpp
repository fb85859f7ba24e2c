#include "ui/windows/textaccessible.h"

namespace corvalt {

LRESULT TTextAccessible::Answer(HWND window, WPARAM wParam) {
  return TAccessible::Answer(new TTextAccessible(window), wParam);
}

STDMETHODIMP TTextAccessible::get_accValue(VARIANT child, BSTR* value) {
  *value = nullptr;
  if (!IsSelf(child))
    return E_INVALIDARG;
  if (!IsWindow(Window()))
    return CO_E_OBJNOTCONNECTED;
  const auto length = static_cast<UINT>(::SendMessageW(Window(), WM_GETTEXTLENGTH, 0, 0));
  *value = SysAllocStringLen(nullptr, length);
  if (*value == nullptr)
    return E_OUTOFMEMORY;
  ::SendMessageW(Window(), WM_GETTEXT, WPARAM{length} + 1, reinterpret_cast<LPARAM>(*value));
  return S_OK;
}

STDMETHODIMP TTextAccessible::get_accRole(VARIANT child, VARIANT* role) {
  if (!IsSelf(child))
    return E_INVALIDARG;
  SetNumber(role, ROLE_SYSTEM_TEXT);
  return S_OK;
}

STDMETHODIMP TTextAccessible::get_accState(VARIANT child, VARIANT* state) {
  if (!IsSelf(child))
    return E_INVALIDARG;
  SetNumber(state, STATE_SYSTEM_READONLY | FocusStates());
  return S_OK;
}

}  // namespace corvalt
