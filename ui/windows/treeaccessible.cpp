#include "ui/windows/treeaccessible.h"

#include "ui/windows/treecontrol.h"

namespace corvalt {

LRESULT TTreeAccessible::Answer(TTreeControl& control, WPARAM wParam) {
  return TAccessible::Answer(new TTreeAccessible(control.Handle()), wParam);
}

TTreeControl* TTreeAccessible::Control() const {
  if (!IsWindow(Window()))
    return nullptr;
  return static_cast<TTreeControl*>(reinterpret_cast<TWindow*>(GetWindowLongPtrW(Window(), GWLP_USERDATA)));
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

STDMETHODIMP TTreeAccessible::get_accChildCount(LONG* count) {
  TTreeControl* control = Control();
  *count = control == nullptr ? 0 : static_cast<LONG>(control->Layout().RowCount());
  return control == nullptr ? CO_E_OBJNOTCONNECTED : S_OK;
}

STDMETHODIMP TTreeAccessible::get_accChild(VARIANT child, IDispatch** object) {
  *object = nullptr;
  // Rows are no objects of their own: clients call this one with the row's number.
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
  TTreeNode* row = RowOf(child);
  if (row == nullptr) {
    if (!IsSelf(child))
      return E_INVALIDARG;
    SetNumber(state, FocusStates());
    return S_OK;
  }
  LONG flags = STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_SELECTABLE;
  if (control->Model().Selected() == row)
    flags |= STATE_SYSTEM_SELECTED | FocusStates();
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

STDMETHODIMP TTreeAccessible::get_accFocus(VARIANT* child) {
  VariantInit(child);
  const TTreeControl* control = Control();
  if (control == nullptr || GetFocus() != Window())
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
    SetFocus(Window());
  if (row != nullptr && flags != SELFLAG_NONE)
    Control()->SelectRow(row);
  return S_OK;
}

STDMETHODIMP TTreeAccessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  TTreeNode* row = RowOf(child);
  if (row == nullptr)
    return TAccessible::accLocation(left, top, width, height, child);
  SetPlace(control->RowRect(row), left, top, width, height);
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
  TTreeControl* control = Control();
  if (control == nullptr)
    return CO_E_OBJNOTCONNECTED;
  const HRESULT result = TAccessible::accHitTest(left, top, child);
  POINT point = {left, top};
  ScreenToClient(Window(), &point);
  TTreeNode* row = result == S_OK ? control->RowAtPoint(point) : nullptr;
  if (row != nullptr)
    SetNumber(child, NumberOf(row));
  return result;
}

STDMETHODIMP TTreeAccessible::accDoDefaultAction(VARIANT child) {
  TTreeNode* row = RowOf(child);
  if (row == nullptr)
    return E_INVALIDARG;
  Control()->ToggleCheck(row);
  return S_OK;
}

}  // namespace corvalt
