// The texts of the progress dialog besides the progress itself.
#pragma once

#include <cstddef>
#include <vector>

#include "base/text.h"
#include "core/languagetexts.h"
#include "repair/threadclean.h"

namespace corvalt {

enum class TProgressMode { Scan = 1, Repair = 2 };

// How a run came to its end: Failed when an error ended it early.
enum class TRunEnd { Complete, Failed };

Text ProgressCaption(TProgressMode mode, const TLanguageTexts& texts);

struct TProgressOutcome {
  Text SectionLine;
  Text Message;
  bool OffersRepair = false;
};

// The end of a run: its message, and after a scan that found problems the invitation to repair them, also
// where an error ended the scan early.
TProgressOutcome ProgressOutcome(TProgressMode mode, TRunEnd end, TextView message, std::size_t problemCount,
                                 const TLanguageTexts& texts);

// What a repair left, one line each: how many entries were not saved and how many could not be deleted. Empty
// when every entry was repaired.
std::vector<Text> LeftoverLines(const TCleaningOutcome& outcome, const TLanguageTexts& texts);

// The message at the end of a repair, with what it left below.
Text RepairMessage(const TCleaningOutcome& outcome, const TLanguageTexts& texts);

// What the dialog must have room for in this language, besides the keys that it shows: the section lines, and
// the messages at the end with the largest of counts.
std::vector<Text> SectionLines(const TLanguageTexts& texts);
std::vector<Text> OutcomeMessages(const TLanguageTexts& texts);

}  // namespace corvalt
