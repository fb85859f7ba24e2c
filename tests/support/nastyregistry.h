// Registry contents made to be hard to write down: names and data that a text file can't hold, or holds in
// more than one way. The same seed gives the same contents everywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/text.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

struct TNastyKey {
  Text Path;  // begins with "\"; its parent comes before it
  std::vector<TRawValue> Values;
};

// A tree below a key, which comes first, with this number of values. No name occurs twice in a key, whatever
// the letter case.
std::vector<TNastyKey> MakeNastyTree(std::uint64_t seed, std::size_t values, TextView topPath);

}  // namespace corvalt
