#include "ui/windows/backupview.h"

#include <algorithm>

#include "core/languagetexts.h"

namespace {

constexpr SIZE kInside = {560, 400};
constexpr int kButtonWidth = 75;
constexpr int kButtonHeight = 25;
constexpr int kButtonRow = 41;

}  // namespace

Tfrmbackupview::Tfrmbackupview(const TBackupView& view, const TGlobalVars& vars, HWND owner) {
  CreateModal(u"Tfrmbackupview", view.Caption, owner, kInside, WS_THICKFRAME | WS_MAXIMIZEBOX);
  constexpr DWORD kTextStyle = WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY |
                               ES_AUTOHSCROLL | ES_AUTOVSCROLL | ES_NOHIDESEL;
  m_text = AddControl(u"EDIT", {}, kTextStyle, 0, 0, 0, 0, 0, WS_EX_CLIENTEDGE);
  m_closeButton = AddButton(LanguageText(vars.Texts, TextId::ButtonClose), IDCANCEL, 0, 0, kButtonWidth,
                            kButtonHeight, true);
  // No limit but the memory's: a text box takes 32 KB unless it is told so.
  ::SendMessageW(m_text, EM_SETLIMITTEXT, 0, 0);
  SetWindowTextW(m_text, Wide(view.Content));
  OnSize();
}

LRESULT Tfrmbackupview::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE && m_text != nullptr)
    OnSize();
  return TModalWindow::OnMessage(message, wParam, lParam);
}

void Tfrmbackupview::OnSize() {
  const int width = static_cast<int>(ClientSize().cx);
  const int height = static_cast<int>(ClientSize().cy);
  const int row = Scale()(kButtonRow);
  const int buttonHeight = Scale()(kButtonHeight);
  MoveWindow(m_text, 0, 0, width, std::max(height - row, 0), TRUE);
  MoveWindow(m_closeButton, CenteredLeft(width, Scale()(kButtonWidth)), height - (row + buttonHeight) / 2,
             Scale()(kButtonWidth), buttonHeight, TRUE);
}
