#include "base/lettercase.h"

#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr std::size_t kFirstSurrogate = 0xD800;
constexpr std::size_t kBehindSurrogates = 0xE000;

using TUnits = std::array<char16_t, 0x10000>;

// Surrogates are left out: side by side they would be taken for pairs.
void Map(TUnits& units, DWORD(WINAPI* routine)(LPWSTR, DWORD)) {
  for (std::size_t unit = 0; unit < units.size(); ++unit)
    units[unit] = static_cast<char16_t>(unit);
  auto* const wide = reinterpret_cast<wchar_t*>(units.data());
  routine(wide, static_cast<DWORD>(kFirstSurrogate));
  routine(wide + kBehindSurrogates, static_cast<DWORD>(units.size() - kBehindSurrogates));
}

TLetterCaseTable AskSystem() {
  TLetterCaseTable table;
  Map(table.Upper, CharUpperBuffW);
  Map(table.Lower, CharLowerBuffW);
  return table;
}

}  // namespace

const TLetterCaseTable& SystemLetterCase() {
  static const TLetterCaseTable table = AskSystem();
  return table;
}

}  // namespace corvalt
