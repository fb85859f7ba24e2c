// The restore dialog without its window.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "formats/backupblock.h"
#include "repair/backupname.h"
#include "repair/backupstore.h"
#include "repair/restoredeleted.h"
#include "system/system.h"
#include "ui/backupview.h"

namespace corvalt {

struct TRestoreRow {
  Text Caption;
  Text SizeText;
  TBackupName BackupName;  // hidden
};

// The rows of the dialog and what its buttons do. Outcomes are told in message boxes.
class TRestoreModel {
 public:
  // Both must outlive the model. showBusy is called whenever the model goes to work that the user has to wait
  // for: after each question that lets a restore go on.
  TRestoreModel(
      TSystem& system, const TGlobalVars& vars, std::function<void()> showBusy = [] {});

  // Lists the backups; no row, and a message, when the index can't be read.
  void Fill();

  const std::vector<TRestoreRow>& Rows() const {
    return m_rows;
  }

  // Each expects the index of a row. Restore asks first, Remove does not. Remove returns whether the row is
  // gone; if not, the rows may be others than before. View returns nullopt when the file can't be shown, and
  // has told the user.
  void Restore(std::size_t row);
  bool Remove(std::size_t row);
  std::optional<TBackupView> View(std::size_t row);

 private:
  // Throws as the store does; then the rows stay.
  void List();
  // Only Yes goes on.
  bool WantsAnyway(TRestoreDoubt doubt, const TBackupOrigin& origin);
  void TellNotRemoved(const TRestoreRow& row, TextView reason);
  void ShowFailure(TextView text);
  Text Plain(TextId id, TextView arg1 = {}, TextView arg2 = {}) const;

  TSystem m_system;
  const TGlobalVars& m_vars;
  std::function<void()> m_showBusy;
  BackupStore m_store;
  std::vector<TRestoreRow> m_rows;
};

}  // namespace corvalt
