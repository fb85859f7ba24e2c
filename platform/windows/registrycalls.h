// The registry's routines as the registry classes need them, counted: owned keys, paths of any length, values
// read into one reused buffer. Routines that the system does not declare are looked up in ntdll.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

// The value that makes a key a link (page "Registry Value Types", REG_LINK).
inline constexpr TextView kLinkValueName = u"SymbolicLinkValue";

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

// Every routine returns the system's error code. Paths have no leading "\" and may be longer than a single
// call of the system takes; names of values are ended by their first NUL.
class TRegistryCalls {
 public:
  // viewFlag: KEY_WOW64_32KEY or KEY_WOW64_64KEY for the registry in another view, 0 for the program's own.
  explicit TRegistryCalls(REGSAM viewFlag = 0) : m_viewFlag(viewFlag) {
  }

  LSTATUS Open(HKEY parent, TextView path, REGSAM access, bool asLink, TRegistryKey& key);
  // Opens the key where it exists; isNew tells whether it was created. Missing parents are created alike.
  LSTATUS Create(HKEY parent, TextView path, REGSAM access, const TNewKey& newKey, TRegistryKey& key,
                 bool& isNew);
  LSTATUS Counts(HKEY key, TKeyCounts& counts);
  LSTATUS ClassAndTime(HKEY key, Text& className, std::uint64_t& lastWrite);
  LSTATUS EnumKey(HKEY key, DWORD index, Text& name);

  // Reads all data up to dataLimit bytes; of a larger value only name, type and size.
  LSTATUS EnumValue(HKEY key, DWORD index, DWORD dataLimit, TValueBuffer& buffer);
  LSTATUS QueryValue(HKEY key, const Text& name, TValueBuffer& buffer);
  LSTATUS QueryType(HKEY key, const Text& name, DWORD& type);
  LSTATUS SetValue(HKEY key, const Text& name, DWORD type, std::span<const std::uint8_t> data);
  LSTATUS DeleteValue(HKEY key, const Text& name);

  // A key without subkeys, opened with DELETE access.
  LSTATUS DeleteKey(HKEY key);

  // Whether a key that was opened as a link is one.
  bool IsLink(HKEY key);

  // The whole name by which the system knows an opened key, "\REGISTRY\MACHINE\..."; empty when it can't be
  // asked. The predefined root keys can't.
  Text SystemName(HKEY key);
  // The last name of it in the spelling in which it is stored; empty when it can't be asked.
  Text StoredName(HKEY key);
  // nullopt where this system has no way to find out.
  std::optional<bool> IsVolatile(HKEY key);
  // Success does not mean that the time was set: Wine's routine has no effect.
  LSTATUS SetLastWrite(HKEY key, std::uint64_t time);

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
  bool QueryNative(HKEY key, int informationClass);

  REGSAM m_viewFlag;
  std::uint64_t m_count = 0;
  Text m_rest;
  TBytes m_guarded;      // the data of a string between guards
  TBytes m_information;  // what was asked last of an opened key
};

}  // namespace corvalt
