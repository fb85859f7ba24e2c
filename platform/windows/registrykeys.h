// The registry's routines, counted, and what both registry classes need of them: owned keys, opening relative
// to parents that are kept, reading values into one reused buffer, deletion of a whole key.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"

namespace corvalt {

// The value that makes a key a link (winnt.h says the type, the documentation the name).
inline constexpr TextView kLinkValueName = u"SymbolicLinkValue";

inline constexpr std::size_t kLongestKeyName = 255;  // units, winreg.h

// An open key, closed at the end of its life; a predefined key is only borrowed. The counter outlives it.
class TRegistryKey {
 public:
  TRegistryKey() = default;
  TRegistryKey(HKEY handle, std::uint64_t& calls) : m_handle(handle), m_calls(&calls) {
  }
  TRegistryKey(TRegistryKey&& other) noexcept;
  TRegistryKey& operator=(TRegistryKey&& other) noexcept;
  ~TRegistryKey() {
    Close();
  }

  HKEY Get() const {
    return m_handle;
  }

 private:
  void Close();

  HKEY m_handle = nullptr;
  std::uint64_t* m_calls = nullptr;
};

struct TKeyCounts {
  DWORD SubKeys = 0;
  DWORD Values = 0;
  DWORD LongestValueName = 0;  // units
  DWORD LargestData = 0;       // bytes
  std::uint64_t LastWrite = 0;

  bool operator==(const TKeyCounts&) const = default;
};

// One value as it was read last; the buffers are reused from value to value.
struct TValueBuffer {
  TextView Name() const {
    return TextView(NameUnits).substr(0, NameLength);
  }
  std::span<const std::uint8_t> Data() const {
    return std::span<const std::uint8_t>(Bytes).first(Complete ? Size : 0);
  }

  // Makes room for every value of a key, but for data beyond a limit in bytes.
  void Reserve(const TKeyCounts& counts, DWORD dataLimit);

  DWORD Type = kRegNone;
  DWORD Size = 0;         // bytes of data that the value has
  bool Complete = false;  // Bytes holds all of them

  Text NameUnits;
  DWORD NameLength = 0;
  TBytes Bytes;
};

// Every routine answers the system's error code. Paths have no leading "\" and may be longer than a single
// call of the system takes; names of values are ended by their first NUL.
class TRegistryCalls {
 public:
  LSTATUS Open(HKEY parent, TextView path, REGSAM access, bool asLink, TRegistryKey& key);
  // Opens the key where it exists; isNew says whether it didn't.
  LSTATUS Create(HKEY parent, TextView path, REGSAM access, TRegistryKey& key, bool& isNew);
  LSTATUS Counts(HKEY key, TKeyCounts& counts);
  LSTATUS EnumKey(HKEY key, DWORD index, Text& name);

  // Reads all data up to dataLimit bytes; of a larger value name, type and size alone.
  LSTATUS EnumValue(HKEY key, DWORD index, DWORD dataLimit, TValueBuffer& buffer);
  LSTATUS QueryValue(HKEY key, const Text& name, TValueBuffer& buffer);
  LSTATUS QueryType(HKEY key, const Text& name, DWORD& type);
  LSTATUS SetValue(HKEY key, const Text& name, DWORD type, std::span<const std::uint8_t> data);
  LSTATUS DeleteValue(HKEY key, const Text& name);

  // A key without subkeys.
  LSTATUS DeleteKey(HKEY parent, TextView path);

  // Whether a key that was opened as a link is one.
  bool IsLink(HKEY key);

  // How often the system was called so far, the closing of keys included.
  std::uint64_t Count() const {
    return m_count;
  }

 private:
  // A key from which the rest of a path, too long for one call, is short enough.
  struct TNearKey {
    TRegistryKey Holder;
    HKEY Parent = nullptr;
  };
  // Leaves the rest of the path in m_rest.
  LSTATUS Near(HKEY parent, TextView path, bool create, TNearKey& place);

  std::uint64_t m_count = 0;
  Text m_rest;
  TBytes m_guarded;  // the data of a string between guards
};

struct TKeptKey {
  TRootKey RootKey = kNoRootKey;
  Text Path;  // no leading "\"
  TRegistryKey Key;
  REGSAM Access = 0;
  bool LinkChecked = false;
  bool IsNew = false;  // it didn't exist before it was opened here
};

// The key that was opened last and its parents, kept so that a walk opens each key relative to its parent.
class TKeyChain {
 public:
  explicit TKeyChain(TRegistryCalls& calls) : m_calls(calls) {
  }

  // Opens a key, relative to the deepest kept parent, and keeps it. A kept key at this very path is opened
  // again: it might have been deleted.
  LSTATUS Open(TRootKey rootKey, TextView path, REGSAM access, bool asLink, std::shared_ptr<TKeptKey>& key);
  LSTATUS Create(TRootKey rootKey, TextView path, REGSAM access, std::shared_ptr<TKeptKey>& key);

  // Whether the key lies directly in a kept key that is new, so that it can hardly exist.
  bool LiesInNewKey(TRootKey rootKey, TextView path) const;

  // Whether the key opens, or would but for its access rules; keeps nothing of it.
  bool Exists(TRootKey rootKey, TextView path);

  // The key that was opened last, when it is this one; else null.
  std::shared_ptr<TKeptKey> Last(TRootKey rootKey, TextView path) const;

  void Clear() {
    m_kept.clear();
  }

 private:
  const TKeptKey* ParentOf(TRootKey rootKey, TextView path) const;
  void DropWhatIsNoParent(TRootKey rootKey, TextView path);
  std::shared_ptr<TKeptKey> Keep(TRootKey rootKey, TextView path, REGSAM access, TRegistryKey opened);

  TRegistryCalls& m_calls;
  std::vector<std::shared_ptr<TKeptKey>> m_kept;  // each a parent of the next
};

// Whether a path is from the root and written as the system takes it, which makes taking it apart
// superfluous: no doubled or trailing separator, no NUL, no name that is too long.
bool IsPlainPath(TextView path);

// Joins names with "\". Nothing when a name holds a NUL, which no routine can pass on, or is too long for a
// key.
std::optional<Text> JoinNames(const std::vector<Text>& names);

// A value name as the routines take it: a name of one NUL is the default value. Nothing for a name that holds
// a NUL otherwise: the system would cut it and take another value.
std::optional<TextView> SystemValueName(TextView name);

// Deletes a key with all its subkeys, deepest first. It is looked through before: nothing is deleted when a
// link stands anywhere in it (Link) or when a part of it can't be read or deleted.
TRawResult DeleteWholeKey(TRegistryCalls& calls, HKEY parent, TextView path);

TRawResult RawResultOf(LSTATUS status);

}  // namespace corvalt
