// Root keys and key paths. A registry location travels as a root key and a key path that begins with "\" and
// names no root; the full text is formed only for display, ignore matching, backups and reports.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"

namespace corvalt {

// Predefined handle values of the Windows registry (winreg.h), low 32 bits.
using TRootKey = std::uint32_t;

inline constexpr TRootKey kNoRootKey = 0;
inline constexpr TRootKey kHkeyClassesRoot = 0x80000000;
inline constexpr TRootKey kHkeyCurrentUser = 0x80000001;
inline constexpr TRootKey kHkeyLocalMachine = 0x80000002;
inline constexpr TRootKey kHkeyUsers = 0x80000003;
inline constexpr TRootKey kHkeyCurrentConfig = 0x80000005;
inline constexpr TRootKey kHkeyDynData = 0x80000006;

// "HKEY_LOCAL_MACHINE" and so on; any handle that is none of the six, 0 included, gives "HKEY_CURRENT_USER".
Text RootKeyName(TRootKey rootKey);

// The root of an exact name; a text that is none of the six names (another letter case, a trailing "\") gives
// kHkeyCurrentUser.
TRootKey RootKeyFromName(TextView name);

// Whether name is exactly one of the six names.
bool IsRootKeyName(TextView name);

// A key path taken apart as the registry store takes it.
struct TParsedKeyPath {
  bool FromRoot = false;    // began with one "\"; otherwise relative to the open key
  std::vector<Text> Names;  // none is empty; without names the path means the root or the open key itself
};

// False for a path that begins with two "\": such a path opens no key.
bool OpensKey(TextView path);

// Runs of "\" inside the path count as one and a trailing one is ignored; nullopt for a path that opens no
// key.
std::optional<TParsedKeyPath> ParseKeyPath(TextView path);

// The place of a key: a root and a path below it, parsed once where the text comes in and not checked again.
class TKeyPath {
 public:
  // A path that lacks its leading "\" is taken from the root too. A handle that is none of the six roots
  // counts as HKEY_CURRENT_USER, as RootKeyName has it. nullopt for a path that opens no key.
  static std::optional<TKeyPath> Parse(TRootKey rootKey, TextView path);

  TRootKey RootKey() const {
    return m_rootKey;
  }

  // One "\" before each name; "\" and no more for the root itself.
  const Text& Path() const {
    return m_path;
  }

  bool IsRoot() const {
    return m_path.size() == 1;
  }

  // The key of this name directly below. The name holds no "\".
  TKeyPath SubKey(TextView name) const;

  // The root's name and the path in upper case: equal for two places exactly when they are the same, because
  // the registry compares names without regard to letter case.
  Text Comparable() const;

 private:
  TKeyPath(TRootKey rootKey, Text path) : m_rootKey(rootKey), m_path(std::move(path)) {
  }

  TRootKey m_rootKey;
  Text m_path;
};

}  // namespace corvalt
