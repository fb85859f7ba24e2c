// corvaltc scan: runs the scan and writes what it found.

#include <optional>

#include "base/lettercase.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"
#include "ui/console/problemlisting.h"
#include "ui/console/scanrun.h"
#include "ui/report.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

namespace {

struct TScanOptions {
  std::optional<std::vector<std::int32_t>> SectionCodes;  // nullopt: all sections
  std::optional<Text> Report;
  std::optional<Text> Json;
  bool Quiet = false;
};

TScanOptions ParseOptions(const std::vector<Text>& list) {
  const TArguments arguments(list, {{u"--quiet"}, {u"--sections", u"--report", u"--json"}});
  arguments.RefusePlain();
  TScanOptions options;
  if (const std::optional<Text> codes = arguments.Value(u"--sections"))
    options.SectionCodes = ParseSectionCodes(*codes);
  options.Report = arguments.Value(u"--report");
  options.Json = arguments.Value(u"--json");
  options.Quiet = arguments.Has(u"--quiet");
  if (options.Report == kStandardOutput)
    throw TUsageError(TextId::ReportNeedsFile);
  return options;
}

// The second would replace the first.
void RefuseOneFileForBoth(TConsoleContext& context, const TScanOptions& options) {
  if (!options.Report || !options.Json || options.Json == kStandardOutput)
    return;
  TFileStore& files = context.System.Files;
  const Text report = files.FullPath(*options.Report);
  if (!report.empty() && EqualIgnoringCase(report, files.FullPath(*options.Json)))
    throw TUsageError(TextId::ReportAndJsonDiffer);
}

// Everything that was asked for, also when a part of it fails. False when one did.
bool WriteFindings(TConsoleContext& context, const TScanOptions& options, TResultsTree& results) {
  bool complete = true;
  if (options.Report) {
    const std::string report = ReportBytes(results, context.System.Clock, context.System.Locale);
    complete = WriteWholeFile(context, *options.Report, report);
  }
  if (options.Json)
    complete = WriteJson(context, *options.Json, results) && complete;
  // Standard output holds one kind of data, never two.
  if (!options.Quiet && options.Json != kStandardOutput)
    complete = WriteData(context, ProblemListing(results)) && complete;
  return complete;
}

TExitCode Scan(TConsoleContext& context, const TScanOptions& options) {
  RefuseOneFileForBoth(context, options);
  TSectionsTreeModel sections;
  if (options.SectionCodes)
    sections.CheckOnly(*options.SectionCodes);
  TResultsTreeModel results;
  const TWorkerEnd outcome =
      RunScan(context, sections, results,
              {.Words = options.Json ? TScanWords::English : TScanWords::OfTheUser, .Quiet = options.Quiet});
  TellOutcome(context, outcome);
  if (!WriteFindings(context, options, results) || outcome.Failure)
    return TExitCode::Failed;
  return ProblemCount(results) == 0 ? TExitCode::Done : TExitCode::SomethingLeft;
}

}  // namespace

TCommandRun PrepareScan(const std::vector<Text>& arguments) {
  return [options = ParseOptions(arguments)](TConsoleContext& context) { return Scan(context, options); };
}

}  // namespace corvalt
