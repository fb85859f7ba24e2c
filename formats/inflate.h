// The one routine that reads the compressed data files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace corvalt {

// Bytes before the zlib stream of a data file; the reader skips them without looking.
inline constexpr std::size_t kDataFilePrefix = 2;

// The largest content that is read. A file that claims more is damaged or hostile.
inline constexpr std::size_t kLargestInflated = std::size_t{64} * 1024 * 1024;

// The content of a data file: the zlib stream (RFC 1950) that follows the prefix. nullopt when the file is
// short, not zlib, cut off, damaged, or inflates to more than kLargestInflated. Bytes after the stream's end
// are ignored.
std::optional<std::vector<std::uint8_t>> InflateDataFile(std::span<const std::uint8_t> file);

}  // namespace corvalt
