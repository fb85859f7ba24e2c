#include "ui/windows/gdi.h"

#include <algorithm>
#include <array>

namespace corvalt {

namespace {

constexpr int kUnknownWidth = -1;
constexpr char16_t kLastAscii = 0x7F;

struct TUnits {
  char16_t First;
  char16_t Last;
};

// Letters of Latin, Greek and Cyrillic without the marks that join the letter before them, and the pictures
// of control characters.
constexpr char16_t kLastSideBySide = 0x2426;
constexpr std::array<TUnits, 5> kSideBySide = {
    {{0xA1, 0xAC}, {0xAE, 0x24F}, {0x370, 0x482}, {0x48A, 0x52F}, {0x2400, kLastSideBySide}}};

bool StandsSideBySide(char16_t unit) {
  return std::any_of(kSideBySide.begin(), kSideBySide.end(),
                     [unit](const TUnits& units) { return unit >= units.First && unit <= units.Last; });
}

}  // namespace

HDC TPaintBuffer::Begin(HDC window, SIZE size) {
  if (!m_dc)
    m_dc = TMemoryDc(CreateCompatibleDC(window));
  if (size.cx > m_size.cx || size.cy > m_size.cy) {
    const SIZE grown = {std::max(size.cx, m_size.cx), std::max(size.cy, m_size.cy)};
    TGdiObject bitmap(CreateCompatibleBitmap(window, grown.cx, grown.cy));
    if (!bitmap)
      return nullptr;
    SelectObject(m_dc.Get(), bitmap.Get());
    m_bitmap = std::move(bitmap);
    m_size = grown;
  }
  return m_dc.Get();
}

void TPaintBuffer::Show(HDC window, const RECT& area) const {
  Copy(window, area, {area.left, area.top});
}

void TPaintBuffer::Copy(HDC target, const RECT& place, POINT from) const {
  BitBlt(target, place.left, place.top, place.right - place.left, place.bottom - place.top, m_dc.Get(),
         from.x, from.y, SRCCOPY);
}

TScale::TScale() : m_dotsPerInch(96) {
  const TWindowDc screen(nullptr);
  m_dotsPerInch = GetDeviceCaps(screen.Get(), LOGPIXELSX);
}

TGdiObject MakeWindowFont(const TScale& scale, bool bold) {
  constexpr int kPoints = 8;
  constexpr int kPointsPerInch = 72;
  LOGFONTW font = {};
  font.lfHeight = -MulDiv(kPoints, scale.DotsPerInch(), kPointsPerInch);
  font.lfWeight = bold ? FW_BOLD : FW_NORMAL;
  font.lfCharSet = DEFAULT_CHARSET;
  font.lfQuality = DEFAULT_QUALITY;
  const TextView face = u"Tahoma";
  std::copy(face.begin(), face.end(), font.lfFaceName);
  return TGdiObject(CreateFontIndirectW(&font));
}

SIZE MeasureTextIn(HDC dc, TextView text) {
  SIZE size = {};
  GetTextExtentPoint32W(dc, WideUnits(text), static_cast<int>(text.size()), &size);
  return size;
}

TTextMeter::TTextMeter(const TScale& scale, bool bold)
    : m_font(MakeWindowFont(scale, bold)),
      m_dc(CreateCompatibleDC(nullptr)),
      m_widths(std::size_t{kLastSideBySide} + 1, kUnknownWidth) {
  SelectObject(m_dc.Get(), m_font.Get());
  m_height = static_cast<int>(MeasureTextIn(m_dc.Get(), u"...").cy);
  GetCharWidth32W(m_dc.Get(), 0, kLastAscii, m_widths.data());
}

int TTextMeter::Width(TextView text) const {
  int width = 0;
  for (const char16_t unit : text) {
    const std::optional<int> ofUnit = WidthOfUnit(unit);
    if (!ofUnit)
      return static_cast<int>(MeasureTextIn(m_dc.Get(), text).cx);
    width += *ofUnit;
  }
  return width;
}

std::optional<int> TTextMeter::WidthOfUnit(char16_t unit) const {
  if (unit > kLastSideBySide)
    return std::nullopt;
  int& width = m_widths[unit];
  if (width == kUnknownWidth && StandsSideBySide(unit))
    width = static_cast<int>(MeasureTextIn(m_dc.Get(), {&unit, 1}).cx);
  return width == kUnknownWidth ? std::nullopt : std::optional(width);
}

}  // namespace corvalt
