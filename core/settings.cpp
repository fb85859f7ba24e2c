#include "core/settings.h"

namespace corvalt {

std::optional<std::int32_t> StoredInteger(TSystem& system, TextView keyPath, TextView name) {
  TRawValue value;
  const TRawResult read = system.Raw.ReadValue(kHkeyCurrentUser, keyPath, name, value);
  system.Raw.ReleaseKeys();
  return read == TRawResult::Done ? IntegerOf(value.Type, value.Data) : std::nullopt;
}

}  // namespace corvalt
