#include "ui/windows/treeaccessible.h"

#include "ui/windows/treecontrol.h"

namespace {

BSTR NewText(TextView text) {
  return SysAllocStringLen(WideUnits(text), static_cast<UINT>(text.size()));
}

void SetNumber(VARIANT* variant, LONG number) {
  VariantInit(variant);
  variant->vt = VT_I4;
  variant->lVal = number;
}

bool IsSelf(const VARIANT& child) {
  return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

}  // namespace

LRESULT TTreeAccessible::Answer(TTreeControl& control, WPARAM wParam) {
  auto* accessible = new TTreeAccessible(control.Handle());
  const LRESULT result = LresultFromObject(__uuidof(IAccessible), wParam, accessible);
  accessible->Release();
  return result;
}

TTreeControl* TTreeAccessible::Control() const {
  if (!IsWindow(m_window))
    return nullptr;
  return static_cast<TTreeControl*>(reinterpret_cast<TWindow*>(GetWindowLongPtrW(m_window, GWLP_USERDATA)));
}

TTreeNode* TTreeAccessible::RowOf(const VARIANT& child) const {
  TTreeControl* control = Control();
  if (control == nullptr || child.vt != VT_I4 || child.lVal == CHILDID_SELF)
    return nullptr;
  return control->Layout().NodeOfRow(child.lVal - 1);
}

LONG TTreeAccessible::NumberOf(const TTreeNode* node) const {
  return static_cast<LONG>(Control()->Layout().NumberOfRow(node)) + 1;
}

STDMETHODIMP TTreeAccessible::QueryInterface(REFIID id, void** object) {
  const bool isKnown = IsEqualGUID(id, __uuidof(IUnknown)) || IsEqualGUID(id, __uuidof(IDispatch)) ||
                       IsEqualGUID(id, __uuidof(IAccessible));
  *object = isKnown ? static_cast<IAccessible*>(this) : nullptr;
  if (!isKnown)
    return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) TTreeAccessible::AddRef() {
  return ++m_references;
}

STDMETHODIMP_(ULONG) TTreeAccessible::Release() {
  const ULONG left = --m_references;
  if (left == 0)
    delete this;
  return left;
}

STDMETHODIMP TTreeAccessible::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP TTreeAccessible::GetTypeInfo(UINT, LCID, ITypeInfo**) {
  return E_NOTIMPL;
}

STDMETHODIMP TTreeAccessible::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return E_NOTIMPL;
}

STDMETHODIMP TTreeAccessible::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  return E_NOTIMPL;
}

STDMETHODIMP TTreeAccessible::get_accParent(IDispatch** parent) {
  return AccessibleObjectFromWindow(m_window, static_cast<DWORD>(OBJID_WINDOW), __uuidof(IAccessible),
                                    reinterpret_cast<void**>(parent));
}

STDMETHODIMP TTreeAccessible::get_accChildCount(LONG* count) {
  TTreeControl* control = Control();
  *count = control == nullptr ? 0 : static_cast<LONG>(control->Layout().RowCount());
  return control == nullptr ? CO_E_OBJNOTCONNECTED : S_OK;
}

STDMETHODIMP TTreeAccessible::get_accChild(VARIANT child, IDispatch** object) {
  *object = nullptr;
  // Rows are no objects of their own: clients speak to this one and say the row's number.
  return RowOf(child) != nullptr ? S_FALSE : E_INVALIDARG;
}

STDMETHODIMP TTreeAccessible::get_accName(VARIANT child, BSTR* name) {
  *name = nullptr;
  const TTreeNode* row = RowOf(child);
  if (row == nullptr && !IsSelf(child))
    return E_INVALIDARG;
  const TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  *name = NewText(row == nullptr ? control->Name() : control->RowName(*row));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::get_accValue(VARIANT child, BSTR* value) {
  *value = nullptr;
  const TTreeNode* row = RowOf(child);
  if (row == nullptr)
    return IsSelf(child) ? S_FALSE : E_INVALIDARG;
  *value = NewText(DecimalText(TTreeLayout::LevelOf(*row)));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::get_accDescription(VARIANT, BSTR* description) {
  *description = nullptr;
  return S_FALSE;
}

STDMETHODIMP TTreeAccessible::get_accRole(VARIANT child, VARIANT* role) {
  const bool isRow = RowOf(child) != nullptr;
  if (!isRow && !IsSelf(child))
    return E_INVALIDARG;
  SetNumber(role, isRow ? ROLE_SYSTEM_OUTLINEITEM : ROLE_SYSTEM_OUTLINE);
  return S_OK;
}

STDMETHODIMP TTreeAccessible::get_accState(VARIANT child, VARIANT* state) {
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  LONG flags = STATE_SYSTEM_FOCUSABLE;
  const bool hasFocus = GetFocus() == m_window;
  TTreeNode* row = RowOf(child);
  if (row == nullptr) {
    if (!IsSelf(child))
      return E_INVALIDARG;
    SetNumber(state, flags | (hasFocus ? STATE_SYSTEM_FOCUSED : 0));
    return S_OK;
  }
  flags |= STATE_SYSTEM_SELECTABLE;
  if (control->Model().Selected() == row)
    flags |= STATE_SYSTEM_SELECTED | (hasFocus ? STATE_SYSTEM_FOCUSED : 0);
  if (row->State == TCheckState::Checked)
    flags |= STATE_SYSTEM_CHECKED;
  if (row->State == TCheckState::Mixed)
    flags |= STATE_SYSTEM_MIXED;
  if (!row->Children.empty())
    flags |= row->Expanded ? STATE_SYSTEM_EXPANDED : STATE_SYSTEM_COLLAPSED;
  if (!control->IsInSight(row))
    flags |= STATE_SYSTEM_OFFSCREEN;
  SetNumber(state, flags);
  return S_OK;
}

STDMETHODIMP TTreeAccessible::get_accHelp(VARIANT, BSTR* help) {
  *help = nullptr;
  return S_FALSE;
}

STDMETHODIMP TTreeAccessible::get_accHelpTopic(BSTR* file, VARIANT, LONG* topic) {
  *file = nullptr;
  *topic = 0;
  return S_FALSE;
}

STDMETHODIMP TTreeAccessible::get_accKeyboardShortcut(VARIANT, BSTR* shortcut) {
  *shortcut = nullptr;
  return S_FALSE;
}

STDMETHODIMP TTreeAccessible::get_accFocus(VARIANT* child) {
  VariantInit(child);
  const TTreeControl* control = Control();
  if (control == nullptr || GetFocus() != m_window)
    return S_FALSE;
  return get_accSelection(child) == S_OK ? S_OK : (SetNumber(child, CHILDID_SELF), S_OK);
}

STDMETHODIMP TTreeAccessible::get_accSelection(VARIANT* children) {
  VariantInit(children);
  TTreeControl* control = Control();
  if (control == nullptr || control->Model().Selected() == nullptr)
    return S_FALSE;
  SetNumber(children, NumberOf(control->Model().Selected()));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::get_accDefaultAction(VARIANT child, BSTR* action) {
  *action = nullptr;
  const TTreeNode* row = RowOf(child);
  if (row == nullptr)
    return IsSelf(child) ? S_FALSE : E_INVALIDARG;
  *action = NewText(Control()->ActionName(*row));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accSelect(LONG flags, VARIANT child) {
  TTreeNode* row = RowOf(child);
  // One row is selected at a time: none joins it and none leaves.
  const LONG known = row != nullptr ? SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION : SELFLAG_TAKEFOCUS;
  if ((row == nullptr && !IsSelf(child)) || (flags & ~known) != 0)
    return E_INVALIDARG;
  if ((flags & SELFLAG_TAKEFOCUS) != 0)
    SetFocus(m_window);
  if (row != nullptr && flags != SELFLAG_NONE)
    Control()->SelectRow(row);
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  RECT rect = {};
  if (TTreeNode* row = RowOf(child)) {
    rect = control->RowRect(row);
  } else if (IsSelf(child)) {
    GetClientRect(m_window, &rect);
  } else {
    return E_INVALIDARG;
  }
  MapWindowPoints(m_window, nullptr, reinterpret_cast<POINT*>(&rect), 2);
  *left = rect.left;
  *top = rect.top;
  *width = rect.right - rect.left;
  *height = rect.bottom - rect.top;
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accNavigate(LONG direction, VARIANT start, VARIANT* end) {
  VariantInit(end);
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  TTreeLayout& layout = control->Layout();
  const TTreeNode* row = RowOf(start);
  if (row == nullptr && !IsSelf(start))
    return E_INVALIDARG;
  TTreeNode* target = nullptr;
  if (direction == NAVDIR_FIRSTCHILD || direction == NAVDIR_LASTCHILD) {
    if (row != nullptr)
      return S_FALSE;
    target = direction == NAVDIR_FIRSTCHILD ? layout.FirstRow() : layout.LastRow();
  } else if (row != nullptr) {
    if (direction == NAVDIR_NEXT || direction == NAVDIR_DOWN)
      target = layout.NextRow(row);
    if (direction == NAVDIR_PREVIOUS || direction == NAVDIR_UP)
      target = layout.PreviousRow(row);
    if (direction == NAVDIR_LEFT)
      target = row->Parent;
    if (direction == NAVDIR_RIGHT && row->Expanded && !row->Children.empty())
      target = row->Children.front().get();
  }
  if (target == nullptr)
    return S_FALSE;
  SetNumber(end, NumberOf(target));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accHitTest(LONG left, LONG top, VARIANT* child) {
  VariantInit(child);
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  POINT point = {left, top};
  ScreenToClient(m_window, &point);
  RECT client = {};
  GetClientRect(m_window, &client);
  if (!PtInRect(&client, point))
    return S_FALSE;
  TTreeNode* row = control->RowAtPoint(point);
  SetNumber(child, row == nullptr ? CHILDID_SELF : NumberOf(row));
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accDoDefaultAction(VARIANT child) {
  TTreeNode* row = RowOf(child);
  if (row == nullptr)
    return E_INVALIDARG;
  Control()->ToggleCheck(row);
  return S_OK;
}

STDMETHODIMP TTreeAccessible::put_accName(VARIANT, BSTR) {
  return E_NOTIMPL;
}

STDMETHODIMP TTreeAccessible::put_accValue(VARIANT, BSTR) {
  return E_NOTIMPL;
}
