// The registry in memory behind the store that the logic uses.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memoryregistry.h"
#include "system/registrystore.h"
#include "system/registryvalues.h"

namespace corvalt {

class TMemoryRegistryStore : public RegistryStore {
 public:
  TMemoryRegistryStore(TMemoryRegistry& registry, TRegistryAccess access)
      : m_registry(registry), m_hives(registry.Hives()), m_access(access) {
  }

  void SetRootKey(TRootKey rootKey) override {
    m_rootKey = rootKey;
  }
  bool OpenKey(TextView path, bool canCreate) override;
  void CloseKey() override {
    m_key = {};
  }
  bool KeyExists(TextView path) override;
  bool ValueExists(TextView name) override {
    return FindValue(name) != nullptr;
  }
  TDataType GetDataType(TextView name) override;
  Text ReadString(TextView name) override;
  std::int32_t ReadInteger(TextView name) override;
  bool ReadBool(TextView name) override {
    return ReadInteger(name) != 0;
  }
  bool WriteString(TextView name, TextView value) override;
  bool WriteInteger(TextView name, std::int32_t value) override;
  bool WriteBool(TextView name, bool value) override {
    return WriteInteger(name, value ? 1 : 0);
  }
  std::vector<Text> GetValueNames() override;
  std::vector<Text> GetKeyNames() override;
  bool HasSubKeys() override;
  bool ListedWhole() const override {
    return m_listedWhole;
  }
  std::optional<Text> RealPath() override;
  bool DeleteKey(TextView path) override;
  bool DeleteValue(TextView name) override;

 private:
  TOpenMemoryKey Start(TextView path) const;
  bool Readable() const;
  bool MayChange() const;
  const TRawValue* FindValue(TextView name) const;
  bool Write(const TRawValue& value);
  std::vector<Text> Listed(std::vector<Text> names);

  TMemoryRegistry& m_registry;
  TMemoryHives& m_hives;
  TRegistryAccess m_access;
  TRootKey m_rootKey = kHkeyCurrentUser;
  TOpenMemoryKey m_key;
  bool m_listedWhole = false;
};

}  // namespace corvalt
