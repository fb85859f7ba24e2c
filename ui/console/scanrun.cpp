#include "ui/console/scanrun.h"

#include "scan/threadscan.h"
#include "ui/console/output.h"
#include "ui/console/progressline.h"

namespace corvalt {

TScanOutcome RunScan(TConsoleContext& context, TSectionsTree& sections, TResultsTree& results, bool quiet) {
  TProgressLine line(context.Console, quiet);
  TScanOutcome outcome;
  TScan* scan = nullptr;
  const auto onFinished = [&](TWorkerThread& thread) {
    outcome.Failure = thread.FatalException();
    scan = nullptr;
  };
  const auto cancel = [&] {
    if (scan == nullptr)
      return;
    scan->Terminate();
    outcome.Cancelled = true;
  };
  const TScanContext scanContext = {context.System, context.Vars,     context.Reg, sections,
                                    results,        context.UiThread, onFinished};
  scan = &TWorkerThread::Launch<TScan>(scanContext, line);
  {
    const TInterruptHandler handler(context.Console, [&] { context.UiThread.Post(cancel); });
    context.UiThread.RunUntil([&scan] { return scan == nullptr; });
  }
  // An interrupt may have come when the scan had just ended.
  context.UiThread.RunPending();
  line.Clear();
  return outcome;
}

void TellOutcome(TConsoleContext& context, const TScanOutcome& outcome) {
  if (outcome.Failure) {
    TellReason(context, TextId::ScanFailed, DescribeException(outcome.Failure, context.System.Locale));
  } else if (outcome.Cancelled) {
    context.Console.Tell(u"Scan cancelled: only what was found until then is reported.");
  }
}

}  // namespace corvalt
