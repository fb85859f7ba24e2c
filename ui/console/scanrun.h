// A scan without a window, for the commands that begin with one.
#pragma once

#include "scan/scantrees.h"
#include "ui/console/console.h"
#include "ui/console/workerrun.h"

namespace corvalt {

// Scans the ticked sections into results, to the end or until the interrupt key cancels it. Shows its
// progress on the console unless quiet.
TWorkerEnd RunScan(TConsoleContext& context, const TSectionsTree& sections, TResultsTree& results,
                   bool quiet);

// Tells that the scan failed or was cancelled.
void TellOutcome(TConsoleContext& context, const TWorkerEnd& outcome);

}  // namespace corvalt
