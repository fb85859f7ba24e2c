#include "ui/windows/mainbars.h"

#include <algorithm>
#include <array>

#include "ui/windows/window.h"

namespace corvalt {

namespace {

// Sizes at 96 dots per inch.
constexpr int kTotalWidth = 200;
constexpr int kPanelRoom = 12;

void AppendSeparator(HMENU menu) {
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
}

void AppendActions(HMENU menu, TMenuPlace place, const TLanguageTexts& texts) {
  for (const TMainCommands::TAction& action : TMainCommands::Actions()) {
    if (action.Menu != place)
      continue;
    if (action.StartsGroup)
      AppendSeparator(menu);
    const Text key = action.Key.empty() ? Text() : u"\t" + Text(action.Key);
    AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(action.Command),
                Wide(LanguageText(texts, action.Caption) + key));
  }
}

int HeightOf(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return static_cast<int>(place.bottom - place.top);
}

}  // namespace

HMENU CreateMainMenu(const TLanguageTexts& texts) {
  const HMENU bar = CreateMenu();
  for (const auto& [place, caption] :
       {std::pair{TMenuPlace::File, TextId::MenuFile}, std::pair{TMenuPlace::Action, TextId::MenuAction},
        std::pair{TMenuPlace::Help, TextId::MenuHelp}}) {
    const HMENU popup = CreatePopupMenu();
    AppendActions(popup, place, texts);
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), Wide(LanguageText(texts, caption)));
  }
  return bar;
}

HMENU CreateRowMenu(const TLanguageTexts& texts) {
  const HMENU menu = CreatePopupMenu();
  AppendActions(menu, TMenuPlace::Context, texts);
  return menu;
}

void TMainToolbar::Create(HWND parent, HFONT font, HIMAGELIST images, const TLanguageTexts& texts) {
  constexpr DWORD kStyle =
      WS_CHILD | WS_VISIBLE | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_TOP | WS_CLIPSIBLINGS;
  m_handle =
      CreateWindowExW(0, TOOLBARCLASSNAMEW, L"", kStyle, 0, 0, 0, 0, parent,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(kToolbarId)), ProgramInstance(), nullptr);
  ::SendMessageW(m_handle, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  ::SendMessageW(m_handle, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  ::SendMessageW(m_handle, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
  for (const TMainCommands::TAction& action : TMainCommands::Actions()) {
    if (action.Image != kNoPicture)
      AddButton(action, PlainLanguageText(texts, action.Caption));
  }
  ::SendMessageW(m_handle, TB_AUTOSIZE, 0, 0);
  SIZE size = {};
  ::SendMessageW(m_handle, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
  m_wantedWidth = static_cast<int>(size.cx);
}

void TMainToolbar::AddButton(const TMainCommands::TAction& action, const Text& caption) {
  if (action.StartsGroup) {
    TBBUTTON separator = {};
    separator.fsStyle = BTNS_SEP;
    ::SendMessageW(m_handle, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&separator));
  }
  TBBUTTON button = {};
  button.iBitmap = action.Image;
  button.idCommand = action.Command;
  button.fsState = TBSTATE_ENABLED;
  button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_NOPREFIX;
  button.iString = reinterpret_cast<INT_PTR>(Wide(caption));
  ::SendMessageW(m_handle, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
}

void TMainToolbar::Enable(int command, bool isEnabled) {
  ::SendMessageW(m_handle, TB_ENABLEBUTTON, static_cast<WPARAM>(command), MAKELPARAM(isEnabled, 0));
}

void TMainToolbar::Wrap() {
  const LRESULT style = ::SendMessageW(m_handle, TB_GETSTYLE, 0, 0);
  ::SendMessageW(m_handle, TB_SETSTYLE, 0, style | TBSTYLE_WRAPABLE);
}

void TMainToolbar::Resize() {
  ::SendMessageW(m_handle, TB_AUTOSIZE, 0, 0);
}

int TMainToolbar::Height() const {
  return HeightOf(m_handle);
}

void TMainStatusBar::Create(HWND parent, HFONT font) {
  m_handle = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                             parent, nullptr, ProgramInstance(), nullptr);
  ::SendMessageW(m_handle, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  SetTotalWidth(m_scale(kTotalWidth));
  m_statusProgress = CreateWindowExW(0, PROGRESS_CLASSW, L"", WS_CHILD, 0, 0, 0, 0, m_handle, nullptr,
                                     ProgramInstance(), nullptr);
}

void TMainStatusBar::SetTotalWidth(int width) {
  const std::array<int, 2> panels = {width, -1};
  ::SendMessageW(m_handle, SB_SETPARTS, panels.size(), reinterpret_cast<LPARAM>(panels.data()));
}

void TMainStatusBar::Show(const TSummary& summary, const TTextMeter& meter) {
  const Text total = PlainText(summary.TotalText);
  SetTotalWidth(std::max(m_scale(kTotalWidth), meter.Width(total) + m_scale(kPanelRoom)));
  ::SendMessageW(m_handle, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(Wide(total)));
  ::SendMessageW(m_handle, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(Wide(PlainText(summary.SelectedText))));
}

void TMainStatusBar::Resize() {
  ::SendMessageW(m_handle, WM_SIZE, 0, 0);
  // A bar that is widened keeps what was drawn, and with it the grip at its former end.
  InvalidateRect(m_handle, nullptr, TRUE);
}

int TMainStatusBar::Height() const {
  return HeightOf(m_handle);
}

}  // namespace corvalt
