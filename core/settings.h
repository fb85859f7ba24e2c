// Settings as they are stored: a value that is missing, or has another type or size than the setting, is no
// setting, and the caller's default counts.
#pragma once

#include <cstdint>
#include <optional>

#include "base/text.h"
#include "system/system.h"

namespace corvalt {

// The 32-bit integer (REG_DWORD of 4 bytes) under this name in a key of HKEY_CURRENT_USER, whose path begins
// with "\". nullopt for any other value, and for one that can't be read. The registry is only read.
[[nodiscard]] std::optional<std::int32_t> StoredInteger(TSystem& system, TextView keyPath, TextView name);

}  // namespace corvalt
