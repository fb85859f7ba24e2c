// Message boxes, other programs and their windows.
#pragma once

#include <cstdint>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/shell.h"

namespace corvalt {

class TWindowsShell : public Shell {
 public:
  TWindowsShell() = default;
  ~TWindowsShell() override;
  TWindowsShell(const TWindowsShell&) = delete;
  TWindowsShell& operator=(const TWindowsShell&) = delete;

  // The window that message boxes and other programs' first windows belong to; 0 for none.
  void SetOwner(TWindowHandle owner) {
    m_owner = owner;
  }

  TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) override;
  void Execute(TextView verb, TextView target) override;
  bool ExecuteAndWaitForIdle(TextView verb, TextView program) override;
  bool ShowProperties(TextView path, std::uint32_t mask) override;
  void ShowHelpTopic(TextView helpFile, TextView topic) override;
  TWindowHandle FindTopLevelWindow(TextView className) override;
  TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) override;
  void ShowWindow(TWindowHandle window) override;
  void BringToForeground(TWindowHandle window) override;
  void SetFocus(TWindowHandle window) override;
  void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                   std::intptr_t lParam) override;
  std::uint32_t FirstDisplayModeBitsPerPixel() override;
  bool OpensWithFullAccess(std::uint32_t rootKey, TextView subKey) override;

 private:
  using THtmlHelp = HWND(WINAPI*)(HWND, LPCWSTR, UINT, DWORD_PTR);

  THtmlHelp HtmlHelpRoutine();

  TWindowHandle m_owner = 0;
  TOwnedModule m_htmlHelp;  // held while help windows may be open
};

}  // namespace corvalt
