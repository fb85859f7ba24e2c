#include "ui/console/repairrun.h"

#include "ui/console/progressline.h"

namespace corvalt {

TRepairOutcome RunRepair(TConsoleContext& context, TResultsTree& results, bool mayGoWithoutBackup) {
  TProgressLine line(context.Console, false);
  TRepairOutcome outcome;
  TCleaning* cleaning = nullptr;
  const auto onFinished = [&](TWorkerThread& thread) {
    outcome.Cleaning = cleaning->Outcome();
    outcome.Failure = thread.FatalException();
    cleaning = nullptr;
  };
  const auto cancel = [&] {
    if (cleaning != nullptr)
      cleaning->Terminate();
  };
  const TCleaningContext cleaningContext = {context.System,   context.Vars, results,
                                            context.UiThread, onFinished,   mayGoWithoutBackup};
  cleaning = &TWorkerThread::Launch<TCleaning>(cleaningContext, line);
  {
    const TInterruptHandler handler(context.Console, [&] { context.UiThread.Post(cancel); });
    context.UiThread.RunUntil([&cleaning] { return cleaning == nullptr; });
  }
  // An interrupt may have come when the repair had just ended.
  context.UiThread.RunPending();
  line.Clear();
  return outcome;
}

}  // namespace corvalt
