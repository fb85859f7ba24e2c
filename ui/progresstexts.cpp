#include "ui/progresstexts.h"

#include "scan/catalogue.h"
#include "ui/summary.h"

namespace corvalt {

namespace {

constexpr std::size_t kMany = 1000000;

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

}  // namespace

Text ProgressCaption(TProgressMode mode, const TLanguageTexts& texts) {
  const TextId id = mode == TProgressMode::Scan ? TextId::ScanningSection : TextId::RepairingSection;
  return LanguageText(texts, id) + u" ...";
}

TProgressOutcome ProgressOutcome(TProgressMode mode, TextView message, std::size_t problemCount,
                                 const TLanguageTexts& texts) {
  if (mode == TProgressMode::Repair)
    return {LanguageText(texts, TextId::RepairComplete), Text(message), false};
  TProgressOutcome outcome = {LanguageText(texts, TextId::ScanComplete), Text(message), problemCount > 0};
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
  std::vector<Text> lines = {PlainText(LanguageText(texts, TextId::ScanComplete)),
                             PlainText(LanguageText(texts, TextId::RepairComplete))};
  for (const TSection& section : SectionCatalogue())
    lines.push_back(ScanningLine(texts, section.ProgressName));
  return lines;
}

std::vector<Text> OutcomeMessages(const TLanguageTexts& texts) {
  const TSummary widest = WidestSummary(texts);
  return {PlainText(ProgressOutcome(TProgressMode::Scan, widest.FinalMessage, widest.Total, texts).Message),
          PlainText(RepairMessage(kMany, kMany, texts))};
}

}  // namespace corvalt
