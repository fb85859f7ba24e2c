#include "ui/report.h"

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr std::size_t kRuleLength = 70;

Text Rule() {
  return Text(kRuleLength, u'-');
}

Text CountText(std::size_t count) {
  return DecimalText(static_cast<std::int64_t>(count));
}

void AddProblem(const ScanProblem& problem, std::vector<Text>& lines) {
  lines.push_back(u"Section: " + KeyText(problem));
  lines.push_back(u"Reason : " + problem.Description);
  lines.emplace_back();
}

void AddHeader(const ScanProblem& header, std::vector<Text>& lines) {
  lines.push_back(header.SectionCaption + u"(" + CountText(header.ChildCount) + u" Problems found)");
  lines.emplace_back();
}

// The end of a file name from its last dot, with the dot; empty where a folder or a drive comes after it.
TextView ExtensionOf(TextView fileName) {
  const std::size_t at = fileName.find_last_of(u".\\:");
  return at != TextView::npos && fileName[at] == u'.' ? fileName.substr(at) : TextView();
}

}  // namespace

std::vector<Text> ReportLines(const TResultsTree& results, TClock& clock, TLocale& locale) {
  std::vector<Text> lines = {
      u"Report created on " + locale.FormatShortDate(clock.Now()) + u" by Tessaly Utilities.",
      {},
      u"Problems found on your computer: ",
      Rule(),
  };
  std::size_t total = 0;
  ForEachHeader(results, [&](const TResultsNode* header) {
    AddHeader(results.Data(header), lines);
    ForEachProblem(results, header, [&](const TResultsNode* node) {
      AddProblem(results.Data(node), lines);
      ++total;
    });
  });
  lines.push_back(Rule());
  lines.push_back(u"Problems found on your computer (Total " + CountText(total) + u" Problems):");
  return lines;
}

std::string ReportBytes(const TResultsTree& results, TClock& clock, TLocale& locale) {
  std::string bytes;
  for (const Text& line : ReportLines(results, clock, locale))
    bytes += locale.EncodeAnsi(line) + "\r\n";
  return bytes;
}

Text ReportFileName(TextView typed) {
  return Text(typed) + (UpperCase(ExtensionOf(typed)) == u".TXT" ? u"" : u".txt");
}

}  // namespace corvalt
