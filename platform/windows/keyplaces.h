// Where an opened key really lies: the system's own name of it, written as a root key and a path that can be
// opened.
#pragma once

#include <optional>

#include "base/text.h"
#include "platform/windows/registrycalls.h"
#include "system/rawregistry.h"

namespace corvalt {

// Where the user's classes lie below HKEY_CURRENT_USER, and the machine's below HKEY_LOCAL_MACHINE.
inline constexpr TextView kClassesPrefix = u"\\Software\\Classes\\";

class TKeyPlaces {
 public:
  explicit TKeyPlaces(TRegistryCalls& calls) : m_calls(calls) {
  }

  // nullopt for a predefined root key, the top of a hive, and a key that no root key leads to.
  std::optional<TKeyPlace> Find(HKEY key);

  // Whether the key lies at this place.
  bool LiesAt(HKEY key, const TKeyPlace& place);

 private:
  std::optional<TKeyPlace> PlaceOf(TextView systemName);
  std::optional<TKeyPlace> Confirmed(const Text& systemName, TextView candidate);
  Text AsStored(const TKeyPlace& place);
  const Text& UserHive();

  TRegistryCalls& m_calls;
  std::optional<Text> m_userHive;
};

}  // namespace corvalt
