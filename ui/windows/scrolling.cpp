#include "ui/windows/scrolling.h"

#include <algorithm>
#include <optional>

namespace corvalt {

namespace {

// Pixels from the scroll bar's beginning to its thumb; nullopt when the system does not tell.
std::optional<int> ThumbPlace(HWND window, int bar) {
  SCROLLBARINFO info = {};
  info.cbSize = sizeof info;
  if (!GetScrollBarInfo(window, bar == SB_VERT ? OBJID_VSCROLL : OBJID_HSCROLL, &info))
    return std::nullopt;
  return info.xyThumbTop;
}

}  // namespace

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

void ShowScrollRange(HWND window, int bar, const TScrollRange& range) {
  SCROLLINFO known = {};
  known.cbSize = sizeof known;
  known.fMask = SIF_RANGE | SIF_PAGE;
  const auto page = static_cast<UINT>(std::max(range.Page, 0));
  if (GetScrollInfo(window, bar, &known) && known.nMin == 0 && known.nMax == range.Last &&
      known.nPage == page)
    return;
  SCROLLINFO info = known;
  info.fMask |= range.IsAlwaysShown ? SIF_DISABLENOSCROLL : 0U;
  info.nMin = 0;
  info.nMax = range.Last;
  info.nPage = page;
  SetScrollInfo(window, bar, &info, TRUE);
}

void ShowScrollPosition(HWND window, int bar, int position) {
  const std::optional<int> drawn = ThumbPlace(window, bar);
  SetScrollPos(window, bar, position, FALSE);
  if (!drawn || ThumbPlace(window, bar) != drawn)
    SetScrollPos(window, bar, position, TRUE);
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
