#include "ui/windows/scrolling.h"

namespace corvalt {

int WantedScrollPosition(HWND window, int bar, int request, int line) {
  SCROLLINFO info = {};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  GetScrollInfo(window, bar, &info);
  switch (request) {
    case SB_LINEUP:
      return info.nPos - line;
    case SB_LINEDOWN:
      return info.nPos + line;
    case SB_PAGEUP:
      return info.nPos - static_cast<int>(info.nPage);
    case SB_PAGEDOWN:
      return info.nPos + static_cast<int>(info.nPage);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      return info.nTrackPos;
    case SB_TOP:
      return info.nMin;
    case SB_BOTTOM:
      return info.nMax;
    default:
      return info.nPos;
  }
}

int TWheel::Distance(WPARAM wParam, int line, int page) {
  UINT lines = 3;
  SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
  m_rest +=
      GET_WHEEL_DELTA_WPARAM(wParam) * (lines == WHEEL_PAGESCROLL ? page : static_cast<int>(lines) * line);
  const int distance = m_rest / WHEEL_DELTA;
  m_rest -= distance * WHEEL_DELTA;
  return distance;
}

}  // namespace corvalt
