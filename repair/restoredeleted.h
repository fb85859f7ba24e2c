// Bringing back what a repair deleted: the list of backups, a restore and its outcome in words.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "formats/backupblock.h"
#include "formats/regfileimport.h"
#include "repair/backupstore.h"
#include "system/system.h"
#include "system/systemerror.h"
#include "system/systemlocale.h"

namespace corvalt {

// This module's backups, newest first. Throws as the store does.
std::vector<TBackup> BackupsNewestFirst(TSystem& system, const TGlobalVars& vars);

// Date and time of a backup in the user's formats.
Text BackupTimeText(const TBackup& backup, TLocale& locale);

// Why a restore asks before it changes anything.
enum class TRestoreDoubt {
  Foreign,   // the backup was made on another computer or by another user
  NotWhole,  // its file was cut off or changed after the repair
};

// The decisions of a restore that belong to its caller.
struct TRestoreGuide {
  // Whether to go on in spite of the doubt; the origin is the one of the backup.
  std::function<bool(TRestoreDoubt doubt, const TBackupOrigin& origin)> GoOn = [](auto, const auto&) {
    return true;
  };

  // Asked before each entry; true ends the restore.
  std::function<bool()> Stop = [] { return false; };
};

enum class TRestoreEnd {
  Restored,     // the file is whole, every line was read and every entry written
  Incomplete,   // something was skipped or refused (see Import), or the file is not whole
  Stopped,      // see Import for what was written before
  NotRestored,  // something was to be written, and none of it was; so the registry is unchanged
  NoFile,
  NotABackup,
  Unreadable,    // see Error
  NotSupported,  // the system lacks the registry view or the code page, or the program is too old for the
                 // file
  Refused,       // the guide did not go on
};

struct [[nodiscard]] TRestoreOutcome {
  TRestoreEnd End = TRestoreEnd::NoFile;
  TImportResult Import;
  TSystemError Error;
  Text LogFailure;  // why the log beside the backup is not whole, in the user's words; empty when it is
};

// Replays the backup's file into the registry, over what is there. The backup stays in the store. Lines that
// delete something are skipped: no repair writes such lines, and any program of the user can write the file.
// What is written goes to the backup's log, behind the lines of the repair, which tell what was deleted.
TRestoreOutcome RestoreBackup(TSystem& system, const TGlobalVars& vars, TextView backupName,
                              const TRestoreGuide& guide = {});

// The doubt in words.
Text DescribeDoubt(TRestoreDoubt doubt, const TBackupOrigin& origin, const TGlobalVars& vars);

// What to tell the user, as a message box shows it; rowCaption names the backup. Empty for a restore that the
// user refused.
Text DescribeRestore(const TRestoreOutcome& outcome, TextView rowCaption, const TGlobalVars& vars,
                     TLocale& locale);

}  // namespace corvalt
