// The problem report: the results tree as a plain text file.
#pragma once

#include <string>
#include <vector>

#include "base/text.h"
#include "scan/scantrees.h"
#include "system/systemclock.h"
#include "system/systemlocale.h"

namespace corvalt {

// The report's lines, with today's date in the user's short format. The number behind a caption is the one
// that the header carries; the total counts the problems that are written.
std::vector<Text> ReportLines(const TResultsTree& results, TClock& clock, TLocale& locale);

// The report as it is written to a file: in the ANSI code page, where a character that it lacks becomes the
// system's best fit, each line ended by CR LF. A NUL in a text is written as it is.
std::string ReportBytes(const TResultsTree& results, TClock& clock, TLocale& locale);

// The file name for what the user typed: ".txt" appended unless that is the extension already, in any letter
// case.
Text ReportFileName(TextView typed);

}  // namespace corvalt
