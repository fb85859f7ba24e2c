// The registry as most of the program uses it: keys by name, values as texts and numbers. The scanners read
// through it, the settings and the ignore list are stored through it. What must be exact to the byte, or
// about one certain place, goes through TRawRegistry (system/rawregistry.h): backups, deletions of a repair,
// restores. To open a key for a block of statements there is TOpenKey (system/openkey.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"

namespace corvalt {

enum class TDataType { Unknown, String, ExpandString, Integer, Binary };

// Of one of the system's types of values (REG_SZ, ...).
TDataType DataTypeOf(std::uint32_t type);

// A current root and at most one open key. Names compare without regard to case and keep theirs. Failed
// operations return false, the empty text, 0 or an empty list, never throw and leave everything as it was.
// Not for use by two threads at once.
class RegistryStore {
 public:
  virtual ~RegistryStore() = default;

  // Selects the root for the following operations. The open key stays open.
  virtual void SetRootKey(TRootKey rootKey) = 0;

  // Opens a key, with canCreate creating it and its missing parents. A path that begins with "\" is taken
  // from the root, any other relative to the open key, or to the root when none is open; see ParseKeyPath.
  // Replaces the open key on success; on failure no key is left open.
  virtual bool OpenKey(TextView path, bool canCreate) = 0;
  virtual void CloseKey() = 0;

  // Tests a key without opening it; paths as in OpenKey. A key that the user may not open exists all the
  // same.
  virtual bool KeyExists(TextView path) = 0;

  // The open key's values. The empty name is the default value, and a name of one NUL unit means the same to
  // the registry.
  virtual bool ValueExists(TextView name) = 0;

  // Integer means the 32-bit little-endian type only; a missing value is Unknown.
  virtual TDataType GetDataType(TextView name) = 0;

  // String and expandable string values, unexpanded, up to their first NUL; an odd last byte is dropped.
  virtual Text ReadString(TextView name) = 0;

  // Integer values of four bytes; 0 for anything else.
  virtual std::int32_t ReadInteger(TextView name) = 0;
  virtual bool ReadBool(TextView name) = 0;

  virtual bool WriteString(TextView name, TextView value) = 0;
  virtual bool WriteInteger(TextView name, std::int32_t value) = 0;
  virtual bool WriteBool(TextView name, bool value) = 0;

  // Names of the open key's values and direct subkeys, in the platform's enumeration order.
  virtual std::vector<Text> GetValueNames() = 0;
  virtual std::vector<Text> GetKeyNames() = 0;
  virtual bool HasSubKeys() = 0;

  // Whether the last call of the three above saw everything that the open key holds. False too when no key
  // was open. What such a call returned is a beginning only, and no key is empty because of it.
  virtual bool ListedWhole() const = 0;

  // Where the open key really lies, as the system names it ("\REGISTRY\USER\...\Software"): registry links
  // on the way are resolved, and below HKEY_CLASSES_ROOT the user's hive is told from the machine's
  // (ZwQueryKey with KeyNameInformation, learn.microsoft.com). nullopt when no key is open, for a root that
  // has no single place, and where the system can't tell.
  virtual std::optional<Text> RealPath() = 0;

  // Deletes a key with all its subkeys; paths as in OpenKey. A key that is itself a registry link, or that
  // holds one below it, is left whole: a link is never followed. False when anything of it remains.
  virtual bool DeleteKey(TextView path) = 0;
  virtual bool DeleteValue(TextView name) = 0;
};

enum class TRegistryAccess {
  Read,  // keys open for reading; every change fails
  Full,  // keys open for reading and for change
};

// Makes registry stores, one for each part of the program that uses one; each begins at HKEY_CURRENT_USER
// with no key open.
class TRegistryFactory {
 public:
  virtual ~TRegistryFactory() = default;
  virtual std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) = 0;
};

}  // namespace corvalt
