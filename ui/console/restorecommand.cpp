// corvaltc restore: brings back what a backup holds.

#include <algorithm>
#include <atomic>

#include "base/lettercase.h"
#include "core/languagetexts.h"
#include "repair/restoredeleted.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/progressline.h"

namespace corvalt {

namespace {

constexpr TextView kForeign = u"--foreign";

TExitCode CodeOf(TRestoreEnd end) {
  switch (end) {
    case TRestoreEnd::Restored:
      return TExitCode::Done;
    case TRestoreEnd::Incomplete:
      return TExitCode::SomethingLeft;
    case TRestoreEnd::Stopped:
      return TExitCode::Interrupted;
    default:
      return TExitCode::Failed;
  }
}

// A file in the folder that the index doesn't list is no backup.
bool IsListed(TConsoleContext& context, const Text& name) {
  const std::vector<TBackup> backups = BackupsNewestFirst(context.System, context.Vars);
  return std::any_of(backups.begin(), backups.end(),
                     [&name](const TBackup& backup) { return EqualIgnoringCase(backup.Name.Value(), name); });
}

TRestoreOutcome RunRestore(TConsoleContext& context, const Text& name, bool allowForeign) {
  std::atomic<bool> interrupted = false;
  TRestoreGuide guide;
  guide.GoOn = [&](TRestoreDoubt doubt, const TBackupOrigin& origin) {
    context.Console.Tell(DescribeDoubt(doubt, origin, context.Vars));
    if (doubt != TRestoreDoubt::Foreign || allowForeign)
      return true;
    context.Console.Tell(PlainLanguageText(context.Vars.Texts, TextId::UseForeign));
    return false;
  };
  guide.Stop = [&interrupted] { return interrupted.load(); };
  const TInterruptHandler handler(context.Console, [&interrupted] { interrupted = true; });
  return RestoreBackup(context.System, context.Vars, name, guide);
}

TExitCode Restore(TConsoleContext& context, const Text& name, bool allowForeign) {
  TRestoreOutcome outcome;
  if (IsListed(context, name))
    outcome = RunRestore(context, name, allowForeign);
  const Text told = DescribeRestore(outcome, name, context.Vars, context.System.Locale);
  for (const Text& line : SplitLines(told))
    context.Console.Tell(line);
  return CodeOf(outcome.End);
}

}  // namespace

TCommandRun PrepareRestore(const std::vector<Text>& list) {
  const TArguments arguments(list, {{kForeign}, {}});
  if (arguments.Plain().size() != 1)
    throw TUsageError(TextId::RestoreNeedsName);
  const bool allowForeign = arguments.Has(kForeign);
  return [name = arguments.Plain().front(), allowForeign](TConsoleContext& context) {
    return Restore(context, name, allowForeign);
  };
}

}  // namespace corvalt
