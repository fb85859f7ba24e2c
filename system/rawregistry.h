// Type and bytes of registry values as they are stored, for export and import alone.
#pragma once

#include <cstdint>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"

namespace corvalt {

// Registry value types (winnt.h). Any other number is carried as it is.
inline constexpr std::uint32_t kRegNone = 0;
inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegExpandSz = 2;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;
inline constexpr std::uint32_t kRegDwordBigEndian = 5;
inline constexpr std::uint32_t kRegLink = 6;
inline constexpr std::uint32_t kRegMultiSz = 7;
inline constexpr std::uint32_t kRegQword = 11;

using TBytes = std::vector<std::uint8_t>;

struct TRawValue {
  Text Name;  // empty: the default value
  std::uint32_t Type = kRegNone;
  TBytes Data;

  bool operator==(const TRawValue&) const = default;
};

// One key: its values and the names of its direct subkeys, both in the platform's enumeration order.
struct TRawKey {
  std::vector<TRawValue> Values;
  std::vector<Text> SubKeys;
};

enum class TRawResult {
  Done,
  Missing,  // no such key or value
  Denied,   // it exists and the user may not do this
  Link,     // the key itself is a registry link, which is never followed here
  Failed,   // any other failure
};

// Every path is absolute: it begins with "\" and names no root. A link inside the path above the key is
// followed, as the system does for "CurrentControlSet"; the key itself is opened as the link it is and
// answers Link. A failing operation leaves its outputs as they were.
class TRawRegistry {
 public:
  virtual ~TRawRegistry() = default;

  // All of one key, read until it is complete even when it changes meanwhile.
  virtual TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) = 0;
  virtual TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) = 0;

  // Creates the key and its missing parents; Done also when it exists.
  virtual TRawResult CreateKey(TRootKey rootKey, TextView keyPath) = 0;

  // Writes exactly these bytes under exactly this type into an existing or newly created key.
  virtual TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) = 0;

  // Deletes the key with all its subkeys, or one value. Missing when there is none.
  virtual TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) = 0;
  virtual TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) = 0;

  // Drops key handles kept between calls, so that another store's deletion is not held up by them.
  virtual void ReleaseKeys() = 0;
};

}  // namespace corvalt
