// The registry as it is stored: types and bytes of whole keys, where a key really lies, its class name,
// permissions and times. Backup, comparison before a deletion, deletion of what was saved, and restore work
// on this interface; so does whoever must tell a value's exact type and size, or what the user may do with a
// key. Everything else reads and changes the registry through RegistryStore.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "system/registryvalues.h"

namespace corvalt {

// One key: its values and the names of its direct subkeys, as they are stored and both in the platform's
// enumeration order.
struct TRawKey {
  std::vector<TRawValue> Values;
  std::vector<Text> SubKeys;
};

enum class [[nodiscard]] TRawResult{
    Done,
    Missing,         // no such key or value
    Denied,          // it exists and the user may not do this
    Link,            // the key itself is a registry link, which is never followed here
    MustBeVolatile,  // the parent is volatile and takes only volatile subkeys (ERROR_CHILD_MUST_BE_VOLATILE,
                     // 1021)
    Refused,         // the caller's check did not agree, or the key has moved to another place
    InPart,          // of a tree some keys are deleted, and others stay
    Failed,          // any other failure
};

// Where a key really lies: every link above it followed, the merged HKEY_CLASSES_ROOT resolved to the hive
// that holds the key, every name spelled as it is stored. The user's own hive is written as
// HKEY_CURRENT_USER, the user's classes as HKEY_CURRENT_USER\Software\Classes, other users' hives below
// HKEY_USERS, all else below HKEY_LOCAL_MACHINE.
struct TKeyPlace {
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;  // begins with "\"

  bool operator==(const TKeyPlace&) const = default;
};

// The same place but for letter case.
bool SamePlace(const TKeyPlace& a, const TKeyPlace& b);

// Whether the place is a root key itself. HKEY_CLASSES_ROOT shows two keys and is none.
bool IsRootPlace(const TKeyPlace& place);

// What a key has beside values and subkeys.
struct TKeyAttributes {
  Text ClassName;
  std::optional<bool> IsVolatile;  // nullopt: this system has no way to find out
  std::uint64_t LastWrite = 0;     // a FILETIME: 100 nanoseconds since 1 January 1601, UTC

  // A self-relative SECURITY_DESCRIPTOR with owner, group, access list and, where it can be read, the
  // integrity label. Empty where the user may not read it.
  TBytes Security;
  // Whether a key newly created at this place would get other permissions; see HasOwnSecurity in
  // system/securitydescriptor.h.
  bool HasOwnSecurity = false;
};

// What CreateKey gives a key that it creates; a key that exists keeps what it has.
struct TNewKey {
  Text ClassName;
  bool IsVolatile = false;
};

// What a key shall have; nullopt and empty: is left as it is.
struct TWantedAttributes {
  std::optional<std::uint64_t> LastWrite;
  TBytes Security;  // a self-relative SECURITY_DESCRIPTOR
};

// What of it the key has not, read back after it was set.
struct TAttributesLost {
  bool Security = false;
  bool LastWrite = false;

  bool Any() const {
    return Security || LastWrite;
  }
};

// Looks at each key of a tree before anything of the tree is deleted, and once more directly before the key
// itself is deleted, when its subkeys are gone. pathBelow is empty for the top of the tree, else the path
// below it, each name after a "\". False keeps the whole tree at first, and later what is left of it. Must
// not call the registry that calls it.
using TKeyCheck = std::function<bool(TextView pathBelow, const TRawKey& key)>;
// The same for one value.
using TValueCheck = std::function<bool(const TRawValue& value)>;

// On 64-bit Windows 32-bit programs see some keys in a view of their own.
enum class TRegistryView { Bits32, Bits64 };

// Every path is absolute: it begins with "\" and names no root. A link inside the path above the key is
// followed, as the system does for "CurrentControlSet"; the key itself is opened as the link it is and
// gives Link. A failing operation leaves its outputs as they were. May be called from any thread.
class TRawRegistry {
 public:
  virtual ~TRawRegistry() = default;

  // All of one key, read until it is complete even when it changes meanwhile.
  virtual TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) = 0;
  virtual TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) = 0;

  // Where the key lies. A root key lies nowhere: Failed.
  virtual TRawResult FindKey(TRootKey rootKey, TextView keyPath, TKeyPlace& place) = 0;
  // The key that holds the value. Below HKEY_CLASSES_ROOT a key can exist in both hives; the user's value
  // wins. A value of a root key lies in the root, and one of HKEY_CLASSES_ROOT itself nowhere: Failed.
  virtual TRawResult FindValue(TRootKey rootKey, TextView keyPath, TextView name, TKeyPlace& place) = 0;

  virtual TRawResult ReadAttributes(TRootKey rootKey, TextView keyPath, TKeyAttributes& attributes) = 0;

  // Whether the user may create subkeys in the key, or, where it is a link, in the key that it leads to:
  // Done, Denied or Missing.
  virtual TRawResult MayCreateSubKeys(TRootKey rootKey, TextView keyPath) = 0;

  // Whether the key opens for the user with full access (KEY_ALL_ACCESS), links followed. subKey is handed to
  // the system as it is: it has no leading "\".
  virtual bool OpensWithFullAccess(TRootKey rootKey, TextView subKey) = 0;

  // Creates the key; missing parents get no class, and are volatile only below a volatile key. Done also when
  // the key exists, even where the user may only read it, and isNew tells which.
  virtual TRawResult CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey, bool& isNew) = 0;
  TRawResult CreateKey(TRootKey rootKey, TextView keyPath) {
    bool isNew = false;
    return CreateKey(rootKey, keyPath, {}, isNew);
  }

  // Writes exactly these bytes under exactly this type into an existing or newly created key.
  virtual TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) = 0;

  // Sets permissions, then the time, through one handle opened before, and reads both back. Done also where
  // something could not be set: lost tells. Whatever changes the key or its subkeys later changes the time
  // again, so children come first.
  virtual TRawResult WriteAttributes(TRootKey rootKey, TextView keyPath, const TWantedAttributes& wanted,
                                     TAttributesLost& lost) = 0;

  // Deletes the key with all its subkeys, or one value. Missing when there is none. Below HKEY_CLASSES_ROOT
  // of the hive in which FindKey and FindValue find it.
  virtual TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) = 0;
  virtual TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) = 0;

  // Deletes what was saved before: the key must still lie at exactly this place and the check agree to every
  // key of the tree, or to the value, as it is now; else Refused, and all of it stays. InPart where a tree
  // was changed during its deletion. Each key is read and deleted through one handle, opened as a link, so
  // that a link put in its place meanwhile is not followed.
  virtual TRawResult DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) = 0;
  virtual TRawResult DeleteValueAt(const TKeyPlace& place, TextView name, const TValueCheck& mayDelete) = 0;

  // The view that this object works in.
  virtual TRegistryView View() = 0;
  // The registry in one view; nullptr where the system has no such view. Must not outlive this object.
  virtual std::unique_ptr<TRawRegistry> OpenView(TRegistryView view) = 0;

  // Drops key handles kept between calls, so that another store's deletion is not held up by them.
  virtual void ReleaseKeys() = 0;
};

// Releases the keys that a registry keeps open, at the end of its life.
class TKeysReleased {
 public:
  explicit TKeysReleased(TRawRegistry& registry) : m_registry(registry) {
  }
  ~TKeysReleased() {
    m_registry.ReleaseKeys();
  }
  TKeysReleased(const TKeysReleased&) = delete;
  TKeysReleased& operator=(const TKeysReleased&) = delete;

 private:
  TRawRegistry& m_registry;
};

}  // namespace corvalt
