// The program with the window.

#include "app/startsequence.h"
#include "app/version.h"
#include "core/rightprogram.h"
#include "platform/windows/windowssystem.h"
#include "platform/windows/windowsuithread.h"
#include "ui/windows/controlsapi.h"
#include "ui/windows/regmain.h"

namespace corvalt {

namespace {

constexpr TextView kName = u"Corvalt";

void ShowFailure(TSystem& system, const std::exception_ptr& failure) {
  system.MessageBoxes.ShowMessage(DescribeException(failure, system.Locale), kName, TMessageKind::Failure);
}

// The system's dialogs, its help viewer and the taskbar expect COM on the thread of the windows.
class TComApartment {
 public:
  TComApartment() : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {
  }
  ~TComApartment() {
    if (SUCCEEDED(m_result))
      CoUninitialize();
  }
  TComApartment(const TComApartment&) = delete;
  TComApartment& operator=(const TComApartment&) = delete;

 private:
  HRESULT m_result;
};

int RunProgram(TWindowsSystem& windows, TSystem& system, int show) {
  TGlobalVars vars;
  TGlobalReg reg;
  RunStartSequence(system, vars, reg);
  if (const std::optional<Text> hint = WrongProgramHint(system.Probe, vars.Texts))
    system.MessageBoxes.ShowMessage(*hint, kName, TMessageKind::Information);
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  TWindowsUiThread uiThread([&system](const std::exception_ptr& failure) { ShowFailure(system, failure); });
  TfrmRegMain window(system, vars, reg, uiThread, FromAscii(CORVALT_VERSION_TEXT));
  windows.SetOwner(window.Handle());
  window.Show(show);
  const int exitCode = window.Run();
  windows.SetOwner(nullptr);
  return exitCode;
}

int RunGuarded(int show) {
  const TComApartment com;
  TWindowsSystem windows;
  TSystem system = windows.Bundle();
  try {
    return RunProgram(windows, system, show);
  } catch (...) {
    ShowFailure(system, std::current_exception());
    return 1;
  }
}

}  // namespace

}  // namespace corvalt

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int nShowCmd) {
  return corvalt::RunGuarded(nShowCmd);
}
