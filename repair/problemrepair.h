// What a repair does with one problem: what of it goes into the backup, and what of it is deleted. The two
// stand side by side, because everything that the second can change must be in the first.
#pragma once

#include <memory>

#include "base/keypaths.h"
#include "base/text.h"
#include "repair/backupstore.h"
#include "repair/deletionright.h"
#include "scan/scanproblem.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"
#include "system/registryvalues.h"
#include "system/system.h"

namespace corvalt {

// Adds the problem's key or value to the backup, and what else its deletion may change: the emptied keys
// above a Start Menu key, the order of an MRU list. What can't be read whole is left out.
void BackUpProblem(BackupStore& store, const ScanProblem& problem);

// Finds where the problem's key or value lies, and what else its deletion may change, for a repair without a
// backup.
void FindPlaces(TRawRegistry& registry, TDeletionRight& right, const ScanProblem& problem);

enum class [[nodiscard]] TDeletion{
    Deleted,    // it is gone; perhaps it was before
    Failed,     // it may be deleted, and the system did not
    NotCovered  // it exists, and a restore would not bring it back as it is: nothing was touched
};

struct [[nodiscard]] TDeletionResult {
  TDeletion Deletion = TDeletion::NotCovered;
  bool KeyOpened = false;  // of a value: whether its key opened
};

// Deletes only what the right covers, at the place where it was saved. What is there is read once
// more before each deletion and must be what the backup holds, or a part of it.
class TProblemDeleter {
 public:
  // The system must outlive the deleter.
  TProblemDeleter(TSystem& system, TDeletionRight right);

  TDeletionResult Delete(const ScanProblem& problem);

 private:
  TDeletionResult DeleteKey(const ScanProblem& problem);
  TDeletionResult DeleteValue(const ScanProblem& problem);
  TDeletionResult DeleteFile(const ScanProblem& problem);
  TDeletion DeleteKeyAsSaved(const TKeyPath& key);
  TDeletion DeleteValueAsSaved(const TKeyPath& key, const Text& name);
  TDeletion DeletionOf(TRawResult result) const;
  TDeletion Untouched() const;
  void DeleteEmptyMenuKeys(const TKeyPath& key);
  void RewriteMruList(const TKeyPath& key);
  bool HasSubKeys(const TKeyPath& key);
  bool ReadValue(const TKeyPlace& place, TextView name, TRawValue& value);

  TSystem m_system;
  std::unique_ptr<RegistryStore> m_registry;
  TDeletionRight m_right;
};

}  // namespace corvalt
