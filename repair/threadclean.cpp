#include "repair/threadclean.h"

#include <utility>

#include "core/languagetexts.h"
#include "system/systemerror.h"

namespace corvalt {

namespace {

constexpr TextView kBackupStatus = u"Backup ...";

std::int32_t PercentOf(std::size_t part, std::size_t whole) {
  return static_cast<std::int32_t>(part * 100 / whole);
}

}  // namespace

TCleaning::TCleaning(TCleaningContext context, TProgressDialog& ownerDialog)
    : TWorkerThread(context.UiThread),
      m_context(std::move(context)),
      m_store(m_context.System, m_context.Vars, [this] { return Terminated(); }),
      OwnerDialog(ownerDialog) {
  Start();
}

void TCleaning::Execute() {
  SetOnTerminate(m_context.OnFinished);
  ForEachProblem(m_context.Results, [this](const TResultsNode* node) {
    ++m_total;
    if (IsChecked(node))
      ++m_checked;
  });
  m_outcome.NotReached = m_checked;
  try {
    Repair();
  } catch (const TBackupWorkStopped&) {
    // The user has cancelled before the first deletion.
  }
}

void TCleaning::Repair() {
  TDeletionRight right = PrepareDeletions();
  m_outcome.BackupMade = true;
  try {
    DeleteLogged(std::move(right));
    m_store.ReleaseBackup();
  } catch (...) {
    EndWith(TextId::RepairFailed);
  }
}

// However the deletions end, what was changed until then is in the log.
void TCleaning::DeleteLogged(TDeletionRight right) {
  TBackupLog log(m_context.System, m_context.Vars, m_backup, TBackupLog::TRun::Repair);
  TLoggedSystem logged(m_context.System, log);
  TSystem system = logged.Bundle();
  try {
    TProblemDeleter deleter(system, std::move(right));
    DeleteProblems(deleter);
  } catch (...) {
    FinishLog(log);
    throw;
  }
  FinishLog(log);
}

void TCleaning::FinishLog(TBackupLog& log) {
  log.Finish();
  m_outcome.LogFailure = DescribeException(log.Failure(), m_context.System.Locale);
}

TDeletionRight TCleaning::PrepareDeletions() {
  try {
    std::optional<TDeletionRight> right;
    if (m_context.MayGoWithoutBackup)
      right = TDeletionRight::WithoutBackup(m_context.System);
    if (!right)
      return MakeBackup();
    ForEachProblem(m_context.Results, [this, &right](const TResultsNode* node) {
      if (IsChecked(node))
        FindPlaces(m_context.System.Raw, *right, m_context.Results.Data(node));
    });
    return *std::move(right);
  } catch (const TBackupWorkStopped&) {
    throw;
  } catch (...) {
    EndWith(TextId::RepairFailedBeforeDeletion);
  }
}

// Ends the thread for the reason that is being handled.
void TCleaning::EndWith(TextId id) const {
  const Text reason = DescribeException(std::current_exception(), m_context.System.Locale);
  throw TProgramException(PlainLanguageText(m_context.Vars.Texts, id, reason));
}

TDeletionRight TCleaning::MakeBackup() {
  StatusText = kBackupStatus;
  Percent = 0;
  UpdateStatus();
  const TBackupName name = m_store.BeginBackup();
  try {
    BackUpChecked();
  } catch (...) {
    m_store.AbandonBackup();
    throw;
  }
  TDeletionRight right = m_store.CommitBackup(name);
  m_outcome.BackupName = name.Value();
  m_backup = name;
  return right;
}

void TCleaning::BackUpChecked() {
  std::size_t done = 0;
  ForEachProblem(m_context.Results, [this, &done](const TResultsNode* node) {
    if (IsChecked(node))
      BackUp(m_context.Results.Data(node), done++);
  });
}

void TCleaning::BackUp(const ScanProblem& problem, std::size_t done) {
  // A problem that is backed up counts twice in the total that the percentages of the deletions are taken of.
  ++m_total;
  ItemText.clear();
  Percent = PercentOf(done, m_checked);
  UpdateItem();
  BackUpProblem(m_store, problem);
}

void TCleaning::DeleteProblems(TProblemDeleter& deleter) {
  const TResultsTree& results = m_context.Results;
  ForEachHeader(results, [&](const TResultsNode* header) {
    if (Terminated())
      return;
    if (IsChecked(header)) {
      StatusText = Plain(TextId::RepairingSection) + u" " + results.Data(header).SectionCaption + u"...";
      UpdateStatus();
    }
    DeleteChecked(header, deleter);
  });
}

void TCleaning::DeleteChecked(const TResultsNode* header, TProblemDeleter& deleter) {
  ForEachProblem(m_context.Results, header, [&](TResultsNode* node) {
    if (Terminated() || !IsChecked(node))
      return;
    DeleteProblem(node, deleter);
    ++m_deletions;
  });
}

void TCleaning::DeleteProblem(TResultsNode* node, TProblemDeleter& deleter) {
  const ScanProblem& problem = m_context.Results.Data(node);
  const TDeletionResult result = deleter.Delete(problem);
  --m_outcome.NotReached;
  if (result.Deletion == TDeletion::NotCovered) {
    m_outcome.NotSaved.push_back(node);
    return;
  }
  (result.Deletion == TDeletion::Deleted ? m_outcome.Deleted : m_outcome.Failed).push_back(node);
  CurrentNode = node;
  ItemText = ItemTextOf(problem, result);
  Percent = PercentOf(m_deletions + 1, m_total);
  UpdateItem();
}

Text TCleaning::ItemTextOf(const ScanProblem& problem, const TDeletionResult& result) const {
  if (problem.Kind == TProblemKind::Key)
    return Plain(TextId::DeletingKey) + u" ";
  if (problem.Kind == TProblemKind::File)
    return Plain(TextId::DeletingFile) + u" " + problem.KeyPath;
  if (!result.KeyOpened)
    return {};
  return Plain(TextId::DeletingValue) + u" " + problem.KeyPath + u" - " + problem.ValueName;
}

void TCleaning::UpdateStatus() {
  Synchronize([this] {
    if (Terminated())
      return;
    OwnerDialog.SetSectionLabel(StatusText);
    OwnerDialog.SetItemLabel({});
    OwnerDialog.SetOverallPosition(Percent);
  });
}

void TCleaning::UpdateItem() {
  Synchronize([this] {
    // A node whose entry was deleted is marked also after Cancel; labels and bars no longer move then.
    if (CurrentNode != nullptr)
      m_context.Results.Data(CurrentNode).StateFlag2 = true;
    if (Terminated())
      return;
    OwnerDialog.SetItemLabel(ItemText);
    OwnerDialog.SetSectionPosition(Percent);
  });
}

bool TCleaning::IsChecked(const TResultsNode* node) const {
  return m_context.Results.CheckState(node) == TCheckState::Checked;
}

Text TCleaning::Plain(TextId id) const {
  return PlainLanguageText(m_context.Vars.Texts, id);
}

}  // namespace corvalt
