// What a repair may delete. Nothing is deleted without it, and it comes from two places alone: a backup that
// was written, read back and listed, for exactly what the backup holds; and the suite's setting that switches
// the backups off.
#pragma once

#include <optional>
#include <set>

#include "base/keypaths.h"
#include "system/system.h"

namespace corvalt {

// Whether the suite's setting wants backups of this module's repairs. Only a stored false says no.
bool BackupsAreOn(TSystem& system);

class TDeletionRight {
 public:
  // The right to delete without a backup; nothing while the setting wants backups.
  static std::optional<TDeletionRight> WithoutBackup(TSystem& system);

  // Key paths may lack their leading "\"; letter case and runs of "\" do not count.
  bool CoversKey(TRootKey rootKey, TextView keyPath) const;
  bool CoversValue(TRootKey rootKey, TextView keyPath, TextView valueName) const;

 private:
  friend class BackupStore;
  TDeletionRight() = default;

  void AddKey(TRootKey rootKey, TextView keyPath);
  void AddValue(TRootKey rootKey, TextView keyPath, TextView valueName);

  bool m_everything = false;
  std::set<Text> m_keys;
  std::set<Text> m_values;
};

}  // namespace corvalt
