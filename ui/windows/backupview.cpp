#include "ui/windows/backupview.h"

#include <algorithm>

#include "core/languagetexts.h"
#include "ui/windows/commands.h"

namespace corvalt {

namespace {

constexpr SIZE kInside = {560, 400};
constexpr int kButtonWidth = 75;
constexpr int kButtonHeight = 25;
constexpr int kButtonRow = 41;

}  // namespace

Tfrmbackupview::Tfrmbackupview(TBackupView view, const TGlobalVars& vars, HWND owner)
    : m_text(std::move(view.Content)) {
  CreateModal(u"Tfrmbackupview", view.Caption, owner, kInside, WS_THICKFRAME | WS_MAXIMIZEBOX);
  m_text.Create(Handle(), kDialogTextId);
  const Text close = LanguageText(vars.Texts, TextId::ButtonClose);
  m_buttonWidth = ButtonWidth({close}, kButtonWidth);
  m_closeButton = AddButton(close, IDCANCEL, 0, 0, kButtonWidth, kButtonHeight, true);
  OnSize();
}

LRESULT Tfrmbackupview::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE && m_closeButton != nullptr)
    OnSize();
  return TModalWindow::OnMessage(message, wParam, lParam);
}

void Tfrmbackupview::OnSize() {
  const int width = static_cast<int>(ClientSize().cx);
  const int height = static_cast<int>(ClientSize().cy);
  const int row = Scale()(kButtonRow);
  const int buttonHeight = Scale()(kButtonHeight);
  MoveWindow(m_text.Handle(), 0, 0, width, std::max(height - row, 0), TRUE);
  MoveWindow(m_closeButton, CenteredLeft(width, m_buttonWidth), height - (row + buttonHeight) / 2,
             m_buttonWidth, buttonHeight, TRUE);
}

}  // namespace corvalt
