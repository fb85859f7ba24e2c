// The suite's backup folder: the undo files of all repairs and the index that lists them, which the suite's
// other modules write too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "core/globals.h"
#include "formats/ioregistry.h"
#include "repair/backupfolder.h"
#include "repair/backupname.h"
#include "repair/deletionright.h"
#include "system/interprocess.h"
#include "system/rawregistry.h"
#include "system/system.h"
#include "system/systemerror.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TBackup {
  TBackupName Name;
  TDateTime Created = 0;
  std::int64_t Size = 0;  // bytes; 0 when its file is missing
};

// What became of the backups that were to be removed.
struct TRemovedBackups {
  std::size_t Removed = 0;
  // Those that stay, each with the first failure.
  std::vector<std::pair<TBackupName, TSystemError>> Kept;
};

// Failures throw TSystemException, and TProgramException where the program has words of its own: a backup
// that does not read back, a folder that is a link, another copy of the program that works on the backups for
// more than ten seconds. What is not a file directly in the folder (a link, a folder, a device) is no
// backup's file.
class BackupStore {
 public:
  // system and vars must outlive the store. stop, which may be empty, is asked while the store waits for
  // another copy of the program; a wait that it ends throws TBackupWorkStopped.
  BackupStore(TSystem& system, const TGlobalVars& vars, std::function<bool()> stop = {});

  // Begins the one backup that this object collects: makes the folder, lists the backup in the index and
  // returns its name, which is the current time. Two backups of one tick have one name, and the second
  // replaces the first. From here on the backup is listed, so that also one that was ended by force is found
  // and removed when it is old.
  TBackupName BeginBackup();

  // What is not Done is not in the backup. Of a key below the merged HKEY_CLASSES_ROOT only the hive that
  // holds it is saved. Unreadable also for a key that no restore could create, because its parent takes no
  // subkeys.
  TExportResult AddKeyToBackup(const TKeyPath& key);
  TExportResult AddValueToBackup(const TKeyPath& key, TextView valueName);

  // Whether the key itself was added to the backup since it began.
  [[nodiscard]] bool HoldsKey(const TKeyPath& key) const;

  // Writes the backup's file, reads it back, compares it with what was exported, and looks once more whether
  // the index lists it. Returns the right to delete what it holds. A failure abandons the backup. From here
  // on nobody can delete or replace the file, until ReleaseBackup or the end of the store.
  [[nodiscard]] TDeletionRight CommitBackup(const TBackupName& name);

  // After the deletions: lists the backup again where another copy of the program has taken it out of the
  // index meanwhile, and lets its file go. Does nothing without a commit.
  void ReleaseBackup();

  // Takes back out what the backup that was begun has made: its file and its place in the index, unless they
  // were there before. Does nothing after a commit. What can't be taken back stays; does not throw.
  void AbandonBackup() noexcept;

  // The module's backups in the order of the index, without those whose name is no number. Does not wait for
  // the lock.
  [[nodiscard]] std::vector<TBackup> ListBackups(TextView moduleId);

  // Deletes the file, then its list of changes, then the place in the index; any of them may be missing. Ends
  // at the first failure.
  void RemoveBackup(const TBackupName& name);
  [[nodiscard]] bool HasFile(const TBackupName& name);

  // Removes every backup of a module as RemoveBackup does, but goes on where a file can't be deleted: that
  // backup stays listed.
  TRemovedBackups RemoveAllBackups(TextView moduleId);

  // Where the backup's file lies.
  [[nodiscard]] Text BackupFilePath(const TBackupName& name) const;

  // kErrorFileNotFound when the backup has no file.
  TSystemError ReadBackup(const TBackupName& name, std::vector<std::uint8_t>& bytes);

  // Takes over what this module's older releases left in a folder of their own.
  void MigrateLegacyBackups();

  // Removes what is too old, then what is too much. Between two backups it asks whether to stop.
  void PruneBackups(const std::function<bool()>& stop);

  // Deletes the temporary files that copies of the program left which were ended while they wrote.
  void RemoveLeftFiles();

 private:
  // What the exporter has taken at this place since it held this number of keys.
  void CollectContent(std::size_t keysBefore, const TKeyPlace& place);

  // What the running backup found when it began.
  struct TRun {
    TBackupName Name;
    bool HadIndex = false;
    bool WasListed = false;
    std::optional<Text> TypeBefore = {};
    bool HadFile = false;
    std::vector<std::uint8_t> FileBefore = {};
    bool FileWasRead = false;
    bool FileReplaced = false;
  };

  // A backup that is complete, with its file.
  struct THeldBackup {
    TBackupName Name;
    std::unique_ptr<THeldFile> File;
  };

  [[nodiscard]] std::unique_ptr<THeldLock> LockStore() const;
  TBackupFolder OpenStore();
  std::optional<TBackupFolder> OpenStoreIfThere();
  TRun NewRun(TBackupFolder& folder, const TBackupName& name) const;
  void WriteVerifiedFile(TBackupFolder& folder, const TBackupName& name);
  void ExpectListed(TBackupFolder& folder, const TBackupName& name) const;
  void TakeBack(const TRun& run);
  static void TakeBackFile(TBackupFolder& folder, const TRun& run);

  TSystem m_system;
  const TGlobalVars& m_vars;
  std::function<bool()> m_stop;
  TIORegistry m_exporter;
  TDeletionRight m_collected;
  std::optional<TRun> m_run;
  std::optional<THeldBackup> m_held;
};

}  // namespace corvalt
