// A repair of a results tree over a registry and a disk in memory, built by hand or found by a scan.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "core/workerthread.h"
#include "platform/memory/memoryhives.h"
#include "repair/backupstore.h"
#include "repair/restoredeleted.h"
#include "repair/threadclean.h"
#include "scan/scanproblem.h"
#include "tests/support/scanrig.h"

namespace corvalt {

ScanProblem KeyProblem(TRootKey rootKey, TextView keyPath, std::int32_t imageIndex = kNoImage);
ScanProblem ValueProblem(TRootKey rootKey, TextView keyPath, TextView valueName,
                         std::int32_t imageIndex = kNoImage);
ScanProblem FileProblem(TextView path);

class TRepairRig : public TScanRig {
 public:
  explicit TRepairRig(TNameOrder order = TNameOrder::Windows);

  // A checked section header, and a checked problem below one.
  TResultsNode* AddSection(TextView caption, std::int32_t imageIndex = 0);
  TResultsNode* AddProblem(TResultsNode* section, const ScanProblem& problem);
  void Uncheck(TResultsNode* node);

  // Runs a repair to its end. onUpdate runs with each update of the dialog, on the user-interface thread.
  using TOnUpdate = std::function<void(const std::string& update, TWorkerThread& thread)>;
  void Repair(const TOnUpdate& onUpdate = {});

  // The problems that a repair has not marked as removed, in tree order: their key paths and value names.
  std::vector<std::string> Unmarked();

  std::vector<TBackup> Backups();
  // The text of the only backup; empty when there is not exactly one.
  std::string BackupText();
  TRestoreEnd RestoreTheBackup();

  // Of the last repair.
  TCleaningOutcome Outcome;
  std::vector<std::string> Updates;
  std::string FailureText;  // empty after a normal end
};

}  // namespace corvalt
