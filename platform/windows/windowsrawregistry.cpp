#include "platform/windows/windowsrawregistry.h"

#include <algorithm>
#include <limits>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr REGSAM kReadAccess = KEY_READ;
constexpr REGSAM kChangeAccess = KEY_READ | KEY_WRITE;
constexpr DWORD kAllData = std::numeric_limits<DWORD>::max();
constexpr int kMostReadings = 16;  // of a key that changes while it is read

std::optional<Text> PathOf(TextView keyPath) {
  if (IsPlainPath(keyPath))
    return Text(keyPath.substr(1));
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  return parsed ? JoinNames(parsed->Names) : std::nullopt;
}

bool IsStringType(std::uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

// Whether the bytes are a text that no routine of the system feels called upon to mend.
bool EndsLikeText(const TBytes& data) {
  const std::size_t size = data.size();
  return size >= 2 && size % 2 == 0 && data[size - 1] == 0 && data[size - 2] == 0;
}

bool IsGone(LSTATUS status) {
  return status == ERROR_KEY_DELETED || status == ERROR_INVALID_HANDLE;
}

}  // namespace

// The kept key may have become a link's place only by being deleted, which its handle notices.
TRawResult TWindowsRawRegistry::RefuseLink(TKeptKey& key) {
  if (key.LinkChecked)
    return TRawResult::Done;
  if (m_calls.IsLink(key.Key.Get()))
    return TRawResult::Link;
  key.LinkChecked = true;
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::OpenAnew(TRootKey rootKey, const Text& path, REGSAM access,
                                         TKeptPointer& key) {
  return RawResultOf(m_chain.Open(rootKey, path, access, true, key));
}

TRawResult TWindowsRawRegistry::OpenKept(TRootKey rootKey, const Text& path, REGSAM access,
                                         TKeptPointer& key) {
  key = m_chain.Last(rootKey, path);
  if (key && (key->Access & access) == access)
    return TRawResult::Done;
  const TRawResult opened = OpenAnew(rootKey, path, access, key);
  if (opened != TRawResult::Done)
    return opened;
  const TRawResult checked = RefuseLink(*key);
  if (checked != TRawResult::Done)
    m_chain.Clear();
  return checked;
}

TRawResult TWindowsRawRegistry::OpenOrCreate(TRootKey rootKey, const Text& path, TKeptPointer& key) {
  // Looking for a key before it is created costs a third of an import's calls.
  if (!m_chain.Last(rootKey, path) && m_chain.LiesInNewKey(rootKey, path)) {
    if (m_chain.Create(rootKey, path, kChangeAccess, key) == ERROR_SUCCESS && key->IsNew) {
      key->LinkChecked = true;
      return TRawResult::Done;
    }
    // Somebody else made it meanwhile, and it may be a link.
    m_chain.Clear();
  }
  const TRawResult opened = OpenKept(rootKey, path, kChangeAccess, key);
  if (opened != TRawResult::Missing)
    return opened;
  const TRawResult created = RawResultOf(m_chain.Create(rootKey, path, kChangeAccess, key));
  if (created == TRawResult::Done)
    key->LinkChecked = true;
  return created;
}

// Runs a routine that answers the system's code on the key. A kept key that somebody deleted meanwhile is
// opened once more.
template <typename TRoutine>
TRawResult TWindowsRawRegistry::WithKey(TRootKey rootKey, const Text& path, REGSAM access, TRoutine routine) {
  LSTATUS status = ERROR_KEY_DELETED;
  for (int attempt = 0; attempt < 2 && IsGone(status); ++attempt) {
    TKeptPointer key;
    const TRawResult opened = OpenKept(rootKey, path, access, key);
    if (opened != TRawResult::Done)
      return opened;
    status = routine(key->Key.Get());
    if (IsGone(status))
      m_chain.Clear();
  }
  return RawResultOf(status);
}

// Missing: it changed under the reading.
TRawResult TWindowsRawRegistry::ReadOnce(HKEY handle, TRawKey& key) {
  TKeyCounts before;
  LSTATUS status = m_calls.Counts(handle, before);
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  m_buffer.Reserve(before, kAllData);
  key.Values.clear();
  key.Values.reserve(before.Values);
  for (DWORD i = 0; i < before.Values && status == ERROR_SUCCESS; ++i) {
    status = m_calls.EnumValue(handle, i, kAllData, m_buffer);
    if (status == ERROR_SUCCESS)
      key.Values.push_back(
          {Text(m_buffer.Name()), m_buffer.Type, TBytes(m_buffer.Data().begin(), m_buffer.Data().end())});
  }
  key.SubKeys.assign(before.SubKeys, {});
  for (DWORD i = 0; i < before.SubKeys && status == ERROR_SUCCESS; ++i)
    status = m_calls.EnumKey(handle, i, key.SubKeys[i]);
  if (status == ERROR_NO_MORE_ITEMS)
    return TRawResult::Missing;
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  // What a single call has read is of one moment; what came after it came after the reading.
  if (before.Values + before.SubKeys <= 1)
    return TRawResult::Done;
  TKeyCounts after;
  status = m_calls.Counts(handle, after);
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  return before == after ? TRawResult::Done : TRawResult::Missing;
}

TRawResult TWindowsRawRegistry::ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  if (!path)
    return TRawResult::Failed;
  TKeptPointer kept;
  const TRawResult opened = OpenAnew(rootKey, *path, kReadAccess, kept);
  if (opened != TRawResult::Done)
    return opened;
  TRawKey read;
  TRawResult result = TRawResult::Missing;
  for (int reading = 0; reading < kMostReadings && result == TRawResult::Missing; ++reading)
    result = ReadOnce(kept->Key.Get(), read);
  if (result != TRawResult::Done)
    return result == TRawResult::Missing ? TRawResult::Failed : result;
  const bool isLink = std::any_of(read.Values.begin(), read.Values.end(), [](const TRawValue& value) {
    return value.Type == kRegLink && EqualIgnoringCase(value.Name, kLinkValueName);
  });
  if (isLink) {
    m_chain.Clear();
    return TRawResult::Link;
  }
  kept->LinkChecked = true;
  // Names with a NUL can be made by system calls alone; nothing here could write them back.
  const bool speakable =
      std::none_of(read.Values.begin(), read.Values.end(),
                   [](const TRawValue& value) { return HoldsNul(value.Name); }) &&
      std::none_of(read.SubKeys.begin(), read.SubKeys.end(), [](const Text& name) { return HoldsNul(name); });
  if (!speakable)
    return TRawResult::Failed;
  key = std::move(read);
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::ReadValue(TRootKey rootKey, TextView keyPath, TextView name,
                                          TRawValue& value) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!path)
    return TRawResult::Failed;
  if (!systemName)
    return TRawResult::Missing;
  const TRawResult result = WithKey(rootKey, *path, kReadAccess, [&](HKEY handle) {
    return m_calls.QueryValue(handle, Text(*systemName), m_buffer);
  });
  if (result == TRawResult::Done)
    value = {Text(*systemName), m_buffer.Type, TBytes(m_buffer.Data().begin(), m_buffer.Data().end())};
  return result;
}

TRawResult TWindowsRawRegistry::CreateKey(TRootKey rootKey, TextView keyPath) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  if (!path)
    return TRawResult::Failed;
  TKeptPointer key;
  // A key kept from before might be gone; this question is about now.
  if (m_chain.Last(rootKey, *path))
    m_chain.Clear();
  return OpenOrCreate(rootKey, *path, key);
}

TRawResult TWindowsRawRegistry::WriteTo(HKEY handle, const Text& name, const TRawValue& value) {
  const LSTATUS written = m_calls.SetValue(handle, name, value.Type, value.Data);
  if (written != ERROR_SUCCESS)
    return RawResultOf(written);
  // The system mends strings without a terminator as it sees fit, so those are read back.
  if (!IsStringType(value.Type) || EndsLikeText(value.Data))
    return TRawResult::Done;
  const LSTATUS read = m_calls.QueryValue(handle, name, m_buffer);
  const bool same =
      read == ERROR_SUCCESS && m_buffer.Type == value.Type && std::ranges::equal(m_buffer.Data(), value.Data);
  return same ? TRawResult::Done : TRawResult::Failed;
}

TRawResult TWindowsRawRegistry::WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  const std::optional<TextView> name = SystemValueName(value.Name);
  if (!path || !name)
    return TRawResult::Failed;
  TRawResult result = TRawResult::Missing;
  for (int attempt = 0; attempt < 2 && result == TRawResult::Missing; ++attempt) {
    TKeptPointer key;
    result = OpenOrCreate(rootKey, *path, key);
    if (result != TRawResult::Done)
      return result;
    result = WriteTo(key->Key.Get(), Text(*name), value);
    if (result == TRawResult::Missing)
      m_chain.Clear();
  }
  return result;
}

TRawResult TWindowsRawRegistry::DeleteKey(TRootKey rootKey, TextView keyPath) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  if (!path || path->empty())
    return TRawResult::Failed;
  m_chain.Clear();
  return DeleteWholeKey(m_calls, RootHandle(rootKey), *path);
}

TRawResult TWindowsRawRegistry::DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = PathOf(keyPath);
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!path)
    return TRawResult::Failed;
  if (!systemName)
    return TRawResult::Missing;
  return WithKey(rootKey, *path, kChangeAccess,
                 [&](HKEY handle) { return m_calls.DeleteValue(handle, Text(*systemName)); });
}

void TWindowsRawRegistry::ReleaseKeys() {
  const std::lock_guard<std::mutex> hold(m_mutex);
  m_chain.Clear();
}

}  // namespace corvalt
