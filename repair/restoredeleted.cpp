#include "repair/restoredeleted.h"

#include <algorithm>

#include "base/lettercase.h"
#include "core/languagetexts.h"
#include "formats/ioregistry.h"
#include "repair/backuplog.h"
#include "repair/backuporigin.h"

namespace corvalt {

namespace {

constexpr TextView kLineEnd = u"\r\n";

Text Plain(const TGlobalVars& vars, TextId id, TextView arg1 = {}, TextView arg2 = {}) {
  return PlainLanguageText(vars.Texts, id, arg1, arg2);
}

Text Number(std::size_t count) {
  return DecimalText(static_cast<std::int64_t>(count));
}

// One more line, unless the count is 0.
Text CountText(const TGlobalVars& vars, TextId id, std::size_t count) {
  return count == 0 ? Text() : Text(kLineEnd) + Plain(vars, id, Number(count));
}

Text SkippedLinesText(const TGlobalVars& vars, const TImportResult& import) {
  Text text = CountText(vars, TextId::LinesSkipped, import.LinesSkipped);
  for (const TSkippedLine& line : import.FirstSkipped)
    text.append(kLineEnd).append(Plain(vars, TextId::SkippedLine, Number(line.Number), line.Line));
  return text + CountText(vars, TextId::MoreSkippedLines, import.LinesSkipped - import.FirstSkipped.size());
}

// What keeps the file from being imported; nullopt when it can be imported. A file of an earlier release has
// no origin, and one whose numbers are missing is not whole.
std::optional<TRestoreEnd> ObstacleOf(const TRegFileFacts& facts, TSystem& system,
                                      const TRestoreGuide& guide) {
  if (facts.Origin && !IsSupported(*facts.Origin, !facts.ChecksumIsRight, system))
    return TRestoreEnd::NotSupported;
  if (facts.Origin && IsForeign(*facts.Origin, system) && !guide.GoOn(TRestoreDoubt::Foreign, *facts.Origin))
    return TRestoreEnd::Refused;
  if (!facts.IsWhole && !guide.GoOn(TRestoreDoubt::NotWhole, facts.Origin.value_or(TBackupOrigin())))
    return TRestoreEnd::Refused;
  return std::nullopt;
}

// What a restore that is complete may lack all the same.
Text LossesText(const TGlobalVars& vars, const TRestoreOutcome& outcome) {
  Text text = CountText(vars, TextId::AttributesNotWritten, outcome.Import.AttributesLost);
  if (!outcome.LogFailure.empty())
    text.append(kLineEnd).append(Plain(vars, TextId::ChangesNotListed, outcome.LogFailure));
  return text;
}

Text FailuresText(const TGlobalVars& vars, const TRestoreOutcome& outcome) {
  return SkippedLinesText(vars, outcome.Import) +
         CountText(vars, TextId::EntriesNotWritten, outcome.Import.WritesFailed) + LossesText(vars, outcome);
}

TRestoreEnd EndOf(const TImportResult& import, bool isWhole) {
  if (!import.HasHeader)
    return TRestoreEnd::NotABackup;
  if (import.Stopped)
    return TRestoreEnd::Stopped;
  if (isWhole && import.EverythingWritten())
    return TRestoreEnd::Restored;
  return import.KeysWritten + import.ValuesWritten == 0 ? TRestoreEnd::NotRestored : TRestoreEnd::Incomplete;
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

TRestoreOutcome RestoreBackup(TSystem& system, const TGlobalVars& vars, TextView backupName,
                              const TRestoreGuide& guide) {
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
  const TRegFileFacts facts = InspectRegFile(bytes, system.Locale);
  const TRegistryAtHand registry = RegistryOf(facts.Origin, system);
  if (registry.Registry == nullptr) {
    outcome.End = TRestoreEnd::NotSupported;
    return outcome;
  }
  if (const std::optional<TRestoreEnd> obstacle = ObstacleOf(facts, system, guide)) {
    outcome.End = *obstacle;
    return outcome;
  }
  TBackupLog log(system, vars, name, TBackupLog::TRun::Restore);
  TLoggedRawRegistry logged(*registry.Registry, log);
  outcome.Import = TIORegistry(logged, system.Locale).Import(bytes, {false, guide.Stop});
  log.Finish();
  outcome.LogFailure = DescribeException(log.Failure(), system.Locale);
  outcome.End = EndOf(outcome.Import, facts.IsWhole);
  return outcome;
}

Text DescribeDoubt(TRestoreDoubt doubt, const TBackupOrigin& origin, const TGlobalVars& vars) {
  if (doubt == TRestoreDoubt::NotWhole)
    return Plain(vars, TextId::BackupNotWhole);
  return Plain(vars, TextId::BackupForeign, origin.Computer, origin.UserSid);
}

Text DescribeRestore(const TRestoreOutcome& outcome, TextView rowCaption, const TGlobalVars& vars,
                     TLocale& locale) {
  const auto say = [&vars, rowCaption](TextId id, TextView reason = {}) {
    return Plain(vars, id, rowCaption, reason);
  };
  switch (outcome.End) {
    case TRestoreEnd::Restored:
      return say(TextId::RestoreDone) + LossesText(vars, outcome);
    case TRestoreEnd::NoFile:
      return say(TextId::BackupMissing);
    case TRestoreEnd::NotABackup:
      return say(TextId::BackupDamaged);
    case TRestoreEnd::Unreadable:
      return say(TextId::BackupUnreadable, locale.SystemMessage(outcome.Error.Code));
    case TRestoreEnd::NotSupported:
      return say(TextId::BackupNotSupported);
    case TRestoreEnd::Refused:
      return {};
    case TRestoreEnd::NotRestored:
      return say(TextId::NothingRestored) + FailuresText(vars, outcome);
    case TRestoreEnd::Stopped:
      return Plain(vars, TextId::RestoreStopped, Number(outcome.Import.KeysWritten),
                   Number(outcome.Import.ValuesWritten)) +
             FailuresText(vars, outcome);
    case TRestoreEnd::Incomplete:
      break;
  }
  return say(TextId::RestoreIncomplete) + FailuresText(vars, outcome);
}

}  // namespace corvalt
