#include "ui/regmain.h"

#include <algorithm>

#include "repair/ignorereg.h"
#include "system/systemerror.h"
#include "ui/regjump.h"
#include "ui/report.h"

namespace corvalt {

namespace {

// Whether any section is ticked. A group's own check mark does not tell: one that is ticked in part looks
// like an unticked one to the group above it after a start.
bool AnyTicked(const std::vector<std::unique_ptr<TTreeNode>>& nodes) {
  return std::any_of(nodes.begin(), nodes.end(), [](const std::unique_ptr<TTreeNode>& node) {
    return node->Children.empty() ? node->State == TCheckState::Checked : AnyTicked(node->Children);
  });
}

}  // namespace

// The dialog is remembered as long as it is open. However it is left, the thread that it shows is told to
// stop before the dialog goes, and so never reaches it again. The thread runs on to its next check; nobody
// waits for it.
class TRegMain::TOpenDialog {
 public:
  TOpenDialog(TRegMain& main, TProgressView& dialog) : m_main(main) {
    m_main.m_progress = &dialog;
  }
  ~TOpenDialog() {
    m_main.m_progress = nullptr;
    m_main.StopRun();
    m_main.ActionsChanged();
  }
  TOpenDialog(const TOpenDialog&) = delete;
  TOpenDialog& operator=(const TOpenDialog&) = delete;

 private:
  TRegMain& m_main;
};

TRegMain::TRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread,
                   TRegMainView& view)
    : m_system(system),
      m_vars(vars),
      m_reg(reg),
      m_uiThread(uiThread),
      m_view(view),
      m_results([this](TextView text) { return m_measure ? m_measure(text) : 0; }),
      m_rows(m_results, vars.Texts,
             {[this] { return ConfirmIgnore(); },
              [this](const Text& entry) { AddIgnoreEntry(m_system, m_reg, entry); },
              [this] { UpdateSummary(); }}) {
}

void TRegMain::StartMaintenance() {
  const TPrepareContext context = {
      .System = m_system,
      .Vars = m_vars,
      .UiThread = m_uiThread,
      .OnFinished = [this](TWorkerThread& thread) { MaintenanceFinished(thread); }};
  m_prepare = &TWorkerThread::Launch<TPrepare>(context);
  ActionsChanged();
}

void TRegMain::LoadSections() {
  m_sections.LoadChecks(m_system);
}

void TRegMain::SaveSettings() {
  m_sections.SaveChecks(m_system);
  SaveCleanerSettings(m_system, m_reg);
}

void TRegMain::TerminateThreads() {
  if (m_scan != nullptr)
    m_scan->Terminate();
  if (m_cleaning != nullptr)
    m_cleaning->Terminate();
  if (m_prepare != nullptr)
    m_prepare->Terminate();
}

bool TRegMain::CanRepair() const {
  return !AnyThreadRuns() && CanExport();
}

bool TRegMain::CanExport() const {
  return !WorkerRuns() && m_results.Model().TotalCount() != 0;
}

void TRegMain::Scan() {
  if (!CanScan())
    return;
  if (!AnyTicked(m_sections.Model().Roots())) {
    m_system.MessageBoxes.ShowMessage(Plain(TextId::HintScan), Plain(TextId::TitleInformation),
                                      TMessageKind::Information);
    return;
  }
  m_rows.ForgetSelection();
  m_results.Clear();
  ActionsChanged();
  m_view.ResultsChanged();
  if (RunWithProgress(TProgressMode::Scan) == TProgressEnd::RepairWanted)
    Repair();
}

void TRegMain::Repair() {
  if (!CanRepair())
    return;
  m_rows.ForgetSelection();
  m_view.ResultsChanged();
  RunWithProgress(TProgressMode::Repair);
}

TProgressEnd TRegMain::RunWithProgress(TProgressMode mode) {
  const std::unique_ptr<TProgressView> progress = m_view.CreateProgress(mode);
  const TOpenDialog open(*this, *progress);
  m_scanned = false;
  m_runEnd = TRunEnd::Complete;
  if (mode == TProgressMode::Scan) {
    const TScanContext context = {.System = m_system,
                                  .Vars = m_vars,
                                  .Reg = m_reg,
                                  .Sections = m_sections,
                                  .Results = m_results,
                                  .UiThread = m_uiThread,
                                  .OnFinished = [this](TWorkerThread& thread) { ScanFinished(thread); }};
    m_scan = &TWorkerThread::Launch<TScan>(context, *progress);
  } else {
    const TCleaningContext context = {
        .System = m_system,
        .Vars = m_vars,
        .Results = m_results,
        .UiThread = m_uiThread,
        .OnFinished = [this](TWorkerThread& thread) { CleaningFinished(thread); }};
    m_cleaning = &TWorkerThread::Launch<TCleaning>(context, *progress);
  }
  ActionsChanged();
  return progress->ShowModal();
}

void TRegMain::StopRun() {
  if (m_scan != nullptr)
    m_scan->Terminate();
  if (m_cleaning != nullptr)
    m_cleaning->Terminate();
}

// A failure is shown last, when everything else is done: messages go on being handled under a message box.
void TRegMain::ScanFinished(TWorkerThread& thread) {
  m_scan = nullptr;
  if (thread.FatalException())
    m_runEnd = TRunEnd::Failed;
  m_scanned = !thread.Terminated() && !thread.FatalException();
  // The dialog learns first what its Repair button may do, and then shows it.
  ActionsChanged();
  UpdateSummary();
  m_view.ResultsChanged();
  RunEnded();
  if (thread.FatalException())
    ShowFailure(Plain(TextId::ScanFailed, DescribeException(thread.FatalException(), m_system.Locale)));
}

void TRegMain::CleaningFinished(TWorkerThread& thread) {
  const Text message = RepairMessage(m_cleaning->Outcome(), m_vars.Texts);
  const std::vector<Text> leftovers = LeftoverLines(m_cleaning->Outcome(), m_vars.Texts);
  const Text logFailure = m_cleaning->Outcome().LogFailure;
  m_cleaning = nullptr;
  if (thread.FatalException())
    m_runEnd = TRunEnd::Failed;
  m_rows.DropRemoved();
  UpdateSummary();
  m_view.ResultsChanged();
  ActionsChanged();
  // After a failure the counts stay: what is left is not what the final message would describe.
  if (m_progress != nullptr && m_runEnd == TRunEnd::Complete)
    m_progress->ShowResult(m_runEnd, message, 0);
  RunEnded();
  if (thread.FatalException())
    ShowFailure(thread.FatalException());
  else if (m_progress == nullptr)
    ShowLeftovers(leftovers);
  if (!logFailure.empty())
    ShowFailure(Plain(TextId::ChangesNotListed, logFailure));
}

// After Cancel there is no dialog that could show them.
void TRegMain::ShowLeftovers(const std::vector<Text>& lines) {
  Text message;
  for (const Text& line : lines)
    message.append(message.empty() ? u"" : u"\r\n").append(PlainText(line));
  if (!message.empty())
    m_system.MessageBoxes.ShowMessage(message, Plain(TextId::TitleInformation), TMessageKind::Information);
}

void TRegMain::RunEnded() {
  if (m_progress != nullptr)
    m_progress->RunEnded(m_runEnd);
}

void TRegMain::MaintenanceFinished(TWorkerThread& thread) {
  m_prepare = nullptr;
  ActionsChanged();
  if (thread.FatalException())
    ShowFailure(thread.FatalException());
}

void TRegMain::ActionsChanged() {
  m_view.ActionsChanged();
  if (m_progress != nullptr)
    m_progress->EnableRepair(CanRepair());
}

Text TRegMain::EmptyHint() const {
  if (WorkerRuns())
    return {};
  return Plain(m_scanned ? TextId::NoProblemFound : TextId::HintScan);
}

void TRegMain::UpdateSummary() {
  const TSummary summary = Summarize(m_results, m_vars.Texts);
  m_view.ShowSummary(summary);
  if (m_progress != nullptr)
    m_progress->ShowResult(m_runEnd, summary.FinalMessage, summary.Total);
}

void TRegMain::SaveReport(TextView fileName) {
  const std::string report = ReportBytes(m_results, m_system.Clock, m_system.Locale);
  const std::vector<std::uint8_t> bytes(report.begin(), report.end());
  const TSystemError error = m_system.Files.ReplaceFile(fileName, bytes);
  if (error.Failed()) {
    ShowFailure(Plain(TextId::ReportNotSaved, m_system.Locale.SystemMessage(error.Code)));
    return;
  }
  m_system.MessageBoxes.ShowMessage(Plain(TextId::ReportSaved) + u" " + Text(fileName),
                                    Plain(TextId::TitleInformation), TMessageKind::Information);
}

void TRegMain::OpenSelected() {
  const TResultsNode* node = m_rows.SelectedProblem();
  if (node != nullptr)
    OpenProblem(node->Problem, m_vars.WindowsVersionName, m_system);
}

void TRegMain::ShowFailure(const std::exception_ptr& failure) {
  ShowFailure(DescribeException(failure, m_system.Locale));
}

void TRegMain::ShowFailure(TextView message) {
  m_system.MessageBoxes.ShowMessage(message, Plain(TextId::TitleError), TMessageKind::Failure);
}

bool TRegMain::ConfirmIgnore() {
  return m_system.MessageBoxes.ShowMessage(Plain(TextId::ConfirmIgnore), Plain(TextId::TitleConfirm),
                                           TMessageKind::Question) == TAnswer::Yes;
}

Text TRegMain::Plain(TextId id, TextView argument) const {
  return PlainLanguageText(m_vars.Texts, id, argument);
}

}  // namespace corvalt
