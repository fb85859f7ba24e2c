#include "repair/deletionright.h"

#include "base/lettercase.h"
#include "core/globals.h"
#include "core/settingskeys.h"

namespace corvalt {

namespace {

constexpr TextView kBackupSetting = u"RegistryCleaner";

// One spelling for all spellings of a key. A path that opens no key has none that another path could share.
Text CanonicalKey(TRootKey rootKey, TextView keyPath) {
  Text canonical = RootKeyName(rootKey);
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed)
    return canonical + u"\\" + Text(keyPath);
  for (const Text& name : parsed->Names)
    canonical += u"\\" + UpperCase(name);
  return canonical;
}

// A key path holds no run of "\", so that what follows one can only be a value's name.
Text CanonicalValue(TRootKey rootKey, TextView keyPath, TextView valueName) {
  return CanonicalKey(rootKey, keyPath) + u"\\\\" + UpperCase(valueName);
}

}  // namespace

bool BackupsAreOn(TSystem& system) {
  TRawValue value;
  const TRawResult read = system.Raw.ReadValue(kHkeyCurrentUser, kAvailableModulesKey, kBackupSetting, value);
  system.Raw.ReleaseKeys();
  // A value of another type or size says nothing.
  return read != TRawResult::Done || value.Type != kRegDword || value.Data != TBytes(4, 0);
}

std::optional<TDeletionRight> TDeletionRight::WithoutBackup(TSystem& system) {
  if (BackupsAreOn(system))
    return std::nullopt;
  TDeletionRight right;
  right.m_everything = true;
  return right;
}

bool TDeletionRight::CoversKey(TRootKey rootKey, TextView keyPath) const {
  return m_everything || m_keys.count(CanonicalKey(rootKey, keyPath)) != 0;
}

bool TDeletionRight::CoversValue(TRootKey rootKey, TextView keyPath, TextView valueName) const {
  return m_everything || m_values.count(CanonicalValue(rootKey, keyPath, valueName)) != 0;
}

void TDeletionRight::AddKey(TRootKey rootKey, TextView keyPath) {
  m_keys.insert(CanonicalKey(rootKey, keyPath));
}

void TDeletionRight::AddValue(TRootKey rootKey, TextView keyPath, TextView valueName) {
  m_values.insert(CanonicalValue(rootKey, keyPath, valueName));
}

}  // namespace corvalt
