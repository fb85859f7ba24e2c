#include "platform/windows/registrykeys.h"

#include <algorithm>
#include <limits>

#include "base/lettercase.h"

namespace corvalt {

namespace {

// A text passed to the system may have 32,767 units; keys nested deeper than that are reached step by step.
constexpr std::size_t kLongestPath = 16000;

constexpr DWORD kKeyNameUnits = 512;  // more than any system lets a key have
constexpr DWORD kLargestValueNameUnits = 32768;
constexpr DWORD kSmallestNameBuffer = 256;   // units
constexpr DWORD kSmallestDataBuffer = 4096;  // bytes
constexpr int kMostAttempts = 8;             // for a value that grows while it is read

bool IsPredefined(HKEY key) {
  return (static_cast<ULONG>(reinterpret_cast<ULONG_PTR>(key)) & 0x80000000U) != 0;
}

bool IsKeyPrefix(TextView prefix, TextView path) {
  if (prefix.size() >= path.size() || path[prefix.size()] != u'\\')
    return false;
  const TextView head = path.substr(0, prefix.size());
  return head == prefix || EqualIgnoringCase(head, prefix);
}

// Makes room for a value that did not fit.
void Grow(TValueBuffer& buffer, DWORD neededSize) {
  if (neededSize > buffer.Bytes.size()) {
    buffer.Bytes.resize(neededSize);
    return;
  }
  buffer.NameUnits.resize(kLargestValueNameUnits);
  buffer.Bytes.resize(std::max<std::size_t>(buffer.Bytes.size() * 2, kSmallestDataBuffer));
}

bool IsStringType(DWORD type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

bool IsTooOld(LSTATUS status) {
  return status == ERROR_KEY_DELETED || status == ERROR_INVALID_HANDLE;
}

// What a deletion must know of one key.
struct TDoomedKey {
  Text Path;
  TRegistryKey Key;
  std::vector<Text> SubKeys;
  std::size_t Next = 0;
};

class TWholeKey {
 public:
  TWholeKey(TRegistryCalls& calls, HKEY parent) : m_calls(calls), m_parent(parent) {
  }

  // Fills the list of all keys, each before its subkeys.
  TRawResult Inspect(TextView path) {
    std::vector<TDoomedKey> open;
    TRawResult result = Enter(m_parent, path, Text(path), open);
    while (result == TRawResult::Done && !open.empty()) {
      TDoomedKey& key = open.back();
      if (key.Next == key.SubKeys.size()) {
        open.pop_back();
        continue;
      }
      const Text name = key.SubKeys[key.Next++];
      result = Enter(key.Key.Get(), name, key.Path + u"\\" + name, open);
    }
    return result;
  }

  TRawResult Delete() {
    for (auto path = m_paths.rbegin(); path != m_paths.rend(); ++path) {
      const LSTATUS status = m_calls.DeleteKey(m_parent, *path);
      if (status != ERROR_SUCCESS)
        return RawResultOf(status);
    }
    return TRawResult::Done;
  }

 private:
  TRawResult Enter(HKEY parent, TextView name, Text path, std::vector<TDoomedKey>& open) {
    TDoomedKey key;
    const LSTATUS opened = m_calls.Open(parent, name, KEY_READ | DELETE, true, key.Key);
    if (opened != ERROR_SUCCESS)
      return RawResultOf(opened);
    TKeyCounts counts;
    const LSTATUS counted = m_calls.Counts(key.Key.Get(), counts);
    if (counted != ERROR_SUCCESS)
      return RawResultOf(counted);
    if (counts.Values != 0 && m_calls.IsLink(key.Key.Get()))
      return TRawResult::Link;
    key.SubKeys.resize(counts.SubKeys);
    for (DWORD i = 0; i < counts.SubKeys; ++i) {
      const LSTATUS listed = m_calls.EnumKey(key.Key.Get(), i, key.SubKeys[i]);
      if (listed != ERROR_SUCCESS || HoldsNul(key.SubKeys[i]))
        return TRawResult::Failed;
    }
    m_paths.push_back(path);
    key.Path = std::move(path);
    open.push_back(std::move(key));
    return TRawResult::Done;
  }

  TRegistryCalls& m_calls;
  HKEY m_parent;
  std::vector<Text> m_paths;
};

}  // namespace

TRegistryKey::TRegistryKey(TRegistryKey&& other) noexcept
    : m_handle(std::exchange(other.m_handle, nullptr)), m_calls(other.m_calls) {
}

TRegistryKey& TRegistryKey::operator=(TRegistryKey&& other) noexcept {
  if (this != &other) {
    Close();
    m_handle = std::exchange(other.m_handle, nullptr);
    m_calls = other.m_calls;
  }
  return *this;
}

void TRegistryKey::Close() {
  if (m_handle == nullptr || IsPredefined(m_handle))
    return;
  ++*m_calls;
  RegCloseKey(std::exchange(m_handle, nullptr));
}

void TValueBuffer::Reserve(const TKeyCounts& counts, DWORD dataLimit) {
  const std::size_t nameUnits = std::min(counts.LongestValueName, kLargestValueNameUnits) + 1;
  NameUnits.resize(std::max(NameUnits.size(), nameUnits));
  Bytes.resize(std::max<std::size_t>(Bytes.size(), std::min(counts.LargestData, dataLimit)));
}

LSTATUS TRegistryCalls::Near(HKEY parent, TextView path, bool create, TNearKey& place) {
  place.Parent = parent;
  while (path.size() > kLongestPath) {
    const std::size_t end = path.rfind(u'\\', kLongestPath);
    if (end == TextView::npos)
      return ERROR_INVALID_PARAMETER;
    TRegistryKey step;
    const TextView head = path.substr(0, end);
    bool isNew = false;
    const LSTATUS status = create ? Create(place.Parent, head, KEY_READ | KEY_WRITE, step, isNew)
                                  : Open(place.Parent, head, KEY_READ, false, step);
    if (status != ERROR_SUCCESS)
      return status;
    place.Holder = std::move(step);
    place.Parent = place.Holder.Get();
    path.remove_prefix(end + 1);
  }
  m_rest = path;
  return ERROR_SUCCESS;
}

LSTATUS TRegistryCalls::Open(HKEY parent, TextView path, REGSAM access, bool asLink, TRegistryKey& key) {
  TNearKey place;
  const LSTATUS reached = Near(parent, path, false, place);
  if (reached != ERROR_SUCCESS)
    return reached;
  ++m_count;
  HKEY handle = nullptr;
  const DWORD options = asLink ? REG_OPTION_OPEN_LINK : 0;
  const LSTATUS status = RegOpenKeyExW(place.Parent, Wide(m_rest), options, access, &handle);
  if (status == ERROR_SUCCESS)
    key = TRegistryKey(handle, m_count);
  return status;
}

LSTATUS TRegistryCalls::Create(HKEY parent, TextView path, REGSAM access, TRegistryKey& key, bool& isNew) {
  TNearKey place;
  const LSTATUS reached = Near(parent, path, true, place);
  if (reached != ERROR_SUCCESS)
    return reached;
  ++m_count;
  HKEY handle = nullptr;
  DWORD disposition = 0;
  const LSTATUS status = RegCreateKeyExW(place.Parent, Wide(m_rest), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         access, nullptr, &handle, &disposition);
  if (status == ERROR_SUCCESS)
    key = TRegistryKey(handle, m_count);
  isNew = disposition == REG_CREATED_NEW_KEY;
  return status;
}

LSTATUS TRegistryCalls::Counts(HKEY key, TKeyCounts& counts) {
  ++m_count;
  FILETIME lastWrite = {};
  const LSTATUS status =
      RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &counts.SubKeys, nullptr, nullptr, &counts.Values,
                       &counts.LongestValueName, &counts.LargestData, nullptr, &lastWrite);
  counts.LastWrite = (std::uint64_t{lastWrite.dwHighDateTime} << 32) | lastWrite.dwLowDateTime;
  return status;
}

LSTATUS TRegistryCalls::EnumKey(HKEY key, DWORD index, Text& name) {
  ++m_count;
  char16_t units[kKeyNameUnits];
  DWORD length = kKeyNameUnits;
  const LSTATUS status = RegEnumKeyExW(key, index, reinterpret_cast<wchar_t*>(units), &length, nullptr,
                                       nullptr, nullptr, nullptr);
  if (status == ERROR_SUCCESS)
    name.assign(units, length);
  return status;
}

LSTATUS TRegistryCalls::EnumValue(HKEY key, DWORD index, DWORD dataLimit, TValueBuffer& buffer) {
  buffer.NameUnits.resize(std::max<std::size_t>(buffer.NameUnits.size(), kSmallestNameBuffer));
  buffer.Bytes.resize(std::max<std::size_t>(buffer.Bytes.size(), kSmallestDataBuffer));
  LSTATUS status = ERROR_MORE_DATA;
  buffer.Complete = true;
  for (int attempt = 0; attempt < kMostAttempts && status == ERROR_MORE_DATA; ++attempt) {
    ++m_count;
    buffer.NameLength = static_cast<DWORD>(buffer.NameUnits.size());
    buffer.Size = static_cast<DWORD>(buffer.Bytes.size());
    status = RegEnumValueW(key, index, WideBuffer(buffer.NameUnits), &buffer.NameLength, nullptr,
                           &buffer.Type, buffer.Complete ? buffer.Bytes.data() : nullptr, &buffer.Size);
    if (status != ERROR_MORE_DATA)
      break;
    if (buffer.Size > dataLimit) {
      buffer.Complete = false;
    } else {
      Grow(buffer, buffer.Size);
    }
  }
  return status;
}

LSTATUS TRegistryCalls::QueryValue(HKEY key, const Text& name, TValueBuffer& buffer) {
  buffer.Bytes.resize(std::max<std::size_t>(buffer.Bytes.size(), kSmallestDataBuffer));
  LSTATUS status = ERROR_MORE_DATA;
  for (int attempt = 0; attempt < kMostAttempts && status == ERROR_MORE_DATA; ++attempt) {
    ++m_count;
    buffer.Size = static_cast<DWORD>(buffer.Bytes.size());
    status = RegQueryValueExW(key, Wide(name), nullptr, &buffer.Type, buffer.Bytes.data(), &buffer.Size);
    if (status == ERROR_MORE_DATA)
      Grow(buffer, buffer.Size);
  }
  buffer.Complete = status == ERROR_SUCCESS;
  return status;
}

LSTATUS TRegistryCalls::QueryType(HKEY key, const Text& name, DWORD& type) {
  ++m_count;
  return RegQueryValueExW(key, Wide(name), nullptr, &type, nullptr, nullptr);
}

LSTATUS TRegistryCalls::SetValue(HKEY key, const Text& name, DWORD type, std::span<const std::uint8_t> data) {
  if (data.size() > std::numeric_limits<DWORD>::max())
    return ERROR_INVALID_PARAMETER;
  const auto size = static_cast<DWORD>(data.size());
  ++m_count;
  if (!IsStringType(type))
    return RegSetValueExW(key, Wide(name), 0, type, data.data(), size);
  // The system looks at the unit behind a string without a terminator and stores it too when it is NUL, so
  // something else must stand there. The unit before the data is looked at when there is but one byte.
  m_guarded.assign(2, 0);
  m_guarded.insert(m_guarded.end(), data.begin(), data.end());
  m_guarded.insert(m_guarded.end(), 4, 0xFF);
  return RegSetValueExW(key, Wide(name), 0, type, m_guarded.data() + 2, size);
}

LSTATUS TRegistryCalls::DeleteValue(HKEY key, const Text& name) {
  ++m_count;
  return RegDeleteValueW(key, Wide(name));
}

LSTATUS TRegistryCalls::DeleteKey(HKEY parent, TextView path) {
  TNearKey place;
  const LSTATUS reached = Near(parent, path, false, place);
  if (reached != ERROR_SUCCESS)
    return reached;
  ++m_count;
  return RegDeleteKeyW(place.Parent, Wide(m_rest));
}

bool TRegistryCalls::IsLink(HKEY key) {
  DWORD type = kRegNone;
  return QueryType(key, Text(kLinkValueName), type) == ERROR_SUCCESS && type == kRegLink;
}

const TKeptKey* TKeyChain::ParentOf(TRootKey rootKey, TextView path) const {
  for (auto kept = m_kept.rbegin(); kept != m_kept.rend(); ++kept) {
    if ((*kept)->RootKey == rootKey && IsKeyPrefix((*kept)->Path, path))
      return kept->get();
  }
  return nullptr;
}

void TKeyChain::DropWhatIsNoParent(TRootKey rootKey, TextView path) {
  const TKeptKey* parent = ParentOf(rootKey, path);
  while (!m_kept.empty() && m_kept.back().get() != parent)
    m_kept.pop_back();
}

std::shared_ptr<TKeptKey> TKeyChain::Keep(TRootKey rootKey, TextView path, REGSAM access,
                                          TRegistryKey opened) {
  auto kept = std::make_shared<TKeptKey>();
  kept->RootKey = rootKey;
  kept->Path = Text(path);
  kept->Key = std::move(opened);
  kept->Access = access;
  m_kept.push_back(kept);
  return kept;
}

LSTATUS TKeyChain::Open(TRootKey rootKey, TextView path, REGSAM access, bool asLink,
                        std::shared_ptr<TKeptKey>& key) {
  DropWhatIsNoParent(rootKey, path);
  TRegistryKey opened;
  LSTATUS status = ERROR_KEY_DELETED;
  if (!m_kept.empty()) {
    const TKeptKey& parent = *m_kept.back();
    status = m_calls.Open(parent.Key.Get(), path.substr(parent.Path.size() + 1), access, asLink, opened);
  }
  if (IsTooOld(status)) {
    Clear();
    status = m_calls.Open(RootHandle(rootKey), path, access, asLink, opened);
  }
  if (status == ERROR_SUCCESS)
    key = Keep(rootKey, path, access, std::move(opened));
  return status;
}

LSTATUS TKeyChain::Create(TRootKey rootKey, TextView path, REGSAM access, std::shared_ptr<TKeptKey>& key) {
  DropWhatIsNoParent(rootKey, path);
  TRegistryKey created;
  bool isNew = false;
  LSTATUS status = ERROR_KEY_DELETED;
  if (!m_kept.empty()) {
    const TKeptKey& parent = *m_kept.back();
    status = m_calls.Create(parent.Key.Get(), path.substr(parent.Path.size() + 1), access, created, isNew);
  }
  if (IsTooOld(status)) {
    Clear();
    status = m_calls.Create(RootHandle(rootKey), path, access, created, isNew);
  }
  if (status == ERROR_SUCCESS) {
    key = Keep(rootKey, path, access, std::move(created));
    key->IsNew = isNew;
  }
  return status;
}

bool TKeyChain::LiesInNewKey(TRootKey rootKey, TextView path) const {
  const TKeptKey* parent = ParentOf(rootKey, path);
  return parent != nullptr && parent->IsNew && path.find(u'\\', parent->Path.size() + 1) == TextView::npos;
}

bool TKeyChain::Exists(TRootKey rootKey, TextView path) {
  TRegistryKey opened;
  LSTATUS status = ERROR_KEY_DELETED;
  const TKeptKey* parent = ParentOf(rootKey, path);
  if (parent != nullptr) {
    const TextView rest = path.substr(parent->Path.size() + 1);
    status = m_calls.Open(parent->Key.Get(), rest, KEY_READ, false, opened);
  }
  if (IsTooOld(status))
    status = m_calls.Open(RootHandle(rootKey), path, KEY_READ, false, opened);
  return status == ERROR_SUCCESS || status == ERROR_ACCESS_DENIED;
}

std::shared_ptr<TKeptKey> TKeyChain::Last(TRootKey rootKey, TextView path) const {
  if (m_kept.empty() || m_kept.back()->RootKey != rootKey)
    return nullptr;
  const Text& last = m_kept.back()->Path;
  return last == path || EqualIgnoringCase(last, path) ? m_kept.back() : nullptr;
}

bool IsPlainPath(TextView path) {
  if (path.size() < 2 || path.front() != u'\\')
    return false;
  std::size_t nameLength = 0;
  for (const char16_t unit : path.substr(1)) {
    const bool isSeparator = unit == u'\\';
    if (unit == u'\0' || (isSeparator && nameLength == 0) || nameLength > kLongestKeyName)
      return false;
    nameLength = isSeparator ? 0 : nameLength + 1;
  }
  return nameLength != 0 && nameLength <= kLongestKeyName;
}

std::optional<Text> JoinNames(const std::vector<Text>& names) {
  Text path;
  for (const Text& name : names) {
    if (HoldsNul(name) || name.size() > kLongestKeyName)
      return std::nullopt;
    if (!path.empty())
      path += u'\\';
    path += name;
  }
  return path;
}

std::optional<TextView> SystemValueName(TextView name) {
  if (name == TextView(u"\0", 1))
    return TextView();
  if (HoldsNul(name))
    return std::nullopt;
  return name;
}

TRawResult DeleteWholeKey(TRegistryCalls& calls, HKEY parent, TextView path) {
  TWholeKey key(calls, parent);
  const TRawResult inspected = key.Inspect(path);
  return inspected == TRawResult::Done ? key.Delete() : inspected;
}

TRawResult RawResultOf(LSTATUS status) {
  switch (status) {
    case ERROR_SUCCESS:
      return TRawResult::Done;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_KEY_DELETED:
      return TRawResult::Missing;
    case ERROR_ACCESS_DENIED:
      return TRawResult::Denied;
    default:
      return TRawResult::Failed;
  }
}

}  // namespace corvalt
