// Problems written as one line each, for comparing whole lists with lists made by hand.
#pragma once

#include <string>
#include <vector>

#include "scan/scanproblem.h"

// Every field: "80000001 | \Key | name | data | description | kind 2, image -1" and what kUsual says.
std::string AllFields(const ScanProblem& problem);
std::vector<std::string> AllFields(const std::vector<ScanProblem>& problems);

// The rest of a line, for a problem as the scan leaves it.
inline constexpr const char* kUsual = ", check 1, extra [], caption [], children 0, flags 0 0";

// The lines with kUsual after each.
std::vector<std::string> Usual(std::vector<std::string> lines);

// A section header's line.
std::string HeaderFields(const std::string& root, const std::string& caption, int image, int children);
