// A scan without a window, for the commands that begin with one.
#pragma once

#include "scan/scantrees.h"
#include "ui/console/console.h"
#include "ui/console/workerrun.h"

namespace corvalt {

// The words in which problems are described: the user's, or English ones where they are written as JSON too,
// so that programs read the same on every machine.
enum class TScanWords { OfTheUser, English };

struct TScanRun {
  TScanWords Words = TScanWords::OfTheUser;
  bool Quiet = false;  // shows no progress on the console
};

// Scans the ticked sections into results, to the end or until the interrupt key cancels it.
TWorkerEnd RunScan(TConsoleContext& context, const TSectionsTree& sections, TResultsTree& results,
                   TScanRun run);

// Tells that the scan failed or was cancelled.
void TellOutcome(TConsoleContext& context, const TWorkerEnd& outcome);

}  // namespace corvalt
