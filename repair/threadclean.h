// TCleaning: the worker thread that carries out a repair. It writes one backup of everything checked in the
// results tree, then deletes each checked problem and marks its node.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "core/workerthread.h"
#include "repair/backuplog.h"
#include "repair/backupname.h"
#include "repair/backupstore.h"
#include "repair/deletionright.h"
#include "repair/problemrepair.h"
#include "scan/scanproblem.h"
#include "scan/scantrees.h"
#include "system/system.h"
#include "system/uithread.h"

namespace corvalt {

// What a repair works on. Everything must outlive the thread; the tree's nodes and check states do not change
// while it runs.
struct TCleaningContext {
  TSystem& System;
  const TGlobalVars& Vars;
  TResultsTree& Results;
  TUiThread& UiThread;
  TWorkerThread::TEndHandler OnFinished;  // runs on the user-interface thread when the repair has ended
  bool MayGoWithoutBackup = true;         // false: a backup is made also where the setting wants none
};

// What became of the checked problems, in tree order. The nodes are valid as long as the tree keeps them.
struct TCleaningOutcome {
  bool BackupMade = false;  // the backup is complete, or the setting wants none: deletions may begin
  Text BackupName;          // empty without a backup
  std::vector<TResultsNode*> Deleted;   // gone now; perhaps they were before
  std::vector<TResultsNode*> Failed;    // not deleted by the system; marked as removed all the same
  std::vector<TResultsNode*> NotSaved;  // not in the backup, so not touched and not marked
  std::size_t NotReached = 0;           // the repair ended before them
  Text LogFailure;  // why the log beside the backup is not whole, in the user's words; empty when it is
};

// When the thread ends early its exception holds a message for the user, which tells whether something was
// deleted before (see DescribeException).
class TCleaning final : public TWorkerThread {
 public:
  // Starts at once. The dialog must live until the end handler has run or the thread was told to terminate.
  TCleaning(TCleaningContext context, TProgressDialog& ownerDialog);

  // For the end handler.
  const TCleaningOutcome& Outcome() const {
    return m_outcome;
  }

 protected:
  void Execute() override;

 private:
  void Repair();
  void DeleteLogged(TDeletionRight right);
  void FinishLog(TBackupLog& log);
  TDeletionRight PrepareDeletions();
  TDeletionRight MakeBackup();
  void BackUpChecked();
  void BackUp(const ScanProblem& problem, std::size_t done);
  void DeleteProblems(TProblemDeleter& deleter);
  void DeleteChecked(const TResultsNode* header, TProblemDeleter& deleter);
  void DeleteProblem(TResultsNode* node, TProblemDeleter& deleter);
  Text ItemTextOf(const ScanProblem& problem, const TDeletionResult& result) const;
  void UpdateStatus();
  void UpdateItem();
  bool IsChecked(const TResultsNode* node) const;
  Text Plain(TextId id) const;
  [[noreturn]] void EndWith(TextId id) const;

  TCleaningContext m_context;
  TResultsNode* CurrentNode = nullptr;  // empty before the first deletion
  Text StatusText;
  Text ItemText;
  std::int32_t Percent = 0;
  BackupStore m_store;
  std::optional<TBackupName> m_backup;  // nullopt until it is complete
  TProgressDialog& OwnerDialog;
  std::size_t m_total = 0;
  std::size_t m_checked = 0;
  std::size_t m_deletions = 0;
  TCleaningOutcome m_outcome;
};

}  // namespace corvalt
