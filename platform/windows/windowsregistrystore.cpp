#include "platform/windows/windowsregistrystore.h"

#include <algorithm>
#include <utility>

#include "base/lettercase.h"
#include "base/limits.h"
#include "platform/windows/keyrules.h"
#include "platform/windows/keytree.h"

namespace corvalt {

namespace {

constexpr DWORD kLargestKeptData = 65536;                                // bytes of one value
constexpr std::size_t kLargestSnapshot = std::size_t{16} * 1024 * 1024;  // bytes of all values

constexpr REGSAM kReadAccess = KEY_READ;
constexpr REGSAM kFullAccess = KEY_READ | KEY_WRITE;

}  // namespace

void TValueSnapshot::Clear() {
  m_entries.clear();
  m_sorted.clear();
  m_expected = 0;
  m_names.clear();
  m_data.clear();
}

void TValueSnapshot::Add(const TValueBuffer& value) {
  TEntry entry;
  entry.NameBegin = m_names.size();
  entry.NameLength = value.NameLength;
  entry.Type = value.Type;
  m_names += value.Name();
  const bool fits = value.Size <= kLargestKeptData && m_data.size() + value.Size <= kLargestSnapshot;
  entry.HasData = value.Complete && fits;
  if (entry.HasData) {
    entry.DataBegin = m_data.size();
    entry.DataSize = value.Size;
    m_data.insert(m_data.end(), value.Data().begin(), value.Data().end());
  }
  m_entries.push_back(entry);
}

const TValueSnapshot::TEntry* TValueSnapshot::Find(TextView name) {
  for (const std::size_t candidate : {m_expected, m_expected + 1}) {
    if (candidate < m_entries.size() && NameOf(m_entries[candidate]) == name) {
      m_expected = candidate;
      return &m_entries[candidate];
    }
  }
  Sort();
  const auto found =
      std::lower_bound(m_sorted.begin(), m_sorted.end(), name, [this](std::uint32_t index, TextView wanted) {
        return CompareIgnoringCase(NameOf(m_entries[index]), wanted) < 0;
      });
  if (found == m_sorted.end() || !EqualIgnoringCase(NameOf(m_entries[*found]), name))
    return nullptr;
  m_expected = *found;
  return &m_entries[*found];
}

void TValueSnapshot::Sort() {
  if (m_sorted.size() == m_entries.size())
    return;
  m_sorted.resize(m_entries.size());
  for (std::size_t i = 0; i < m_sorted.size(); ++i)
    m_sorted[i] = static_cast<std::uint32_t>(i);
  std::sort(m_sorted.begin(), m_sorted.end(), [this](std::uint32_t a, std::uint32_t b) {
    return CompareIgnoringCase(NameOf(m_entries[a]), NameOf(m_entries[b])) < 0;
  });
}

void TWindowsRegistryStore::SetRootKey(TRootKey rootKey) {
  if (rootKey != m_rootKey)
    m_chain.Clear();
  m_rootKey = rootKey;
}

std::optional<TWindowsRegistryStore::TPlace> TWindowsRegistryStore::PlaceOf(TextView path) const {
  std::optional<TPlace> place = AnyPlaceOf(path);
  if (place &&
      static_cast<std::size_t>(std::count(place->Path.begin(), place->Path.end(), u'\\')) >= kDeepestKey)
    return std::nullopt;
  return place;
}

std::optional<TWindowsRegistryStore::TPlace> TWindowsRegistryStore::AnyPlaceOf(TextView path) const {
  if (IsPlainPath(path))
    return TPlace{m_rootKey, Text(path.substr(1))};
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  if (!parsed)
    return std::nullopt;
  const std::optional<Text> joined = JoinNames(parsed->Names);
  if (!joined)
    return std::nullopt;
  if (parsed->FromRoot || !m_open)
    return TPlace{m_rootKey, *joined};
  const bool needsSeparator = !m_open->Path.empty() && !joined->empty();
  return TPlace{m_open->RootKey, m_open->Path + (needsSeparator ? u"\\" : u"") + *joined};
}

void TWindowsRegistryStore::Forget() {
  m_subKeysCounted = false;
  m_snapshot.Clear();
}

// A user without rights to change a key may still read it, so reading is what remains when the system
// refuses.
LSTATUS TWindowsRegistryStore::OpenForAccess(const TPlace& place) {
  if (m_access == TRegistryAccess::Full) {
    const LSTATUS status = m_chain.Open(place.RootKey, place.Path, kFullAccess, false, m_open);
    if (status != ERROR_ACCESS_DENIED)
      return status;
  }
  return m_chain.Open(place.RootKey, place.Path, kReadAccess, false, m_open);
}

bool TWindowsRegistryStore::OpenKey(TextView path, bool canCreate) {
  const std::optional<TPlace> place = PlaceOf(path);
  CloseKey();
  if (!place)
    return false;
  const LSTATUS status = OpenForAccess(*place);
  if (status == ERROR_FILE_NOT_FOUND && canCreate && m_access == TRegistryAccess::Full)
    m_chain.Create(place->RootKey, place->Path, kFullAccess, {}, m_open);
  return m_open != nullptr;
}

void TWindowsRegistryStore::CloseKey() {
  m_open.reset();
  Forget();
}

bool TWindowsRegistryStore::KeyExists(TextView path) {
  const std::optional<TPlace> place = PlaceOf(path);
  return place && m_chain.Exists(place->RootKey, place->Path);
}

std::optional<TWindowsRegistryStore::TValue> TWindowsRegistryStore::FindValue(TextView name) {
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!m_open || !systemName)
    return std::nullopt;
  const TValueSnapshot::TEntry* entry = m_snapshot.Find(*systemName);
  if (entry != nullptr && entry->HasData)
    return TValue{entry->Type, m_snapshot.DataOf(*entry)};
  if (m_calls.QueryValue(m_open->Key.Get(), Text(*systemName), m_buffer) != ERROR_SUCCESS)
    return std::nullopt;
  return TValue{m_buffer.Type, m_buffer.Data()};
}

bool TWindowsRegistryStore::ValueExists(TextView name) {
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!m_open || !systemName)
    return false;
  DWORD type = kRegNone;
  return m_snapshot.Find(*systemName) != nullptr ||
         m_calls.QueryType(m_open->Key.Get(), Text(*systemName), type) == ERROR_SUCCESS;
}

TDataType TWindowsRegistryStore::GetDataType(TextView name) {
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!m_open || !systemName)
    return TDataType::Unknown;
  if (const TValueSnapshot::TEntry* entry = m_snapshot.Find(*systemName))
    return DataTypeOf(entry->Type);
  DWORD type = kRegNone;
  const LSTATUS status = m_calls.QueryType(m_open->Key.Get(), Text(*systemName), type);
  return status == ERROR_SUCCESS ? DataTypeOf(type) : TDataType::Unknown;
}

Text TWindowsRegistryStore::ReadString(TextView name) {
  const std::optional<TValue> value = FindValue(name);
  return value && IsStringType(value->Type) ? StringOf(value->Data) : Text();
}

std::int32_t TWindowsRegistryStore::ReadInteger(TextView name) {
  const std::optional<TValue> value = FindValue(name);
  return value ? IntegerOf(value->Type, value->Data).value_or(0) : 0;
}

bool TWindowsRegistryStore::ReadBool(TextView name) {
  return ReadInteger(name) != 0;
}

bool TWindowsRegistryStore::Write(TextView name, DWORD type, std::span<const std::uint8_t> data) {
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!MayChange() || !systemName)
    return false;
  Forget();
  return m_calls.SetValue(m_open->Key.Get(), Text(*systemName), type, data) == ERROR_SUCCESS;
}

bool TWindowsRegistryStore::WriteString(TextView name, TextView value) {
  return Write(name, kRegSz, StringBytes(value.substr(0, value.find(u'\0'))));
}

bool TWindowsRegistryStore::WriteInteger(TextView name, std::int32_t value) {
  return Write(name, kRegDword, IntegerBytes(static_cast<std::uint32_t>(value)));
}

bool TWindowsRegistryStore::WriteBool(TextView name, bool value) {
  return WriteInteger(name, value ? 1 : 0);
}

bool TWindowsRegistryStore::Count() {
  return m_open && m_calls.Counts(m_open->Key.Get(), m_counts) == ERROR_SUCCESS;
}

bool TWindowsRegistryStore::CountSubKeys() {
  return std::exchange(m_subKeysCounted, false) || Count();
}

std::vector<Text> TWindowsRegistryStore::GetValueNames() {
  std::vector<Text> names;
  m_snapshot.Clear();
  m_subKeysCounted = Count();
  m_listedWhole = false;
  if (!m_subKeysCounted)
    return names;
  m_buffer.Reserve(m_counts, kLargestKeptData);
  names.reserve(m_counts.Values);
  for (DWORD i = 0; i < m_counts.Values; ++i) {
    if (m_calls.EnumValue(m_open->Key.Get(), i, kLargestKeptData, m_buffer) != ERROR_SUCCESS)
      break;
    m_snapshot.Add(m_buffer);
    names.emplace_back(m_buffer.Name());
  }
  m_listedWhole = names.size() == m_counts.Values;
  return names;
}

std::vector<Text> TWindowsRegistryStore::GetKeyNames() {
  std::vector<Text> names;
  m_listedWhole = false;
  if (!CountSubKeys())
    return names;
  names.reserve(m_counts.SubKeys);
  for (DWORD i = 0; i < m_counts.SubKeys; ++i) {
    Text name;
    if (m_calls.EnumKey(m_open->Key.Get(), i, name) != ERROR_SUCCESS)
      break;
    names.push_back(std::move(name));
  }
  m_listedWhole = names.size() == m_counts.SubKeys;
  return names;
}

bool TWindowsRegistryStore::HasSubKeys() {
  m_listedWhole = CountSubKeys();
  return m_listedWhole && m_counts.SubKeys != 0;
}

std::optional<Text> TWindowsRegistryStore::RealPath() {
  if (!m_open)
    return std::nullopt;
  const Text path = m_open->Path.empty() ? RealPathOfRoot() : m_calls.SystemName(m_open->Key.Get());
  return path.empty() ? std::nullopt : std::optional<Text>(path);
}

// A predefined handle can't be asked, a key directly below it can. HKEY_CLASSES_ROOT shows two hives at once.
Text TWindowsRegistryStore::RealPathOfRoot() {
  const HKEY root = m_open->Key.Get();
  Text name;
  TRegistryKey below;
  if (m_open->RootKey == kHkeyClassesRoot || m_calls.EnumKey(root, 0, name) != ERROR_SUCCESS ||
      m_calls.Open(root, name, KEY_QUERY_VALUE, true, below) != ERROR_SUCCESS)
    return {};
  const Text path = m_calls.SystemName(below.Get());
  return path.substr(0, std::min(path.rfind(u'\\'), path.size()));
}

bool TWindowsRegistryStore::DeleteKey(TextView path) {
  const std::optional<TPlace> place = PlaceOf(path);
  const bool namesKey = place && !ParseKeyPath(path)->Names.empty();
  if (m_access != TRegistryAccess::Full || !namesKey)
    return false;
  m_chain.Clear();
  Forget();
  return DeleteKeyAndBelow(m_calls, place->RootKey, place->Path) == TRawResult::Done;
}

bool TWindowsRegistryStore::DeleteValue(TextView name) {
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!MayChange() || !systemName)
    return false;
  Forget();
  return m_calls.DeleteValue(m_open->Key.Get(), Text(*systemName)) == ERROR_SUCCESS;
}

}  // namespace corvalt
