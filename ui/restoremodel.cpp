#include "ui/restoremodel.h"

#include <utility>

#include "core/functions.h"
#include "core/languagetexts.h"
#include "system/systemerror.h"

namespace corvalt {

TRestoreModel::TRestoreModel(TSystem& system, const TGlobalVars& vars, std::function<void()> showBusy)
    : m_system(system), m_vars(vars), m_showBusy(std::move(showBusy)), m_store(system, vars) {
}

void TRestoreModel::Fill() {
  m_rows.clear();
  try {
    List();
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_system.Locale);
    ShowFailure(Plain(TextId::BackupsNotListed, reason));
  }
}

void TRestoreModel::List() {
  const std::vector<TBackup> backups = BackupsNewestFirst(m_system, m_vars);
  m_rows.clear();
  for (const TBackup& backup : backups) {
    const Text caption = Plain(TextId::BackupRowPrefix) + u" - " + BackupTimeText(backup, m_system.Locale);
    m_rows.push_back({caption, FormatSize(backup.Size, m_system.Locale), backup.Name});
  }
}

void TRestoreModel::Restore(std::size_t row) {
  const TRestoreRow& chosen = m_rows.at(row);
  const TAnswer answer = m_system.MessageBoxes.ShowMessage(
      Plain(TextId::ConfirmRestore, chosen.Caption), Plain(TextId::TitleConfirm), TMessageKind::Question);
  if (answer == TAnswer::No)
    return;
  m_showBusy();
  TRestoreGuide guide;
  guide.GoOn = [this](TRestoreDoubt doubt, const TBackupOrigin& origin) {
    return WantsAnyway(doubt, origin);
  };
  const TRestoreOutcome outcome = RestoreBackup(m_system, m_vars, chosen.BackupName.Value(), guide);
  if (outcome.End == TRestoreEnd::Refused)
    return;
  const Text told = DescribeRestore(outcome, chosen.Caption, m_vars, m_system.Locale);
  if (outcome.End == TRestoreEnd::Restored)
    m_system.MessageBoxes.ShowMessage(told, Plain(TextId::TitleInformation), TMessageKind::Information);
  else
    ShowFailure(told);
}

bool TRestoreModel::WantsAnyway(TRestoreDoubt doubt, const TBackupOrigin& origin) {
  const Text question = DescribeDoubt(doubt, origin, m_vars) + u"\r\n" + Plain(TextId::RestoreAnyway);
  if (m_system.MessageBoxes.ShowMessage(question, Plain(TextId::TitleConfirm), TMessageKind::Question) !=
      TAnswer::Yes)
    return false;
  m_showBusy();
  return true;
}

bool TRestoreModel::Remove(std::size_t row) {
  const TRestoreRow& chosen = m_rows.at(row);
  try {
    m_store.RemoveBackup(chosen.BackupName);
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_system.Locale);
    TellNotRemoved(chosen, reason);
    return false;
  }
  m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
  return true;
}

// A backup whose file is gone was removed, though it is still listed or its log is still there.
void TRestoreModel::TellNotRemoved(const TRestoreRow& row, TextView reason) {
  const Text notRemoved = Plain(TextId::BackupNotRemoved, row.Caption, reason);
  bool fileIsGone = false;
  try {
    fileIsGone = !m_store.HasFile(row.BackupName);
    List();
  } catch (...) {
    // The failure to tell is the one that led here.
  }
  ShowFailure(fileIsGone ? reason : TextView(notRemoved));
}

std::optional<TBackupView> TRestoreModel::View(std::size_t row) {
  const TRestoreRow& chosen = m_rows.at(row);
  std::vector<std::uint8_t> bytes;
  const TSystemError error = m_store.ReadBackup(chosen.BackupName, bytes);
  if (!error.Failed())
    return TBackupView{chosen.Caption, BackupViewText(bytes, m_system.Locale)};
  TRestoreOutcome outcome;
  outcome.End = error.Code == kErrorFileNotFound ? TRestoreEnd::NoFile : TRestoreEnd::Unreadable;
  outcome.Error = error;
  ShowFailure(DescribeRestore(outcome, chosen.Caption, m_vars, m_system.Locale));
  return std::nullopt;
}

void TRestoreModel::ShowFailure(TextView text) {
  m_system.MessageBoxes.ShowMessage(text, Plain(TextId::TitleError), TMessageKind::Failure);
}

Text TRestoreModel::Plain(TextId id, TextView arg1, TextView arg2) const {
  return PlainLanguageText(m_vars.Texts, id, arg1, arg2);
}

}  // namespace corvalt
