// Rounding as the whole program does it.
#pragma once

#include <cstdint>

namespace corvalt {

// To the nearest whole number, a half to the even one. Expects a number within 32 bits.
std::int32_t RoundHalfToEven(double number);

}  // namespace corvalt
