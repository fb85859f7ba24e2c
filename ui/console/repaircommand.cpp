// corvaltc repair: scans, makes a backup and deletes what was found.

#include <optional>
#include <unordered_set>

#include "core/languagetexts.h"
#include "repair/prepare.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"
#include "ui/console/problemlisting.h"
#include "ui/console/repairrun.h"
#include "ui/console/scanrun.h"
#include "ui/progresstexts.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

namespace {

struct TRepairOptions {
  std::optional<std::vector<std::int32_t>> SectionCodes;  // nullopt: all sections
  std::optional<Text> Json;
  bool Yes = false;
  bool NoBackup = false;
};

TRepairOptions ParseOptions(const std::vector<Text>& list) {
  const TArguments arguments(list, {{u"--yes", u"--no-backup"}, {u"--sections", u"--json"}});
  arguments.RefusePlain();
  TRepairOptions options;
  if (const std::optional<Text> codes = arguments.Value(u"--sections"))
    options.SectionCodes = ParseSectionCodes(*codes);
  options.Json = arguments.Value(u"--json");
  options.Yes = arguments.Has(u"--yes");
  options.NoBackup = arguments.Has(u"--no-backup");
  return options;
}

// Deleting without a backup must be asked for twice, by the setting and here.
void CheckBackupChoice(TConsoleContext& context, const TRepairOptions& options) {
  if (!options.Yes)
    return;
  const bool backupsAreOn = BackupsAreOn(context.System);
  if (!backupsAreOn && !options.NoBackup)
    throw TUsageError(TextId::RepairNeedsNoBackup);
  if (backupsAreOn && options.NoBackup)
    TellText(context, TextId::BackupMadeAllTheSame);
}

void TidyUpBackups(TConsoleContext& context) {
  try {
    MaintainBackups(context.System, context.Vars, [] { return false; });
  } catch (...) {
    // The repair needs none of it; it has its own checks of the store.
    TellText(context, TextId::MaintenanceFailed,
             DescribeException(std::current_exception(), context.System.Locale));
  }
}

void TellRepair(TConsoleContext& context, const TRepairOutcome& outcome) {
  const TCleaningOutcome& cleaning = outcome.Cleaning;
  if (outcome.Failure)
    context.Console.Tell(DescribeException(outcome.Failure, context.System.Locale));
  if (!cleaning.BackupName.empty())
    TellText(context, TextId::BackupNamed, cleaning.BackupName);
  TellCount(context, TextId::EntriesRepaired, cleaning.Deleted.size());
  for (const Text& line : LeftoverLines(cleaning, context.Vars.Texts))
    context.Console.Tell(PlainText(line));
  TellCount(context, TextId::EntriesNotReached, cleaning.NotReached);
  if (!cleaning.LogFailure.empty())
    TellText(context, TextId::ChangesNotListed, cleaning.LogFailure);
}

// On standard error where standard output holds JSON.
void ListWhatIsLeft(TConsoleContext& context, const TResultsTree& results, bool onStandardOutput) {
  const std::string listing = ProblemListing(results);
  if (onStandardOutput) {
    // Something is deleted by now: a listing that can't be written is told, and changes no exit code.
    WriteData(context, listing);
    return;
  }
  for (const Text& line : SplitLines(DecodeUtf8(listing).value_or(Text())))
    context.Console.Tell(line);
}

TExitCode Delete(TConsoleContext& context, TResultsTreeModel& results, bool listOnStandardOutput,
                 bool noBackup) {
  const TRepairOutcome outcome = RunRepair(context, results, noBackup);
  TellRepair(context, outcome);
  if (outcome.Failure && !outcome.Cleaning.BackupMade)
    return TExitCode::Failed;
  const std::unordered_set<const TResultsNode*> gone(outcome.Cleaning.Deleted.begin(),
                                                     outcome.Cleaning.Deleted.end());
  results.DeleteProblems([&gone](const TResultsNode& node) { return gone.contains(&node); });
  ListWhatIsLeft(context, results, listOnStandardOutput);
  return ProblemCount(results) == 0 ? TExitCode::Done : TExitCode::SomethingLeft;
}

TExitCode Repair(TConsoleContext& context, const TRepairOptions& options) {
  CheckBackupChoice(context, options);
  if (options.Yes)
    TidyUpBackups(context);
  TSectionsTreeModel sections;
  if (options.SectionCodes)
    sections.CheckOnly(*options.SectionCodes);
  TResultsTreeModel results;
  const TWorkerEnd scan = RunScan(context, sections, results,
                                  {.Words = options.Json ? TScanWords::English : TScanWords::OfTheUser});
  TellOutcome(context, scan);
  // What was found is written before anything is deleted.
  if ((options.Json && !WriteJson(context, *options.Json, results)) || scan.Failure)
    return TExitCode::Failed;
  const bool listFindings = options.Json != kStandardOutput;
  if (ProblemCount(results) == 0)
    return TExitCode::Done;
  if (options.Yes && !scan.Cancelled)
    return Delete(context, results, listFindings, options.NoBackup);
  TellText(context, options.Yes ? TextId::NothingDeleted : TextId::NothingDeletedWithoutYes);
  return !listFindings || WriteData(context, ProblemListing(results)) ? TExitCode::SomethingLeft
                                                                      : TExitCode::Failed;
}

}  // namespace

TCommandRun PrepareRepair(const std::vector<Text>& arguments) {
  return [options = ParseOptions(arguments)](TConsoleContext& context) { return Repair(context, options); };
}

}  // namespace corvalt
