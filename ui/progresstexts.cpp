#include "ui/progresstexts.h"

#include "scan/catalogue.h"
#include "ui/summary.h"

namespace corvalt {

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
          PlainText(LanguageText(texts, TextId::RepairFinalMessage))};
}

}  // namespace corvalt
