#include "ui/console/scanrun.h"

#include "scan/threadscan.h"
#include "ui/console/output.h"

namespace corvalt {

TWorkerEnd RunScan(TConsoleContext& context, const TSectionsTree& sections, TResultsTree& results,
                   bool quiet) {
  return RunWorker<TScan>(context, quiet, [&](const TWorkerThread::TEndHandler& onFinished) {
    return TScanContext{.System = context.System,
                        .Vars = context.Vars,
                        .Reg = context.Reg,
                        .Sections = sections,
                        .Results = results,
                        .UiThread = context.UiThread,
                        .OnFinished = onFinished};
  });
}

void TellOutcome(TConsoleContext& context, const TWorkerEnd& outcome) {
  if (outcome.Failure) {
    TellText(context, TextId::ScanFailed, DescribeException(outcome.Failure, context.System.Locale));
  } else if (outcome.Cancelled) {
    TellText(context, TextId::ScanCancelled);
  }
}

}  // namespace corvalt
