#include "ui/windows/tip.h"

#include "ui/windows/window.h"

namespace corvalt {

void TTip::Create(HWND owner) {
  m_owner = owner;
  m_tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                          CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr,
                          ProgramInstance(), nullptr);
}

void TTip::SetWidth(int width) {
  ::SendMessageW(m_tip, TTM_SETMAXTIPWIDTH, 0, width);
}

void TTip::Set(HWND control, Text text) {
  TTTOOLINFOW tool = {};
  // The size that Windows XP knows; the later fields are not used.
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = m_owner;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = WideBuffer(text);
  ::SendMessageW(m_tip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  if (!text.empty())
    ::SendMessageW(m_tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace corvalt
