// The viewer's text in a real window: what is selected by keys and mouse, and what is copied.
#include "ui/windows/textview.h"

#include <gtest/gtest.h>

#include <array>

namespace corvalt {

namespace {

class BackupTextView : public testing::Test {
 protected:
  BackupTextView() {
    m_view.Create(m_frame, 1);
    MoveWindow(m_view.Handle(), 0, 0, 300, 200, FALSE);
  }
  ~BackupTextView() override {
    DestroyWindow(m_view.Handle());
    DestroyWindow(m_frame);
  }

  void Click(int x, int y, bool extend) {
    ::SendMessageW(m_view.Handle(), WM_LBUTTONDOWN, extend ? MK_LBUTTON | MK_SHIFT : MK_LBUTTON,
                   MAKELPARAM(x, y));
    ::SendMessageW(m_view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(x, y));
  }
  void DoubleClick(int x, int y) {
    Click(x, y, false);
    ::SendMessageW(m_view.Handle(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(x, y));
    ::SendMessageW(m_view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(x, y));
  }
  Text Copied() {
    ::SendMessageW(m_view.Handle(), WM_COPY, 0, 0);
    Text text;
    if (OpenClipboard(m_frame)) {
      if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT))
        text = Text(FromWide(static_cast<const wchar_t*>(GlobalLock(memory))));
      CloseClipboard();
    }
    return text;
  }

  HWND m_frame = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                                 nullptr, ProgramInstance(), nullptr);
  TTextView m_view{u"first\r\nsecond\r\n" + Text(100000, u'x') + u"\r\nlast"};
};

}  // namespace

TEST_F(BackupTextView, TheWindowsTextIsTheWholeText) {
  EXPECT_EQ(::SendMessageW(m_view.Handle(), WM_GETTEXTLENGTH, 0, 0), 7 + 8 + 100002 + 4);
  std::array<wchar_t, 6> begin = {};
  EXPECT_EQ(::SendMessageW(m_view.Handle(), WM_GETTEXT, begin.size(), reinterpret_cast<LPARAM>(begin.data())),
            5);
  EXPECT_EQ(FromWide(begin.data()), u"first");
}

TEST_F(BackupTextView, AClickFarToTheRightStandsAtTheLinesEnd) {
  Click(0, 0, false);
  Click(290, 2, true);
  EXPECT_EQ(Copied(), u"first");
}

TEST_F(BackupTextView, ASelectionGoesFromClickToClick) {
  const int line = TTextMeter(TScale(), false).Height();
  Click(0, 0, false);
  Click(290, line + 2, true);
  EXPECT_EQ(Copied(), u"first\r\nsecond");
}

TEST_F(BackupTextView, KeysGoThroughLinesOfAnyLength) {
  Click(0, 0, false);
  for (int i = 0; i < 3; ++i)
    ::SendMessageW(m_view.Handle(), WM_KEYDOWN, VK_DOWN, 0);
  Click(290, 190, true);
  ::SendMessageW(m_view.Handle(), WM_KEYDOWN, VK_END, 0);
  RedrawWindow(m_view.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  ::SendMessageW(m_view.Handle(), WM_KEYDOWN, VK_UP, 0);
  ::SendMessageW(m_view.Handle(), WM_KEYDOWN, VK_END, 0);
  RedrawWindow(m_view.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  // The end of the long line is in sight now, far to the right.
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_POS;
  GetScrollInfo(m_view.Handle(), SB_HORZ, &info);
  EXPECT_GT(info.nPos, 100000);
}

TEST_F(BackupTextView, NothingSelectedLeavesTheClipboardAlone) {
  Click(0, 0, false);
  Click(290, 2, true);
  EXPECT_EQ(Copied(), u"first");
  Click(0, 0, false);
  EXPECT_EQ(Copied(), u"first");
}

TEST_F(BackupTextView, ADoubleClickSelectsAWord) {
  DoubleClick(10, 2);
  EXPECT_EQ(Copied(), u"first");
}

TEST_F(BackupTextView, IsATextThatCannotBeChangedToAssistiveTechnology) {
  IAccessible* text = nullptr;
  ASSERT_EQ(AccessibleObjectFromWindow(m_view.Handle(), static_cast<DWORD>(OBJID_CLIENT),
                                       __uuidof(IAccessible), reinterpret_cast<void**>(&text)),
            S_OK);
  VARIANT self = {};
  self.vt = VT_I4;
  self.lVal = CHILDID_SELF;
  VARIANT role = {};
  VARIANT state = {};
  BSTR value = nullptr;
  EXPECT_EQ(text->get_accRole(self, &role), S_OK);
  EXPECT_EQ(role.lVal, ROLE_SYSTEM_TEXT);
  EXPECT_EQ(text->get_accState(self, &state), S_OK);
  EXPECT_NE(state.lVal & STATE_SYSTEM_READONLY, 0);
  EXPECT_EQ(text->get_accValue(self, &value), S_OK);
  EXPECT_TRUE(FromWide(value, SysStringLen(value)).starts_with(u"first\r\nsecond\r\nxxx"));
  SysFreeString(value);
  text->Release();
}

// As long as the largest backup, and of nothing but NULs, as a file is that the disk lost.
TEST(BackupTextViewOfOneLine, TheEndOfALineOfFiftyMegabytesIsShown) {
  HWND frame = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                               nullptr, ProgramInstance(), nullptr);
  {
    constexpr std::size_t kSize = 50 << 20;
    TTextView view(Text(kSize, char16_t{0x2400}));
    view.Create(frame, 1);
    MoveWindow(view.Handle(), 0, 0, 300, 200, FALSE);
    ::SendMessageW(view.Handle(), WM_KEYDOWN, VK_END, 0);
    RedrawWindow(view.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS | SIF_RANGE | SIF_PAGE;
    GetScrollInfo(view.Handle(), SB_HORZ, &info);
    EXPECT_GT(info.nMax, static_cast<int>(kSize));
    EXPECT_GE(info.nPos + static_cast<int>(info.nPage), info.nMax - 1);
    // A click at the window's right edge is at the text's end.
    ::SendMessageW(view.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(295, 5));
    ::SendMessageW(view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(295, 5));
    for (int i = 0; i < 3; ++i)
      ::SendMessageW(view.Handle(), WM_KEYDOWN, VK_LEFT, 0);
    ::SendMessageW(view.Handle(), WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(295, 5));
    ::SendMessageW(view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(295, 5));
    ::SendMessageW(view.Handle(), WM_COPY, 0, 0);
    ASSERT_TRUE(OpenClipboard(frame));
    EXPECT_EQ(FromWide(static_cast<const wchar_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT)))),
              Text(3, char16_t{0x2400}));
    CloseClipboard();
  }
  DestroyWindow(frame);
}

}  // namespace corvalt
