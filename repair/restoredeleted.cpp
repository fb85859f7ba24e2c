#include "repair/restoredeleted.h"

#include <algorithm>

#include "base/lettercase.h"
#include "core/languagetexts.h"

namespace corvalt {

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
    return CompareIgnoringCase(a.Name.Value(), b.Name.Value()) > 0;
  });
  return backups;
}

Text BackupTimeText(const TBackup& backup, TLocale& locale) {
  return locale.FormatShortDate(backup.Created) + u" " + locale.FormatLongTime(backup.Created);
}

TRestoreOutcome RestoreBackup(TSystem& system, const TGlobalVars& vars, TextView backupName) {
  TRestoreOutcome outcome;
  std::vector<std::uint8_t> bytes;
  const std::optional<TBackupName> name = TBackupName::FromText(backupName);
  outcome.Error =
      name ? BackupStore(system, vars).ReadBackup(*name, bytes) : TSystemError{kErrorFileNotFound};
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

}  // namespace corvalt
