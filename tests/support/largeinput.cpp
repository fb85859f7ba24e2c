#include "tests/support/largeinput.h"

#include <cstdlib>

namespace corvalt {

bool IsThorough() {
  return std::getenv("CORVALT_THOROUGH") != nullptr;
}

std::size_t LargeInput(std::size_t whole, std::size_t part) {
  return IsThorough() ? whole : part;
}

}  // namespace corvalt
