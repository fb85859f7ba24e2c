#include "platform/memory/memoryregistrystore.h"

namespace corvalt {

namespace {

Text SystemPathOf(const TKeyPlace& place) {
  switch (place.RootKey) {
    case kHkeyCurrentUser:
      return u"\\REGISTRY\\USER\\S-1-5-21-1-2-3-1000" + place.KeyPath;
    case kHkeyUsers:
      return u"\\REGISTRY\\USER" + place.KeyPath;
    default:
      return u"\\REGISTRY\\MACHINE" + place.KeyPath;
  }
}

}  // namespace

// Where a path starts: the root, or the open key for a relative path.
TOpenMemoryKey TMemoryRegistryStore::Start(TextView path) const {
  const bool fromRoot = !path.empty() && path.front() == u'\\';
  return fromRoot || !m_key ? m_hives.Root(m_rootKey) : m_key;
}

bool TMemoryRegistryStore::Readable() const {
  if (m_registry.OnRead)
    m_registry.OnRead();
  return m_key && !m_key.Key->Deleted;
}

bool TMemoryRegistryStore::MayChange() const {
  return m_access == TRegistryAccess::Full && m_key && !m_key.Key->Deleted &&
         m_key.Key->Rights < TMemoryRights::Read;
}

bool TMemoryRegistryStore::OpenKey(TextView path, bool canCreate) {
  const TOpenMemoryKey from = Start(path);
  m_key = {};
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  if (!parsed || !from || !KeyNamesFit(parsed->Names))
    return false;
  TOpenMemoryKey key = m_hives.Find(from, parsed->Names, true);
  if (!key && canCreate && m_access == TRegistryAccess::Full) {
    if (m_hives.Create(from, parsed->Names, {}, key.Key) == TRawResult::Done)
      m_registry.Note("create key", path);
  }
  if (!key || key.Key->Rights == TMemoryRights::Nothing)
    return false;
  m_key = std::move(key);
  return true;
}

bool TMemoryRegistryStore::KeyExists(TextView path) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  return parsed && KeyNamesFit(parsed->Names) && m_hives.Find(Start(path), parsed->Names, true);
}

const TRawValue* TMemoryRegistryStore::FindValue(TextView name) const {
  return Readable() ? TMemoryHives::FindValue(m_key, name) : nullptr;
}

TDataType TMemoryRegistryStore::GetDataType(TextView name) {
  const TRawValue* value = FindValue(name);
  return value == nullptr ? TDataType::Unknown : DataTypeOf(value->Type);
}

Text TMemoryRegistryStore::ReadString(TextView name) {
  const TRawValue* value = FindValue(name);
  return value != nullptr && IsStringType(value->Type) ? StringOf(value->Data) : Text();
}

std::int32_t TMemoryRegistryStore::ReadInteger(TextView name) {
  const TRawValue* value = FindValue(name);
  return value == nullptr ? 0 : IntegerOf(value->Type, value->Data).value_or(0);
}

bool TMemoryRegistryStore::WriteString(TextView name, TextView value) {
  return Write({Text(StoredValueName(name)), kRegSz, StringBytes(value.substr(0, value.find(u'\0')))});
}

bool TMemoryRegistryStore::WriteInteger(TextView name, std::int32_t value) {
  return Write({Text(StoredValueName(name)), kRegDword, IntegerBytes(static_cast<std::uint32_t>(value))});
}

bool TMemoryRegistryStore::Write(const TRawValue& value) {
  if (!MayChange() || !ValueNameFits(value.Name))
    return false;
  m_registry.Note("write value", value.Name);
  m_hives.WriteValue(*m_key.Key, value);
  return true;
}

std::vector<Text> TMemoryRegistryStore::GetValueNames() {
  std::vector<Text> names;
  if (Readable()) {
    for (const TRawValue* value : m_hives.OrderedValues(m_key))
      names.push_back(value->Name);
  }
  return Listed(std::move(names));
}

std::vector<Text> TMemoryRegistryStore::GetKeyNames() {
  return Listed(Readable() ? m_hives.SubKeyNames(m_key) : std::vector<Text>());
}

// What an enumeration that may fail before its end returns of the names.
std::vector<Text> TMemoryRegistryStore::Listed(std::vector<Text> names) {
  m_listedWhole = m_key && !m_key.Key->Deleted && !m_key.Key->ListingFails;
  if (!m_listedWhole && !names.empty())
    names.pop_back();
  return names;
}

std::optional<Text> TMemoryRegistryStore::RealPath() {
  if (!m_key)
    return std::nullopt;
  std::optional<TKeyPlace> place = m_hives.PlaceOf(m_key.Key);
  const bool isMerged = m_key.Beneath != nullptr;
  if (!place && !isMerged && !m_key.Key->SubKeys.empty()) {
    // The top of a hive lies where the keys below it do.
    place = m_hives.PlaceOf(m_key.Key->SubKeys.begin()->second);
    if (place)
      place->KeyPath.resize(place->KeyPath.rfind(u'\\'));
  }
  return place ? std::optional<Text>(SystemPathOf(*place)) : std::nullopt;
}

bool TMemoryRegistryStore::HasSubKeys() {
  return !GetKeyNames().empty();
}

bool TMemoryRegistryStore::DeleteKey(TextView path) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  if (m_access != TRegistryAccess::Full || !parsed || parsed->Names.empty())
    return false;
  const TOpenMemoryKey key = m_hives.Find(Start(path), parsed->Names, false);
  if (!key || HoldsLink(*key.Key) || HoldsUndeletable(*key.Key))
    return false;
  m_registry.Note("delete key", path);
  m_hives.Delete(key.Key);
  return true;
}

bool TMemoryRegistryStore::DeleteValue(TextView name) {
  if (!MayChange() || !m_hives.DeleteValue(*m_key.Key, name))
    return false;
  m_registry.Note("delete value", name);
  return true;
}

}  // namespace corvalt
