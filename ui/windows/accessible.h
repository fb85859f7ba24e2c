// A control of ours as assistive technology sees it: the part that all of them have in common, an object
// without children, names and actions that takes the keyboard.
#pragma once

#include <atomic>

#include "base/text.h"
#include "ui/windows/controlsapi.h"

namespace corvalt {

class TAccessible : public IAccessible {
 public:
  // The result of WM_GETOBJECT for the control's client object. Takes over the object.
  static LRESULT Answer(TAccessible* object, WPARAM wParam);

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
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* description) override;
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

 protected:
  explicit TAccessible(HWND window) : m_window(window) {
  }
  virtual ~TAccessible() = default;

  // Clients may hold this object longer than the window lives.
  HWND Window() const {
    return m_window;
  }

  static BSTR NewText(TextView text);
  static void SetNumber(VARIANT* variant, LONG number);
  static bool IsSelf(const VARIANT& child);

  // Writes a rectangle of the window's inside as one of the screen.
  void SetPlace(RECT rect, LONG* left, LONG* top, LONG* width, LONG* height) const;
  // What the window itself is besides: it can have the keyboard, and may have it.
  LONG FocusStates() const;

 private:
  std::atomic<ULONG> m_references = 1;
  HWND m_window;
};

}  // namespace corvalt
