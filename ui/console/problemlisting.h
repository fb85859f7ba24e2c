// The results tree as a person reads it on a console.
#pragma once

#include <cstddef>
#include <string>

#include "base/text.h"
#include "scan/scantrees.h"
#include "ui/console/console.h"

namespace corvalt {

// The file name that stands for standard output.
inline constexpr TextView kStandardOutput = u"-";

// One block a section: its caption with the number of its problems, then of each problem the full path, the
// value where one is meant, and the description. UTF-8, lines ended by LF, an empty line between blocks.
std::string ProblemListing(const TResultsTree& results);

// The number of problems, headers not counted.
std::size_t ProblemCount(const TResultsTree& results);

// Writes the tree as JSON to a file or to standard output. False after a failure, which is told.
bool WriteJson(TConsoleContext& context, const Text& target, const TResultsTree& results);

}  // namespace corvalt
