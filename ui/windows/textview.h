// A text of any length, to be read, selected and copied. The system's text box lays the whole text out before
// it shows the first line; this one looks at the lines in sight.
#pragma once

#include <cstddef>

#include "base/text.h"
#include "ui/text/textgeometry.h"
#include "ui/text/textlines.h"
#include "ui/windows/gdi.h"
#include "ui/windows/scrolling.h"
#include "ui/windows/window.h"

namespace corvalt {

class TTextView : public TWindow {
 public:
  explicit TTextView(Text content);

  // Fills its place by MoveWindow.
  void Create(HWND parent, int id);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void OnPaint();
  void Draw(HDC dc, const RECT& area);
  void DrawLine(HDC dc, std::size_t number, int top);

  std::size_t PlaceAt(POINT point);
  int LinesInSight() const;

  void UpdateScrollBars();
  void OnScroll(int bar, WPARAM wParam);
  void ScrollTo(int left, int line);
  bool OnKeyDown(WPARAM key);
  void CursorMoved();
  void PlaceCaret();
  void Copy() const;

  TTextLines m_lines;
  TTextCursor m_cursor{m_lines};
  TScale m_scale;
  TTextMeter m_meter{m_scale, false};
  TTextGeometry m_geometry{m_lines, [this](TextView text) { return m_meter.Width(text); }};
  TPaintBuffer m_buffer;
  int m_lineHeight = m_meter.Height();
  int m_scrollLeft = 0;
  int m_topLine = 0;
  TWheel m_wheel;
};

}  // namespace corvalt
