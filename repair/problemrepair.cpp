#include "repair/problemrepair.h"

#include <utility>

#include "base/lettercase.h"

namespace corvalt {

namespace {

// Pictures that mark the two kinds of problems whose repair does more. Scanners give these pictures to
// section headers alone.
constexpr std::int32_t kStartMenuImage = 9;
constexpr std::int32_t kMruImage = 17;

constexpr TextView kMenuOrder = u"Start Menu2\\Programs\\";
constexpr TextView kMruList = u"MRUList";

Text FromRoot(TextView keyPath) {
  return keyPath.starts_with(u'\\') ? Text(keyPath) : u"\\" + Text(keyPath);
}

// The unnamed value travels as one NUL where an empty name means that no value is meant.
Text RegistryValueName(TextView valueName) {
  return valueName == TextView(u"\0", 1) ? Text() : Text(valueName);
}

bool NamesAKey(TextView keyPath) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  return parsed && !parsed->Names.empty();
}

// The Start Menu keys from this one upward that may be deleted when they are empty, without the key that
// holds them all.
std::vector<Text> MenuKeysUpward(TextView keyPath) {
  std::vector<Text> keys;
  for (Text path = Trim(keyPath);; path = Trim(path.substr(0, path.rfind(u'\\')))) {
    if (path.ends_with(u'\\'))
      path.pop_back();
    if (!Contains(path, kMenuOrder))
      return keys;
    keys.push_back(path);
  }
}

bool SaysMissing(TSystemError error) {
  return error.Code == kErrorFileNotFound || error.Code == kErrorPathNotFound;
}

}  // namespace

TProblemPlace::TProblemPlace(const ScanProblem& problem)
    : RootKey(RootKeyFromName(RootKeyName(problem.RootKey))),
      KeyPath(FromRoot(problem.KeyPath)),
      ValueName(RegistryValueName(problem.ValueName)) {
}

void BackUpProblem(BackupStore& store, const ScanProblem& problem) {
  const TProblemPlace place(problem);
  const Text rootName = RootKeyName(place.RootKey);
  if (problem.Kind == TProblemKind::Value) {
    store.AddValueToBackup(rootName, place.KeyPath, place.ValueName);
    if (problem.ImageIndex == kMruImage)
      store.AddValueToBackup(rootName, place.KeyPath, kMruList);
  }
  // A whole root can't be deleted, and is not worth a backup.
  if (problem.Kind == TProblemKind::Key && NamesAKey(place.KeyPath)) {
    store.AddKeyToBackup(rootName, place.KeyPath);
    if (problem.ImageIndex == kStartMenuImage) {
      for (const Text& menuKey : MenuKeysUpward(place.KeyPath)) {
        if (!store.HoldsKey(rootName, menuKey))
          store.AddKeyToBackup(rootName, menuKey);
      }
    }
  }
}

TProblemDeleter::TProblemDeleter(TSystem& system, TDeletionRight right)
    : m_system(system),
      m_registry(system.Registry.CreateStore(TRegistryAccess::Full)),
      m_right(std::move(right)) {
  m_system.Raw.ReleaseKeys();
}

TDeletionResult TProblemDeleter::Delete(const ScanProblem& problem) {
  switch (problem.Kind) {
    case TProblemKind::Key:
      return DeleteKey(problem);
    case TProblemKind::Value:
      return DeleteValue(problem);
    case TProblemKind::File:
      return DeleteFile(problem);
    default:
      return {};
  }
}

TDeletionResult TProblemDeleter::DeleteKey(const ScanProblem& problem) {
  const TProblemPlace place(problem);
  const bool covered = m_right.CoversKey(place.RootKey, place.KeyPath);
  if (!covered && KeyExists(place))
    return {TDeletion::NotCovered};
  m_registry->SetRootKey(place.RootKey);
  const bool deleted = covered && m_registry->DeleteKey(place.KeyPath);
  if (problem.ImageIndex == kStartMenuImage)
    DeleteEmptyMenuKeys(place);
  return {deleted || !KeyExists(place) ? TDeletion::Deleted : TDeletion::Failed};
}

void TProblemDeleter::DeleteEmptyMenuKeys(const TProblemPlace& place) {
  for (const Text& menuKey : MenuKeysUpward(place.KeyPath)) {
    if (HasSubKeys(menuKey))
      return;
    if (m_right.CoversKey(place.RootKey, menuKey))
      m_registry->DeleteKey(menuKey);
  }
}

bool TProblemDeleter::HasSubKeys(TextView keyPath) {
  if (!m_registry->OpenKey(keyPath, false))
    return false;
  const bool hasSubKeys = m_registry->HasSubKeys();
  m_registry->CloseKey();
  return hasSubKeys;
}

TDeletionResult TProblemDeleter::DeleteValue(const ScanProblem& problem) {
  const TProblemPlace place(problem);
  const bool covered = m_right.CoversValue(place.RootKey, place.KeyPath, place.ValueName);
  const TRawResult before = AskForValue(place);
  if (!covered && before != TRawResult::Missing)
    return {};
  m_registry->SetRootKey(place.RootKey);
  // Opening a key that is a link would open the key that it leads to.
  if (before == TRawResult::Link || !m_registry->OpenKey(place.KeyPath, false))
    return {before == TRawResult::Missing ? TDeletion::Deleted : TDeletion::Failed};
  if (covered)
    m_registry->DeleteValue(place.ValueName);
  KeepMruListRight(problem, place);
  const bool isThere = covered && m_registry->ValueExists(place.ValueName);
  m_registry->CloseKey();
  return {isThere ? TDeletion::Failed : TDeletion::Deleted, true};
}

void TProblemDeleter::KeepMruListRight(const ScanProblem& problem, const TProblemPlace& place) {
  const bool mayRewrite = m_right.CoversValue(place.RootKey, place.KeyPath, kMruList);
  if (problem.ImageIndex == kMruImage && mayRewrite && m_registry->ValueExists(kMruList))
    RewriteMruList();
}

void TProblemDeleter::RewriteMruList() {
  Text order;
  for (const Text& name : m_registry->GetValueNames()) {
    if (!EqualIgnoringCase(name, kMruList))
      order += name;
  }
  m_registry->WriteString(kMruList, order);
}

TDeletionResult TProblemDeleter::DeleteFile(const ScanProblem& problem) {
  const TSystemError error = m_system.Files.DeleteFile(problem.KeyPath);
  return {error.Failed() && !SaysMissing(error) ? TDeletion::Failed : TDeletion::Deleted};
}

bool TProblemDeleter::KeyExists(const TProblemPlace& place) {
  TRawKey key;
  const TRawResult result = m_system.Raw.ReadKey(place.RootKey, place.KeyPath, key);
  m_system.Raw.ReleaseKeys();
  return result != TRawResult::Missing;
}

TRawResult TProblemDeleter::AskForValue(const TProblemPlace& place) {
  TRawValue value;
  const TRawResult result = m_system.Raw.ReadValue(place.RootKey, place.KeyPath, place.ValueName, value);
  m_system.Raw.ReleaseKeys();
  return result;
}

}  // namespace corvalt
