#include "ui/progresstexts.h"

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
