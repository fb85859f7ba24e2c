// What a backup's file tells about itself: where it was made, and whether it is whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/text.h"

namespace corvalt {

// The newest form of backups, which this program writes.
inline constexpr std::uint32_t kBackupFormat = 1;

struct TBackupOrigin {
  std::uint32_t Format = kBackupFormat;
  std::uint32_t CodePage = 0;  // in which the file's texts are
  std::uint32_t ViewBits = 0;  // the registry's view that it was made in, 32 or 64
  Text Computer;               // may be empty where the system told none
  Text UserSid;

  bool operator==(const TBackupOrigin&) const = default;
};

// The numbers of the last line.
struct TBackupEnd {
  std::size_t Keys = 0;
  std::size_t Values = 0;

  bool operator==(const TBackupEnd&) const = default;
};

// The lines behind the header, each with its end.
[[nodiscard]] std::string OriginLines(const TBackupOrigin& origin);

// The last line of a file whose other lines are these bytes.
[[nodiscard]] std::string EndLine(std::span<const std::uint8_t> bytes, const TBackupEnd& end);

// What the lines behind the header tell; nullopt for a file without such lines. Fields whose line is missing
// or malformed keep their defaults, Format too: 0 then.
[[nodiscard]] std::optional<TBackupOrigin> ReadOrigin(std::span<const std::uint8_t> bytes);

// Whether the last line begins as that of a backup does.
[[nodiscard]] bool HasEndLine(std::span<const std::uint8_t> bytes);

// The numbers of the last line; nullopt when the last line is another one or its checksum is not that of the
// bytes before it.
[[nodiscard]] std::optional<TBackupEnd> ReadEnd(std::span<const std::uint8_t> bytes);

}  // namespace corvalt
