// The machine of tests/healthy/: a registry in which everything is in order, and the files that it names.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "tests/support/scanrig.h"

namespace corvalt {

// Fills the rig with healthy.reg and healthyfiles.txt: a 64-bit Windows 10 whose user is Ann. The user's keys
// stand below HKEY_USERS too, and the user's classes below HKEY_CLASSES_ROOT, as Windows shows them.
void BecomeHealthyMachine(TScanRig& rig);

// How many keys without values and how many values healthy.reg holds.
int HealthyEntries();

// The entries of data/exclusions.txt, as the program reads them.
std::vector<Text> ShippedExclusions();

// The problems of all sections, by the section's caption, each in the form of a line of an .expected file up
// to the number of its text: "key -1 HKLM\Software\A | name | data | 11044".
using TFoundLines = std::multimap<std::string, std::string>;
TFoundLines FoundLines(TScanRig& rig);

// The same of a file in tests/healthy/. Throws std::runtime_error when there is none.
TFoundLines ExpectedLines(const std::string& fileName);

// What one of the two has and the other has not, a line each; empty when they are equal.
std::string Differences(const TFoundLines& expected, const TFoundLines& found);

}  // namespace corvalt
