// TfrmRegMain: the main window's frame. Its menus, bars, trees and row controls have files of their own.
#pragma once

#include <exception>
#include <memory>
#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "system/system.h"
#include "system/uithread.h"
#include "ui/progresstexts.h"
#include "ui/regmain.h"
#include "ui/summary.h"
#include "ui/windows/focuskeeper.h"
#include "ui/windows/gdi.h"
#include "ui/windows/images.h"
#include "ui/windows/mainbars.h"
#include "ui/windows/maincommands.h"
#include "ui/windows/maintrees.h"
#include "ui/windows/navigationpane.h"
#include "ui/windows/rowwidgets.h"
#include "ui/windows/taskbarbutton.h"
#include "ui/windows/treecontrol.h"
#include "ui/windows/window.h"

namespace corvalt {

class TfrmRegMain : public TWindow, private TRegMainView {
 public:
  // Everything must outlive the window.
  TfrmRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread, Text version);
  ~TfrmRegMain() override;

  void Show(int showCommand);

  // The program's message loop; returns its exit code when the window has gone.
  int Run();

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void OnFailure(const std::exception_ptr& failure) override;

 private:
  // TRegMainView
  std::unique_ptr<TProgressView> CreateProgress(TProgressMode mode) override;
  void ShowSummary(const TSummary& summary) override;
  void ResultsChanged() override;
  void ActionsChanged() override;

  void OnCreate();
  void OnSize();
  void SetSmallestSize(MINMAXINFO& info) const;
  void PaintSummaryStrip();
  int MeasureForColumn(TextView text) const;
  void OnClose();
  void EndThreads();
  void OnCommand(int command, int notice);
  bool OnSetCursor(HWND over);
  // A language with long texts gets a wider pane and a wider window.
  void WidenForTexts();
  // The right side: the summary strip and the results tree under it.
  RECT ResultsPlace() const;
  bool IsOverSplitter() const;
  void MoveSplitter(int x);
  bool RunFocused();

  // A context menu at this place of the screen; (-1, -1) for the keyboard's. The window shows it for its
  // inside.
  bool IsInside(POINT place) const;
  void ShowContextMenu(POINT place);

  void TakeChoice();
  void FitSummary();
  std::vector<TTaskLink> TaskLinks() const;
  Text Plain(TextId id) const;

  const TGlobalVars& m_vars;
  TRegMain m_main;
  TMainCommands m_commands;
  TScale m_scale;
  TTextMeter m_meter{m_scale, false};
  TImageList m_sectionImages;
  TImageList m_actionImages;
  TImageList m_linkImages;
  TSectionsOwner m_sectionsOwner;
  TResultsOwner m_resultsOwner;
  TTreeControl m_sectionsTree;
  TTreeControl m_resultsTree;
  TRowWidgets m_rowWidgets;
  TNavigationPane m_navigation;
  TMainToolbar m_toolbar;
  TMainStatusBar m_statusBar;
  TWindowsTaskbarButton m_taskbar;
  HWND m_summary = nullptr;
  HACCEL m_accelerators = nullptr;
  TFocusKeeper m_focus;
  bool m_isTakingChoice = false;
  int m_navigationWidth;
  bool m_dragging = false;
};

}  // namespace corvalt
