#include "platform/memory/memoryhives.h"

#include <algorithm>

#include "base/lettercase.h"
#include "base/limits.h"

namespace corvalt {

namespace {

// A FILETIME of the year 2024, and how much later each change is than the one before: a second.
constexpr std::uint64_t kFirstTime = 133500000000000000;
constexpr std::uint64_t kTimeStep = 10000000;

bool AnyKey(const TMemoryKey& key, bool (*test)(const TMemoryKey&)) {
  if (test(key))
    return true;
  return std::any_of(key.SubKeys.begin(), key.SubKeys.end(),
                     [test](const auto& entry) { return AnyKey(*entry.second, test); });
}

void MarkDeleted(TMemoryKey& key) {
  key.Deleted = true;
  for (auto& [name, subKey] : key.SubKeys)
    MarkDeleted(*subKey);
}

TMemoryKeyPointer ChildOf(const TMemoryKeyPointer& key, const Text& upperName, bool followLink) {
  if (!key || key->Deleted)
    return nullptr;
  const auto found = key->SubKeys.find(upperName);
  if (found == key->SubKeys.end())
    return nullptr;
  return found->second->IsLink && followLink ? found->second->LinkTarget.lock() : found->second;
}

TMemoryKeyPointer TopOf(TMemoryKeyPointer key) {
  while (const TMemoryKeyPointer parent = key->Parent.lock())
    key = parent;
  return key;
}

}  // namespace

bool KeyNamesFit(const std::vector<Text>& names) {
  return names.size() <= kDeepestKey && std::all_of(names.begin(), names.end(), [](const Text& name) {
           return name.size() <= kLongestKeyName && !HoldsNul(name);
         });
}

bool ValueNameFits(TextView name) {
  return name.size() <= kLongestValueName && !HoldsNul(name);
}

bool HoldsLink(const TMemoryKey& key) {
  return AnyKey(key, [](const TMemoryKey& each) { return each.IsLink; });
}

bool HoldsUndeletable(const TMemoryKey& key) {
  return AnyKey(key, [](const TMemoryKey& each) { return each.Rights >= TMemoryRights::Read; });
}

TMemoryHives::TMemoryHives(TNameOrder order) : m_order(order), m_now(kFirstTime) {
  for (const TRootKey rootKey :
       {kHkeyCurrentUser, kHkeyLocalMachine, kHkeyUsers, kHkeyCurrentConfig, kHkeyDynData}) {
    m_roots[rootKey] = NewHive();
  }
  m_userClasses = NewHive();
  m_machineClasses = Add(Add(m_roots[kHkeyLocalMachine], u"SOFTWARE"), u"Classes");
  const TMemoryKeyPointer link = Add(Add(m_roots[kHkeyCurrentUser], u"Software"), u"Classes");
  link->IsLink = true;
  link->LinkTarget = m_userClasses;
  // No Windows has empty classes.
  for (const TMemoryKeyPointer& classes : {m_machineClasses, m_userClasses})
    WriteValue(*classes, {{}, kRegSz, StringBytes({})});
}

TMemoryKeyPointer TMemoryHives::NewHive() {
  auto hive = std::make_shared<TMemoryKey>();
  hive->Security = DefaultSecurity();
  Touch(*hive);
  return hive;
}

TMemoryKeyPointer TMemoryHives::Add(const TMemoryKeyPointer& parent, TextView name) {
  auto key = std::make_shared<TMemoryKey>();
  key->Name = Text(name);
  key->Parent = parent;
  key->Security = InheritedSecurity(parent->Security, m_creator);
  Touch(*key);
  Touch(*parent);
  parent->SubKeys[UpperCase(name)] = key;
  return key;
}

void TMemoryHives::Touch(TMemoryKey& key) {
  m_now += kTimeStep;
  key.LastWrite = m_now;
}

TOpenMemoryKey TMemoryHives::Root(TRootKey rootKey) const {
  if (rootKey == kHkeyClassesRoot)
    return {m_userClasses, m_machineClasses};
  const auto found = m_roots.find(rootKey);
  return found == m_roots.end() ? TOpenMemoryKey() : TOpenMemoryKey{found->second, nullptr};
}

TOpenMemoryKey TMemoryHives::Find(TOpenMemoryKey from, const std::vector<Text>& names,
                                  bool followLast) const {
  TOpenMemoryKey key = std::move(from);
  for (std::size_t i = 0; i < names.size() && key; ++i) {
    const bool follow = followLast || i + 1 < names.size();
    const Text upperName = UpperCase(names[i]);
    key = {ChildOf(key.Key, upperName, follow), ChildOf(key.Beneath, upperName, follow)};
    if (!key.Key)
      key = {std::move(key.Beneath), nullptr};
  }
  return key && !key.Key->Deleted ? key : TOpenMemoryKey();
}

std::size_t TMemoryHives::Follow(TMemoryKeyPointer& key, const std::vector<Text>& names) {
  std::size_t known = 0;
  for (; known < names.size(); ++known) {
    TMemoryKeyPointer subKey = ChildOf(key, UpperCase(names[known]), true);
    if (!subKey)
      break;
    key = std::move(subKey);
  }
  return known;
}

// Of two keys the one beneath is the machine's, and the machine's hive gets the new keys.
TMemoryKeyPointer TMemoryHives::Build(const TOpenMemoryKey& from, const std::vector<Text>& names) {
  TMemoryKeyPointer key = from.Beneath ? from.Beneath : from.Key;
  for (std::size_t known = Follow(key, names); known < names.size(); ++known)
    key = Add(key, names[known]);
  return key;
}

TRawResult TMemoryHives::Create(const TOpenMemoryKey& from, const std::vector<Text>& names,
                                const TNewKey& newKey, TMemoryKeyPointer& created) {
  if (!from || !KeyNamesFit(names))
    return TRawResult::Failed;
  TMemoryKeyPointer parent = from.Beneath ? from.Beneath : from.Key;
  const std::size_t known = Follow(parent, names);
  if (known == names.size() || parent->Deleted)
    return TRawResult::Failed;
  if (parent->Rights != TMemoryRights::Everything)
    return TRawResult::Denied;
  if (parent->IsVolatile && !newKey.IsVolatile)
    return TRawResult::MustBeVolatile;
  created = parent;
  for (std::size_t i = known; i < names.size(); ++i) {
    created = Add(created, names[i]);
    created->IsVolatile = parent->IsVolatile;
  }
  created->ClassName = newKey.ClassName;
  created->IsVolatile = newKey.IsVolatile;
  return TRawResult::Done;
}

void TMemoryHives::Delete(const TMemoryKeyPointer& key) {
  MarkDeleted(*key);
  if (const TMemoryKeyPointer parent = key->Parent.lock()) {
    parent->SubKeys.erase(UpperCase(key->Name));
    Touch(*parent);
  }
}

void TMemoryHives::WriteValue(TMemoryKey& key, const TRawValue& value) {
  const auto [entry, isNew] = key.Values.try_emplace(UpperCase(value.Name));
  TMemoryKey::TValue& stored = entry->second;
  if (isNew)
    stored = {value, m_nextSequence++};
  stored.Raw.Type = value.Type;
  stored.Raw.Data = value.Data;
  Touch(key);
}

bool TMemoryHives::DeleteValue(TMemoryKey& key, TextView name) {
  if (key.Values.erase(UpperCase(StoredValueName(name))) == 0)
    return false;
  Touch(key);
  return true;
}

TMemoryKeyPointer TMemoryHives::HolderOf(const TOpenMemoryKey& key, TextView name) {
  const Text upperName = UpperCase(StoredValueName(name));
  for (const TMemoryKeyPointer& each : {key.Key, key.Beneath}) {
    if (each && each->Values.count(upperName) != 0)
      return each;
  }
  return nullptr;
}

const TRawValue* TMemoryHives::FindValue(const TOpenMemoryKey& key, TextView name) {
  const TMemoryKeyPointer holder = HolderOf(key, name);
  return holder ? &holder->Values.find(UpperCase(StoredValueName(name)))->second.Raw : nullptr;
}

std::vector<Text> TMemoryHives::SubKeyNames(const TOpenMemoryKey& key) const {
  std::map<Text, Text> namesByUpper;
  for (const TMemoryKeyPointer& each : {key.Key, key.Beneath}) {
    if (!each)
      continue;
    for (const auto& [upperName, subKey] : each->SubKeys)
      namesByUpper.emplace(upperName, subKey->Name);
  }
  std::vector<Text> names;
  for (auto& [upperName, name] : namesByUpper)
    names.push_back(std::move(name));
  if (m_order == TNameOrder::Wine) {
    std::sort(names.begin(), names.end(),
              [](const Text& a, const Text& b) { return LowerCase(a) < LowerCase(b); });
  }
  return names;
}

std::vector<const TMemoryKey::TValue*> TMemoryHives::SortedValues(const TMemoryKey& key) const {
  std::vector<const TMemoryKey::TValue*> values;
  for (const auto& [upperName, value] : key.Values)
    values.push_back(&value);
  if (m_order == TNameOrder::Windows) {
    std::sort(values.begin(), values.end(),
              [](const auto* a, const auto* b) { return a->Sequence < b->Sequence; });
  } else {
    std::sort(values.begin(), values.end(),
              [](const auto* a, const auto* b) { return LowerCase(a->Raw.Name) < LowerCase(b->Raw.Name); });
  }
  return values;
}

std::vector<const TRawValue*> TMemoryHives::OrderedValues(const TOpenMemoryKey& key) const {
  std::vector<const TRawValue*> values;
  for (const TMemoryKey::TValue* value : SortedValues(*key.Key))
    values.push_back(&value->Raw);
  if (!key.Beneath)
    return values;
  for (const TMemoryKey::TValue* value : SortedValues(*key.Beneath)) {
    if (key.Key->Values.count(UpperCase(value->Raw.Name)) == 0)
      values.push_back(&value->Raw);
  }
  return values;
}

std::optional<TKeyPlace> TMemoryHives::HiveOf(const TMemoryKeyPointer& top) const {
  if (top == m_userClasses)
    return TKeyPlace{kHkeyCurrentUser, u"\\Software\\Classes"};
  for (const auto& [rootKey, root] : m_roots) {
    if (root == top)
      return TKeyPlace{rootKey, {}};
  }
  return std::nullopt;
}

std::optional<TKeyPlace> TMemoryHives::PlaceOf(const TMemoryKeyPointer& key) const {
  std::optional<TKeyPlace> place = HiveOf(TopOf(key));
  Text path;
  for (TMemoryKeyPointer each = key; each->Parent.lock(); each = each->Parent.lock())
    path.insert(0, u"\\" + each->Name);
  if (key->Deleted || path.empty() || !place)
    return std::nullopt;
  place->KeyPath += path;
  return place;
}

}  // namespace corvalt
