// The selected row of a list that selects one row at a time.
#pragma once

#include "ui/windows/controlsapi.h"

namespace corvalt {

// -1 when none is selected.
int SelectedListRow(HWND list);

// Selects the row and brings it into sight; does nothing for -1.
void SelectListRow(HWND list, int row);

}  // namespace corvalt
