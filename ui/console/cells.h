// How many columns of a terminal a text takes.
#pragma once

#include <cstddef>

#include "base/text.h"

namespace corvalt {

// Of one character: 2 for those that East Asian terminals draw twice as wide, 0 for marks that are drawn over
// the character before them, else 1 (Unicode Standard Annex 11, unicode.org/reports/tr11).
int CellsOf(char32_t character);

// The longest beginning of the text that fits into this many cells, and how many it takes. No character is
// cut in half. A lone surrogate takes one cell.
struct TFittingText {
  TextView Text;
  std::size_t Cells = 0;
};
TFittingText FitIntoCells(TextView text, std::size_t cells);

// How many units of the text make a line of this many cells: up to a blank, or between two characters of
// Chinese or Japanese, which have no blanks between words, but with no closing mark at a line's beginning and
// no opening one at its end. A longer word than that makes a line of its own.
std::size_t LineLength(TextView text, std::size_t cells);

}  // namespace corvalt
