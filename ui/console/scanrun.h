// A scan without a window, for the commands that begin with one.
#pragma once

#include <exception>

#include "scan/scantrees.h"
#include "ui/console/console.h"

namespace corvalt {

struct TScanOutcome {
  std::exception_ptr Failure;  // what ended the scan early; null after a normal end
  bool Cancelled = false;      // by the interrupt key
};

// Scans the ticked sections into results, to the end or until the interrupt key cancels it. Shows its
// progress on the console unless quiet.
TScanOutcome RunScan(TConsoleContext& context, TSectionsTree& sections, TResultsTree& results, bool quiet);

// Tells that the scan failed or was cancelled.
void TellOutcome(TConsoleContext& context, const TScanOutcome& outcome);

}  // namespace corvalt
