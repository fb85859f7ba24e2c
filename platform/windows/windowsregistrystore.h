// The registry itself, behind the store that the logic uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/windows/keychain.h"
#include "platform/windows/registrycalls.h"
#include "system/registrystore.h"
#include "system/registryvalues.h"

namespace corvalt {

// The values of the open key as GetValueNames found them, so that reading them afterwards costs no call.
class TValueSnapshot {
 public:
  struct TEntry {
    std::size_t NameBegin = 0;
    std::size_t NameLength = 0;
    std::size_t DataBegin = 0;
    std::size_t DataSize = 0;
    DWORD Type = kRegNone;
    bool HasData = false;  // else it is too large to be kept
  };

  void Clear();
  void Add(const TValueBuffer& value);

  // nullptr when there is none of this name. Quick for names in the order in which they were added.
  const TEntry* Find(TextView name);
  std::span<const std::uint8_t> DataOf(const TEntry& entry) const {
    return std::span<const std::uint8_t>(m_data).subspan(entry.DataBegin, entry.DataSize);
  }

 private:
  TextView NameOf(const TEntry& entry) const {
    return TextView(m_names).substr(entry.NameBegin, entry.NameLength);
  }
  void Sort();

  std::vector<TEntry> m_entries;
  std::vector<std::uint32_t> m_sorted;  // indexes by name, made when it is needed
  std::size_t m_expected = 0;
  Text m_names;
  TBytes m_data;
};

// Reading costs one call a value and five a key at most when keys are opened, asked for their values' names,
// their values and their subkeys' names, and closed. The values that GetValueNames found are returned from
// memory until the key is closed, asked for its names again, or changed through this store.
class TWindowsRegistryStore : public RegistryStore {
 public:
  explicit TWindowsRegistryStore(TRegistryAccess access) : m_access(access) {
  }

  void SetRootKey(TRootKey rootKey) override;
  bool OpenKey(TextView path, bool canCreate) override;
  void CloseKey() override;
  bool KeyExists(TextView path) override;
  bool ValueExists(TextView name) override;
  TDataType GetDataType(TextView name) override;
  Text ReadString(TextView name) override;
  std::int32_t ReadInteger(TextView name) override;
  bool ReadBool(TextView name) override;
  bool WriteString(TextView name, TextView value) override;
  bool WriteInteger(TextView name, std::int32_t value) override;
  bool WriteBool(TextView name, bool value) override;
  std::vector<Text> GetValueNames() override;
  std::vector<Text> GetKeyNames() override;
  bool HasSubKeys() override;
  bool ListedWhole() const override {
    return m_listedWhole;
  }
  std::optional<Text> RealPath() override;
  bool DeleteKey(TextView path) override;
  bool DeleteValue(TextView name) override;

  // How often the system was called so far.
  std::uint64_t SystemCalls() const {
    return m_calls.Count();
  }

 private:
  struct TPlace {
    TRootKey RootKey = kNoRootKey;
    Text Path;
  };
  struct TValue {
    DWORD Type = kRegNone;
    std::span<const std::uint8_t> Data;
  };

  // nullopt for a path that no key can have, and for one of more names than a registry is deep.
  std::optional<TPlace> PlaceOf(TextView path) const;
  std::optional<TPlace> AnyPlaceOf(TextView path) const;
  LSTATUS OpenForAccess(const TPlace& place);
  void Forget();
  bool Count();
  bool CountSubKeys();
  std::optional<TValue> FindValue(TextView name);
  bool Write(TextView name, DWORD type, std::span<const std::uint8_t> data);
  bool MayChange() const {
    return m_access == TRegistryAccess::Full && m_open != nullptr;
  }

  TRegistryAccess m_access;
  TRootKey m_rootKey = kHkeyCurrentUser;
  TRegistryCalls m_calls;
  TKeyChain m_chain{m_calls};
  std::shared_ptr<TKeptKey> m_open;

  // Empty when the system can't be asked for it.
  Text RealPathOfRoot();

  bool m_listedWhole = false;

  // Of the open key. The counts that a listing of its values asked for serve its subkeys too, once.
  TKeyCounts m_counts;
  bool m_subKeysCounted = false;
  TValueSnapshot m_snapshot;
  TValueBuffer m_buffer;
};

class TWindowsRegistry : public TRegistryFactory {
 public:
  std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) override {
    return std::make_unique<TWindowsRegistryStore>(access);
  }
};

}  // namespace corvalt
