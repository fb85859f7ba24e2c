// corvaltc restore: brings back what a backup holds.

#include <algorithm>

#include "base/lettercase.h"
#include "core/languagetexts.h"
#include "repair/restoredeleted.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"

namespace corvalt {

namespace {

TExitCode CodeOf(TRestoreEnd end) {
  switch (end) {
    case TRestoreEnd::Restored:
      return TExitCode::Nothing;
    case TRestoreEnd::Incomplete:
      return TExitCode::Found;
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

TExitCode Restore(TConsoleContext& context, const Text& name) {
  TRestoreOutcome outcome;
  if (IsListed(context, name))
    outcome = RestoreBackup(context.System, context.Vars, name);
  const Text told = DescribeRestore(outcome, name, context.Vars, context.System.Locale);
  for (const Text& line : SplitLines(told))
    context.Console.Tell(line);
  return CodeOf(outcome.End);
}

}  // namespace

TCommandRun PrepareRestore(const std::vector<Text>& list) {
  const TArguments arguments(list, {});
  if (arguments.Plain().size() != 1)
    throw TUsageError(u"restore needs the name of one backup; \"corvaltc backups\" lists them.");
  return [name = arguments.Plain().front()](TConsoleContext& context) { return Restore(context, name); };
}

}  // namespace corvalt
