// A text of any length, to be read, selected and copied. The system's text box lays the whole text out before
// it shows the first line; this one looks at the lines in sight.
#pragma once

#include <functional>

#include "ui/textlines.h"
#include "ui/windows/gdi.h"
#include "ui/windows/scrolling.h"
#include "ui/windows/window.h"

class TTextView : public TWindow {
 public:
  explicit TTextView(Text content);

  // Fills its place by MoveWindow.
  void Create(HWND parent, int id);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  // A piece of a line that is drawn at once; places are offsets in the text, left is in pixels from the
  // line's beginning.
  using TOnPiece = std::function<bool(std::size_t start, std::size_t end, int left, int width)>;

  void OnPaint();
  void Draw(HDC dc, const RECT& area);
  void DrawLine(HDC dc, std::size_t number, int top);
  // Goes through a line's pieces until the callback answers false.
  void ForPieces(std::size_t number, const TOnPiece& onPiece) const;

  int LeftOf(std::size_t place) const;
  std::size_t PlaceAt(POINT point) const;
  int LinesInSight() const;

  void UpdateScrollBars();
  void OnScroll(int bar, WPARAM wParam);
  void ScrollTo(int left, int line);
  bool OnKeyDown(WPARAM key);
  void CursorMoved();
  void PlaceCaret() const;
  void Copy() const;
  LRESULT AccessibleAnswer(WPARAM wParam, LPARAM lParam);

  TTextLines m_lines;
  TTextCursor m_cursor{m_lines};
  TScale m_scale;
  TTextMeter m_meter{m_scale, false};
  TPaintBuffer m_buffer;
  int m_lineHeight = 0;
  int m_widest = 0;
  int m_scrollLeft = 0;
  int m_topLine = 0;
  TWheel m_wheel;
};
