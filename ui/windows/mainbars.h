// The main window's menus, toolbar and status bar, made from the table of its actions.
#pragma once

#include "base/text.h"
#include "core/languagetexts.h"
#include "ui/summary.h"
#include "ui/windows/gdi.h"
#include "ui/windows/maincommands.h"

namespace corvalt {

HMENU CreateMainMenu(const TLanguageTexts& texts);
HMENU CreateRowMenu(const TLanguageTexts& texts);

class TMainToolbar {
 public:
  void Create(HWND parent, HFONT font, HIMAGELIST images, const TLanguageTexts& texts);
  void Enable(int command, bool isEnabled);

  // Pixels of all buttons in one row.
  int WantedWidth() const {
    return m_wantedWidth;
  }
  // Breaks the row where the window is narrower.
  void Wrap();
  // After the parent's size has changed.
  void Resize();
  int Height() const;

 private:
  void AddButton(const TMainCommands::TAction& action, const Text& caption);

  HWND m_handle = nullptr;
  int m_wantedWidth = 0;
};

class TMainStatusBar {
 public:
  void Create(HWND parent, HFONT font);
  // meter measures in the bar's font.
  void Show(const TSummary& summary, const TTextMeter& meter);
  void Resize();
  int Height() const;

 private:
  void SetTotalWidth(int width);

  TScale m_scale;
  HWND m_handle = nullptr;
  // The window's layout has a small hidden progress bar in its status bar. No progress is shown in it; it is
  // required all the same, so keep it.
  HWND m_statusProgress = nullptr;
};

}  // namespace corvalt
