// TfrmRestore: the dialog that lists the backups and brings them back.
#pragma once

#include <cstddef>

#include "core/globals.h"
#include "system/system.h"
#include "ui/restoremodel.h"
#include "ui/windows/controlsapi.h"
#include "ui/windows/modalwindow.h"
#include "ui/windows/subclass.h"

namespace corvalt {

class TfrmRestore : public TModalWindow {
 public:
  // Everything must outlive the dialog.
  TfrmRestore(TSystem& system, const TGlobalVars& vars, HWND owner);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void FillList();
  void Layout();
  // The selected row, -1 when none is.
  int SelectedRow() const;
  void UpdateButtons();
  void OnListNotice(LPARAM lParam);
  void RestoreRow(std::size_t row);
  void RemoveSelected();
  void ViewSelected();

  const TGlobalVars& m_vars;
  TRestoreModel m_model;
  HWND m_instruction = nullptr;
  HWND m_list = nullptr;
  TSubclass m_listMessages;
};

}  // namespace corvalt
