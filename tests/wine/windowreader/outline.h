// A tree of the program as assistive technology sees it, through MSAA.
#pragma once

#include "tests/wine/windowreader/otherwindows.h"

namespace corvalt {

class TOutline {
 public:
  explicit TOutline(HWND tree) {
    const HRESULT result = AccessibleObjectFromWindow(
        tree, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), reinterpret_cast<void**>(&m_tree));
    if (FAILED(result))
      Refuse("the tree has no accessible object");
  }
  ~TOutline() {
    m_tree->Release();
  }
  TOutline(const TOutline&) = delete;
  TOutline& operator=(const TOutline&) = delete;

  IAccessible& operator*() const {
    return *m_tree;
  }
  IAccessible* operator->() const {
    return m_tree;
  }

  static VARIANT Row(LONG number) {
    VARIANT row = {};
    row.vt = VT_I4;
    row.lVal = number;
    return row;
  }

  LONG RowCount() const {
    LONG count = 0;
    Check(m_tree->get_accChildCount(&count));
    return count;
  }

  static void Check(HRESULT result) {
    if (FAILED(result))
      Refuse("the tree refuses");
  }

  // The text that a routine returns, which the caller must free: it is freed here.
  static Text Taken(HRESULT result, const BSTR& text) {
    Check(result);
    Text taken = text == nullptr ? Text() : Text(FromWide(text, SysStringLen(text)));
    SysFreeString(text);
    return taken;
  }

 private:
  IAccessible* m_tree = nullptr;
};

}  // namespace corvalt
