#include "tests/support/repairrig.h"

#include "repair/restoredeleted.h"
#include "system/systemerror.h"

namespace corvalt {

namespace {

class TWatchedDialog : public TRecordingDialog {
 public:
  explicit TWatchedDialog(std::function<void(const std::string&)> onUpdate)
      : m_onUpdate(std::move(onUpdate)) {
  }
  void SetSectionLabel(TextView text) override {
    TRecordingDialog::SetSectionLabel(text);
    m_onUpdate(Updates.back());
  }
  void SetItemLabel(TextView text) override {
    TRecordingDialog::SetItemLabel(text);
    m_onUpdate(Updates.back());
  }

 private:
  std::function<void(const std::string&)> m_onUpdate;
};

}  // namespace

ScanProblem KeyProblem(TRootKey rootKey, TextView keyPath, std::int32_t imageIndex) {
  ScanProblem problem;
  problem.RootKey = rootKey;
  problem.KeyPath = keyPath;
  problem.Kind = TProblemKind::Key;
  problem.ImageIndex = imageIndex;
  return problem;
}

ScanProblem ValueProblem(TRootKey rootKey, TextView keyPath, TextView valueName, std::int32_t imageIndex) {
  ScanProblem problem = KeyProblem(rootKey, keyPath, imageIndex);
  problem.ValueName = valueName;
  problem.Kind = TProblemKind::Value;
  return problem;
}

ScanProblem FileProblem(TextView path) {
  ScanProblem problem;
  problem.KeyPath = path;
  problem.Kind = TProblemKind::File;
  return problem;
}

TRepairRig::TRepairRig(TNameOrder order) : TScanRig(order) {
}

TResultsNode* TRepairRig::AddSection(TextView caption, std::int32_t imageIndex) {
  TResultsNode* section = Results.AddNode(nullptr);
  section->Problem.SectionCaption = caption;
  section->Problem.ImageIndex = imageIndex;
  return section;
}

TResultsNode* TRepairRig::AddProblem(TResultsNode* section, const ScanProblem& problem) {
  TResultsNode* node = Results.AddNode(section);
  node->Problem = problem;
  return node;
}

void TRepairRig::Uncheck(TResultsNode* node) {
  Results.Model().SetChecked(node, false);
}

void TRepairRig::Repair(const TOnUpdate& onUpdate) {
  TSystem system = System.Bundle();
  bool finished = false;
  TCleaning* cleaning = nullptr;
  TWatchedDialog dialog([&](const std::string& update) {
    if (onUpdate)
      onUpdate(update, *cleaning);
  });
  const auto onFinished = [&](TWorkerThread& thread) {
    Outcome = static_cast<TCleaning&>(thread).Outcome();
    FailureText = EncodeUtf8(DescribeException(thread.FatalException(), System.Locale));
    finished = true;
  };
  // The thread's first step on the dialog is a call of this thread, so that cleaning is set before it.
  cleaning = &TWorkerThread::Launch<TCleaning>(
      TCleaningContext{
          .System = system, .Vars = Vars, .Results = Results, .UiThread = UiThread, .OnFinished = onFinished},
      dialog);
  UiThread.RunUntil([&finished] { return finished; });
  Updates = dialog.Updates;
}

std::vector<std::string> TRepairRig::Unmarked() {
  std::vector<std::string> lines;
  for (const ScanProblem& problem : Problems()) {
    if (!problem.StateFlag2)
      lines.push_back(EncodeUtf8(problem.KeyPath + u"|" + problem.ValueName));
  }
  return lines;
}

std::vector<TBackup> TRepairRig::Backups() {
  TSystem system = System.Bundle();
  return BackupsNewestFirst(system, Vars);
}

std::string TRepairRig::BackupText() {
  const std::vector<TBackup> backups = Backups();
  if (backups.size() != 1)
    return {};
  return System.Disk.Content(Vars.SuiteBackupsFolder + backups.front().Name.Value()).value_or(std::string());
}

TRestoreEnd TRepairRig::RestoreTheBackup() {
  TSystem system = System.Bundle();
  return RestoreBackup(system, Vars, Backups().at(0).Name.Value()).End;
}

}  // namespace corvalt
