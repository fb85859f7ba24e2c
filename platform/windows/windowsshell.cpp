#include "platform/windows/windowsshell.h"

#include <shellapi.h>

#include "base/lettercase.h"

namespace corvalt {

namespace {

// htmlhelp.h
constexpr UINT kDisplayTopic = 0;
constexpr UINT kCloseAll = 0x12;

constexpr int kClassNameUnits = 257;  // the longest class name and its NUL (WNDCLASSEX, learn.microsoft.com)

HWND WindowOf(TWindowHandle window) {
  return reinterpret_cast<HWND>(window);
}
TWindowHandle HandleOf(HWND window) {
  return reinterpret_cast<TWindowHandle>(window);
}

struct TWantedWindow {
  Text ClassName;
  HWND Found = nullptr;
};

BOOL CALLBACK TakeIfWanted(HWND window, LPARAM parameter) {
  auto& wanted = *reinterpret_cast<TWantedWindow*>(parameter);
  Text name(kClassNameUnits, u'\0');
  const int length = GetClassNameW(window, WideBuffer(name), kClassNameUnits);
  name.resize(static_cast<std::size_t>(length));
  if (!EqualIgnoringCase(name, wanted.ClassName))
    return TRUE;
  wanted.Found = window;
  return FALSE;
}

UINT StyleOf(TMessageKind kind) {
  switch (kind) {
    case TMessageKind::Question:
      return MB_YESNO | MB_ICONWARNING;
    case TMessageKind::Failure:
      return MB_OK | MB_ICONERROR;
    default:
      return MB_OK | MB_ICONINFORMATION;
  }
}

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

TWindowsShell::~TWindowsShell() {
  if (!m_htmlHelp)
    return;
  // Its windows live on a thread of the module that is about to go.
  if (const THtmlHelp htmlHelp = HtmlHelpRoutine())
    htmlHelp(nullptr, nullptr, kCloseAll, 0);
}

TAnswer TWindowsShell::ShowMessage(TextView text, TextView title, TMessageKind kind) {
  // The dialog that is open over the owner asks for itself.
  const HWND owner = m_owner == 0 ? nullptr : GetLastActivePopup(WindowOf(m_owner));
  const int answer = MessageBoxW(owner, Wide(Text(text)), Wide(Text(title)), StyleOf(kind));
  if (kind != TMessageKind::Question)
    return TAnswer::Ok;
  return answer == IDYES ? TAnswer::Yes : TAnswer::No;
}

void TWindowsShell::Execute(TextView verb, TextView target) {
  ShellExecuteW(WindowOf(m_owner), Wide(Text(verb)), Wide(Text(target)), nullptr, nullptr, SW_SHOWNORMAL);
}

bool TWindowsShell::ExecuteAndWaitForIdle(TextView verb, TextView program) {
  return Start(WindowOf(m_owner), verb, program, SEE_MASK_NOCLOSEPROCESS, true);
}

bool TWindowsShell::ShowProperties(TextView path, std::uint32_t mask) {
  return Start(WindowOf(m_owner), u"properties", path, mask, false);
}

TWindowsShell::THtmlHelp TWindowsShell::HtmlHelpRoutine() {
  return FindRoutine<THtmlHelp>(m_htmlHelp.Get(), "HtmlHelpW");
}

// Bound at run time: not every system has the help viewer.
void TWindowsShell::ShowHelpTopic(TextView helpFile, TextView topic) {
  if (!m_htmlHelp)
    m_htmlHelp = TOwnedModule(LoadLibraryW(L"hhctrl.ocx"));
  const Text topicText(topic);
  if (const THtmlHelp htmlHelp = HtmlHelpRoutine())
    htmlHelp(WindowOf(m_owner), Wide(Text(helpFile)), kDisplayTopic,
             reinterpret_cast<DWORD_PTR>(Wide(topicText)));
}

TWindowHandle TWindowsShell::FindTopLevelWindow(TextView className) {
  return HandleOf(FindWindowW(Wide(Text(className)), nullptr));
}

TWindowHandle TWindowsShell::FindChildWindow(TWindowHandle parent, TextView className, bool deep) {
  if (parent == 0)
    return 0;
  if (!deep)
    return HandleOf(FindWindowExW(WindowOf(parent), nullptr, Wide(Text(className)), nullptr));
  TWantedWindow wanted = {Text(className)};
  EnumChildWindows(WindowOf(parent), TakeIfWanted, reinterpret_cast<LPARAM>(&wanted));
  return HandleOf(wanted.Found);
}

void TWindowsShell::ShowWindow(TWindowHandle window) {
  ::ShowWindow(WindowOf(window), SW_SHOW);
}
void TWindowsShell::BringToForeground(TWindowHandle window) {
  SetForegroundWindow(WindowOf(window));
}
void TWindowsShell::SetFocus(TWindowHandle window) {
  ::SetFocus(WindowOf(window));
}

// The wide call: a character message then carries a 16-bit unit, as texts here have them. For the characters
// of ASCII both calls are one.
void TWindowsShell::SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                std::intptr_t lParam) {
  SendMessageW(WindowOf(window), message, wParam, lParam);
}

std::uint32_t TWindowsShell::FirstDisplayModeBitsPerPixel() {
  DEVMODEW mode = {};
  mode.dmSize = sizeof(mode);
  return EnumDisplaySettingsW(nullptr, 0, &mode) ? mode.dmBitsPerPel : 0;
}

// The wide call: the narrow one would look for another key where the code page lacks a character of the name.
bool TWindowsShell::OpensWithFullAccess(std::uint32_t rootKey, TextView subKey) {
  HKEY key = nullptr;
  if (HoldsNul(subKey))
    return false;
  const LSTATUS status = RegOpenKeyExW(RootHandle(rootKey), Wide(Text(subKey)), 0, KEY_ALL_ACCESS, &key);
  if (status != ERROR_SUCCESS)
    return false;
  RegCloseKey(key);
  return true;
}

}  // namespace corvalt
