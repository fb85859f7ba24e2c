#include "platform/windows/keyplaces.h"

#include <algorithm>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr TextView kMachineHives = u"\\REGISTRY\\MACHINE\\";
constexpr TextView kUserHives = u"\\REGISTRY\\USER\\";
constexpr TextView kClassesHiveEnding = u"_Classes\\";
constexpr TextView k32BitNode = u"\\Wow6432Node\\";

bool BeginsWith(TextView text, TextView beginning) {
  return text.size() >= beginning.size() && EqualIgnoringCase(text.substr(0, beginning.size()), beginning);
}

// The key path below a hive whose system name ends with "\".
Text PathBelow(TextView hive, TextView systemName) {
  return Text(systemName.substr(hive.size() - 1));
}

std::optional<Text> Without32BitNode(TextView systemName) {
  for (std::size_t at = 0; at + k32BitNode.size() <= systemName.size(); ++at) {
    if (BeginsWith(systemName.substr(at), k32BitNode))
      return Text(systemName.substr(0, at)) + Text(systemName.substr(at + k32BitNode.size() - 1));
  }
  return std::nullopt;
}

}  // namespace

// "\REGISTRY\USER\S-1-5-21-...", the hive behind HKEY_CURRENT_USER; empty where it can't be asked.
const Text& TKeyPlaces::UserHive() {
  if (!m_userHive) {
    HKEY opened = nullptr;
    m_userHive = Text();
    if (RegOpenCurrentUser(KEY_READ, &opened) == ERROR_SUCCESS) {
      m_userHive = m_calls.SystemName(opened);
      RegCloseKey(opened);
    }
  }
  return *m_userHive;
}

std::optional<TKeyPlace> TKeyPlaces::PlaceOf(TextView systemName) {
  if (BeginsWith(systemName, kMachineHives))
    return TKeyPlace{kHkeyLocalMachine, PathBelow(kMachineHives, systemName)};
  const Text userHive = UserHive();
  if (!userHive.empty() && BeginsWith(systemName, userHive + u"\\"))
    return TKeyPlace{kHkeyCurrentUser, PathBelow(userHive + u"\\", systemName)};
  const Text classesHive = userHive + Text(kClassesHiveEnding);
  if (!userHive.empty() && BeginsWith(systemName, classesHive))
    return TKeyPlace{kHkeyCurrentUser, Text(kClassesPrefix) + Text(systemName.substr(classesHive.size()))};
  if (BeginsWith(systemName, kUserHives))
    return TKeyPlace{kHkeyUsers, PathBelow(kUserHives, systemName)};
  return std::nullopt;
}

bool TKeyPlaces::LiesAt(HKEY key, const TKeyPlace& place) {
  const std::optional<TKeyPlace> real = Find(key);
  return real && SamePlace(*real, place);
}

// The spelling that each key on the way is stored with. A key that may not be asked keeps the one it came
// with.
Text TKeyPlaces::AsStored(const TKeyPlace& place) {
  const TextView path = TextView(place.KeyPath).substr(1);
  Text stored;
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find(u'\\', begin), path.size());
    const TextView name = path.substr(begin, end - begin);
    TRegistryKey key;
    Text own;
    if (m_calls.Open(RootHandle(place.RootKey), path.substr(0, end), KEY_QUERY_VALUE, true, key) ==
        ERROR_SUCCESS)
      own = m_calls.StoredName(key.Get());
    stored += u"\\" + (EqualIgnoringCase(own, name) ? own : Text(name));
    begin = end + 1;
  }
  return stored;
}

std::optional<TKeyPlace> TKeyPlaces::Confirmed(const Text& systemName, TextView candidate) {
  std::optional<TKeyPlace> place = PlaceOf(candidate);
  if (!place)
    return std::nullopt;
  TRegistryKey key;
  const TextView path = TextView(place->KeyPath).substr(1);
  if (m_calls.Open(RootHandle(place->RootKey), path, KEY_QUERY_VALUE, true, key) != ERROR_SUCCESS ||
      !EqualIgnoringCase(m_calls.SystemName(key.Get()), systemName))
    return std::nullopt;
  place->KeyPath = AsStored(*place);
  return place;
}

// A 32-bit program on 64-bit Windows reaches its own keys by names without the node that the system puts in.
std::optional<TKeyPlace> TKeyPlaces::Find(HKEY key) {
  const Text systemName = m_calls.SystemName(key);
  if (systemName.empty())
    return std::nullopt;
  std::optional<TKeyPlace> place = Confirmed(systemName, systemName);
  const std::optional<Text> without = place ? std::nullopt : Without32BitNode(systemName);
  return without ? Confirmed(systemName, *without) : place;
}

}  // namespace corvalt
