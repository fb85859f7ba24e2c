#include "ui/console/scanrun.h"

#include "scan/threadscan.h"
#include "ui/console/output.h"

namespace {

// The progress dialog as one line: "45%  Scanning File Extensions...  .abc".
class TProgressLine : public TProgressDialog {
 public:
  TProgressLine(TConsole& console, bool quiet) : m_console(console), m_quiet(quiet) {
  }

  void SetSectionLabel(TextView text) override {
    m_section = PlainText(text);
    Show();
  }
  void SetItemLabel(TextView text) override {
    m_item = text;
    Show();
  }
  void SetOverallPosition(std::int32_t position) override {
    m_position = position;
    Show();
  }
  // The line has no room for a second number.
  void SetSectionPosition(std::int32_t) override {
  }

  void Clear() {
    if (!m_quiet)
      m_console.ShowProgress({});
  }

 private:
  void Show() {
    if (!m_quiet)
      m_console.ShowProgress(DecimalText(m_position) + u"%  " + m_section + u"  " + m_item);
  }

  TConsole& m_console;
  bool m_quiet;
  std::int32_t m_position = 0;
  Text m_section;
  Text m_item;
};

// Lets the interrupt key do something else than end the program, for its lifetime.
class TInterruptHandler {
 public:
  TInterruptHandler(TConsole& console, std::function<void()> handler) : m_console(console) {
    m_console.SetInterruptHandler(std::move(handler));
  }
  ~TInterruptHandler() {
    m_console.SetInterruptHandler({});
  }
  TInterruptHandler(const TInterruptHandler&) = delete;
  TInterruptHandler& operator=(const TInterruptHandler&) = delete;

 private:
  TConsole& m_console;
};

}  // namespace

TScanOutcome RunScan(TConsoleContext& context, SectionsTree& sections, ResultsTree& results, bool quiet) {
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
