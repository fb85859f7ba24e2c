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

std::string Block(TResultsTree& results, TResultsNode* header) {
  std::string block = LineText(results.Data(header).SectionCaption) + " (" +
                      std::to_string(results.ChildCount(header)) + ")\n";
  for (TResultsNode* node = results.FirstChild(header); node != nullptr; node = results.NextSibling(node)) {
    const ScanProblem& problem = results.Data(node);
    block += "  " + LineText(PlaceText(problem)) + "\n";
    if (problem.Kind == TProblemKind::Value)
      block += "    Value: " + LineText(ValueOf(problem)) + "\n";
    block += "    " + LineText(PlainText(problem.Description)) + "\n";
  }
  return block;
}

}  // namespace

std::string ProblemListing(TResultsTree& results) {
  std::string listing;
  for (TResultsNode* header = results.FirstRoot(); header != nullptr; header = results.NextSibling(header)) {
    listing += (listing.empty() ? "" : "\n") + Block(results, header);
  }
  return listing;
}

std::size_t ProblemCount(TResultsTree& results) {
  std::size_t count = 0;
  for (TResultsNode* header = results.FirstRoot(); header != nullptr; header = results.NextSibling(header))
    count += results.ChildCount(header);
  return count;
}

bool WriteJson(TConsoleContext& context, const Text& target, TResultsTree& results) {
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
