// Compressed data files, made in a test.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace corvalt {

// Two leading bytes, then the content as a zlib stream.
std::vector<std::uint8_t> PackDataFile(std::string_view content);

}  // namespace corvalt
