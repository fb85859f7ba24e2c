// Looks at the windows of a running program from outside. All wait for a visible window of the class.
//
//   wine_clipping CLASS
//
// prints every caption in it that its control cuts off, and every control that its window cuts off; answers 0
// when there are captions and none is cut off
//
//   wine_clipping CLASS COMMAND
//
// gives it a command
//
//   wine_clipping CLASS CHILD X Y
//
// clicks into its first child of the class CHILD

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr int kTries = 300;
constexpr DWORD kBetweenTries = 100;  // milliseconds

// At 96 dots per inch: what a control needs beside its text.
constexpr int kButtonRoom = 8;
constexpr int kLinkRoom = 24;  // the picture before a link
constexpr int kChooserRoom = 6;

HWND WaitForWindow(const wchar_t* className) {
  for (int i = 0; i < kTries; ++i) {
    // The newest of several stands on top.
    const HWND window = FindWindowW(className, nullptr);
    if (window != nullptr && IsWindowVisible(window))
      return window;
    Sleep(kBetweenTries);
  }
  return nullptr;
}

Text ClassOf(HWND window) {
  wchar_t name[256] = {};
  return Text(FromWide(name, static_cast<std::size_t>(GetClassNameW(window, name, 256))));
}

Text TextOf(HWND window) {
  Text text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
  SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(WideBuffer(text)));
  text.resize(text.find(u'\0'));
  return text;
}

class TClipping {
 public:
  TClipping() : m_dc(CreateCompatibleDC(nullptr)), m_dotsPerInch(GetDeviceCaps(m_dc, LOGPIXELSX)) {
    m_font = CreateFontW(-MulDiv(8, m_dotsPerInch, 72), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0,
                         0, L"Tahoma");
    SelectObject(m_dc, m_font);
  }
  ~TClipping() {
    DeleteDC(m_dc);
    DeleteObject(m_font);
  }
  TClipping(const TClipping&) = delete;
  TClipping& operator=(const TClipping&) = delete;

  void Check(HWND window) {
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
      RECT place = {};
      GetWindowRect(child, &place);
      MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
      // Controls that wait for a row stand far outside.
      if (!IsWindowVisible(child) || place.right <= 0)
        continue;
      CheckPlace(window, child, place);
      CheckCaption(child);
      Check(child);
    }
  }

  int Captions = 0;
  int Faults = 0;

 private:
  void CheckPlace(HWND window, HWND child, const RECT& place) {
    RECT inside = {};
    GetClientRect(window, &inside);
    // What lies in a tree scrolls with it.
    if (ClassOf(window) == u"TessalyTree")
      return;
    if (place.left < 0 || place.top < 0 || place.right > inside.right || place.bottom > inside.bottom)
      Fault(child, TextOf(child), {place.right, place.bottom}, {inside.right, inside.bottom});
  }

  void CheckCaption(HWND control) {
    const Text className = ClassOf(control);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(control, GWL_STYLE));
    RECT inside = {};
    GetClientRect(control, &inside);
    const LONG width = inside.right;
    if (className == u"Button") {
      const bool isLink = (style & BS_TYPEMASK) == BS_OWNERDRAW;
      Need(control, TextOf(control), {width - Scaled(isLink ? kLinkRoom : kButtonRoom), inside.bottom},
           DT_SINGLELINE);
    } else if (className == u"Static") {
      const bool isOneLine = (style & SS_ELLIPSISMASK) != 0;
      Need(control, TextOf(control), {width, inside.bottom}, isOneLine ? DT_SINGLELINE : DT_WORDBREAK);
    } else if (className == u"ComboBox") {
      const LONG room = width - GetSystemMetrics(SM_CXVSCROLL) - Scaled(kChooserRoom);
      const LRESULT count = SendMessageW(control, CB_GETCOUNT, 0, 0);
      for (LRESULT i = 0; i < count; ++i)
        Need(control, ChoiceText(control, static_cast<WPARAM>(i)), {room, inside.bottom},
             DT_SINGLELINE | DT_NOPREFIX);
    }
  }

  static Text ChoiceText(HWND chooser, WPARAM index) {
    Text text(static_cast<std::size_t>(SendMessageW(chooser, CB_GETLBTEXTLEN, index, 0)) + 1, u'\0');
    SendMessageW(chooser, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(WideBuffer(text)));
    text.resize(text.find(u'\0'));
    return text;
  }

  // The text must fit into the size when it is drawn in this way.
  void Need(HWND control, const Text& text, SIZE size, UINT how) {
    if (text.empty())
      return;
    ++Captions;
    RECT needed = {0, 0, size.cx, 0};
    DrawTextW(m_dc, Wide(text), -1, &needed, how | DT_CALCRECT);
    if (needed.right > size.cx || needed.bottom > size.cy)
      Fault(control, text, {needed.right, needed.bottom}, size);
  }

  void Fault(HWND control, const Text& text, SIZE needed, SIZE size) {
    ++Faults;
    std::printf("%s \"%s\" needs %ldx%ld and has %ldx%ld\n", EncodeUtf8(ClassOf(control)).c_str(),
                EncodeUtf8(text).c_str(), needed.cx, needed.cy, size.cx, size.cy);
  }

  LONG Scaled(int at96) const {
    return MulDiv(at96, m_dotsPerInch, 96);
  }

  HDC m_dc;
  int m_dotsPerInch;
  HFONT m_font = nullptr;
};

int Click(HWND window, const wchar_t* childClass, int x, int y) {
  const HWND child = FindWindowExW(window, nullptr, childClass, nullptr);
  if (child == nullptr)
    return 1;
  PostMessageW(child, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
  PostMessageW(child, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
  return 0;
}

int RunTool(int argc, wchar_t** argv) {
  const HWND window = argc < 2 ? nullptr : WaitForWindow(argv[1]);
  if (window == nullptr) {
    std::puts("no such window");
    return 1;
  }
  if (argc == 3)
    return PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(_wtoi(argv[2])), 0) ? 0 : 1;
  if (argc == 5)
    return Click(window, argv[2], _wtoi(argv[3]), _wtoi(argv[4]));
  TClipping clipping;
  clipping.Check(window);
  std::printf("captions: %d, cut off: %d\n", clipping.Captions, clipping.Faults);
  return clipping.Captions == 0 || clipping.Faults != 0;
}

}  // namespace

}  // namespace corvalt

int wmain(int argc, wchar_t** argv) {
  return corvalt::RunTool(argc, argv);
}
