#include "base/rounding.h"

#include <cmath>

namespace corvalt {

std::int32_t RoundHalfToEven(double number) {
  // The default rounding mode of the floating-point unit rounds a half to the even neighbour.
  return static_cast<std::int32_t>(std::nearbyint(number));
}

}  // namespace corvalt
