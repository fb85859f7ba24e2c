// The keys of a registry in memory: the machine's hive, the user's, the user's classes, and the views of them
// that the root keys give. HKEY_CLASSES_ROOT shows the user's classes over the machine's (page "Merged View
// of HKEY_CLASSES_ROOT", learn.microsoft.com), and HKEY_CURRENT_USER\Software\Classes is a link to the user's
// classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/memory/memorysecurity.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

// The order in which a platform enumerates names.
enum class TNameOrder {
  Windows,  // subkeys by upper case, values as they were created
  Wine,     // both by lower case
};

// What the user may do with a key. Each includes what follows it.
enum class TMemoryRights {
  Everything,
  NoSubKeys,  // no new subkeys; the key and its values may be changed and deleted
  Read,       // neither changed nor deleted
  Nothing,    // an empty access list
};

struct TMemoryKey {
  struct TValue {
    TRawValue Raw;
    std::uint64_t Sequence = 0;  // order of creation
  };

  Text Name;                                            // empty for the top of a hive
  std::weak_ptr<TMemoryKey> Parent;                     // none for the top of a hive
  std::map<Text, std::shared_ptr<TMemoryKey>> SubKeys;  // by upper-cased name
  std::map<Text, TValue> Values;                        // by upper-cased name
  Text ClassName;
  TBytes Security;
  std::uint64_t LastWrite = 0;
  TMemoryRights Rights = TMemoryRights::Everything;
  bool IsVolatile = false;
  bool Deleted = false;                  // deleted while somebody held it open
  bool ListingFails = false;             // its names can be enumerated only in part
  bool IsLink = false;                   // a registry link, to LinkTarget
  std::weak_ptr<TMemoryKey> LinkTarget;  // gone when the target is deleted
};

using TMemoryKeyPointer = std::shared_ptr<TMemoryKey>;

// An opened key. Opened below HKEY_CLASSES_ROOT it can show two keys: the user's and, beneath it, the
// machine's.
struct TOpenMemoryKey {
  TMemoryKeyPointer Key;      // takes what is written
  TMemoryKeyPointer Beneath;  // null: there is one key only

  explicit operator bool() const {
    return Key != nullptr;
  }
};

class TMemoryHives {
 public:
  explicit TMemoryHives(TNameOrder order);

  // Whose keys those are that are created from now on.
  void CreateAs(TMemoryCreator creator) {
    m_creator = std::move(creator);
  }
  const TMemoryCreator& Creator() const {
    return m_creator;
  }

  // The key of a root; none for a number that is no root key.
  TOpenMemoryKey Root(TRootKey rootKey) const;

  // The key that the names lead to from an opened key. Links in the path and, with followLast, at its end are
  // followed.
  TOpenMemoryKey Find(TOpenMemoryKey from, const std::vector<Text>& names, bool followLast) const;

  // Creates the key with its missing parents, links followed; what is missing below HKEY_CLASSES_ROOT is
  // created in the machine's hive. Parents are volatile only below a volatile key. No key is created where
  // the result is MustBeVolatile, Denied or Failed.
  TRawResult Create(const TOpenMemoryKey& from, const std::vector<Text>& names, const TNewKey& newKey,
                    TMemoryKeyPointer& created);

  // The same without regard to rights and volatility, for the test that builds a registry.
  TMemoryKeyPointer Build(const TOpenMemoryKey& from, const std::vector<Text>& names);

  // Takes the key out of its parent and marks all of it as deleted.
  void Delete(const TMemoryKeyPointer& key);

  void WriteValue(TMemoryKey& key, const TRawValue& value);
  bool DeleteValue(TMemoryKey& key, TextView name);

  // The user's value of this name, else the machine's; nullptr when there is none.
  static const TRawValue* FindValue(const TOpenMemoryKey& key, TextView name);
  // The one of the two keys that holds the value; nullptr when none does.
  static TMemoryKeyPointer HolderOf(const TOpenMemoryKey& key, TextView name);

  std::vector<Text> SubKeyNames(const TOpenMemoryKey& key) const;
  std::vector<const TRawValue*> OrderedValues(const TOpenMemoryKey& key) const;

  // nullopt for the top of a hive and for a key that is deleted.
  std::optional<TKeyPlace> PlaceOf(const TMemoryKeyPointer& key) const;

  // Gives the key the time of a change.
  void Touch(TMemoryKey& key);

 private:
  // How many of the names lead to a key from there, and that key.
  static std::size_t Follow(TMemoryKeyPointer& key, const std::vector<Text>& names);
  TMemoryKeyPointer Add(const TMemoryKeyPointer& parent, TextView name);
  TMemoryKeyPointer NewHive();
  std::optional<TKeyPlace> HiveOf(const TMemoryKeyPointer& top) const;
  std::vector<const TMemoryKey::TValue*> SortedValues(const TMemoryKey& key) const;

  TNameOrder m_order;
  TMemoryCreator m_creator;
  std::map<TRootKey, TMemoryKeyPointer> m_roots;  // but for HKEY_CLASSES_ROOT
  TMemoryKeyPointer m_userClasses;
  TMemoryKeyPointer m_machineClasses;
  std::uint64_t m_nextSequence = 0;
  std::uint64_t m_now;
};

// Names as the registry takes them (page "Registry Element Size Limits", learn.microsoft.com).
bool KeyNamesFit(const std::vector<Text>& names);
bool ValueNameFits(TextView name);

// Whether a link stands at or below the key; whether the user may not read or not delete the key or one below
// it.
bool HoldsLink(const TMemoryKey& key);
bool HoldsUndeletable(const TMemoryKey& key);

}  // namespace corvalt
