// Where backups are made and restored.
#pragma once

#include "formats/backupblock.h"
#include "system/system.h"

namespace corvalt {

// What a backup that is made here and now tells about itself.
[[nodiscard]] TBackupOrigin OriginHere(TSystem& system);

// Whether the backup was made on another computer or by another user than this one.
[[nodiscard]] bool IsForeign(const TBackupOrigin& origin, TSystem& system);

// Whether this program reads the backup's form, and the system has its code page and its view of the
// registry. A number that is damaged (0) is no obstacle: the file is not whole then, which is asked about.
[[nodiscard]] bool IsSupported(const TBackupOrigin& origin, TSystem& system);

}  // namespace corvalt
