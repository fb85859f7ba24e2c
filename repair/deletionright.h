// What a repair may delete. No repair deletes without it, and it comes from two places only: a backup that
// was written, read back and listed, for exactly what the backup holds; and the suite's setting that switches
// the backups off.
#pragma once

#include <map>
#include <optional>
#include <span>

#include "base/digest.h"
#include "base/keypaths.h"
#include "base/text.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"
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

  // Remembers where the key, or the value, lies now. Needed without a backup, because otherwise the backup
  // does it. To be called for all problems before the first deletion. Does nothing where a backup was made.
  void FindKey(TRawRegistry& registry, const TKeyPath& key);
  void FindValue(TRawRegistry& registry, const TKeyPath& key, TextView valueName);

  // Where the key, or the key that holds the value, lay when it was saved in order to be deleted. nullptr
  // where it was not: then it may not be deleted.
  const TKeyPlace* PlaceOfKey(const TKeyPath& key) const;
  const TKeyPlace* PlaceOfValue(const TKeyPath& key, TextView valueName) const;

  // Whether the backup would bring back the key at this path below a place, its values and its subkeys' names
  // as they are now. Always true without a backup. What the backup holds and the key has lost doesn't matter.
  bool WouldBringBack(const TKeyPlace& place, TextView pathBelow, const TRawKey& key) const;
  bool WouldBringBack(const TKeyPlace& place, const TRawValue& value) const;

  // The repair itself has written this value, whose earlier content the backup holds: from now on the value
  // is compared with what was written.
  void NoteWritten(const TKeyPlace& place, const TRawValue& value);

 private:
  friend class BackupStore;
  // Of the values of one key that the backup holds, by the upper case of their names.
  using TDigests = std::map<Text, TDigest>;

  TDeletionRight() = default;

  void CoverKey(const TKeyPath& key, const TKeyPlace& place);
  void CoverValue(const TKeyPath& key, TextView valueName, const TKeyPlace& place);
  // What the backup holds of a key. What was exported last counts, as it does when a restore writes it.
  void AddContent(const TKeyPlace& place, TextView pathBelow, std::span<const TRawValue> values);

  bool m_everything = false;
  std::map<Text, TKeyPlace> m_keys;
  std::map<Text, TKeyPlace> m_values;
  std::map<Text, TDigests> m_content;  // by place and path below it in upper case
};

}  // namespace corvalt
