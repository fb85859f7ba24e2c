// What keeps a walk of the registry from going round in a circle.
#pragma once

#include <optional>
#include <vector>

#include "base/text.h"

namespace corvalt {

// The real places of the keys on the way to the key that is walked. A registry link may lead back to one of
// its own parents; a walk that followed it would not end.
class TWalkedPlaces {
 public:
  // Goes on to a key whose real place (RegistryStore::RealPath) this is, reached by name from the key entered
  // last; the name of the first key doesn't matter. False, and the key is not entered, for a link that leads
  // to a key on the way or above one. A key whose place isn't known is entered.
  bool Enter(const std::optional<Text>& place, TextView name);

  // Goes back to the key before.
  void Leave();

 private:
  bool IsPlainSubKey(TextView upperPlace, TextView name) const;

  std::vector<Text> m_way;  // upper-cased; empty where it isn't known
};

}  // namespace corvalt
