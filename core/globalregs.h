// TGlobalReg: the cleaner's own settings, the two lists of what must not be reported and the backup settings.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "system/system.h"

namespace corvalt {

// An entry of the ignore list that begins with this unit is switched off: it is kept and not applied.
inline constexpr char16_t kOffMark = u';';

struct TGlobalReg {
  std::vector<Text> BuiltInExclusions;
  std::vector<Text> IgnoreList;  // as stored, kOffMark included; changes on the user-interface thread only

  // This module's own backup settings. The store does not use them, because backups go to the suite's folder
  // and the suite's limits count; they are required to be loaded and written back all the same, so keep them.
  Text BackupFolder;  // ends with "\"
  std::int32_t BackupCount = 0;
};

// Fills all of it. A missing or unreadable exclusion file leaves the exclusions empty.
void FillGlobalReg(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg);

// The exclusion that a line of the data file holds: without its remark, trimmed. nullopt for a comment and
// for a line that holds none.
std::optional<Text> ParseExclusion(TextView line);

// The enabled and switched-off entries that are stored with true, in enumeration order.
std::vector<Text> LoadIgnoreList(TSystem& system);

// Writes the backup settings back, at the program's end. Failures are silent.
void SaveCleanerSettings(TSystem& system, const TGlobalReg& reg);

// Deletes all that this module has stored in the user's registry: settings, check marks, ignore list. Returns
// whether nothing of it is left.
[[nodiscard]] bool DeleteCleanerSettings(TSystem& system);

}  // namespace corvalt
