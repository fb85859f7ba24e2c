// The suite's backup folder: the undo files of all repairs and the index that lists them, which the suite's
// other modules write too.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "core/globals.h"
#include "formats/inifile.h"
#include "formats/ioregistry.h"
#include "repair/deletionright.h"
#include "system/system.h"

namespace corvalt {

// The module id that this program's backups carry in the index: the number of its own title.
inline constexpr TextView kCleanerModuleId = u"11001";

struct TBackup {
  Text Name;
  TDateTime Created = 0;
  std::int64_t Size = 0;  // bytes; 0 when its file is missing
};

// Failures throw TSystemException, and TProgramException for a backup that does not read back. A name that
// would leave the folder, and one of a device, a link or a folder, has no file: nothing is read, written,
// moved or deleted under it.
class BackupStore {
 public:
  // Both must outlive the store.
  BackupStore(TSystem& system, const TGlobalVars& vars);

  // Begins the one backup that this object collects: makes the folder and answers the backup's name, which is
  // the current time. Two backups of one tick have one name, and the second replaces the first.
  Text BeginBackup();

  // What is not Done is not in the backup.
  TExportResult AddKeyToBackup(const TKeyPath& key);
  TExportResult AddValueToBackup(const TKeyPath& key, TextView valueName);

  // Whether the key itself was added to the backup since it began.
  bool HoldsKey(const TKeyPath& key) const;

  // Writes the backup's file, reads it back, compares it with what was exported, and then lists it in the
  // index. The right to delete what it holds.
  TDeletionRight CommitBackup(TextView name);

  // The module's backups in the order of the index, those whose name is no number left out.
  std::vector<TBackup> ListBackups(TextView moduleId);

  // Deletes the file, then the index entry; either may be missing.
  void RemoveBackup(TextView name);

  // Where the backup's file lies; empty for a name that can't be one in the folder.
  Text BackupFilePath(TextView name) const;

  TSystemError ReadBackup(TextView name, std::vector<std::uint8_t>& bytes);

  // Takes over what this module's older releases left in a folder of their own.
  void MigrateLegacyBackups();

  // Removes what is too old, then what is too much. Between two backups it asks whether to stop.
  void PruneBackups(const std::function<bool()>& stop);

 private:
  // What the exporter has taken since it held this number of keys.
  void CollectContent(std::size_t keysBefore);
  // Another folder is another store with a lock of its own.
  Text LockName() const;
  std::unique_ptr<THeldLock> LockStore();
  TIniFile ReadIndex(const Text& folder);
  // Reads, changes and replaces the index under the lock. change may also change files of the store.
  void ChangeIndex(const std::function<void(TIniFile&)>& change);
  void ChangeLockedIndex(const std::function<void(TIniFile&)>& change);
  void WriteVerifiedFile(TextView name);
  void ListInIndex(TextView name);
  // folder ends with "\".
  bool IsLinkedFolder(const Text& folder);
  bool HasFile(const Text& folder, TextView name);
  TSystemError DeleteStoreFile(TextView name);
  void MoveLegacyFile(const Text& legacyFolder, TextView name);
  bool IsTooOld(TextView name, std::int32_t limitInDays);
  void PruneByAge(const std::vector<Text>& names, const std::function<bool()>& stop);
  void PruneByCount(std::vector<Text> names, const std::function<bool()>& stop);

  TSystem m_system;
  const TGlobalVars& m_vars;
  TIORegistry m_exporter;
  TDeletionRight m_collected;
};

}  // namespace corvalt
