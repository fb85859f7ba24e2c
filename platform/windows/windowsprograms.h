// Other programs, links, the help file, a file's properties.
#pragma once

#include <cstdint>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/programs.h"

namespace corvalt {

class TWindowsPrograms : public TPrograms {
 public:
  TWindowsPrograms() = default;
  ~TWindowsPrograms() override;
  TWindowsPrograms(const TWindowsPrograms&) = delete;
  TWindowsPrograms& operator=(const TWindowsPrograms&) = delete;

  // The window that the first windows of what is started belong to; nullptr for none.
  void SetOwner(HWND owner) {
    m_owner = owner;
  }

  void Execute(TextView verb, TextView target) override;
  bool ExecuteAndWaitForIdle(TextView verb, TextView program) override;
  bool ShowProperties(TextView path, std::uint32_t mask) override;
  void ShowHelpTopic(TextView helpFile, TextView topic) override;

 private:
  using THtmlHelp = HWND(WINAPI*)(HWND, LPCWSTR, UINT, DWORD_PTR);

  THtmlHelp HtmlHelpRoutine();

  HWND m_owner = nullptr;
  TOwnedModule m_htmlHelp;  // held while help windows may be open
};

}  // namespace corvalt
