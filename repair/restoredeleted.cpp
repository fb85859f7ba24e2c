#include "repair/restoredeleted.h"

#include <algorithm>

#include "core/functions.h"
#include "core/languagetexts.h"
#include "core/lettercase.h"
#include "core/systemerror.h"

namespace {

constexpr TextView kLineEnd = u"\r\n";

Text CountText(const TLanguageTexts& texts, TextId id, std::size_t count) {
  if (count == 0)
    return {};
  return Text(kLineEnd) + PlainText(LanguageText(texts, id, DecimalText(static_cast<std::int64_t>(count))));
}

TRestoreEnd EndOf(const TImportResult& import) {
  if (!import.HasHeader)
    return TRestoreEnd::NotABackup;
  return import.EverythingWritten() ? TRestoreEnd::Restored : TRestoreEnd::Incomplete;
}

}  // namespace

std::vector<TBackup> BackupsNewestFirst(TSystem& system, const TGlobalVars& vars) {
  std::vector<TBackup> backups = BackupStore(system, vars).ListBackups(kCleanerModuleId);
  std::stable_sort(backups.begin(), backups.end(), [](const TBackup& a, const TBackup& b) {
    return CompareIgnoringCase(a.Name, b.Name) > 0;
  });
  return backups;
}

Text BackupTimeText(const TBackup& backup, TLocale& locale) {
  return locale.FormatShortDate(backup.Created) + u" " + locale.FormatLongTime(backup.Created);
}

TRestoreOutcome RestoreBackup(TSystem& system, const TGlobalVars& vars, TextView backupName) {
  TRestoreOutcome outcome;
  std::vector<std::uint8_t> bytes;
  outcome.Error = BackupStore(system, vars).ReadBackup(backupName, bytes);
  if (outcome.Error.Code == kErrorFileNotFound)
    return outcome;
  if (outcome.Error.Failed()) {
    outcome.End = TRestoreEnd::Unreadable;
    return outcome;
  }
  outcome.Import = TIORegistry(system.Raw, system.Locale).Import(bytes);
  outcome.End = EndOf(outcome.Import);
  system.Raw.ReleaseKeys();
  return outcome;
}

Text DescribeRestore(const TRestoreOutcome& outcome, TextView rowCaption, const TGlobalVars& vars,
                     TLocale& locale) {
  const auto say = [&vars, rowCaption](TextId id, TextView reason = {}) {
    return PlainText(LanguageText(vars.Texts, id, rowCaption, reason));
  };
  switch (outcome.End) {
    case TRestoreEnd::Restored:
      return say(TextId::RestoreDone);
    case TRestoreEnd::NoFile:
      return say(TextId::BackupMissing);
    case TRestoreEnd::NotABackup:
      return say(TextId::BackupDamaged);
    case TRestoreEnd::Unreadable:
      return say(TextId::BackupUnreadable, locale.SystemMessage(outcome.Error.Code));
    case TRestoreEnd::Incomplete:
      break;
  }
  return say(TextId::RestoreIncomplete) +
         CountText(vars.Texts, TextId::LinesSkipped, outcome.Import.LinesSkipped) +
         CountText(vars.Texts, TextId::EntriesNotWritten, outcome.Import.WritesFailed);
}

TRestoreModel::TRestoreModel(TSystem& system, const TGlobalVars& vars)
    : m_system(system), m_vars(vars), m_store(system, vars) {
}

void TRestoreModel::Fill() {
  m_rows.clear();
  try {
    for (const TBackup& backup : BackupsNewestFirst(m_system, m_vars)) {
      const Text caption = Say(TextId::BackupRowPrefix) + u" - " + BackupTimeText(backup, m_system.Locale);
      m_rows.push_back({caption, FormatSize(backup.Size, m_system.Locale), backup.Name});
    }
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_system.Locale);
    ShowFailure(Say(TextId::BackupsNotListed, reason));
  }
}

void TRestoreModel::Restore(std::size_t row) {
  const TRestoreRow& chosen = m_rows.at(row);
  const TAnswer answer = m_system.TheShell.ShowMessage(Say(TextId::ConfirmRestore, chosen.Caption),
                                                       Say(TextId::TitleConfirm), TMessageKind::Question);
  if (answer == TAnswer::No)
    return;
  const TRestoreOutcome outcome = RestoreBackup(m_system, m_vars, chosen.BackupName);
  const Text told = DescribeRestore(outcome, chosen.Caption, m_vars, m_system.Locale);
  if (outcome.End == TRestoreEnd::Restored)
    m_system.TheShell.ShowMessage(told, Say(TextId::TitleInformation), TMessageKind::Information);
  else
    ShowFailure(told);
}

bool TRestoreModel::Remove(std::size_t row) {
  const TRestoreRow& chosen = m_rows.at(row);
  try {
    m_store.RemoveBackup(chosen.BackupName);
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_system.Locale);
    ShowFailure(Say(TextId::BackupNotRemoved, chosen.Caption, reason));
    return false;
  }
  m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
  return true;
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
  m_system.TheShell.ShowMessage(text, Say(TextId::TitleError), TMessageKind::Failure);
}

Text TRestoreModel::Say(TextId id, TextView arg1, TextView arg2) const {
  return PlainText(LanguageText(m_vars.Texts, id, arg1, arg2));
}
