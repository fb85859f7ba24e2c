#include "ui/summary.h"

namespace corvalt {

namespace {

Text CountText(const TLanguageTexts& texts, std::size_t count, TextId none, TextId one, TextId several) {
  if (count == 0)
    return LanguageText(texts, none);
  if (count == 1)
    return LanguageText(texts, one);
  return LanguageText(texts, several, DecimalText(static_cast<std::int64_t>(count)));
}

// Sets the texts of a summary from its counts.
void WordCounts(TSummary& summary, const TLanguageTexts& texts) {
  summary.TotalText =
      CountText(texts, summary.Total, TextId::NoProblemFound, TextId::OneProblemFound, TextId::ProblemsFound);
  summary.SelectedText = CountText(texts, summary.Selected, TextId::NoProblemSelected,
                                   TextId::OneProblemSelected, TextId::ProblemsSelected);
  const Text both = summary.TotalText + u"," + summary.SelectedText;
  summary.Label = LanguageText(texts, TextId::Summary) + u" (" + both + u")";
  summary.FinalMessage = both + u".";
}

}  // namespace

TSummary Summarize(const TResultsTree& tree, const TLanguageTexts& texts) {
  TSummary summary;
  ForEachProblem(tree, [&](const TResultsNode* node) {
    ++summary.Total;
    if (tree.CheckState(node) == TCheckState::Checked)
      ++summary.Selected;
  });
  WordCounts(summary, texts);
  return summary;
}

TSummary WidestSummary(const TLanguageTexts& texts) {
  constexpr std::size_t kMany = 1000000;
  TSummary summary;
  summary.Total = kMany;
  summary.Selected = kMany;
  WordCounts(summary, texts);
  return summary;
}

}  // namespace corvalt
