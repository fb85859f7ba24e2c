#include "ui/backupview.h"

#include <cmath>

#include "formats/regfilereader.h"
#include "formats/textfile.h"

namespace corvalt {

namespace {

constexpr char16_t kSymbolForNul = 0x2400;
constexpr TextView kLineEnd = u"\r\n";

}  // namespace

Text BackupViewText(std::span<const std::uint8_t> bytes, TLocale& locale) {
  const Text text = CodePageOfFile(bytes, locale).Decode(AsCharacters(bytes));
  Text shown;
  shown.reserve(text.size() + text.size() / 16);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit == u'\r' || unit == u'\n') {
      shown += kLineEnd;
      if (TextView(text).substr(i, 2) == kLineEnd)
        ++i;
    } else {
      shown.push_back(unit == u'\0' ? kSymbolForNul : unit);
    }
  }
  return shown;
}

int CenteredLeft(int windowWidth, int buttonWidth) {
  // The default rounding mode rounds a half to the even neighbour.
  return static_cast<int>(std::nearbyint((windowWidth - buttonWidth) / 2.0));
}

}  // namespace corvalt
