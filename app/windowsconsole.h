// The console program's standard handles, which may be a console, a file or a pipe each.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/systemerror.h"
#include "ui/console/console.h"

namespace corvalt {

class TWindowsConsole : public TConsole {
 public:
  // The interrupt key reaches one console a process.
  TWindowsConsole();
  ~TWindowsConsole() override;
  TWindowsConsole(const TWindowsConsole&) = delete;
  TWindowsConsole& operator=(const TWindowsConsole&) = delete;

  TSystemError Write(std::string_view utf8) override;
  void Tell(TextView line) override;
  void ShowProgress(TextView line) override;
  void SetInterruptHandler(std::function<void()> handler) override;

 private:
  static BOOL WINAPI OnControl(DWORD event);

  HANDLE m_output;
  HANDLE m_error;
  bool m_errorIsTerminal;
  std::size_t m_progressLength = 0;  // cells of the line that is shown now
};

}  // namespace corvalt
