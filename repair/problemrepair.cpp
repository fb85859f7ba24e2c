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

// The problem's key. nullopt for a path that opens no key.
std::optional<TKeyPath> KeyOf(const ScanProblem& problem) {
  return TKeyPath::Parse(problem.RootKey, problem.KeyPath);
}

// The name as the registry takes it: empty for the default value.
Text ValueNameOf(const ScanProblem& problem) {
  return IsDefaultValueName(problem.ValueName) ? Text() : problem.ValueName;
}

// The Start Menu keys from this one upward that may be deleted when they are empty, without the key that
// holds them all.
std::vector<TKeyPath> MenuKeysUpward(const TKeyPath& key) {
  std::vector<TKeyPath> keys;
  for (Text path = Trim(key.Path());; path = Trim(path.substr(0, path.rfind(u'\\')))) {
    if (path.ends_with(u'\\'))
      path.pop_back();
    const std::optional<TKeyPath> menuKey = TKeyPath::Parse(key.RootKey(), path);
    if (!menuKey || !Contains(path, kMenuOrder))
      return keys;
    keys.push_back(*menuKey);
  }
}

// The bytes of a string value as RegistryStore writes it, up to the first NUL and with one behind it.
TBytes StoredString(TextView text) {
  TBytes bytes;
  for (const char16_t unit : text.substr(0, text.find(u'\0'))) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  bytes.insert(bytes.end(), 2, 0);
  return bytes;
}

bool SaysMissing(TSystemError error) {
  return error.Code == kErrorFileNotFound || error.Code == kErrorPathNotFound;
}

}  // namespace

void BackUpProblem(BackupStore& store, const ScanProblem& problem) {
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key)
    return;
  if (problem.Kind == TProblemKind::Value) {
    store.AddValueToBackup(*key, ValueNameOf(problem));
    if (problem.ImageIndex == kMruImage)
      store.AddValueToBackup(*key, kMruList);
  }
  // A whole root can't be deleted, and is not worth a backup.
  if (problem.Kind == TProblemKind::Key && !key->IsRoot()) {
    store.AddKeyToBackup(*key);
    if (problem.ImageIndex == kStartMenuImage) {
      for (const TKeyPath& menuKey : MenuKeysUpward(*key)) {
        if (!store.HoldsKey(menuKey))
          store.AddKeyToBackup(menuKey);
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
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key)
    return {};
  m_registry->SetRootKey(key->RootKey());
  const TDeletion deletion = DeleteCoveredKey(*key);
  if (deletion != TDeletion::NotCovered && problem.ImageIndex == kStartMenuImage)
    DeleteEmptyMenuKeys(*key);
  return {deletion};
}

TDeletion TProblemDeleter::DeleteCoveredKey(const TKeyPath& key) {
  bool changed = false;
  const TRawResult read = CompareTree(key, changed);
  if (read == TRawResult::Missing)
    return TDeletion::Deleted;
  if (changed || !m_right.CoversKey(key))
    return TDeletion::NotCovered;
  if (read != TRawResult::Done)
    return TDeletion::Failed;
  const bool deleted = m_registry->DeleteKey(key.Path());
  return deleted || !m_registry->KeyExists(key.Path()) ? TDeletion::Deleted : TDeletion::Failed;
}

// Reads what would be deleted. Missing: the key itself is not there; what has gone below it doesn't matter.
TRawResult TProblemDeleter::CompareTree(const TKeyPath& top, bool& changed) {
  std::vector<TKeyPath> pending = {top};
  TRawResult result = TRawResult::Done;
  while (!pending.empty() && result == TRawResult::Done && !changed) {
    const TKeyPath key = std::move(pending.back());
    pending.pop_back();
    TRawKey content;
    const TRawResult read = m_system.Raw.ReadKey(key.RootKey(), key.Path(), content);
    const bool hasGone = read == TRawResult::Missing && key.Path() != top.Path();
    if (!hasGone) {
      result = read;
      // No backup holds a link.
      const bool isSaved = read != TRawResult::Link && m_right.WouldBringBack(key, content.Values);
      changed = !isSaved && !m_right.IsWithoutBackup();
    }
    for (const Text& name : content.SubKeys)
      pending.push_back(key.SubKey(name));
  }
  m_system.Raw.ReleaseKeys();
  return result;
}

void TProblemDeleter::DeleteEmptyMenuKeys(const TKeyPath& key) {
  for (const TKeyPath& menuKey : MenuKeysUpward(key)) {
    if (HasSubKeys(menuKey))
      return;
    DeleteCoveredKey(menuKey);
  }
}

bool TProblemDeleter::HasSubKeys(const TKeyPath& key) {
  if (!m_registry->OpenKey(key.Path(), false))
    return false;
  const bool hasSubKeys = m_registry->HasSubKeys();
  m_registry->CloseKey();
  return hasSubKeys;
}

TDeletionResult TProblemDeleter::DeleteValue(const ScanProblem& problem) {
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key)
    return {};
  const Text name = ValueNameOf(problem);
  TRawValue value;
  const TRawResult before = ReadValue(*key, name, value);
  const bool covered = m_right.CoversValue(*key, name);
  if (before != TRawResult::Missing && !covered)
    return {};
  if (before == TRawResult::Done && !m_right.WouldBringBack(*key, {&value, 1}))
    return {};
  m_registry->SetRootKey(key->RootKey());
  // Opening a key that is a link would open the key that it leads to.
  if (before == TRawResult::Link || !m_registry->OpenKey(key->Path(), false))
    return {before == TRawResult::Missing ? TDeletion::Deleted : TDeletion::Failed};
  if (before == TRawResult::Done)
    m_registry->DeleteValue(name);
  KeepMruListRight(problem, *key);
  const bool isThere = before == TRawResult::Done && m_registry->ValueExists(name);
  m_registry->CloseKey();
  return {isThere ? TDeletion::Failed : TDeletion::Deleted, true};
}

void TProblemDeleter::KeepMruListRight(const ScanProblem& problem, const TKeyPath& key) {
  if (problem.ImageIndex != kMruImage || !m_right.CoversValue(key, kMruList))
    return;
  TRawValue order;
  if (ReadValue(key, kMruList, order) == TRawResult::Done && m_right.WouldBringBack(key, {&order, 1}))
    RewriteMruList(key);
}

void TProblemDeleter::RewriteMruList(const TKeyPath& key) {
  Text order;
  for (const Text& name : m_registry->GetValueNames()) {
    if (!EqualIgnoringCase(name, kMruList))
      order += name;
  }
  if (m_registry->WriteString(kMruList, order))
    m_right.NoteWritten(key, {Text(kMruList), kRegSz, StoredString(order)});
}

TDeletionResult TProblemDeleter::DeleteFile(const ScanProblem& problem) {
  const TSystemError error = m_system.Files.DeleteFile(problem.KeyPath);
  return {error.Failed() && !SaysMissing(error) ? TDeletion::Failed : TDeletion::Deleted};
}

TRawResult TProblemDeleter::ReadValue(const TKeyPath& key, TextView name, TRawValue& value) {
  const TRawResult result = m_system.Raw.ReadValue(key.RootKey(), key.Path(), name, value);
  m_system.Raw.ReleaseKeys();
  return result;
}

}  // namespace corvalt
