// Every change of the registry, reported: stores that do what another store does and tell a log of each key
// that is created or deleted and each value that is written or deleted, with the result.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"
#include "system/registryvalues.h"
#include "system/system.h"

namespace corvalt {

enum class TChangeKind {
  KeyCreated,
  KeyDeleted,  // with all its subkeys
  ValueWritten,
  ValueDeleted,
  AttributesWritten,  // permissions, time
};

struct TRegistryChange {
  TChangeKind Kind = TChangeKind::KeyCreated;
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;                          // begins with "\"
  Text ValueName;                        // of changes of values
  TRawResult Result = TRawResult::Done;  // a RegistryStore tells only Done or Failed

  bool operator==(const TRegistryChange&) const = default;
};

// Called after each attempt to change something, on the thread that made it. What throws here reaches the
// caller of the change, which has been made by then.
class TChangeLog {
 public:
  virtual ~TChangeLog() = default;
  virtual void Changed(const TRegistryChange& change) = 0;
};

// Reports the changes made through a store. The log must outlive it.
class TLoggedRegistryStore : public RegistryStore {
 public:
  TLoggedRegistryStore(std::unique_ptr<RegistryStore> store, TChangeLog& log)
      : m_store(std::move(store)), m_log(log) {
  }

  void SetRootKey(TRootKey rootKey) override;
  bool OpenKey(TextView path, bool canCreate) override;
  void CloseKey() override;
  bool KeyExists(TextView path) override {
    return m_store->KeyExists(path);
  }
  bool ValueExists(TextView name) override {
    return m_store->ValueExists(name);
  }
  TDataType GetDataType(TextView name) override {
    return m_store->GetDataType(name);
  }
  Text ReadString(TextView name) override {
    return m_store->ReadString(name);
  }
  std::int32_t ReadInteger(TextView name) override {
    return m_store->ReadInteger(name);
  }
  bool ReadBool(TextView name) override {
    return m_store->ReadBool(name);
  }
  bool WriteString(TextView name, TextView value) override;
  bool WriteInteger(TextView name, std::int32_t value) override;
  bool WriteBool(TextView name, bool value) override;
  std::vector<Text> GetValueNames() override {
    return m_store->GetValueNames();
  }
  std::vector<Text> GetKeyNames() override {
    return m_store->GetKeyNames();
  }
  bool HasSubKeys() override {
    return m_store->HasSubKeys();
  }
  bool ListedWhole() const override {
    return m_store->ListedWhole();
  }
  std::optional<Text> RealPath() override {
    return m_store->RealPath();
  }
  bool DeleteKey(TextView path) override;
  bool DeleteValue(TextView name) override;

 private:
  TKeyPlace PlaceOf(TextView path) const;
  bool Report(TChangeKind kind, const TKeyPlace& place, TextView valueName, bool done);

  std::unique_ptr<RegistryStore> m_store;
  TChangeLog& m_log;
  TRootKey m_rootKey = kHkeyCurrentUser;
  bool m_isOpen = false;
  TKeyPlace m_open;  // as it was opened; no link is resolved
};

// Makes such stores. Factory and log must outlive it.
class TLoggedRegistry : public TRegistryFactory {
 public:
  TLoggedRegistry(TRegistryFactory& registry, TChangeLog& log) : m_registry(registry), m_log(log) {
  }
  std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) override {
    return std::make_unique<TLoggedRegistryStore>(m_registry.CreateStore(access), m_log);
  }

 private:
  TRegistryFactory& m_registry;
  TChangeLog& m_log;
};

// Reports the changes made through a raw registry. Both must outlive it.
class TLoggedRawRegistry : public TRawRegistry {
 public:
  TLoggedRawRegistry(TRawRegistry& registry, TChangeLog& log) : m_registry(registry), m_log(log) {
  }

  using TRawRegistry::CreateKey;
  TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) override {
    return m_registry.ReadKey(rootKey, keyPath, key);
  }
  TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) override {
    return m_registry.ReadValue(rootKey, keyPath, name, value);
  }
  TRawResult FindKey(TRootKey rootKey, TextView keyPath, TKeyPlace& place) override {
    return m_registry.FindKey(rootKey, keyPath, place);
  }
  TRawResult FindValue(TRootKey rootKey, TextView keyPath, TextView name, TKeyPlace& place) override {
    return m_registry.FindValue(rootKey, keyPath, name, place);
  }
  TRawResult ReadAttributes(TRootKey rootKey, TextView keyPath, TKeyAttributes& attributes) override {
    return m_registry.ReadAttributes(rootKey, keyPath, attributes);
  }
  TRawResult MayCreateSubKeys(TRootKey rootKey, TextView keyPath) override {
    return m_registry.MayCreateSubKeys(rootKey, keyPath);
  }
  bool OpensWithFullAccess(TRootKey rootKey, TextView subKey) override {
    return m_registry.OpensWithFullAccess(rootKey, subKey);
  }
  // A key that exists is no change and not reported.
  TRawResult CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey, bool& isNew) override;
  TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) override;
  TRawResult WriteAttributes(TRootKey rootKey, TextView keyPath, const TWantedAttributes& wanted,
                             TAttributesLost& lost) override;
  TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) override;
  TRawResult DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) override;
  TRawResult DeleteValueAt(const TKeyPlace& place, TextView name, const TValueCheck& mayDelete) override;
  TRegistryView View() override {
    return m_registry.View();
  }
  std::unique_ptr<TRawRegistry> OpenView(TRegistryView view) override;
  void ReleaseKeys() override {
    m_registry.ReleaseKeys();
  }

 private:
  TRawResult Report(TChangeKind kind, TRootKey rootKey, TextView keyPath, TextView valueName,
                    TRawResult result);

  TRawRegistry& m_registry;
  TChangeLog& m_log;
};

// A whole system, with the changes of its registry reported. System and log must outlive it.
class TLoggedSystem {
 public:
  TLoggedSystem(const TSystem& system, TChangeLog& log)
      : m_system(system), m_registry(system.Registry, log), m_raw(system.Raw, log) {
  }

  // Valid as long as this object.
  TSystem Bundle() {
    return {.Registry = m_registry,
            .Raw = m_raw,
            .Probe = m_system.Probe,
            .Files = m_system.Files,
            .Machine = m_system.Machine,
            .Locale = m_system.Locale,
            .Clock = m_system.Clock,
            .MessageBoxes = m_system.MessageBoxes,
            .Programs = m_system.Programs,
            .EditorWindows = m_system.EditorWindows,
            .Interprocess = m_system.Interprocess};
  }

 private:
  TSystem m_system;
  TLoggedRegistry m_registry;
  TLoggedRawRegistry m_raw;
};

}  // namespace corvalt
