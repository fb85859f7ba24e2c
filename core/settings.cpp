#include "core/settings.h"

#include <cstring>

namespace corvalt {

std::optional<std::int32_t> StoredInteger(TSystem& system, TextView keyPath, TextView name) {
  TRawValue value;
  const TRawResult read = system.Raw.ReadValue(kHkeyCurrentUser, keyPath, name, value);
  system.Raw.ReleaseKeys();
  std::int32_t number = 0;
  if (read != TRawResult::Done || value.Type != kRegDword || value.Data.size() != sizeof(number))
    return std::nullopt;
  std::memcpy(&number, value.Data.data(), sizeof(number));
  return number;
}

}  // namespace corvalt
