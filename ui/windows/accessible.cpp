#include "ui/windows/accessible.h"

namespace corvalt {

LRESULT TAccessible::Answer(TAccessible* object, WPARAM wParam) {
  const LRESULT result = LresultFromObject(__uuidof(IAccessible), wParam, object);
  object->Release();
  return result;
}

BSTR TAccessible::NewText(TextView text) {
  return SysAllocStringLen(WideUnits(text), static_cast<UINT>(text.size()));
}

void TAccessible::SetNumber(VARIANT* variant, LONG number) {
  VariantInit(variant);
  variant->vt = VT_I4;
  variant->lVal = number;
}

bool TAccessible::IsSelf(const VARIANT& child) {
  return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

void TAccessible::SetPlace(RECT rect, LONG* left, LONG* top, LONG* width, LONG* height) const {
  MapWindowPoints(m_window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
  *left = rect.left;
  *top = rect.top;
  *width = rect.right - rect.left;
  *height = rect.bottom - rect.top;
}

LONG TAccessible::FocusStates() const {
  return STATE_SYSTEM_FOCUSABLE | (GetFocus() == m_window ? STATE_SYSTEM_FOCUSED : 0);
}

STDMETHODIMP TAccessible::QueryInterface(REFIID id, void** object) {
  const bool isKnown = IsEqualGUID(id, __uuidof(IUnknown)) || IsEqualGUID(id, __uuidof(IDispatch)) ||
                       IsEqualGUID(id, __uuidof(IAccessible));
  *object = isKnown ? static_cast<IAccessible*>(this) : nullptr;
  if (!isKnown)
    return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) TAccessible::AddRef() {
  return ++m_references;
}

STDMETHODIMP_(ULONG) TAccessible::Release() {
  const ULONG left = --m_references;
  if (left == 0)
    delete this;
  return left;
}

STDMETHODIMP TAccessible::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP TAccessible::GetTypeInfo(UINT, LCID, ITypeInfo**) {
  return E_NOTIMPL;
}

STDMETHODIMP TAccessible::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return E_NOTIMPL;
}

STDMETHODIMP TAccessible::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  return E_NOTIMPL;
}

STDMETHODIMP TAccessible::get_accParent(IDispatch** parent) {
  return AccessibleObjectFromWindow(m_window, static_cast<DWORD>(OBJID_WINDOW), __uuidof(IAccessible),
                                    reinterpret_cast<void**>(parent));
}

STDMETHODIMP TAccessible::get_accChildCount(LONG* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP TAccessible::get_accChild(VARIANT, IDispatch** object) {
  *object = nullptr;
  return E_INVALIDARG;
}

STDMETHODIMP TAccessible::get_accName(VARIANT child, BSTR* name) {
  *name = nullptr;
  return IsSelf(child) ? S_FALSE : E_INVALIDARG;
}

STDMETHODIMP TAccessible::get_accDescription(VARIANT, BSTR* description) {
  *description = nullptr;
  return S_FALSE;
}

STDMETHODIMP TAccessible::get_accHelp(VARIANT, BSTR* help) {
  *help = nullptr;
  return S_FALSE;
}

STDMETHODIMP TAccessible::get_accHelpTopic(BSTR* file, VARIANT, LONG* topic) {
  *file = nullptr;
  *topic = 0;
  return S_FALSE;
}

STDMETHODIMP TAccessible::get_accKeyboardShortcut(VARIANT, BSTR* shortcut) {
  *shortcut = nullptr;
  return S_FALSE;
}

STDMETHODIMP TAccessible::get_accFocus(VARIANT* child) {
  VariantInit(child);
  if (GetFocus() != m_window)
    return S_FALSE;
  SetNumber(child, CHILDID_SELF);
  return S_OK;
}

STDMETHODIMP TAccessible::get_accSelection(VARIANT* children) {
  VariantInit(children);
  return S_FALSE;
}

STDMETHODIMP TAccessible::get_accDefaultAction(VARIANT child, BSTR* action) {
  *action = nullptr;
  return IsSelf(child) ? S_FALSE : E_INVALIDARG;
}

STDMETHODIMP TAccessible::accSelect(LONG flags, VARIANT child) {
  if (!IsSelf(child) || (flags & ~SELFLAG_TAKEFOCUS) != 0)
    return E_INVALIDARG;
  if ((flags & SELFLAG_TAKEFOCUS) != 0)
    SetFocus(m_window);
  return S_OK;
}

STDMETHODIMP TAccessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  if (!IsSelf(child))
    return E_INVALIDARG;
  RECT client = {};
  GetClientRect(m_window, &client);
  SetPlace(client, left, top, width, height);
  return S_OK;
}

STDMETHODIMP TAccessible::accNavigate(LONG, VARIANT start, VARIANT* end) {
  VariantInit(end);
  return IsSelf(start) ? S_FALSE : E_INVALIDARG;
}

STDMETHODIMP TAccessible::accHitTest(LONG left, LONG top, VARIANT* child) {
  VariantInit(child);
  POINT point = {left, top};
  ScreenToClient(m_window, &point);
  RECT client = {};
  GetClientRect(m_window, &client);
  if (!PtInRect(&client, point))
    return S_FALSE;
  SetNumber(child, CHILDID_SELF);
  return S_OK;
}

STDMETHODIMP TAccessible::accDoDefaultAction(VARIANT child) {
  return IsSelf(child) ? DISP_E_MEMBERNOTFOUND : E_INVALIDARG;
}

STDMETHODIMP TAccessible::put_accName(VARIANT, BSTR) {
  return E_NOTIMPL;
}

STDMETHODIMP TAccessible::put_accValue(VARIANT, BSTR) {
  return E_NOTIMPL;
}

}  // namespace corvalt
