// What a repair may delete. Nothing is deleted without it, and it comes from two places only: a backup that
// was written, read back and listed, for exactly what the backup holds; and the suite's setting that switches
// the backups off.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>

#include "base/digest.h"
#include "base/keypaths.h"
#include "system/system.h"

namespace corvalt {

// Whether the suite's setting wants backups of this module's repairs: true unless false is stored.
bool BackupsAreOn(TSystem& system);

class TDeletionRight {
 public:
  // The right to delete without a backup; nullopt while the setting wants backups.
  static std::optional<TDeletionRight> WithoutBackup(TSystem& system);

  bool IsWithoutBackup() const {
    return m_everything;
  }

  // Whether the key or the value was saved in order to be deleted.
  bool CoversKey(const TKeyPath& key) const;
  bool CoversValue(const TKeyPath& key, TextView valueName) const;

  // Whether the backup would bring back this key and these of its values as they are now. Always true without
  // a backup. Values that the backup holds and the key has lost don't matter.
  bool WouldBringBack(const TKeyPath& key, std::span<const TRawValue> values) const;

  // The repair itself has written this value, whose earlier content the backup holds: from now on the value
  // is compared with what was written.
  void NoteWritten(const TKeyPath& key, const TRawValue& value);

 private:
  friend class BackupStore;
  // Of the values of one key that the backup holds, by the upper case of their names.
  using TDigests = std::map<Text, TDigest>;

  TDeletionRight() = default;

  void CoverKey(const TKeyPath& key);
  void CoverValue(const TKeyPath& key, TextView valueName);
  // What the backup holds of a key. What was exported last counts, as it does when a restore writes it.
  void AddContent(const TKeyPath& key, std::span<const TRawValue> values);

  bool m_everything = false;
  std::set<Text> m_keys;
  std::set<Text> m_values;
  std::map<Text, TDigests> m_content;  // by the key's comparable text
};

}  // namespace corvalt
