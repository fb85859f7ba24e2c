#include "platform/windows/windowsprograms.h"

#include <shellapi.h>

namespace corvalt {

namespace {

// htmlhelp.h
constexpr UINT kDisplayTopic = 0;
constexpr UINT kCloseAll = 0x12;

// Runs ShellExecuteEx; the process that it hands out is closed, or waited for and closed.
bool Start(HWND owner, TextView verb, TextView file, ULONG mask, bool waitForIdle) {
  const Text verbText(verb);
  const Text fileText(file);
  SHELLEXECUTEINFOW information = {};
  information.cbSize = sizeof(information);
  information.fMask = mask;
  information.hwnd = owner;
  information.lpVerb = Wide(verbText);
  information.lpFile = Wide(fileText);
  information.nShow = SW_SHOWNORMAL;
  const bool started = ShellExecuteExW(&information) != FALSE;
  const TOwnedObject process(information.hProcess);
  if (started && waitForIdle && process)
    WaitForInputIdle(process.Get(), INFINITE);
  return started;
}

}  // namespace

TWindowsPrograms::~TWindowsPrograms() {
  if (!m_htmlHelp)
    return;
  // The help windows run on a thread of the module, which is unloaded after this.
  if (const THtmlHelp htmlHelp = HtmlHelpRoutine())
    htmlHelp(nullptr, nullptr, kCloseAll, 0);
}

void TWindowsPrograms::Execute(TextView verb, TextView target) {
  ShellExecuteW(m_owner, Wide(Text(verb)), Wide(Text(target)), nullptr, nullptr, SW_SHOWNORMAL);
}

bool TWindowsPrograms::ExecuteAndWaitForIdle(TextView verb, TextView program) {
  return Start(m_owner, verb, program, SEE_MASK_NOCLOSEPROCESS, true);
}

bool TWindowsPrograms::ShowProperties(TextView path, std::uint32_t mask) {
  return Start(m_owner, u"properties", path, mask, false);
}

TWindowsPrograms::THtmlHelp TWindowsPrograms::HtmlHelpRoutine() {
  return FindRoutine<THtmlHelp>(m_htmlHelp.Get(), "HtmlHelpW");
}

// Bound at run time: not every system has the help viewer.
void TWindowsPrograms::ShowHelpTopic(TextView helpFile, TextView topic) {
  if (!m_htmlHelp)
    m_htmlHelp = TOwnedModule(LoadLibraryW(L"hhctrl.ocx"));
  const Text topicText(topic);
  if (const THtmlHelp htmlHelp = HtmlHelpRoutine())
    htmlHelp(m_owner, Wide(Text(helpFile)), kDisplayTopic, reinterpret_cast<DWORD_PTR>(Wide(topicText)));
}

}  // namespace corvalt
