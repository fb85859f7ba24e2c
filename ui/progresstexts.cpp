#include "ui/progresstexts.h"

#include "scan/catalogue.h"
#include "ui/summary.h"

namespace corvalt {

namespace {

std::vector<Text> LeftoverLines(std::size_t notSaved, std::size_t notDeleted, const TLanguageTexts& texts) {
  std::vector<Text> lines;
  const auto add = [&lines, &texts](TextId id, std::size_t count) {
    if (count != 0)
      lines.push_back(LanguageText(texts, id, DecimalText(static_cast<std::int64_t>(count))));
  };
  add(TextId::EntriesNotSaved, notSaved);
  add(TextId::EntriesNotDeleted, notDeleted);
  return lines;
}

Text RepairMessage(std::size_t notSaved, std::size_t notDeleted, const TLanguageTexts& texts) {
  Text message = LanguageText(texts, TextId::RepairFinalMessage);
  for (const Text& line : LeftoverLines(notSaved, notDeleted, texts))
    message += u"\r\n" + line;
  return message;
}

TextId EndLine(TProgressMode mode, TRunEnd end) {
  if (mode == TProgressMode::Scan)
    return end == TRunEnd::Complete ? TextId::ScanComplete : TextId::TitleError;
  return end == TRunEnd::Complete ? TextId::RepairComplete : TextId::TitleError;
}

}  // namespace

Text ProgressCaption(TProgressMode mode, const TLanguageTexts& texts) {
  const TextId id = mode == TProgressMode::Scan ? TextId::ScanningSection : TextId::RepairingSection;
  return LanguageText(texts, id) + u" ...";
}

TProgressOutcome ProgressOutcome(TProgressMode mode, TRunEnd end, TextView message, std::size_t problemCount,
                                 const TLanguageTexts& texts) {
  TProgressOutcome outcome = {LanguageText(texts, EndLine(mode, end)), Text(message), false};
  outcome.OffersRepair = mode == TProgressMode::Scan && problemCount > 0;
  if (outcome.OffersRepair)
    outcome.Message += u"\r\n\r\n" + LanguageText(texts, TextId::InviteRepair);
  return outcome;
}

std::vector<Text> LeftoverLines(const TCleaningOutcome& outcome, const TLanguageTexts& texts) {
  return LeftoverLines(outcome.NotSaved.size(), outcome.Failed.size(), texts);
}

Text RepairMessage(const TCleaningOutcome& outcome, const TLanguageTexts& texts) {
  return RepairMessage(outcome.NotSaved.size(), outcome.Failed.size(), texts);
}

std::vector<Text> SectionLines(const TLanguageTexts& texts) {
  std::vector<Text> lines;
  for (const TProgressMode mode : {TProgressMode::Scan, TProgressMode::Repair}) {
    for (const TRunEnd end : {TRunEnd::Complete, TRunEnd::Failed})
      lines.push_back(PlainLanguageText(texts, EndLine(mode, end)));
  }
  for (const TSection& section : SectionCatalogue())
    lines.push_back(ScanningLine(texts, section.ProgressName));
  return lines;
}

std::vector<Text> OutcomeMessages(const TLanguageTexts& texts) {
  const TSummary widest = WidestSummary(texts);
  const TProgressOutcome scan =
      ProgressOutcome(TProgressMode::Scan, TRunEnd::Complete, widest.FinalMessage, widest.Total, texts);
  return {PlainText(scan.Message), PlainText(RepairMessage(widest.Total, widest.Total, texts))};
}

}  // namespace corvalt
