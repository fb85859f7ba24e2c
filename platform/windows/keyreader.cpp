#include "platform/windows/keyreader.h"

#include <algorithm>
#include <limits>

#include "base/lettercase.h"
#include "platform/windows/keyrules.h"

namespace corvalt {

namespace {

constexpr DWORD kAllData = std::numeric_limits<DWORD>::max();
constexpr int kMostReadings = 16;  // of a key that changes while it is read

bool IsLink(const TRawKey& key) {
  return std::any_of(key.Values.begin(), key.Values.end(), [](const TRawValue& value) {
    return value.Type == kRegLink && EqualIgnoringCase(value.Name, kLinkValueName);
  });
}

bool HoldsNulInAName(const TRawKey& key) {
  return std::any_of(key.Values.begin(), key.Values.end(),
                     [](const TRawValue& value) { return HoldsNul(value.Name); }) ||
         std::any_of(key.SubKeys.begin(), key.SubKeys.end(), [](const Text& name) { return HoldsNul(name); });
}

}  // namespace

// Missing: the key changed while it was read.
TRawResult TKeyReader::ReadOnce(HKEY key, TRawKey& content) {
  TKeyCounts before;
  LSTATUS status = m_calls.Counts(key, before);
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  m_buffer.Reserve(before, kAllData);
  content.Values.clear();
  content.Values.reserve(before.Values);
  for (DWORD i = 0; i < before.Values && status == ERROR_SUCCESS; ++i) {
    status = m_calls.EnumValue(key, i, kAllData, m_buffer);
    if (status == ERROR_SUCCESS)
      content.Values.push_back(
          {Text(m_buffer.Name()), m_buffer.Type, TBytes(m_buffer.Data().begin(), m_buffer.Data().end())});
  }
  content.SubKeys.assign(before.SubKeys, {});
  for (DWORD i = 0; i < before.SubKeys && status == ERROR_SUCCESS; ++i)
    status = m_calls.EnumKey(key, i, content.SubKeys[i]);
  if (status == ERROR_NO_MORE_ITEMS)
    return TRawResult::Missing;
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  // One call reads one moment: with at most one value or subkey there was nothing that could change in
  // between.
  if (before.Values + before.SubKeys <= 1)
    return TRawResult::Done;
  TKeyCounts after;
  status = m_calls.Counts(key, after);
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  return before == after ? TRawResult::Done : TRawResult::Missing;
}

TRawResult TKeyReader::Read(HKEY key, TRawKey& content) {
  TRawKey read;
  TRawResult result = TRawResult::Missing;
  for (int reading = 0; reading < kMostReadings && result == TRawResult::Missing; ++reading)
    result = ReadOnce(key, read);
  if (result != TRawResult::Done)
    return result == TRawResult::Missing ? TRawResult::Failed : result;
  if (IsLink(read))
    return TRawResult::Link;
  if (HoldsNulInAName(read))
    return TRawResult::Failed;
  content = std::move(read);
  return TRawResult::Done;
}

}  // namespace corvalt
