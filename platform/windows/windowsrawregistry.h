// The real registry as it is stored, for saving, comparing and restoring.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/windows/keychain.h"
#include "platform/windows/keyplaces.h"
#include "platform/windows/keyreader.h"
#include "platform/windows/registrycalls.h"
#include "platform/windows/valuenames.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

// Keeps the key it used last and that key's parents open until ReleaseKeys. May be called from any thread.
class TWindowsRawRegistry : public TRawRegistry {
 public:
  TWindowsRawRegistry();
  explicit TWindowsRawRegistry(TRegistryView view);

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
    return m_view;
  }
  std::unique_ptr<TRawRegistry> OpenView(TRegistryView view) override;
  void ReleaseKeys() override;

  // How often the system was called so far.
  std::uint64_t SystemCalls() const {
    return m_calls.Count();
  }

 private:
  using TKeptPointer = std::shared_ptr<TKeptKey>;

  TRawResult OpenAnew(TRootKey rootKey, const Text& path, REGSAM access, TKeptPointer& key);
  TRawResult OpenKept(TRootKey rootKey, const Text& path, REGSAM access, TKeptPointer& key);
  TRawResult OpenOrCreate(TRootKey rootKey, const Text& path, const TNewKey& newKey, TKeptPointer& key);
  TRawResult CreateParents(TRootKey rootKey, const Text& path, const TNewKey& newKey);
  TRawResult RefuseLink(TKeptKey& key);
  TRawResult WriteTo(HKEY handle, const Text& name, const TRawValue& value);
  TRawResult PlaceOfKey(TRootKey rootKey, const Text& path, TKeyPlace& place);
  TRawResult OpenForDeletion(const TKeyPlace& place, const Text& path, TKeptPointer& key);
  const TBytes& SecurityOf(TKeptKey& key);
  const TBytes& NewOwner();
  TBytes ParentSecurity(TRootKey rootKey, TextView path);
  TRawResult OpenForAttributes(TRootKey rootKey, const Text& path, TRegistryKey& key);

  template <typename TRoutine>
  TRawResult WithKey(TRootKey rootKey, const Text& path, REGSAM access, TRoutine routine);

  std::mutex m_mutex;
  TRegistryView m_view;
  TRegistryCalls m_calls;
  TKeyChain m_chain{m_calls};
  TKeyReader m_reader{m_calls};
  TKeyPlaces m_places{m_calls};
  TValueNames m_names{m_calls};
  TValueBuffer m_buffer;
  std::optional<TBytes> m_newOwner;  // of keys that are created, once it was asked for
};

}  // namespace corvalt
