#include <gtest/gtest.h>

#include "platform/windows/windowseditorwindows.h"

namespace corvalt {

namespace {

// Windows that nobody sees: below a message-only one.
class TTestWindow {
 public:
  TTestWindow(const wchar_t* className, HWND parent)
      : m_window(CreateWindowExW(0, className, L"", parent == HWND_MESSAGE ? 0 : WS_CHILD, 0, 0, 400, 40,
                                 parent, nullptr, nullptr, nullptr)) {
    EXPECT_NE(m_window, nullptr);
  }
  ~TTestWindow() {
    DestroyWindow(m_window);
  }
  TTestWindow(const TTestWindow&) = delete;
  TTestWindow& operator=(const TTestWindow&) = delete;

  HWND Get() const {
    return m_window;
  }
  TWindowHandle Handle() const {
    return reinterpret_cast<TWindowHandle>(m_window);
  }

 private:
  HWND m_window;
};

TEST(WindowsEditorWindows, AChildIsFoundByItsClassDirectlyOrBelow) {
  const TTestWindow parent(L"STATIC", HWND_MESSAGE);
  const TTestWindow child(L"STATIC", parent.Get());
  const TTestWindow grandchild(L"EDIT", child.Get());
  TWindowsEditorWindows windows;
  EXPECT_EQ(windows.FindChildWindow(parent.Handle(), u"static", false), child.Handle());
  EXPECT_EQ(windows.FindChildWindow(parent.Handle(), u"Edit", false), 0u);
  EXPECT_EQ(windows.FindChildWindow(parent.Handle(), u"Edit", true), grandchild.Handle());
  EXPECT_EQ(windows.FindChildWindow(parent.Handle(), u"Listbox", true), 0u);
  EXPECT_EQ(windows.FindChildWindow(0, u"Static", true), 0u);
}

TEST(WindowsEditorWindows, ThereIsNoWindowOfAnUnknownClass) {
  TWindowsEditorWindows windows;
  EXPECT_EQ(windows.FindTopLevelWindow(u"CorvaltNoSuchClass"), 0u);
}

TEST(WindowsEditorWindows, CharactersArriveAsTheyAreSent) {
  const TTestWindow parent(L"STATIC", HWND_MESSAGE);
  const TTestWindow edit(L"EDIT", parent.Get());
  TWindowsEditorWindows windows;
  for (const char16_t unit : TextView(u"A\u00E9\u65E5"))
    windows.SendMessage(edit.Handle(), kWmChar, unit, 1);
  wchar_t text[16] = {};
  GetWindowTextW(edit.Get(), text, 16);
  EXPECT_EQ(Text(FromWide(text)), u"A\u00E9\u65E5");
}

}  // namespace

}  // namespace corvalt
