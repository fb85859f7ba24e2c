// Expected problems with all their fields, for comparison with those of a scan.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "scan/scanproblem.h"
#include "tests/support/scanrig.h"

namespace corvalt {

// A section header as a finished section leaves it.
ScanProblem SectionHeader(TextView caption, std::int32_t imageIndex, TRootKey rootKey,
                          std::uint32_t childCount);

// A problem of a whole key, or of a value; no picture, no extra text, checked.
ScanProblem KeyProblem(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                       TextView description);
ScanProblem ValueProblem(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                         TextView description);

// prefix and the number with three digits: names that sort as they count.
Text NumberedName(TextView prefix, int number);

// What the dialog shows when a section begins.
std::vector<std::string> SectionStart(const std::string& progressName, int overallPosition);

// The updates of a section that runs as the only one: its start, then these.
std::vector<std::string> UpdatesOf(const std::string& progressName, const std::vector<std::string>& updates);

// Runs a section once to its end and then again for every read of the registry, telling the thread to
// terminate at that read. Each time the section must have ended (its header counts its problems, and is gone
// without any) with the first problems of the whole run and no other.
void ExpectConsistentWhereverCancelled(TScanRig& rig, std::int32_t sectionCode);

// Problems written as one line each, for comparing whole lists with lists made by hand.

// Every field: "80000001 | \Key | name | data | description | kind 2, image -1" and the text of kUsual.
std::string FieldsOf(const ScanProblem& problem);
std::vector<std::string> AllFields(const std::vector<ScanProblem>& problems);

// The rest of a line, for a problem as the scan leaves it.
inline constexpr const char* kUsual = ", check 1, extra [], caption [], children 0, flags 0 0";

// The lines with kUsual after each.
std::vector<std::string> Usual(std::vector<std::string> lines);

// A section header's line.
std::string HeaderFields(const std::string& root, const std::string& caption, int image, int children);

}  // namespace corvalt
