#include "system/rawregistry.h"

#include "base/lettercase.h"

namespace corvalt {

bool SamePlace(const TKeyPlace& a, const TKeyPlace& b) {
  return a.RootKey == b.RootKey && EqualIgnoringCase(a.KeyPath, b.KeyPath);
}

bool IsRootPlace(const TKeyPlace& place) {
  return place.KeyPath == u"\\" && place.RootKey != kHkeyClassesRoot;
}

}  // namespace corvalt
