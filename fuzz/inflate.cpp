// Any bytes as a data file: a content within the limit, or nullopt.
#include "formats/inflate.h"

#include <cstdlib>

namespace corvalt {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto content = InflateDataFile({data, size});
  if (content && content->size() > kLargestInflated)
    std::abort();
  return 0;
}

}  // namespace corvalt
