// The ignore list: problems that the user wants no more reports of. It lives in the registry; the scan reads
// the copy in TGlobalReg. User-interface thread only.
#pragma once

#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "scan/scanproblem.h"
#include "system/system.h"

namespace corvalt {

// Root name, key path, "\" and value name; the entry of a key ends in "\".
Text IgnoreEntryOf(const ScanProblem& problem);

// Adds the entry to the list in memory, or puts it in the place of one that differs in letter case or is
// switched off, and stores it. Where it can't be stored only the list in memory changes.
void AddIgnoreEntry(TSystem& system, TGlobalReg& reg, TextView entry);

// Writes one entry into the registry, beside what is there.
void StoreIgnoreEntry(TSystem& system, TextView entry);

// Puts the entries into the list in memory, and makes the stored list the same: new values are written, then
// the others deleted, so that a program that is ended in the middle loses no entry. What other copies of the
// program have stored since this one read the list stays, and joins the list in memory. An entry that is
// switched on or off goes to the end of the stored order. Like storing one entry, it waits for another copy
// that stores, ten seconds at most, and goes on without it then.
void SaveIgnoreList(TSystem& system, TGlobalReg& reg, std::vector<Text> entries);

}  // namespace corvalt
