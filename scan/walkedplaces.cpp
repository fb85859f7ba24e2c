#include "scan/walkedplaces.h"

#include <algorithm>

#include "base/lettercase.h"

namespace corvalt {

namespace {

// Whether the key is the other one or lies somewhere below it.
bool LiesAtOrBelow(TextView key, TextView other) {
  return key.starts_with(other) && (key.size() == other.size() || key[other.size()] == u'\\');
}

}  // namespace

bool TWalkedPlaces::Enter(const std::optional<Text>& place, TextView name) {
  const Text upperPlace = place ? UpperCase(*place) : Text();
  const bool leadsBack = !upperPlace.empty() && !IsPlainSubKey(upperPlace, name) &&
                         std::any_of(m_way.begin(), m_way.end(),
                                     [&](const Text& walked) { return LiesAtOrBelow(walked, upperPlace); });
  if (!leadsBack)
    m_way.push_back(upperPlace);
  return !leadsBack;
}

void TWalkedPlaces::Leave() {
  m_way.pop_back();
}

bool TWalkedPlaces::IsPlainSubKey(TextView upperPlace, TextView name) const {
  return !m_way.empty() && !m_way.back().empty() && upperPlace == m_way.back() + u"\\" + UpperCase(name);
}

}  // namespace corvalt
