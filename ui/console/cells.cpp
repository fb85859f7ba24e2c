#include "ui/console/cells.h"

#include <algorithm>
#include <array>

#include "base/characters.h"

namespace corvalt {

namespace {

struct TRange {
  char32_t First;
  char32_t Last;
};

// Ranges of the property East_Asian_Width W and F, joined where only unassigned numbers lie between.
constexpr std::array kWide = std::to_array<TRange>({
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},
    {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},   {0x2648, 0x2653},   {0x267F, 0x267F},
    {0x2693, 0x2693},   {0x26A1, 0x26A1},   {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},
    {0x26CE, 0x26CE},   {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},
    {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},
    {0x27B0, 0x27B0},   {0x27BF, 0x27BF},   {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},
    {0x2E80, 0x303E},   {0x3041, 0x3247},   {0x3250, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x16FE0, 0x18CFF}, {0x1AFF0, 0x1B2FF}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF},
    {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C},
    {0x1F37E, 0x1F393}, {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4},
    {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F567},
    {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5},
    {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D7}, {0x1F6DC, 0x1F6DF}, {0x1F6EB, 0x1F6EC}, {0x1F6F4, 0x1F6FC},
    {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1FAFF}, {0x20000, 0x3FFFD},
});

// The blocks of combining marks, the joiners and the variation selectors.
constexpr std::array kMarks = std::to_array<TRange>({
    {0x0300, 0x036F},
    {0x0483, 0x0489},
    {0x0591, 0x05BD},
    {0x064B, 0x065F},
    {0x1AB0, 0x1AFF},
    {0x1DC0, 0x1DFF},
    {0x200B, 0x200F},
    {0x20D0, 0x20FF},
    {0x302A, 0x302D},
    {0x3099, 0x309A},
    {0xFE00, 0xFE0F},
    {0xFE20, 0xFE2F},
    {0xFEFF, 0xFEFF},
    {0xE0100, 0xE01EF},
});

template <std::size_t kCount>
bool IsIn(const std::array<TRange, kCount>& ranges, char32_t character) {
  const auto range = std::lower_bound(ranges.begin(), ranges.end(), character,
                                      [](const TRange& each, char32_t wanted) { return each.Last < wanted; });
  return range != ranges.end() && range->First <= character;
}

// Twice as wide, but not the Korean script, which has blanks between its words.
bool NeedsNoBlank(char16_t unit) {
  const bool isKorean = (unit >= 0x1100 && unit <= 0x11FF) || (unit >= 0xAC00 && unit <= 0xD7AF);
  return CellsOf(unit) == 2 && !isKorean;
}

// Between the unit before this position and the one at it ("Requirements for Japanese Text Layout",
// w3.org/TR/jlreq).
bool MayBreakAt(TextView text, std::size_t position) {
  constexpr TextView kNotFirst = u"\u3001\u3002\u300D\u300F\uFF01\uFF09\uFF0C\uFF1A\uFF1B\uFF1F,.:;!?)%\"";
  constexpr TextView kNotLast = u"\u300C\u300E\uFF08(\"";
  const char16_t before = text[position - 1];
  const char16_t after = text[position];
  return (NeedsNoBlank(before) || NeedsNoBlank(after)) && kNotFirst.find(after) == TextView::npos &&
         kNotLast.find(before) == TextView::npos;
}

}  // namespace

int CellsOf(char32_t character) {
  if (IsIn(kMarks, character))
    return 0;
  return IsIn(kWide, character) ? 2 : 1;
}

TFittingText FitIntoCells(TextView text, std::size_t cells) {
  std::size_t units = 0;
  std::size_t taken = 0;
  while (units < text.size()) {
    const TCharacter character = FirstCharacter(text.substr(units));
    const auto wanted = static_cast<std::size_t>(CellsOf(character.Value));
    if (taken + wanted > cells)
      break;
    taken += wanted;
    units += character.Units;
  }
  return {text.substr(0, units), taken};
}

std::size_t LineLength(TextView text, std::size_t cells) {
  const std::size_t fitting = FitIntoCells(text, cells).Text.size();
  if (fitting == text.size())
    return fitting;
  for (std::size_t position = fitting; position > 0; --position) {
    if (text[position] == u' ' || MayBreakAt(text, position))
      return position;
  }
  return std::min(text.find(u' ', fitting), text.size());
}

}  // namespace corvalt
