// Tfrmbackupview: a backup's text, to be read.
#pragma once

#include "core/globals.h"
#include "ui/backupview.h"
#include "ui/windows/modalwindow.h"
#include "ui/windows/textview.h"

namespace corvalt {

class Tfrmbackupview : public TModalWindow {
 public:
  Tfrmbackupview(TBackupView view, const TGlobalVars& vars, HWND owner);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void OnSize();

  TTextView m_text;
  HWND m_closeButton = nullptr;
  int m_buttonWidth = 0;
};

}  // namespace corvalt
