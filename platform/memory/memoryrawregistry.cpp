#include "platform/memory/memoryrawregistry.h"

#include <algorithm>

#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

// Without SeRestorePrivilege a user can make only himself an owner (page "SetKernelObjectSecurity",
// learn.microsoft.com): the descriptor is set but for its owner.
bool OwnerStays(const TBytes& descriptor, const TBytes& wanted) {
  const auto has = ParseSecurity(descriptor);
  const auto shall = ParseSecurity(wanted);
  return has && shall && std::ranges::equal(has->Owner, shall->Owner);
}

TRawResult DeletionOf(const TMemoryKey& key) {
  if (HoldsLink(key))
    return TRawResult::Link;
  return HoldsUndeletable(key) ? TRawResult::Denied : TRawResult::Done;
}

}  // namespace

TRawResult TMemoryRawRegistry::Open(TRootKey rootKey, TextView keyPath, TOpenMemoryKey& key) const {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed)
    return TRawResult::Failed;
  TOpenMemoryKey found = m_hives.Find(m_hives.Root(rootKey), parsed->Names, false);
  if (!found)
    return TRawResult::Missing;
  if (found.Key->IsLink)
    return TRawResult::Link;
  if (found.Key->Rights == TMemoryRights::Nothing)
    return TRawResult::Denied;
  key = std::move(found);
  return TRawResult::Done;
}

TRawKey TMemoryRawRegistry::Content(const TOpenMemoryKey& key) const {
  TRawKey content;
  for (const TRawValue* value : m_hives.OrderedValues(key))
    content.Values.push_back(*value);
  content.SubKeys = m_hives.SubKeyNames(key);
  return content;
}

TRawResult TMemoryRawRegistry::ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result == TRawResult::Done)
    key = Content(found);
  return result;
}

TRawResult TMemoryRawRegistry::ReadValue(TRootKey rootKey, TextView keyPath, TextView name,
                                         TRawValue& value) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  const TRawValue* stored = TMemoryHives::FindValue(found, name);
  if (stored == nullptr)
    return TRawResult::Missing;
  value = *stored;
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::FindKey(TRootKey rootKey, TextView keyPath, TKeyPlace& place) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  std::optional<TKeyPlace> real = m_hives.PlaceOf(found.Key);
  if (!real || ParseKeyPath(keyPath)->Names.empty())
    return TRawResult::Failed;
  place = std::move(*real);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::FindValue(TRootKey rootKey, TextView keyPath, TextView name,
                                         TKeyPlace& place) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  const TMemoryKeyPointer holder = TMemoryHives::HolderOf(found, name);
  if (!holder)
    return TRawResult::Missing;
  const bool isMergedRoot = rootKey == kHkeyClassesRoot && ParseKeyPath(keyPath)->Names.empty();
  std::optional<TKeyPlace> real = PlaceOf(holder, {rootKey, Text(keyPath)});
  if (!real || isMergedRoot)
    return TRawResult::Failed;
  place = std::move(*real);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::ReadAttributes(TRootKey rootKey, TextView keyPath,
                                              TKeyAttributes& attributes) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  const TMemoryKey& key = *found.Key;
  attributes = {};
  attributes.ClassName = key.ClassName;
  if (m_registry.TellsVolatility)
    attributes.IsVolatile = key.IsVolatile;
  attributes.LastWrite = key.LastWrite;
  attributes.Security = key.Security;
  const TMemoryKeyPointer parent = key.Parent.lock();
  attributes.HasOwnSecurity =
      parent && HasOwnSecurity(key.Security, parent->Security, m_hives.Creator().Owner);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::MayCreateSubKeys(TRootKey rootKey, TextView keyPath) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed)
    return TRawResult::Failed;
  const TOpenMemoryKey found = m_hives.Find(m_hives.Root(rootKey), parsed->Names, true);
  if (!found)
    return TRawResult::Missing;
  return found.Key->Rights == TMemoryRights::Everything ? TRawResult::Done : TRawResult::Denied;
}

bool TMemoryRawRegistry::OpensWithFullAccess(TRootKey rootKey, TextView subKey) {
  // A leading "\\" makes a bad path name, but not below HKEY_CLASSES_ROOT.
  const bool isBadName = rootKey != kHkeyClassesRoot && subKey.starts_with(u'\\');
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(subKey);
  if (!parsed || isBadName)
    return false;
  const TOpenMemoryKey found = m_hives.Find(m_hives.Root(rootKey), parsed->Names, true);
  return found && found.Key->Rights == TMemoryRights::Everything;
}

TRawResult TMemoryRawRegistry::CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey,
                                         bool& isNew) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed || !KeyNamesFit(parsed->Names))
    return TRawResult::Failed;
  TOpenMemoryKey found;
  const TRawResult opened = Open(rootKey, keyPath, found);
  if (opened != TRawResult::Missing) {
    isNew = false;
    return opened;
  }
  TMemoryKeyPointer created;
  const TRawResult result = m_hives.Create(m_hives.Root(rootKey), parsed->Names, newKey, created);
  if (result == TRawResult::Done) {
    m_registry.Note("create key", keyPath);
    isNew = true;
  }
  return result;
}

TRawResult TMemoryRawRegistry::WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) {
  if (!ValueNameFits(StoredValueName(value.Name)))
    return TRawResult::Failed;
  const TRawResult result = CreateKey(rootKey, keyPath);
  if (result != TRawResult::Done)
    return result;
  TOpenMemoryKey key;
  const TRawResult opened = Open(rootKey, keyPath, key);
  if (opened != TRawResult::Done)
    return opened;
  if (key.Key->Rights == TMemoryRights::Read)
    return TRawResult::Denied;
  m_registry.Note("write value", value.Name);
  m_hives.WriteValue(*key.Key, {Text(StoredValueName(value.Name)), value.Type, value.Data});
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::WriteAttributes(TRootKey rootKey, TextView keyPath,
                                               const TWantedAttributes& wanted, TAttributesLost& lost) {
  TOpenMemoryKey found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  TMemoryKey& key = *found.Key;
  if (key.Rights == TMemoryRights::Read)
    return TRawResult::Denied;
  lost = {};
  if (!wanted.Security.empty()) {
    const bool canSet = m_registry.SetsOwners || OwnerStays(key.Security, wanted.Security);
    if (ParseSecurity(wanted.Security) && canSet) {
      key.Security = wanted.Security;
      m_hives.Touch(key);
    }
    lost.Security = !HasSecurity(key.Security, wanted.Security);
  }
  if (wanted.LastWrite) {
    if (m_registry.SetsTimes)
      key.LastWrite = *wanted.LastWrite;
    lost.LastWrite = key.LastWrite != *wanted.LastWrite;
  }
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteKey(TRootKey rootKey, TextView keyPath) {
  TOpenMemoryKey key;
  const TRawResult opened = Open(rootKey, keyPath, key);
  if (opened != TRawResult::Done)
    return opened;
  if (ParseKeyPath(keyPath)->Names.empty())
    return TRawResult::Failed;
  const TRawResult result = DeletionOf(*key.Key);
  if (result != TRawResult::Done)
    return result;
  m_registry.Note("delete key", keyPath);
  m_hives.Delete(key.Key);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) {
  TOpenMemoryKey key;
  const TRawResult result = Open(rootKey, keyPath, key);
  if (result != TRawResult::Done)
    return result;
  const TMemoryKeyPointer holder = TMemoryHives::HolderOf(key, name);
  if (!holder)
    return TRawResult::Missing;
  if (holder->Rights == TMemoryRights::Read)
    return TRawResult::Denied;
  m_hives.DeleteValue(*holder, name);
  m_registry.Note("delete value", name);
  return TRawResult::Done;
}

// The place of a key that was opened there.
std::optional<TKeyPlace> TMemoryRawRegistry::PlaceOf(const TMemoryKeyPointer& key,
                                                     const TKeyPlace& opened) const {
  return IsRootPlace(opened) ? opened : m_hives.PlaceOf(key);
}

TRawResult TMemoryRawRegistry::OpenPlace(const TKeyPlace& place, TMemoryKeyPointer& key) const {
  TOpenMemoryKey found;
  const TRawResult result = Open(place.RootKey, place.KeyPath, found);
  if (result != TRawResult::Done)
    return result;
  const std::optional<TKeyPlace> real = PlaceOf(found.Key, place);
  if (!real || !SamePlace(*real, place))
    return TRawResult::Refused;
  key = found.Key;
  if (m_registry.OnDeletion)
    m_registry.OnDeletion();
  return key->Deleted ? TRawResult::Missing : TRawResult::Done;
}

// Collects the keys of a tree, each before its subkeys.
TRawResult TMemoryRawRegistry::Inspect(const TMemoryKeyPointer& top, const TKeyCheck& mayDelete,
                                       std::vector<TTreeKey>& keys) const {
  keys = {{top, {}}};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const TOpenMemoryKey key = {keys[i].Key, nullptr};
    const Text pathBelow = keys[i].PathBelow;
    if (key.Key->IsLink)
      return TRawResult::Link;
    const TRawKey content = Content(key);
    if (!mayDelete(pathBelow, content))
      return TRawResult::Refused;
    for (const Text& name : content.SubKeys) {
      const TOpenMemoryKey subKey = m_hives.Find(key, {name}, false);
      if (!subKey)
        continue;
      if (subKey.Key->Rights >= TMemoryRights::Read)
        return TRawResult::Denied;
      keys.push_back({subKey.Key, pathBelow + u"\\" + name});
    }
  }
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) {
  if (IsRootPlace(place))
    return TRawResult::Failed;
  TMemoryKeyPointer top;
  TRawResult result = OpenPlace(place, top);
  if (result == TRawResult::Done && top->Rights >= TMemoryRights::Read)
    result = TRawResult::Denied;
  std::vector<TTreeKey> keys;
  if (result == TRawResult::Done)
    result = Inspect(top, mayDelete, keys);
  if (result != TRawResult::Done)
    return result;
  m_registry.Note("delete key", place.KeyPath);
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
    result = DeleteOne(*key, mayDelete);
    if (result != TRawResult::Done)
      return key == keys.rbegin() ? result : TRawResult::InPart;
  }
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteOne(const TTreeKey& key, const TKeyCheck& mayDelete) {
  if (key.Key->Deleted)
    return TRawResult::Done;
  if (!mayDelete(key.PathBelow, Content({key.Key, nullptr})))
    return TRawResult::Refused;
  // A subkey that came meanwhile (page "ZwDeleteKey": a key with subkeys is not deleted).
  if (!key.Key->SubKeys.empty())
    return TRawResult::Denied;
  m_hives.Delete(key.Key);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteValueAt(const TKeyPlace& place, TextView name,
                                             const TValueCheck& mayDelete) {
  TMemoryKeyPointer key;
  const TRawResult opened = OpenPlace(place, key);
  if (opened != TRawResult::Done)
    return opened;
  const TRawValue* value = TMemoryHives::FindValue({key, nullptr}, name);
  if (value == nullptr)
    return TRawResult::Missing;
  if (key->Rights == TMemoryRights::Read)
    return TRawResult::Denied;
  if (!mayDelete(*value))
    return TRawResult::Refused;
  m_registry.Note("delete value", value->Name);
  m_hives.DeleteValue(*key, Text(value->Name));
  return TRawResult::Done;
}

std::unique_ptr<TRawRegistry> TMemoryRawRegistry::OpenView(TRegistryView view) {
  TMemoryRegistry* const registry = view == m_registry.View ? &m_registry : m_registry.OtherView;
  return registry == nullptr ? nullptr : std::make_unique<TMemoryRawRegistry>(*registry);
}

}  // namespace corvalt
