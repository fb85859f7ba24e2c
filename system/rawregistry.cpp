#include "system/rawregistry.h"

#include "base/lettercase.h"

namespace corvalt {

bool SamePlace(const TKeyPlace& a, const TKeyPlace& b) {
  return a.RootKey == b.RootKey && EqualIgnoringCase(a.KeyPath, b.KeyPath);
}

}  // namespace corvalt
