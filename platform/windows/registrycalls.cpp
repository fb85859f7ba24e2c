#include "platform/windows/registrycalls.h"

#include <algorithm>
#include <limits>

namespace corvalt {

namespace {

// Units of a path in one call. The system takes kLongestPath with the parent's path before it; deeper keys
// are reached in steps.
constexpr std::size_t kLongestStep = 16000;

constexpr std::size_t kClassNameUnits = 32768;  // longer than any class name
constexpr DWORD kKeyNameUnits = 512;            // longer than kLongestKeyName with its NUL
constexpr DWORD kLargestValueNameUnits = 32768;
constexpr DWORD kSmallestNameBuffer = 256;   // units
constexpr DWORD kSmallestDataBuffer = 4096;  // bytes
constexpr int kMostAttempts = 8;             // for a value that grows while it is read

bool IsPredefined(HKEY key) {
  return (static_cast<ULONG>(reinterpret_cast<ULONG_PTR>(key)) & 0x80000000U) != 0;
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

std::uint64_t NumberOf(const FILETIME& time) {
  return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

struct TKeyBasicInformation {
  LARGE_INTEGER LastWriteTime;
  ULONG TitleIndex;
  ULONG NameLength;  // bytes
  WCHAR Name[1];
};

struct TKeyNameInformation {
  ULONG NameLength;  // bytes
  WCHAR Name[1];
};

struct TKeyFlagsInformation {
  ULONG Wow64Flags;
  ULONG KeyFlags;
  ULONG ControlFlags;
};

// Members of KEY_INFORMATION_CLASS and KEY_SET_INFORMATION_CLASS (wdm.h), and a flag of a key (ntddk.h).
constexpr int kKeyBasicInformation = 0;
constexpr int kKeyNameInformation = 3;
constexpr int kKeyFlagsInformation = 5;
constexpr int kKeyWriteTimeInformation = 0;
constexpr ULONG kKeyFlagVolatile = 1;

constexpr std::size_t kInformationSize = 2048;               // bytes, more than most keys need
constexpr std::size_t kLargestInformation = 2 * 65536 + 64;  // bytes, of the longest name that a key can have

// The routines of ntdll (pages "ZwQueryKey", "ZwSetInformationKey", "ZwDeleteKey"); each is null where the
// system lacks it.
struct TNativeRoutines {
  using TQueryKey = LONG(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*);
  using TSetInformationKey = LONG(NTAPI*)(HANDLE, int, void*, ULONG);
  using TDeleteKey = LONG(NTAPI*)(HANDLE);
  using TStatusToError = ULONG(NTAPI*)(LONG);

  TNativeRoutines() {
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    QueryKey = FindRoutine<TQueryKey>(ntdll, "NtQueryKey");
    SetInformationKey = FindRoutine<TSetInformationKey>(ntdll, "NtSetInformationKey");
    DeleteKey = FindRoutine<TDeleteKey>(ntdll, "NtDeleteKey");
    StatusToError = FindRoutine<TStatusToError>(ntdll, "RtlNtStatusToDosError");
  }

  LSTATUS ErrorOf(LONG status) const {
    if (status >= 0)
      return ERROR_SUCCESS;
    return StatusToError == nullptr ? ERROR_GEN_FAILURE : static_cast<LSTATUS>(StatusToError(status));
  }

  TQueryKey QueryKey;
  TSetInformationKey SetInformationKey;
  TDeleteKey DeleteKey;
  TStatusToError StatusToError;
};

const TNativeRoutines& Native() {
  static const TNativeRoutines routines;
  return routines;
}

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
  while (path.size() > kLongestStep) {
    const std::size_t end = path.rfind(u'\\', kLongestStep);
    if (end == TextView::npos)
      return ERROR_INVALID_PARAMETER;
    TRegistryKey step;
    const TextView head = path.substr(0, end);
    bool isNew = false;
    const LSTATUS status = create ? Create(place.Parent, head, KEY_READ | KEY_WRITE, {}, step, isNew)
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
  const LSTATUS status = RegOpenKeyExW(place.Parent, Wide(m_rest), options, access | m_viewFlag, &handle);
  if (status == ERROR_SUCCESS)
    key = TRegistryKey(handle, m_count);
  return status;
}

LSTATUS TRegistryCalls::Create(HKEY parent, TextView path, REGSAM access, const TNewKey& newKey,
                               TRegistryKey& key, bool& isNew) {
  TNearKey place;
  const LSTATUS reached = Near(parent, path, true, place);
  if (reached != ERROR_SUCCESS)
    return reached;
  ++m_count;
  HKEY handle = nullptr;
  DWORD disposition = 0;
  // The system doesn't change the class, which its declaration allows it to.
  wchar_t* const className =
      newKey.ClassName.empty() ? nullptr : const_cast<wchar_t*>(Wide(newKey.ClassName));
  const DWORD options = newKey.IsVolatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
  const LSTATUS status = RegCreateKeyExW(place.Parent, Wide(m_rest), 0, className, options,
                                         access | m_viewFlag, nullptr, &handle, &disposition);
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
  counts.LastWrite = NumberOf(lastWrite);
  return status;
}

LSTATUS TRegistryCalls::ClassAndTime(HKEY key, Text& className, std::uint64_t& lastWrite) {
  ++m_count;
  Text units(kClassNameUnits, u'\0');
  auto length = static_cast<DWORD>(units.size());
  FILETIME time = {};
  const LSTATUS status = RegQueryInfoKeyW(key, WideBuffer(units), &length, nullptr, nullptr, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, &time);
  if (status != ERROR_SUCCESS)
    return status;
  className = units.substr(0, length);
  lastWrite = NumberOf(time);
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
  if (!IsTextType(type))
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

LSTATUS TRegistryCalls::DeleteKey(HKEY key) {
  ++m_count;
  if (Native().DeleteKey == nullptr)
    return ERROR_CALL_NOT_IMPLEMENTED;
  return Native().ErrorOf(Native().DeleteKey(key));
}

bool TRegistryCalls::IsLink(HKEY key) {
  DWORD type = kRegNone;
  return QueryType(key, Text(kLinkValueName), type) == ERROR_SUCCESS && type == kRegLink;
}

// Leaves the information in m_information. Buffers of the routine are aligned as the allocator aligns them.
bool TRegistryCalls::QueryNative(HKEY key, int informationClass) {
  if (Native().QueryKey == nullptr || IsPredefined(key))
    return false;
  m_information.resize(std::max(m_information.size(), kInformationSize));
  for (;;) {
    ++m_count;
    ULONG needed = 0;
    const LONG status = Native().QueryKey(key, informationClass, m_information.data(),
                                          static_cast<ULONG>(m_information.size()), &needed);
    if (status >= 0)
      return true;
    if (needed <= m_information.size() || needed > kLargestInformation)
      return false;
    m_information.resize(needed);
  }
}

Text TRegistryCalls::SystemName(HKEY key) {
  if (!QueryNative(key, kKeyNameInformation))
    return {};
  const auto* const information = reinterpret_cast<const TKeyNameInformation*>(m_information.data());
  return Text(FromWide(information->Name, information->NameLength / sizeof(wchar_t)));
}

// Wine gives the name of the key's whole path or of the key; only the last name counts.
Text TRegistryCalls::StoredName(HKEY key) {
  if (!QueryNative(key, kKeyBasicInformation))
    return {};
  const auto* const information = reinterpret_cast<const TKeyBasicInformation*>(m_information.data());
  const TextView name = FromWide(information->Name, information->NameLength / sizeof(wchar_t));
  return Text(name.substr(name.rfind(u'\\') + 1));
}

std::optional<bool> TRegistryCalls::IsVolatile(HKEY key) {
  if (Native().QueryKey == nullptr || IsPredefined(key))
    return std::nullopt;
  ++m_count;
  TKeyFlagsInformation flags = {};
  ULONG size = 0;
  const LONG status = Native().QueryKey(key, kKeyFlagsInformation, &flags, sizeof(flags), &size);
  // Older systems fill in another, shorter record.
  if (status < 0 || size < sizeof(flags))
    return std::nullopt;
  return (flags.KeyFlags & kKeyFlagVolatile) != 0;
}

LSTATUS TRegistryCalls::SetLastWrite(HKEY key, std::uint64_t time) {
  if (Native().SetInformationKey == nullptr)
    return ERROR_CALL_NOT_IMPLEMENTED;
  ++m_count;
  LARGE_INTEGER writeTime = {};
  writeTime.QuadPart = static_cast<LONGLONG>(time);
  return Native().ErrorOf(
      Native().SetInformationKey(key, kKeyWriteTimeInformation, &writeTime, sizeof(writeTime)));
}

}  // namespace corvalt
