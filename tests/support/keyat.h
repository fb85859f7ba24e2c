// The place of a key written as one text, as tests write it: "HKEY_CURRENT_USER\Software\Foo".
#pragma once

#include <algorithm>
#include <cstddef>

#include "base/keypaths.h"
#include "base/text.h"

namespace corvalt {

inline TKeyPath KeyAt(TextView fullPath) {
  const std::size_t rootEnd = std::min(fullPath.find(u'\\'), fullPath.size());
  return *TKeyPath::Parse(RootKeyFromName(fullPath.substr(0, rootEnd)), fullPath.substr(rootEnd));
}

}  // namespace corvalt
