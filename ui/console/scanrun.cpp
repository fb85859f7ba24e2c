#include "ui/console/scanrun.h"

#include "scan/threadscan.h"
#include "ui/console/output.h"

namespace corvalt {

TWorkerEnd RunScan(TConsoleContext& context, TSectionsTree& sections, TResultsTree& results, bool quiet) {
  return RunWorker<TScan>(context, quiet, [&](const TWorkerThread::TEndHandler& onFinished) {
    return TScanContext{context.System, context.Vars,     context.Reg, sections,
                        results,        context.UiThread, onFinished};
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
