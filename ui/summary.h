// How many problems there are and how many of them are marked for repair, in the user's words.
#pragma once

#include <cstddef>

#include "base/text.h"
#include "core/languagetexts.h"
#include "scan/scantrees.h"

namespace corvalt {

struct TSummary {
  std::size_t Total = 0;
  std::size_t Selected = 0;
  Text TotalText;
  Text SelectedText;
  Text Label;         // beside the results: the heading with both texts in brackets
  Text FinalMessage;  // for the progress dialog
};

TSummary Summarize(const TResultsTree& tree, const TLanguageTexts& texts);

// With the largest of counts: what a window must have room for in this language.
TSummary WidestSummary(const TLanguageTexts& texts);

}  // namespace corvalt
