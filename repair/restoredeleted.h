// Bringing back what a repair deleted: the restore dialog without its window, and the parts of it that the
// console program shares.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/globals.h"
#include "core/system.h"
#include "repair/backupstore.h"
#include "repair/backupview.h"
#include "suitecontrols/ioregistry.h"

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

struct TRestoreRow {
  Text Caption;
  Text SizeText;
  Text BackupName;  // hidden
};

// The rows of the dialog and what its buttons do. Outcomes are told through the shell's message boxes.
class TRestoreModel {
 public:
  // Both must outlive the model.
  TRestoreModel(TSystem& system, const TGlobalVars& vars);

  // Lists the backups; none, and a message, when the index can't be read.
  void Fill();

  const std::vector<TRestoreRow>& Rows() const {
    return m_rows;
  }

  // Each expects the index of a row. Restore asks first, Remove does not. Remove answers whether the row is
  // gone; View nothing when the file can't be shown.
  void Restore(std::size_t row);
  bool Remove(std::size_t row);
  std::optional<TBackupView> View(std::size_t row);

 private:
  void ShowFailure(TextView text);
  Text Say(TextId id, TextView arg1 = {}, TextView arg2 = {}) const;

  TSystem m_system;
  const TGlobalVars& m_vars;
  BackupStore m_store;
  std::vector<TRestoreRow> m_rows;
};
