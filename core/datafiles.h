// The files that ship beside the program, read up to a size.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"
#include "system/filestore.h"

namespace corvalt {

// Bytes. What is larger is damaged or hostile: the largest that ships has some hundred kilobytes.
inline constexpr std::int64_t kLargestDataFile = std::int64_t{16} * 1024 * 1024;

// The whole file; nullopt when it is missing, can't be read or is larger than kLargestDataFile.
std::optional<std::vector<std::uint8_t>> ReadDataFile(TFileStore& files, TextView path);

}  // namespace corvalt
