#include "repair/deletionright.h"

#include <algorithm>
#include <array>

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

// Of the type and the bytes.
TDigest ContentOf(const TRawValue& value) {
  TDigester digester;
  std::array<std::uint8_t, sizeof(value.Type)> type{};
  for (std::size_t i = 0; i < type.size(); ++i)
    type[i] = static_cast<std::uint8_t>(value.Type >> (8 * i));
  digester.Add(type);
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

bool TDeletionRight::CoversKey(const TKeyPath& key) const {
  return m_everything || m_keys.contains(key.Comparable());
}

bool TDeletionRight::CoversValue(const TKeyPath& key, TextView valueName) const {
  return m_everything || m_values.contains(ComparableValue(key, valueName));
}

bool TDeletionRight::WouldBringBack(const TKeyPath& key, std::span<const TRawValue> values) const {
  if (m_everything)
    return true;
  const auto saved = m_content.find(key.Comparable());
  if (saved == m_content.end())
    return false;
  const TDigests& digests = saved->second;
  return std::all_of(values.begin(), values.end(), [&digests](const TRawValue& value) {
    const auto digest = digests.find(UpperCase(value.Name));
    return digest != digests.end() && digest->second == ContentOf(value);
  });
}

void TDeletionRight::NoteWritten(const TKeyPath& key, const TRawValue& value) {
  if (!m_everything)
    AddContent(key, {&value, 1});
}

void TDeletionRight::CoverKey(const TKeyPath& key) {
  m_keys.insert(key.Comparable());
}

void TDeletionRight::CoverValue(const TKeyPath& key, TextView valueName) {
  m_values.insert(ComparableValue(key, valueName));
}

void TDeletionRight::AddContent(const TKeyPath& key, std::span<const TRawValue> values) {
  TDigests& digests = m_content[key.Comparable()];
  for (const TRawValue& value : values)
    digests.insert_or_assign(UpperCase(value.Name), ContentOf(value));
}

}  // namespace corvalt
