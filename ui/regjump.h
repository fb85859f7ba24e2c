// Opening a problem in the system's registry editor, which offers no interface for it: its window is found or
// started and driven with keystrokes.
#pragma once

#include <cstdint>

#include "base/text.h"
#include "scan/scanproblem.h"
#include "system/rawregistry.h"
#include "system/system.h"

namespace corvalt {

// The code of the root that the full key text (root name and key path) begins with, in any letter case: 1
// classes, 2 user, 3 machine, 4 configuration, 5 users, 6 dynamic data. 0 when it begins with none, or when
// the key does not open with full access: then no jump is made.
std::int32_t CheckJumpKey(TextView fullKey, TRawRegistry& registry);

// Walks the registry editor to the key, and to the value when one is named. Every failure is silent: no such
// key, no editor, no window. Takes 750 ms a level on a display of more than 8 bits a pixel, during which the
// caller stands still.
void JumpToKey(TextView fullKey, TextView valueName, TextView windowsVersionName, TSystem& system);

// The registry editor for a key or value problem, the file's properties for a file problem.
void OpenProblem(const ScanProblem& problem, TextView windowsVersionName, TSystem& system);

}  // namespace corvalt
