// The sizes of large inputs in tests.
#pragma once

#include <cstddef>

namespace corvalt {

// Whether the environment variable CORVALT_THOROUGH is set. ./test sets it for the optimised build, ./test
// --all for the one under the sanitizers too.
bool IsThorough();

// whole in a thorough run, else part, which must be large enough that a fault in the memory's use shows. Only
// time and memory out of proportion to the input need the whole.
std::size_t LargeInput(std::size_t whole, std::size_t part);

}  // namespace corvalt
