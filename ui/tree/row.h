// How a row of a tree is drawn: its picture and its lines of text.
#pragma once

#include <vector>

#include "base/text.h"
#include "scan/scanproblem.h"

namespace corvalt {

// One line of a row.
struct TRowLine {
  Text Content;
  bool Bold = false;
  bool Grey = false;
};

struct TRowLook {
  int Image = kNoImage;  // in the control's image list
  std::vector<TRowLine> Lines;
  int ControlsHeight = 0;  // of the controls that ride on the third line
};

}  // namespace corvalt
