// What a repair does with one problem: what of it goes into the backup, and what of it is deleted. The two
// stand side by side, because everything that the second can change must be in the first.
#pragma once

#include <memory>

#include "repair/backupstore.h"
#include "repair/deletionright.h"
#include "scan/scanproblem.h"
#include "system/system.h"

namespace corvalt {

// Adds the problem's key or value to the backup, and what else its deletion may change: the emptied keys
// above a Start Menu key, the order of an MRU list. What can't be read whole is left out.
void BackUpProblem(BackupStore& store, const ScanProblem& problem);

enum class TDeletion {
  Deleted,    // it is gone; perhaps it was before
  Failed,     // it may be deleted, and the system did not
  NotCovered  // it exists and the right does not cover it: nothing was touched
};

struct TDeletionResult {
  TDeletion Deletion = TDeletion::NotCovered;
  bool KeyOpened = false;  // of a value: whether its key opened
};

// A problem's place as the registry takes it.
struct TProblemPlace {
  explicit TProblemPlace(const ScanProblem& problem);

  TRootKey RootKey;
  Text KeyPath;    // begins with "\"
  Text ValueName;  // empty for the unnamed value
};

// Deletes what the right covers and nothing else.
class TProblemDeleter {
 public:
  // The system must outlive the deleter.
  TProblemDeleter(TSystem& system, TDeletionRight right);

  TDeletionResult Delete(const ScanProblem& problem);

 private:
  TDeletionResult DeleteKey(const ScanProblem& problem);
  TDeletionResult DeleteValue(const ScanProblem& problem);
  TDeletionResult DeleteFile(const ScanProblem& problem);
  void KeepMruListRight(const ScanProblem& problem, const TProblemPlace& place);
  void DeleteEmptyMenuKeys(const TProblemPlace& place);
  bool HasSubKeys(TextView keyPath);
  void RewriteMruList();
  bool KeyExists(const TProblemPlace& place);
  TRawResult AskForValue(const TProblemPlace& place);

  TSystem m_system;
  std::unique_ptr<RegistryStore> m_registry;
  TDeletionRight m_right;
};

}  // namespace corvalt
