// Where backups are made and restored.
#pragma once

#include <memory>
#include <optional>

#include "formats/backupblock.h"
#include "system/system.h"

namespace corvalt {

// The origin of a backup that is made here and now.
[[nodiscard]] TBackupOrigin OriginHere(TSystem& system);

// Whether the backup was made on another computer or by another user than this one.
[[nodiscard]] bool IsForeign(const TBackupOrigin& origin, TSystem& system);

// Whether this program reads the backup's form, and the system has its code page. Numbers that may be damaged
// are no obstacle: the file is not whole then, which is asked about.
[[nodiscard]] bool IsSupported(const TBackupOrigin& origin, bool mayBeDamaged, TSystem& system);

// A registry to work on. Opened owns it where it was opened for this use, and is null where it is the
// program's own.
struct TRegistryAtHand {
  TRawRegistry* Registry = nullptr;
  std::unique_ptr<TRawRegistry> Opened;
};

// The registry in the view that the backup was made in; Registry is null where the system has no such view.
// Damage and a later program may have written a number that is no view: it counts as one that the system
// lacks, because keys in the wrong view would reach other programs.
[[nodiscard]] TRegistryAtHand RegistryOf(const std::optional<TBackupOrigin>& origin, TSystem& system);

}  // namespace corvalt
