#include "tests/support/datafile.h"

#include <zlib.h>

#include <stdexcept>

namespace corvalt {

std::vector<std::uint8_t> PackDataFile(std::string_view content) {
  uLongf size = compressBound(static_cast<uLong>(content.size()));
  std::vector<std::uint8_t> file(2 + size, 0);
  if (compress2(file.data() + 2, &size, reinterpret_cast<const Bytef*>(content.data()),
                static_cast<uLong>(content.size()), Z_BEST_SPEED) != Z_OK)
    throw std::runtime_error("the content does not compress");
  file.resize(2 + size);
  return file;
}

}  // namespace corvalt
