#include "repair/problemrepair.h"

#include <utility>

#include "base/lettercase.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

// Pictures that mark the two kinds of problems whose repair does more. Today scanners give these pictures
// only to section headers, so that no problem is repaired in these ways; they are required all the same and
// tested, so keep them.
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
  return Text(StoredValueName(problem.ValueName));
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

// The result of an export that needs no other action: what could not be exported is not covered by the
// deletion right either, so it stays in the registry.
void StaysWhereNotSaved(TExportResult) {
}

}  // namespace

void BackUpProblem(BackupStore& store, const ScanProblem& problem) {
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key)
    return;
  if (problem.Kind == TProblemKind::Value) {
    StaysWhereNotSaved(store.AddValueToBackup(*key, ValueNameOf(problem)));
    if (problem.ImageIndex == kMruImage)
      StaysWhereNotSaved(store.AddValueToBackup(*key, kMruList));
  }
  // A whole root can't be deleted, and is not worth a backup.
  if (problem.Kind == TProblemKind::Key && !key->IsRoot()) {
    StaysWhereNotSaved(store.AddKeyToBackup(*key));
    if (problem.ImageIndex == kStartMenuImage) {
      for (const TKeyPath& menuKey : MenuKeysUpward(*key)) {
        if (!store.HoldsKey(menuKey))
          StaysWhereNotSaved(store.AddKeyToBackup(menuKey));
      }
    }
  }
}

void FindPlaces(TRawRegistry& registry, TDeletionRight& right, const ScanProblem& problem) {
  const TKeysReleased released(registry);
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key || problem.Kind == TProblemKind::File)
    return;
  if (problem.Kind == TProblemKind::Key) {
    right.FindKey(registry, *key);
    if (problem.ImageIndex == kStartMenuImage) {
      for (const TKeyPath& menuKey : MenuKeysUpward(*key))
        right.FindKey(registry, menuKey);
    }
    return;
  }
  right.FindValue(registry, *key, ValueNameOf(problem));
  if (problem.ImageIndex == kMruImage)
    right.FindValue(registry, *key, kMruList);
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
  const TDeletion deletion = DeleteKeyAsSaved(*key);
  if (deletion != TDeletion::NotCovered && problem.ImageIndex == kStartMenuImage)
    DeleteEmptyMenuKeys(*key);
  return {deletion};
}

TDeletion TProblemDeleter::DeleteKeyAsSaved(const TKeyPath& key) {
  TRawRegistry& raw = m_system.Raw;
  const TKeysReleased released(raw);
  TKeyPlace now;
  const TKeyPlace* place = m_right.PlaceOfKey(key);
  if (place == nullptr) {
    const bool isGone = raw.FindKey(key.RootKey(), key.Path(), now) == TRawResult::Missing;
    return isGone ? TDeletion::Deleted : Untouched();
  }
  return DeletionOf(raw.DeleteKeyAt(*place, [this, place](TextView pathBelow, const TRawKey& content) {
    return m_right.WouldBringBack(*place, pathBelow, content);
  }));
}

// Of something that exists and stays as it is.
TDeletion TProblemDeleter::Untouched() const {
  return m_right.IsWithoutBackup() ? TDeletion::Failed : TDeletion::NotCovered;
}

TDeletion TProblemDeleter::DeletionOf(TRawResult result) const {
  switch (result) {
    case TRawResult::Done:
    case TRawResult::Missing:
      return TDeletion::Deleted;
    // No backup holds a link, and the key has moved or is not what was saved.
    case TRawResult::Link:
    case TRawResult::Refused:
      return Untouched();
    default:
      return TDeletion::Failed;
  }
}

void TProblemDeleter::DeleteEmptyMenuKeys(const TKeyPath& key) {
  for (const TKeyPath& menuKey : MenuKeysUpward(key)) {
    // A key that stays is a subkey of the next one, which therefore stays too.
    if (HasSubKeys(menuKey) || DeleteKeyAsSaved(menuKey) != TDeletion::Deleted)
      return;
  }
}

bool TProblemDeleter::HasSubKeys(const TKeyPath& key) {
  m_registry->SetRootKey(key.RootKey());
  const TOpenKey opened(*m_registry, key.Path());
  return opened && m_registry->HasSubKeys();
}

TDeletionResult TProblemDeleter::DeleteValue(const ScanProblem& problem) {
  const std::optional<TKeyPath> key = KeyOf(problem);
  if (!key)
    return {};
  const TDeletion deletion = DeleteValueAsSaved(*key, ValueNameOf(problem));
  if (deletion == TDeletion::NotCovered)
    return {};
  m_registry->SetRootKey(key->RootKey());
  const bool keyOpened(TOpenKey(*m_registry, key->Path()));
  if (keyOpened && problem.ImageIndex == kMruImage)
    RewriteMruList(*key);
  return {deletion, keyOpened};
}

TDeletion TProblemDeleter::DeleteValueAsSaved(const TKeyPath& key, const Text& name) {
  TRawRegistry& raw = m_system.Raw;
  const TKeysReleased released(raw);
  TKeyPlace now;
  const TKeyPlace* place = m_right.PlaceOfValue(key, name);
  if (place == nullptr) {
    const bool isGone = raw.FindValue(key.RootKey(), key.Path(), name, now) == TRawResult::Missing;
    return isGone ? TDeletion::Deleted : Untouched();
  }
  return DeletionOf(raw.DeleteValueAt(
      *place, name, [this, place](const TRawValue& value) { return m_right.WouldBringBack(*place, value); }));
}

// The order is written only where it is still the one that was saved, or that was written here before.
void TProblemDeleter::RewriteMruList(const TKeyPath& key) {
  const TKeyPlace* place = m_right.PlaceOfValue(key, kMruList);
  TRawValue before;
  if (place == nullptr || !ReadValue(*place, kMruList, before) || !m_right.WouldBringBack(*place, before))
    return;
  m_registry->SetRootKey(place->RootKey);
  const TOpenKey opened(*m_registry, place->KeyPath);
  if (!opened)
    return;
  Text order;
  for (const Text& name : m_registry->GetValueNames()) {
    if (!EqualIgnoringCase(name, kMruList))
      order += name;
  }
  if (m_registry->WriteString(kMruList, order))
    m_right.NoteWritten(*place,
                        {Text(kMruList), kRegSz, StringBytes(TextView(order).substr(0, order.find(u'\0')))});
}

TDeletionResult TProblemDeleter::DeleteFile(const ScanProblem& problem) {
  const TSystemError error = m_system.Files.DeleteFile(problem.KeyPath);
  return {error.Failed() && !IsMissing(error) ? TDeletion::Failed : TDeletion::Deleted};
}

bool TProblemDeleter::ReadValue(const TKeyPlace& place, TextView name, TRawValue& value) {
  const TKeysReleased released(m_system.Raw);
  return m_system.Raw.ReadValue(place.RootKey, place.KeyPath, name, value) == TRawResult::Done;
}

}  // namespace corvalt
