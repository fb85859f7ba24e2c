// How long the texts are that Windows takes, in 16-bit units without the terminating NUL unless said
// otherwise.
#pragma once

#include <cstddef>

namespace corvalt {

// A path in any form (page "Maximum Path Length Limitation", learn.microsoft.com).
inline constexpr std::size_t kLongestPath = 32767;

// MAX_PATH of the same page, which counts the terminating NUL: a path of this many units or more is taken
// only in the form that begins with "\\?\".
inline constexpr std::size_t kMaxPath = 260;

// One name of a path, on every file system of Windows (the same page: the value that GetVolumeInformation
// returns, commonly 255).
inline constexpr std::size_t kLongestFileName = 255;

// One name of a key, the name of a value, and the levels of keys (page "Registry Element Size Limits",
// learn.microsoft.com).
inline constexpr std::size_t kLongestKeyName = 255;
inline constexpr std::size_t kLongestValueName = 16383;
inline constexpr std::size_t kDeepestKey = 512;

}  // namespace corvalt
