// Tfrmignorereg: the ignore list manager.
#pragma once

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languagetexts.h"
#include "system/system.h"
#include "ui/ignorelistmodel.h"
#include "ui/windows/controlsapi.h"
#include "ui/windows/modalwindow.h"

namespace corvalt {

class Tfrmignorereg : public TModalWindow {
 public:
  // Everything must outlive the dialog.
  Tfrmignorereg(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, HWND owner);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void FillList();
  void Layout(const TLanguageTexts& texts, TextView explanation);
  int SelectedRow() const;
  void UpdateButtons();
  void RemoveSelected();
  void OnItemChanged(const NMLISTVIEW& change);

  TSystem& m_system;
  TGlobalReg& m_reg;
  TIgnoreListModel m_model;
  HWND m_explanation = nullptr;
  HWND m_list = nullptr;
  bool m_filling = true;
};

}  // namespace corvalt
