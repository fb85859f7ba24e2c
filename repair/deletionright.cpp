#include "repair/deletionright.h"

#include <algorithm>

#include "base/lettercase.h"
#include "core/settings.h"
#include "core/settingskeys.h"

namespace corvalt {

namespace {

constexpr TextView kBackupSetting = u"RegistryCleaner";

// A key path holds no run of "\", so that what follows one can only be a value's name.
Text ComparableValue(const TKeyPath& key, TextView valueName) {
  return key.Comparable() + u"\\\\" + UpperCase(valueName);
}

// Equal for two keys exactly when they are the same.
Text ComparablePlace(const TKeyPlace& place, TextView pathBelow) {
  return RootKeyName(place.RootKey) + UpperCase(place.KeyPath) + UpperCase(pathBelow);
}

const TKeyPlace* FindIn(const std::map<Text, TKeyPlace>& places, const Text& comparable) {
  const auto place = places.find(comparable);
  return place == places.end() ? nullptr : &place->second;
}

// A digest of the value's type and bytes.
TDigest ContentOf(const TRawValue& value) {
  TDigester digester;
  digester.Add(IntegerBytes(value.Type));
  digester.Add(value.Data);
  return digester.Finish();
}

}  // namespace

bool BackupsAreOn(TSystem& system) {
  return StoredInteger(system, kAvailableModulesKey, kBackupSetting).value_or(1) != 0;
}

std::optional<TDeletionRight> TDeletionRight::WithoutBackup(TSystem& system) {
  if (BackupsAreOn(system))
    return std::nullopt;
  TDeletionRight right;
  right.m_everything = true;
  return right;
}

void TDeletionRight::FindKey(TRawRegistry& registry, const TKeyPath& key) {
  TKeyPlace place;
  if (m_everything && registry.FindKey(key.RootKey(), key.Path(), place) == TRawResult::Done)
    CoverKey(key, place);
}

void TDeletionRight::FindValue(TRawRegistry& registry, const TKeyPath& key, TextView valueName) {
  TKeyPlace place;
  if (m_everything && registry.FindValue(key.RootKey(), key.Path(), valueName, place) == TRawResult::Done)
    CoverValue(key, valueName, place);
}

const TKeyPlace* TDeletionRight::PlaceOfKey(const TKeyPath& key) const {
  return FindIn(m_keys, key.Comparable());
}

const TKeyPlace* TDeletionRight::PlaceOfValue(const TKeyPath& key, TextView valueName) const {
  return FindIn(m_values, ComparableValue(key, valueName));
}

bool TDeletionRight::WouldBringBack(const TKeyPlace& place, TextView pathBelow, const TRawKey& key) const {
  if (m_everything)
    return true;
  const Text comparable = ComparablePlace(place, pathBelow);
  const auto saved = m_content.find(comparable);
  if (saved == m_content.end())
    return false;
  const TDigests& digests = saved->second;
  const auto isSavedValue = [&digests](const TRawValue& value) {
    const auto digest = digests.find(UpperCase(value.Name));
    return digest != digests.end() && digest->second == ContentOf(value);
  };
  const auto isSavedKey = [this, &comparable](const Text& name) {
    return m_content.contains(comparable + u"\\" + UpperCase(name));
  };
  return std::all_of(key.Values.begin(), key.Values.end(), isSavedValue) &&
         std::all_of(key.SubKeys.begin(), key.SubKeys.end(), isSavedKey);
}

bool TDeletionRight::WouldBringBack(const TKeyPlace& place, const TRawValue& value) const {
  return WouldBringBack(place, {}, TRawKey{{value}, {}});
}

void TDeletionRight::NoteWritten(const TKeyPlace& place, const TRawValue& value) {
  if (!m_everything)
    AddContent(place, {}, {&value, 1});
}

void TDeletionRight::CoverKey(const TKeyPath& key, const TKeyPlace& place) {
  m_keys.insert_or_assign(key.Comparable(), place);
}

void TDeletionRight::CoverValue(const TKeyPath& key, TextView valueName, const TKeyPlace& place) {
  m_values.insert_or_assign(ComparableValue(key, valueName), place);
}

void TDeletionRight::AddContent(const TKeyPlace& place, TextView pathBelow,
                                std::span<const TRawValue> values) {
  TDigests& digests = m_content[ComparablePlace(place, pathBelow)];
  for (const TRawValue& value : values)
    digests.insert_or_assign(UpperCase(value.Name), ContentOf(value));
}

}  // namespace corvalt
