// TfrmScan: the progress dialog of scan and repair.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/text.h"
#include "core/languagetexts.h"
#include "ui/progresstexts.h"
#include "ui/regmain.h"
#include "ui/windows/images.h"
#include "ui/windows/modalwindow.h"
#include "ui/windows/taskbarbutton.h"

namespace corvalt {

class TfrmScan : public TModalWindow, public TProgressView {
 public:
  // The texts and the button must outlive the dialog.
  TfrmScan(const TLanguageTexts& texts, HWND owner, TProgressMode mode, TTaskbarButton& taskbar);
  ~TfrmScan() override;

  TProgressEnd ShowModal() override;
  void ShowResult(TRunEnd end, TextView message, std::size_t problemCount) override;
  void RunEnded(TRunEnd end) override;
  void EnableRepair(bool enabled) override;
  void SetSectionLabel(TextView text) override;
  void SetItemLabel(TextView text) override;
  void SetOverallPosition(std::int32_t position) override;
  void SetSectionPosition(std::int32_t position) override;

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  void Layout();
  // Pixels between the margins that the dialog's own texts want.
  int ContentWidth() const;

  const TLanguageTexts& m_texts;
  TProgressMode m_mode;
  TTaskbarButton& m_taskbar;
  TIcon m_picture;
  HWND m_sectionLabel = nullptr;
  HWND m_itemLabel = nullptr;
  HWND m_overallBar = nullptr;
  HWND m_sectionBar = nullptr;
  HWND m_line = nullptr;
  HWND m_image = nullptr;
  HWND m_repairButton = nullptr;
  HWND m_closeButton = nullptr;
  TProgressEnd m_end = TProgressEnd::Closed;
};

}  // namespace corvalt
