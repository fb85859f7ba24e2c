#include "ui/windows/taskbarbutton.h"

namespace corvalt {

namespace {

constexpr ULONGLONG kWhole = 100;  // percent

// An elevated program gets no messages of programs with fewer rights, as the taskbar is one, unless it lets
// them through (ChangeWindowMessageFilterEx, learn.microsoft.com; since Windows 7).
void LetThrough(HWND window, UINT message) {
  using TRoutine = BOOL(WINAPI*)(HWND, UINT, DWORD, void*);
  constexpr DWORD kAllow = 1;
  const auto routine = FindRoutine<TRoutine>(GetModuleHandleW(L"user32.dll"), "ChangeWindowMessageFilterEx");
  if (routine != nullptr)
    routine(window, message, kAllow, nullptr);
}

bool IsInForeground() {
  DWORD process = 0;
  GetWindowThreadProcessId(GetForegroundWindow(), &process);
  return process == GetCurrentProcessId();
}

}  // namespace

void TWindowsTaskbarButton::Attach(HWND window) {
  m_window = window;
  m_createdMessage = RegisterWindowMessageW(L"TaskbarButtonCreated");
  LetThrough(window, m_createdMessage);
}

void TWindowsTaskbarButton::OnCreated() {
  ITaskbarList3* list = nullptr;
  const HRESULT result = CoCreateInstance(__uuidof(TaskbarList), nullptr, CLSCTX_INPROC_SERVER,
                                          __uuidof(ITaskbarList3), reinterpret_cast<void**>(&list));
  m_list = TTaskbarList(SUCCEEDED(result) ? list : nullptr);
  if (m_list && FAILED(m_list.Get()->HrInit()))
    m_list.Close();
}

void TWindowsTaskbarButton::ShowProgress(int percent) {
  if (!m_list)
    return;
  m_list.Get()->SetProgressState(m_window, TBPF_NORMAL);
  m_list.Get()->SetProgressValue(m_window, static_cast<ULONGLONG>(percent), kWhole);
}

void TWindowsTaskbarButton::ShowError() {
  if (m_list)
    m_list.Get()->SetProgressState(m_window, TBPF_ERROR);
}

void TWindowsTaskbarButton::HideProgress() {
  if (m_list)
    m_list.Get()->SetProgressState(m_window, TBPF_NOPROGRESS);
}

void TWindowsTaskbarButton::Flash() {
  if (IsInForeground())
    return;
  FLASHWINFO flash = {};
  flash.cbSize = sizeof flash;
  flash.hwnd = m_window;
  flash.dwFlags = FLASHW_ALL | FLASHW_TIMERNOFG;
  FlashWindowEx(&flash);
}

}  // namespace corvalt
