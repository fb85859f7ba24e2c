#include "ui/console/scanrun.h"

#include "scan/threadscan.h"
#include "ui/console/output.h"

namespace corvalt {

TWorkerEnd RunScan(TConsoleContext& context, const TSectionsTree& sections, TResultsTree& results,
                   TScanRun run) {
  TGlobalVars vars = context.Vars;
  if (run.Words == TScanWords::English)
    vars.Texts.Selected = vars.Texts.English;
  return RunWorker<TScan>(context, run.Quiet, [&](const TWorkerThread::TEndHandler& onFinished) {
    return TScanContext{.System = context.System,
                        .Vars = vars,
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
