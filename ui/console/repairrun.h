// A repair without a window.
#pragma once

#include <exception>

#include "repair/threadclean.h"
#include "scan/scantrees.h"
#include "ui/console/console.h"

namespace corvalt {

struct TRepairOutcome {
  TCleaningOutcome Cleaning;
  std::exception_ptr Failure;  // what ended the repair early; null after a normal end
};

// Repairs what is checked in results, to the end or until the interrupt key cancels it. Shows its progress on
// the console.
TRepairOutcome RunRepair(TConsoleContext& context, TResultsTree& results, bool mayGoWithoutBackup);

}  // namespace corvalt
