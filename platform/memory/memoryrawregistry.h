// The registry in memory as it is stored, for saving, comparing and restoring.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memoryregistry.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

class TMemoryRawRegistry : public TRawRegistry {
 public:
  explicit TMemoryRawRegistry(TMemoryRegistry& registry) : m_registry(registry), m_hives(registry.Hives()) {
  }

  using TRawRegistry::CreateKey;
  TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) override;
  TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) override;
  TRawResult FindKey(TRootKey rootKey, TextView keyPath, TKeyPlace& place) override;
  TRawResult FindValue(TRootKey rootKey, TextView keyPath, TextView name, TKeyPlace& place) override;
  TRawResult ReadAttributes(TRootKey rootKey, TextView keyPath, TKeyAttributes& attributes) override;
  TRawResult MayCreateSubKeys(TRootKey rootKey, TextView keyPath) override;
  bool OpensWithFullAccess(TRootKey rootKey, TextView subKey) override;
  TRawResult CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey, bool& isNew) override;
  TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) override;
  TRawResult WriteAttributes(TRootKey rootKey, TextView keyPath, const TWantedAttributes& wanted,
                             TAttributesLost& lost) override;
  TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) override;
  TRawResult DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) override;
  TRawResult DeleteValueAt(const TKeyPlace& place, TextView name, const TValueCheck& mayDelete) override;
  TRegistryView View() override {
    return m_registry.View;
  }
  std::unique_ptr<TRawRegistry> OpenView(TRegistryView view) override;
  void ReleaseKeys() override {
  }

 private:
  TRawResult Open(TRootKey rootKey, TextView keyPath, TOpenMemoryKey& key) const;
  std::optional<TKeyPlace> PlaceOf(const TMemoryKeyPointer& key, const TKeyPlace& opened) const;
  TRawResult OpenPlace(const TKeyPlace& place, TMemoryKeyPointer& key) const;
  TRawKey Content(const TOpenMemoryKey& key) const;
  // A key of a tree that is to be deleted.
  struct TTreeKey {
    TMemoryKeyPointer Key;
    Text PathBelow;
  };
  TRawResult Inspect(const TMemoryKeyPointer& top, const TKeyCheck& mayDelete,
                     std::vector<TTreeKey>& keys) const;
  TRawResult DeleteOne(const TTreeKey& key, const TKeyCheck& mayDelete);

  TMemoryRegistry& m_registry;
  TMemoryHives& m_hives;
};

}  // namespace corvalt
