#include "ui/windows/namedaccessible.h"

namespace corvalt {

LRESULT TNamedAccessible::Answer(HWND window, WPARAM wParam, TAccessibleFacts facts) {
  IAccessible* system = nullptr;
  const HRESULT result = CreateStdAccessibleObject(window, OBJID_CLIENT, __uuidof(IAccessible),
                                                   reinterpret_cast<void**>(&system));
  if (FAILED(result) || system == nullptr)
    return 0;
  return TAccessible::Answer(new TNamedAccessible(window, system, std::move(facts)), wParam);
}

TNamedAccessible::TNamedAccessible(HWND window, IAccessible* system, TAccessibleFacts facts)
    : TAccessible(window), m_system(system), m_facts(std::move(facts)) {
}

TNamedAccessible::~TNamedAccessible() {
  m_system->Release();
}

// The enumeration of the controls in the window is the system's.
STDMETHODIMP TNamedAccessible::QueryInterface(REFIID id, void** object) {
  if (IsEqualGUID(id, __uuidof(IEnumVARIANT)))
    return m_system->QueryInterface(id, object);
  return TAccessible::QueryInterface(id, object);
}

STDMETHODIMP TNamedAccessible::get_accName(VARIANT child, BSTR* name) {
  if (!IsSelf(child) || m_facts.Name.empty())
    return m_system->get_accName(child, name);
  *name = NewText(m_facts.Name);
  return S_OK;
}

STDMETHODIMP TNamedAccessible::get_accDescription(VARIANT child, BSTR* description) {
  if (!IsSelf(child) || m_facts.Description.empty())
    return m_system->get_accDescription(child, description);
  *description = NewText(m_facts.Description);
  return S_OK;
}

STDMETHODIMP TNamedAccessible::get_accRole(VARIANT child, VARIANT* role) {
  if (!IsSelf(child) || !m_facts.Role)
    return m_system->get_accRole(child, role);
  SetNumber(role, *m_facts.Role);
  return S_OK;
}

STDMETHODIMP TNamedAccessible::get_accParent(IDispatch** parent) {
  return m_system->get_accParent(parent);
}

STDMETHODIMP TNamedAccessible::get_accChildCount(LONG* count) {
  return m_system->get_accChildCount(count);
}

STDMETHODIMP TNamedAccessible::get_accChild(VARIANT child, IDispatch** object) {
  return m_system->get_accChild(child, object);
}

STDMETHODIMP TNamedAccessible::get_accValue(VARIANT child, BSTR* value) {
  return m_system->get_accValue(child, value);
}

STDMETHODIMP TNamedAccessible::get_accState(VARIANT child, VARIANT* state) {
  return m_system->get_accState(child, state);
}

STDMETHODIMP TNamedAccessible::get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) {
  return m_system->get_accKeyboardShortcut(child, shortcut);
}

STDMETHODIMP TNamedAccessible::get_accFocus(VARIANT* child) {
  return m_system->get_accFocus(child);
}

STDMETHODIMP TNamedAccessible::get_accSelection(VARIANT* children) {
  return m_system->get_accSelection(children);
}

STDMETHODIMP TNamedAccessible::get_accDefaultAction(VARIANT child, BSTR* action) {
  return m_system->get_accDefaultAction(child, action);
}

STDMETHODIMP TNamedAccessible::accSelect(LONG flags, VARIANT child) {
  return m_system->accSelect(flags, child);
}

STDMETHODIMP TNamedAccessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  return m_system->accLocation(left, top, width, height, child);
}

STDMETHODIMP TNamedAccessible::accNavigate(LONG direction, VARIANT start, VARIANT* end) {
  return m_system->accNavigate(direction, start, end);
}

STDMETHODIMP TNamedAccessible::accHitTest(LONG left, LONG top, VARIANT* child) {
  return m_system->accHitTest(left, top, child);
}

STDMETHODIMP TNamedAccessible::accDoDefaultAction(VARIANT child) {
  return m_system->accDoDefaultAction(child);
}

}  // namespace corvalt
