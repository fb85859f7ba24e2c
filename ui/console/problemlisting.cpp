#include "ui/console/problemlisting.h"

#include "core/languagetexts.h"
#include "system/registryvalues.h"
#include "ui/console/output.h"
#include "ui/problemsjson.h"

namespace corvalt {

namespace {

Text ValueOf(const ScanProblem& problem) {
  return IsDefaultValueName(problem.ValueName) ? u"(default)" : problem.ValueName;
}

std::string Block(const TResultsTree& results, const TResultsNode* header) {
  std::string block = LineText(results.Data(header).SectionCaption) + " (" +
                      std::to_string(results.ChildCount(header)) + ")\n";
  ForEachProblem(results, header, [&](const TResultsNode* node) {
    const ScanProblem& problem = results.Data(node);
    block += "  " + LineText(PlaceText(problem)) + "\n";
    if (problem.Kind == TProblemKind::Value)
      block += "    Value: " + LineText(ValueOf(problem)) + "\n";
    block += "    " + LineText(PlainText(problem.Description)) + "\n";
  });
  return block;
}

}  // namespace

std::string ProblemListing(const TResultsTree& results) {
  std::string listing;
  ForEachHeader(results, [&](const TResultsNode* header) {
    listing += (listing.empty() ? "" : "\n") + Block(results, header);
  });
  return listing;
}

std::size_t ProblemCount(const TResultsTree& results) {
  std::size_t count = 0;
  ForEachHeader(results, [&](const TResultsNode* header) { count += results.ChildCount(header); });
  return count;
}

bool WriteJson(TConsoleContext& context, const Text& target, const TResultsTree& results) {
  if (target == kStandardOutput) {
    return TellWriteFailure(
        context,
        WriteProblemsJson(results,
                          [&context](std::string_view piece) { return context.Console.Write(piece); }),
        {});
  }
  return WriteWholeFile(context, target, [&results](const TFileStore::TWrite& write) {
    return WriteProblemsJson(results, [&write](std::string_view piece) { return write(BytesOf(piece)); });
  });
}

}  // namespace corvalt
