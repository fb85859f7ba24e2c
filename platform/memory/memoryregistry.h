// A registry in memory, as strict as the real one: names that compare without regard to case and keep theirs,
// typed values, access that is denied, links, deletion of keys that others hold open.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/memory/journal.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"

namespace corvalt {

// The order in which a platform enumerates names.
enum class TNameOrder {
  Windows,  // subkeys by upper case, values as they were created
  Wine,     // both by lower case
};

struct TMemoryKey {
  struct TValue {
    TRawValue Raw;
    std::uint64_t Sequence = 0;  // order of creation
  };

  Text Name;
  std::map<Text, std::shared_ptr<TMemoryKey>> SubKeys;  // by upper-cased name
  std::map<Text, TValue> Values;                        // by upper-cased name
  bool Denied = false;                                  // an empty access list
  bool Deleted = false;                                 // deleted while somebody held it open
  std::shared_ptr<TMemoryKey> LinkTarget;               // set: this key is a registry link
};

class TMemoryRegistry : public TRegistryFactory {
 public:
  explicit TMemoryRegistry(TNameOrder order = TNameOrder::Windows);

  std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) override;

  // Building and looking, by full paths ("HKEY_CURRENT_USER\Software\Foo"); access rules do not count here.
  // Keys are created with their parents.
  void AddKey(TextView fullPath);
  void Set(TextView fullPath, TextView name, TextView text);
  void SetExpand(TextView fullPath, TextView name, TextView text);
  void SetInteger(TextView fullPath, TextView name, std::uint32_t value);
  void SetRaw(TextView fullPath, const TRawValue& value);
  void RemoveKey(TextView fullPath) const;
  void Deny(TextView fullPath);
  void MakeLink(TextView fullPath, TextView targetFullPath);
  bool HasKey(TextView fullPath) const;
  bool HasValue(TextView fullPath, TextView name) const;
  const TRawValue* FindValue(TextView fullPath, TextView name) const;

  // Every key and value below a key with type and bytes, one a line, for comparing a before with an after.
  std::vector<std::string> Dump(TextView fullPath) const;

  // Below: for the doubles that look into it.

  // The key of a parsed path, starting at a root or at a key; links in the path and, with followLast, at its
  // end are followed. Null when there is none.
  std::shared_ptr<TMemoryKey> Find(TRootKey rootKey, const std::vector<Text>& names, bool followLast) const;
  static std::shared_ptr<TMemoryKey> Find(std::shared_ptr<TMemoryKey> from, const std::vector<Text>& names,
                                          bool followLast);
  // The key with missing parents created. Null where a key on the way denies access.
  std::shared_ptr<TMemoryKey> Create(std::shared_ptr<TMemoryKey> from, const std::vector<Text>& names);
  std::shared_ptr<TMemoryKey> Root(TRootKey rootKey) const;
  void WriteValue(TMemoryKey& key, const TRawValue& value);
  std::vector<Text> SubKeyNames(const TMemoryKey& key) const;
  std::vector<const TRawValue*> OrderedValues(const TMemoryKey& key) const;

  // Removes the key that the names lead to from its parent and marks all of it as deleted.
  static bool Detach(const std::shared_ptr<TMemoryKey>& from, const std::vector<Text>& names);

  void SetJournal(TJournal* journal) {
    m_journal = journal;
  }
  void Note(std::string_view what, TextView path) const;

  // Called before each read of a value or key listing by the stores; lets a test change the registry or set a
  // thread's flag in the middle of a scan.
  std::function<void()> OnRead;

 private:
  std::shared_ptr<TMemoryKey> FullPathKey(TextView fullPath, bool create);
  std::shared_ptr<TMemoryKey> FullPathKey(TextView fullPath) const;

  TNameOrder m_order;
  std::map<TRootKey, std::shared_ptr<TMemoryKey>> m_roots;
  std::uint64_t m_nextSequence = 0;
  TJournal* m_journal = nullptr;
};

// The raw bytes of a memory registry.
class TMemoryRawRegistry : public TRawRegistry {
 public:
  explicit TMemoryRawRegistry(TMemoryRegistry& registry) : m_registry(registry) {
  }

  TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) override;
  TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) override;
  TRawResult CreateKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) override;
  TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) override;
  void ReleaseKeys() override {
  }

 private:
  TRawResult Open(TRootKey rootKey, TextView keyPath, std::shared_ptr<TMemoryKey>& key);

  TMemoryRegistry& m_registry;
};

// The bytes of a string value as Windows stores it, with its terminating NUL.
TBytes StringBytes(TextView text);

// The same without it.
TBytes UnitBytes(TextView text);

// Whether a link stands at or below the key; whether access is denied at or below it.
bool HoldsLink(const TMemoryKey& key);
bool HoldsDenied(const TMemoryKey& key);

}  // namespace corvalt
