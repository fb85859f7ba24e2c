// The values of the registry as it stores them: types, names and bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

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
  Text Name;  // as it is stored; empty: the default value
  std::uint32_t Type = kRegNone;
  TBytes Data;

  bool operator==(const TRawValue&) const = default;
};

// Whether the data of the type is text: one string (REG_SZ, REG_EXPAND_SZ) or several (REG_MULTI_SZ).
bool IsTextType(std::uint32_t type);

// Whether the data of the type is one string.
bool IsStringType(std::uint32_t type);

// Whether the name means a key's default value: the empty name, and a name of one NUL unit, which Windows
// takes as the empty one because a name ends at its first NUL.
bool IsDefaultValueName(TextView name);

// The name as it is stored: empty for the default value.
TextView StoredValueName(TextView name);

// Whether the data is whole units of which the last one is NUL.
bool EndsInNul(std::span<const std::uint8_t> data);

// The units as bytes, the low byte of each first; the same with a terminating NUL, as Windows stores a
// string.
TBytes UnitBytes(TextView text);
TBytes StringBytes(TextView text);

// The units that the bytes make; an odd last byte is dropped.
Text UnitsOf(std::span<const std::uint8_t> data);

// The string that the data begins with, up to its first NUL.
Text StringOf(std::span<const std::uint8_t> data);

// The four bytes of an integer, the low one first.
TBytes IntegerBytes(std::uint32_t value);

// The number in a value of type REG_DWORD; nullopt for another type and for data of another size.
std::optional<std::int32_t> IntegerOf(std::uint32_t type, std::span<const std::uint8_t> data);

}  // namespace corvalt
