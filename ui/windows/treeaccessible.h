// What assistive technology sees of a tree control: an outline whose items are its open rows, numbered from 1
// at the top.
#pragma once

#include <atomic>

#include "ui/windows/controlsapi.h"

struct TTreeNode;
class TTreeControl;

class TTreeAccessible final : public IAccessible {
 public:
  // The answer to WM_GETOBJECT for the control's client object.
  static LRESULT Answer(TTreeControl& control, WPARAM wParam);

  // IUnknown
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IDispatch: late binding goes through the library's own proxies, not through here.
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID interfaceId, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

  // IAccessible
  STDMETHODIMP get_accParent(IDispatch** parent) override;
  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* description) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accHelp(VARIANT child, BSTR* help) override;
  STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override;
  STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override;
  STDMETHODIMP get_accFocus(VARIANT* child) override;
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override;
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override;
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG direction, VARIANT start, VARIANT* end) override;
  STDMETHODIMP accHitTest(LONG left, LONG top, VARIANT* child) override;
  STDMETHODIMP accDoDefaultAction(VARIANT child) override;
  STDMETHODIMP put_accName(VARIANT child, BSTR name) override;
  STDMETHODIMP put_accValue(VARIANT child, BSTR value) override;

 private:
  explicit TTreeAccessible(HWND window) : m_window(window) {
  }
  ~TTreeAccessible() = default;

  // The control, as long as its window lives: clients may hold this object longer.
  TTreeControl* Control() const;

  // The row that a child number names; null for the control itself and for what is no row.
  TTreeNode* RowOf(const VARIANT& child) const;
  LONG NumberOf(const TTreeNode* node) const;

  std::atomic<ULONG> m_references = 1;
  HWND m_window;
};
