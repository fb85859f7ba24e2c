#include "ui/console/repairrun.h"

#include "ui/console/workerrun.h"

namespace corvalt {

TRepairOutcome RunRepair(TConsoleContext& context, TResultsTree& results, bool mayGoWithoutBackup) {
  TRepairOutcome outcome;
  const auto makeContext = [&](const TWorkerThread::TEndHandler& onFinished) {
    return TCleaningContext{.System = context.System,
                            .Vars = context.Vars,
                            .Results = results,
                            .UiThread = context.UiThread,
                            .OnFinished = onFinished,
                            .MayGoWithoutBackup = mayGoWithoutBackup};
  };
  const TWorkerEnd end = RunWorker<TCleaning>(context, false, makeContext, [&outcome](TCleaning& cleaning) {
    outcome.Cleaning = cleaning.Outcome();
  });
  outcome.Failure = end.Failure;
  return outcome;
}

}  // namespace corvalt
