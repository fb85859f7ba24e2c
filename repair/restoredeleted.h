// Bringing back what a repair deleted: the list of backups, a restore and its outcome in words.
#pragma once

#include <cstddef>
#include <vector>

#include "core/globals.h"
#include "formats/ioregistry.h"
#include "repair/backupstore.h"
#include "system/system.h"

namespace corvalt {

// This module's backups, newest first. Throws as the store does.
std::vector<TBackup> BackupsNewestFirst(TSystem& system, const TGlobalVars& vars);

// Date and time of a backup in the user's formats.
Text BackupTimeText(const TBackup& backup, TLocale& locale);

enum class TRestoreEnd {
  Restored,    // every line was read and every entry written
  Incomplete,  // something was skipped or refused, see Import
  NoFile,      // these three changed nothing
  NotABackup,
  Unreadable,  // see Error
};

struct TRestoreOutcome {
  TRestoreEnd End = TRestoreEnd::NoFile;
  TImportResult Import;
  TSystemError Error;
};

// Replays the backup's file into the registry, over what is there. The backup stays in the store.
TRestoreOutcome RestoreBackup(TSystem& system, const TGlobalVars& vars, TextView backupName);

// What the user is told about it, as a message box shows it; rowCaption names the backup.
Text DescribeRestore(const TRestoreOutcome& outcome, TextView rowCaption, const TGlobalVars& vars,
                     TLocale& locale);

}  // namespace corvalt
