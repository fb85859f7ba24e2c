// What assistive technology sees of a tree control: an outline whose items are its open rows, numbered from 1
// at the top.
#pragma once

#include "ui/windows/accessible.h"

namespace corvalt {

struct TTreeNode;
class TTreeControl;

class TTreeAccessible final : public TAccessible {
 public:
  // The result of WM_GETOBJECT for the control's client object.
  static LRESULT Answer(TTreeControl& control, WPARAM wParam);

  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accFocus(VARIANT* child) override;
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override;
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override;
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG direction, VARIANT start, VARIANT* end) override;
  STDMETHODIMP accHitTest(LONG left, LONG top, VARIANT* child) override;
  STDMETHODIMP accDoDefaultAction(VARIANT child) override;

 private:
  explicit TTreeAccessible(HWND window) : TAccessible(window) {
  }

  // The control, as long as its window lives: clients may hold this object longer.
  TTreeControl* Control() const;

  // The row that a child number names; null for the control itself and for what is no row.
  TTreeNode* RowOf(const VARIANT& child) const;
  LONG NumberOf(const TTreeNode* node) const;
};

}  // namespace corvalt
