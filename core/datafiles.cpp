#include "core/datafiles.h"

namespace corvalt {

std::optional<std::vector<std::uint8_t>> ReadDataFile(TFileStore& files, TextView path) {
  std::vector<std::uint8_t> bytes;
  if (files.Info(path).Size > kLargestDataFile || files.ReadFile(path, bytes).Failed())
    return std::nullopt;
  return bytes;
}

}  // namespace corvalt
