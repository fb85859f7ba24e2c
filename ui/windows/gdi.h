// Owners for what GDI and the themes lend, and the display's scale.
#pragma once

#include <optional>
#include <vector>

#include "base/text.h"
#include "ui/windows/controlsapi.h"

namespace corvalt {

struct TGdiObjectTraits {
  using THandle = HGDIOBJ;
  static HGDIOBJ None() {
    return nullptr;
  }
  static void Close(HGDIOBJ object) {
    DeleteObject(object);
  }
};
using TGdiObject = TOwned<TGdiObjectTraits>;

struct TMemoryDcTraits {
  using THandle = HDC;
  static HDC None() {
    return nullptr;
  }
  static void Close(HDC dc) {
    DeleteDC(dc);
  }
};
using TMemoryDc = TOwned<TMemoryDcTraits>;

struct TThemeTraits {
  using THandle = HTHEME;
  static HTHEME None() {
    return nullptr;
  }
  static void Close(HTHEME theme) {
    CloseThemeData(theme);
  }
};
using TTheme = TOwned<TThemeTraits>;

// Selects an object into a device context for its lifetime.
class TSelected {
 public:
  TSelected(HDC dc, HGDIOBJ object) : m_dc(dc), m_previous(SelectObject(dc, object)) {
  }
  ~TSelected() {
    SelectObject(m_dc, m_previous);
  }
  TSelected(const TSelected&) = delete;
  TSelected& operator=(const TSelected&) = delete;

 private:
  HDC m_dc;
  HGDIOBJ m_previous;
};

// A window's device context, outside of painting.
class TWindowDc {
 public:
  explicit TWindowDc(HWND window) : m_window(window), m_dc(GetDC(window)) {
  }
  ~TWindowDc() {
    ReleaseDC(m_window, m_dc);
  }
  TWindowDc(const TWindowDc&) = delete;
  TWindowDc& operator=(const TWindowDc&) = delete;
  HDC Get() const {
    return m_dc;
  }

 private:
  HWND m_window;
  HDC m_dc;
};

// A picture of the window that is painted in memory and shown at once, so that nothing flickers. The memory
// is kept and grows with the window.
class TPaintBuffer {
 public:
  // A device context as large as the window, valid until the next call. Null when there is no memory for it.
  HDC Begin(HDC window, SIZE size);
  void Show(HDC window, const RECT& area) const;
  // A part of the picture to another place.
  void Copy(HDC target, const RECT& place, POINT from) const;

 private:
  TMemoryDc m_dc;
  TGdiObject m_bitmap;
  SIZE m_size = {0, 0};
};

// Turns sizes in pixels at 96 dots per inch into pixels on this display.
class TScale {
 public:
  TScale();
  int operator()(int at96) const {
    return MulDiv(at96, m_dotsPerInch, 96);
  }
  int DotsPerInch() const {
    return m_dotsPerInch;
  }

 private:
  int m_dotsPerInch;
};

// Tahoma, 8 point.
TGdiObject MakeWindowFont(const TScale& scale, bool bold);

// Pixels of one line of text.
SIZE MeasureTextIn(HDC dc, TextView text);

// Measures one line of text in the window's font. It keeps a device context and the widths of the usual
// letters, whose sum is the width of a text: that is ten times as fast as asking the system for each text,
// and a scan measures a hundred thousand texts.
class TTextMeter {
 public:
  TTextMeter(const TScale& scale, bool bold);

  int Width(TextView text) const;
  int Height() const {
    return m_height;
  }
  HFONT Font() const {
    return static_cast<HFONT>(m_font.Get());
  }

 private:
  // The width of a unit that the system draws beside others as it is. nullopt for a character that joins
  // others, and for one half of a surrogate pair.
  std::optional<int> WidthOfUnit(char16_t unit) const;

  TGdiObject m_font;
  TMemoryDc m_dc;
  int m_height = 0;
  // By unit; filled as texts are measured.
  mutable std::vector<int> m_widths;
};

}  // namespace corvalt
