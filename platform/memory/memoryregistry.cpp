#include "platform/memory/memoryregistry.h"

#include <algorithm>
#include <string>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr std::size_t kLongestKeyName = 255;      // units, winreg.h
constexpr std::size_t kDeepestKey = 512;          // levels, winreg.h
constexpr std::size_t kLongestValueName = 16383;  // units, winreg.h

bool HoldsNul(TextView name) {
  return name.find(u'\0') != TextView::npos;
}

bool NamesFit(const std::vector<Text>& names) {
  return names.size() <= kDeepestKey && std::all_of(names.begin(), names.end(), [](const Text& name) {
           return name.size() <= kLongestKeyName && !HoldsNul(name);
         });
}

// A name of one NUL means the default value. Any other name with a NUL can't be said to the registry.
Text StoredName(TextView name) {
  return name == TextView(u"\0", 1) ? Text() : Text(name);
}

bool ValueNameFits(TextView name) {
  return name.size() <= kLongestValueName && !HoldsNul(name);
}

void MarkDeleted(TMemoryKey& key) {
  key.Deleted = true;
  for (auto& [name, subKey] : key.SubKeys)
    MarkDeleted(*subKey);
}

bool AnyKey(const TMemoryKey& key, bool (*test)(const TMemoryKey&)) {
  if (test(key))
    return true;
  return std::any_of(key.SubKeys.begin(), key.SubKeys.end(),
                     [test](const auto& entry) { return AnyKey(*entry.second, test); });
}

Text TextOf(const TBytes& data) {
  Text text;
  for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
    const auto unit = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
    if (unit == u'\0')
      break;
    text.push_back(unit);
  }
  return text;
}

TBytes IntegerBytes(std::uint32_t value) {
  TBytes bytes;
  for (int shift = 0; shift < 32; shift += 8)
    bytes.push_back(static_cast<std::uint8_t>(value >> shift));
  return bytes;
}

std::string HexOf(const TBytes& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

// Units rather than UTF-8, so that ill-formed names differ in a dump.
std::string Escaped(TextView text) {
  std::string escaped;
  for (const char16_t unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      escaped.push_back(static_cast<char>(unit));
    } else {
      escaped.append("<").append(std::to_string(unit)).append(">");
    }
  }
  return escaped;
}

void DumpKey(const TMemoryRegistry& registry, const TMemoryKey& key, const std::string& path,
             std::vector<std::string>& lines) {
  lines.push_back("[" + path + "]" + (key.LinkTarget ? " link" : "") + (key.Denied ? " denied" : ""));
  for (const TRawValue* value : registry.OrderedValues(key)) {
    lines.push_back(path + " | " + Escaped(value->Name) + " = " + std::to_string(value->Type) + ":" +
                    HexOf(value->Data));
  }
  for (const auto& [name, subKey] : key.SubKeys) {
    DumpKey(registry, *subKey, path + "\\" + Escaped(subKey->Name), lines);
  }
}

class TMemoryRegistryStore : public RegistryStore {
 public:
  TMemoryRegistryStore(TMemoryRegistry& registry, TRegistryAccess access)
      : m_registry(registry), m_access(access) {
  }

  void SetRootKey(TRootKey rootKey) override {
    m_rootKey = rootKey;
  }

  bool OpenKey(TextView path, bool canCreate) override {
    const std::shared_ptr<TMemoryKey> from = Start(path);
    m_key.reset();
    const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
    if (!parsed || !from || !NamesFit(parsed->Names))
      return false;
    std::shared_ptr<TMemoryKey> key = TMemoryRegistry::Find(from, parsed->Names, true);
    if (!key && canCreate && m_access == TRegistryAccess::Full) {
      key = m_registry.Create(from, parsed->Names);
      if (key)
        m_registry.Note("create key", path);
    }
    if (!key || key->Denied)
      return false;
    m_key = std::move(key);
    return true;
  }

  void CloseKey() override {
    m_key.reset();
  }

  bool KeyExists(TextView path) override {
    const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
    const std::shared_ptr<TMemoryKey> from = Start(path);
    return parsed && from && TMemoryRegistry::Find(from, parsed->Names, true) != nullptr;
  }

  bool ValueExists(TextView name) override {
    return FindValue(name) != nullptr;
  }

  TDataType GetDataType(TextView name) override {
    const TRawValue* value = FindValue(name);
    return value == nullptr ? TDataType::Unknown : DataTypeOf(value->Type);
  }

  Text ReadString(TextView name) override {
    const TRawValue* value = FindValue(name);
    const bool isText = value != nullptr && (value->Type == kRegSz || value->Type == kRegExpandSz);
    return isText ? TextOf(value->Data) : Text();
  }

  std::int32_t ReadInteger(TextView name) override {
    const TRawValue* value = FindValue(name);
    if (value == nullptr || value->Type != kRegDword || value->Data.size() != 4)
      return 0;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
      number |= static_cast<std::uint32_t>(value->Data[i]) << (8 * i);
    return static_cast<std::int32_t>(number);
  }

  bool ReadBool(TextView name) override {
    return ReadInteger(name) != 0;
  }

  bool WriteString(TextView name, TextView value) override {
    return Write({StoredName(name), kRegSz, StringBytes(value.substr(0, value.find(u'\0')))});
  }
  bool WriteInteger(TextView name, std::int32_t value) override {
    return Write({StoredName(name), kRegDword, IntegerBytes(static_cast<std::uint32_t>(value))});
  }
  bool WriteBool(TextView name, bool value) override {
    return WriteInteger(name, value ? 1 : 0);
  }

  std::vector<Text> GetValueNames() override {
    std::vector<Text> names;
    if (!Readable())
      return names;
    for (const TRawValue* value : m_registry.OrderedValues(*m_key))
      names.push_back(value->Name);
    return names;
  }

  std::vector<Text> GetKeyNames() override {
    return Readable() ? m_registry.SubKeyNames(*m_key) : std::vector<Text>();
  }

  bool HasSubKeys() override {
    return Readable() && !m_key->SubKeys.empty();
  }

  bool DeleteKey(TextView path) override {
    const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
    const std::shared_ptr<TMemoryKey> from = Start(path);
    if (m_access != TRegistryAccess::Full || !parsed || !from || parsed->Names.empty())
      return false;
    const std::shared_ptr<TMemoryKey> key = TMemoryRegistry::Find(from, parsed->Names, false);
    if (!key || HoldsLink(*key) || HoldsDenied(*key))
      return false;
    m_registry.Note("delete key", path);
    return TMemoryRegistry::Detach(from, parsed->Names);
  }

  bool DeleteValue(TextView name) override {
    if (m_access != TRegistryAccess::Full || !m_key || m_key->Deleted)
      return false;
    if (m_key->Values.erase(UpperCase(StoredName(name))) == 0)
      return false;
    m_registry.Note("delete value", name);
    return true;
  }

 private:
  // Where a path starts: the root, or the open key for a relative path.
  std::shared_ptr<TMemoryKey> Start(TextView path) const {
    const bool fromRoot = !path.empty() && path.front() == u'\\';
    return fromRoot || !m_key ? m_registry.Root(m_rootKey) : m_key;
  }

  bool Readable() const {
    if (m_registry.OnRead)
      m_registry.OnRead();
    return m_key && !m_key->Deleted;
  }

  const TRawValue* FindValue(TextView name) const {
    if (!Readable())
      return nullptr;
    const auto found = m_key->Values.find(UpperCase(StoredName(name)));
    return found == m_key->Values.end() ? nullptr : &found->second.Raw;
  }

  bool Write(const TRawValue& value) {
    if (m_access != TRegistryAccess::Full || !m_key || m_key->Deleted)
      return false;
    if (!ValueNameFits(value.Name))
      return false;
    m_registry.Note("write value", value.Name);
    m_registry.WriteValue(*m_key, value);
    return true;
  }

  TMemoryRegistry& m_registry;
  TRegistryAccess m_access;
  TRootKey m_rootKey = kHkeyCurrentUser;
  std::shared_ptr<TMemoryKey> m_key;
};

}  // namespace

TBytes UnitBytes(TextView text) {
  TBytes bytes;
  bytes.reserve(2 * text.size() + 2);
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

TBytes StringBytes(TextView text) {
  TBytes bytes = UnitBytes(text);
  bytes.insert(bytes.end(), {0, 0});
  return bytes;
}

bool HoldsLink(const TMemoryKey& key) {
  return AnyKey(key, [](const TMemoryKey& each) { return each.LinkTarget != nullptr; });
}

bool HoldsDenied(const TMemoryKey& key) {
  return AnyKey(key, [](const TMemoryKey& each) { return each.Denied; });
}

TMemoryRegistry::TMemoryRegistry(TNameOrder order) : m_order(order) {
  for (const TRootKey rootKey : {kHkeyClassesRoot, kHkeyCurrentUser, kHkeyLocalMachine, kHkeyUsers,
                                 kHkeyCurrentConfig, kHkeyDynData}) {
    m_roots[rootKey] = std::make_shared<TMemoryKey>();
  }
}

std::unique_ptr<RegistryStore> TMemoryRegistry::CreateStore(TRegistryAccess access) {
  return std::make_unique<TMemoryRegistryStore>(*this, access);
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::Root(TRootKey rootKey) const {
  const auto found = m_roots.find(rootKey);
  return found == m_roots.end() ? nullptr : found->second;
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::Find(TRootKey rootKey, const std::vector<Text>& names,
                                                  bool followLast) const {
  std::shared_ptr<TMemoryKey> root = Root(rootKey);
  return root ? Find(std::move(root), names, followLast) : nullptr;
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::Find(std::shared_ptr<TMemoryKey> from,
                                                  const std::vector<Text>& names, bool followLast) {
  std::shared_ptr<TMemoryKey> key = std::move(from);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto found = key->SubKeys.find(UpperCase(names[i]));
    if (found == key->SubKeys.end() || key->Deleted)
      return nullptr;
    key = found->second;
    const bool isLast = i + 1 == names.size();
    if (key->LinkTarget && (!isLast || followLast))
      key = key->LinkTarget;
  }
  return key->Deleted ? nullptr : key;
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::Create(std::shared_ptr<TMemoryKey> from,
                                                    const std::vector<Text>& names) {
  if (!NamesFit(names))
    return nullptr;
  std::shared_ptr<TMemoryKey> key = std::move(from);
  for (const Text& name : names) {
    if (key->Deleted)
      return nullptr;
    std::shared_ptr<TMemoryKey>& subKey = key->SubKeys[UpperCase(name)];
    if (!subKey) {
      if (key->Denied) {
        key->SubKeys.erase(UpperCase(name));
        return nullptr;
      }
      subKey = std::make_shared<TMemoryKey>();
      subKey->Name = name;
    }
    key = subKey->LinkTarget ? subKey->LinkTarget : subKey;
  }
  return key;
}

void TMemoryRegistry::WriteValue(TMemoryKey& key, const TRawValue& value) {
  const auto [entry, isNew] = key.Values.try_emplace(UpperCase(value.Name));
  TMemoryKey::TValue& stored = entry->second;
  if (isNew)
    stored = {value, m_nextSequence++};
  stored.Raw.Type = value.Type;
  stored.Raw.Data = value.Data;
}

std::vector<Text> TMemoryRegistry::SubKeyNames(const TMemoryKey& key) const {
  std::vector<Text> names;
  for (const auto& [upperName, subKey] : key.SubKeys)
    names.push_back(subKey->Name);
  if (m_order == TNameOrder::Wine) {
    std::sort(names.begin(), names.end(),
              [](const Text& a, const Text& b) { return LowerCase(a) < LowerCase(b); });
  }
  return names;
}

std::vector<const TRawValue*> TMemoryRegistry::OrderedValues(const TMemoryKey& key) const {
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
  std::vector<const TRawValue*> raw;
  raw.reserve(values.size());
  for (const TMemoryKey::TValue* value : values)
    raw.push_back(&value->Raw);
  return raw;
}

bool TMemoryRegistry::Detach(const std::shared_ptr<TMemoryKey>& from, const std::vector<Text>& names) {
  const std::vector<Text> parentNames(names.begin(), names.end() - 1);
  const std::shared_ptr<TMemoryKey> parent = Find(from, parentNames, true);
  if (!parent)
    return false;
  const auto found = parent->SubKeys.find(UpperCase(names.back()));
  if (found == parent->SubKeys.end())
    return false;
  MarkDeleted(*found->second);
  parent->SubKeys.erase(found);
  return true;
}

void TMemoryRegistry::Note(std::string_view what, TextView path) const {
  if (m_journal != nullptr)
    m_journal->Add(std::string(what) + " " + EncodeUtf8(path));
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::FullPathKey(TextView fullPath, bool create) {
  const std::size_t rootEnd = fullPath.find(u'\\');
  const std::shared_ptr<TMemoryKey> root = Root(RootKeyFromName(fullPath.substr(0, rootEnd)));
  const std::vector<Text> names =
      ParseKeyPath(rootEnd == TextView::npos ? TextView() : fullPath.substr(rootEnd))->Names;
  return create ? Create(root, names) : Find(root, names, false);
}

std::shared_ptr<TMemoryKey> TMemoryRegistry::FullPathKey(TextView fullPath) const {
  return const_cast<TMemoryRegistry*>(this)->FullPathKey(fullPath, false);
}

void TMemoryRegistry::AddKey(TextView fullPath) {
  FullPathKey(fullPath, true);
}

void TMemoryRegistry::Set(TextView fullPath, TextView name, TextView text) {
  SetRaw(fullPath, {Text(name), kRegSz, StringBytes(text)});
}

void TMemoryRegistry::SetExpand(TextView fullPath, TextView name, TextView text) {
  SetRaw(fullPath, {Text(name), kRegExpandSz, StringBytes(text)});
}

void TMemoryRegistry::SetInteger(TextView fullPath, TextView name, std::uint32_t value) {
  SetRaw(fullPath, {Text(name), kRegDword, IntegerBytes(value)});
}

void TMemoryRegistry::SetRaw(TextView fullPath, const TRawValue& value) {
  WriteValue(*FullPathKey(fullPath, true), value);
}

void TMemoryRegistry::RemoveKey(TextView fullPath) const {
  const std::size_t rootEnd = fullPath.find(u'\\');
  Detach(Root(RootKeyFromName(fullPath.substr(0, rootEnd))), ParseKeyPath(fullPath.substr(rootEnd))->Names);
}

void TMemoryRegistry::Deny(TextView fullPath) {
  FullPathKey(fullPath, true)->Denied = true;
}

void TMemoryRegistry::MakeLink(TextView fullPath, TextView targetFullPath) {
  const std::shared_ptr<TMemoryKey> target = FullPathKey(targetFullPath, true);
  FullPathKey(fullPath, true)->LinkTarget = target;
}

bool TMemoryRegistry::HasKey(TextView fullPath) const {
  return FullPathKey(fullPath) != nullptr;
}

const TRawValue* TMemoryRegistry::FindValue(TextView fullPath, TextView name) const {
  const std::shared_ptr<TMemoryKey> key = FullPathKey(fullPath);
  if (!key)
    return nullptr;
  const auto found = key->Values.find(UpperCase(name));
  return found == key->Values.end() ? nullptr : &found->second.Raw;
}

bool TMemoryRegistry::HasValue(TextView fullPath, TextView name) const {
  return FindValue(fullPath, name) != nullptr;
}

std::vector<std::string> TMemoryRegistry::Dump(TextView fullPath) const {
  std::vector<std::string> lines;
  const std::shared_ptr<TMemoryKey> key = FullPathKey(fullPath);
  if (key)
    DumpKey(*this, *key, Escaped(fullPath), lines);
  return lines;
}

TRawResult TMemoryRawRegistry::Open(TRootKey rootKey, TextView keyPath, std::shared_ptr<TMemoryKey>& key) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed)
    return TRawResult::Failed;
  std::shared_ptr<TMemoryKey> found = m_registry.Find(rootKey, parsed->Names, false);
  if (!found)
    return TRawResult::Missing;
  if (found->LinkTarget)
    return TRawResult::Link;
  if (found->Denied)
    return TRawResult::Denied;
  key = std::move(found);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) {
  std::shared_ptr<TMemoryKey> found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  key.Values.clear();
  for (const TRawValue* value : m_registry.OrderedValues(*found))
    key.Values.push_back(*value);
  key.SubKeys = m_registry.SubKeyNames(*found);
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::ReadValue(TRootKey rootKey, TextView keyPath, TextView name,
                                         TRawValue& value) {
  std::shared_ptr<TMemoryKey> found;
  const TRawResult result = Open(rootKey, keyPath, found);
  if (result != TRawResult::Done)
    return result;
  const auto entry = found->Values.find(UpperCase(StoredName(name)));
  if (entry == found->Values.end())
    return TRawResult::Missing;
  value = entry->second.Raw;
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::CreateKey(TRootKey rootKey, TextView keyPath) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  const std::shared_ptr<TMemoryKey> root = m_registry.Root(rootKey);
  if (!parsed || !root || !NamesFit(parsed->Names))
    return TRawResult::Failed;
  const std::shared_ptr<TMemoryKey> key = m_registry.Find(rootKey, parsed->Names, false);
  if (key && key->LinkTarget)
    return TRawResult::Link;
  if (key && key->Denied)
    return TRawResult::Denied;
  if (key)
    return TRawResult::Done;
  m_registry.Note("create key", keyPath);
  return m_registry.Create(root, parsed->Names) ? TRawResult::Done : TRawResult::Denied;
}

TRawResult TMemoryRawRegistry::WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) {
  if (!ValueNameFits(StoredName(value.Name)))
    return TRawResult::Failed;
  const TRawResult result = CreateKey(rootKey, keyPath);
  if (result != TRawResult::Done)
    return result;
  std::shared_ptr<TMemoryKey> key;
  const TRawResult opened = Open(rootKey, keyPath, key);
  if (opened != TRawResult::Done)
    return opened;
  m_registry.Note("write value", value.Name);
  m_registry.WriteValue(*key, {StoredName(value.Name), value.Type, value.Data});
  return TRawResult::Done;
}

TRawResult TMemoryRawRegistry::DeleteKey(TRootKey rootKey, TextView keyPath) {
  std::shared_ptr<TMemoryKey> key;
  const TRawResult result = Open(rootKey, keyPath, key);
  if (result != TRawResult::Done)
    return result;
  if (HoldsLink(*key))
    return TRawResult::Link;
  if (HoldsDenied(*key))
    return TRawResult::Denied;
  const std::vector<Text> names = ParseKeyPath(keyPath)->Names;
  if (names.empty())
    return TRawResult::Failed;
  m_registry.Note("delete key", keyPath);
  return TMemoryRegistry::Detach(m_registry.Root(rootKey), names) ? TRawResult::Done : TRawResult::Failed;
}

TRawResult TMemoryRawRegistry::DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) {
  std::shared_ptr<TMemoryKey> key;
  const TRawResult result = Open(rootKey, keyPath, key);
  if (result != TRawResult::Done)
    return result;
  if (key->Values.erase(UpperCase(StoredName(name))) == 0)
    return TRawResult::Missing;
  m_registry.Note("delete value", name);
  return TRawResult::Done;
}

}  // namespace corvalt
