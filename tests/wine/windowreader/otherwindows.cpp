#include "tests/wine/windowreader/otherwindows.h"

namespace corvalt {

Text ClassOf(HWND window) {
  Text name(257, u'\0');
  name.resize(static_cast<std::size_t>(GetClassNameW(window, WideBuffer(name), 257)));
  return name;
}

Text TextOf(HWND window) {
  Text text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
  const LRESULT length =
      SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(WideBuffer(text)));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

DWORD ProcessOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process;
}

Text StateOf(HWND window) {
  if (!IsWindowVisible(window))
    return u"hidden";
  return IsWindowEnabled(window) ? u"enabled" : u"disabled";
}

RECT PlaceOf(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return place;
}

namespace {

constexpr DWORD kPatience = 60000;  // milliseconds
constexpr DWORD kGlance = 20;

BOOL CALLBACK VisitWindow(HWND window, LPARAM visit) {
  (*reinterpret_cast<const TVisit*>(visit))(window);
  return TRUE;
}

}  // namespace

void ForEachTopLevel(const TVisit& visit) {
  EnumWindows(VisitWindow, reinterpret_cast<LPARAM>(&visit));
}

void ForEachBelow(HWND parent, const TVisit& visit) {
  EnumChildWindows(parent, VisitWindow, reinterpret_cast<LPARAM>(&visit));
}

HWND FirstOfClass(HWND parent, TextView className) {
  HWND found = nullptr;
  ForEachBelow(parent, [&](HWND window) {
    if (found == nullptr && ClassOf(window) == className)
      found = window;
  });
  if (found == nullptr)
    Refuse("no such control");
  return found;
}

bool WaitUntil(const std::function<bool()>& happened) {
  const DWORD begin = GetTickCount();
  while (!happened()) {
    if (GetTickCount() - begin > kPatience)
      return false;
    Sleep(kGlance);
  }
  return true;
}

}  // namespace corvalt
