// TfrmRegMain: the main window.
#pragma once

#include <memory>

#include "ui/regmain.h"
#include "ui/windows/images.h"
#include "ui/windows/navigationpane.h"
#include "ui/windows/startscan.h"
#include "ui/windows/treecontrol.h"
#include "ui/windows/window.h"

namespace corvalt {

class TfrmRegMain : public TWindow, private TRegMainView {
 public:
  // Everything must outlive the window.
  TfrmRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread, Text version);
  ~TfrmRegMain() override;

  void Show(int showCommand);

  // The program's message loop; answers its exit code when the window has gone.
  int Run();

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void OnFailure(const std::exception_ptr& failure) override;

 private:
  // The two trees' sides of their controls.
  class TSectionsOwner;
  class TResultsOwner;

  // TRegMainView
  std::unique_ptr<TProgressView> CreateProgress(TProgressMode mode) override;
  void ShowSummary(const TSummary& summary) override;
  void ResultsChanged() override;
  void ActionsChanged() override;

  void OnCreate();
  void OnSize();
  void OnClose();
  void EndThreads();
  void OnCommand(int command, int notice);
  void DrawChoice(const DRAWITEMSTRUCT& item);
  void OnActivate(bool isActive);
  bool OnSetCursor(HWND over);
  void PaintSummary();
  // A language with long texts gets a wider pane and a wider window.
  void WidenForTexts();
  RECT ResultsPlace() const;
  bool IsOverSplitter() const;
  void MoveSplitter(int x);

  void SetTotalPanelWidth(int width);
  void CreateMenu();
  void CreateToolbar();
  void CreateRowControls();
  // A context menu at this place of the screen; (-1, -1) for the keyboard's. The window shows it for its
  // inside.
  bool IsInside(POINT place) const;
  void ShowContextMenu(POINT place);
  bool IsEnabled(int command) const;

  // The chooser and the button that ride on the selected problem's third line.
  void FillRowControls();
  int RowLabelWidth() const;
  int ChooserHeight() const;
  Text ActionName(bool checks) const;
  bool TabThroughRow(const MSG& message);
  void PlaceRowControls();
  void SetTip(Text tip);
  void ChoiceMade();

  void ExportReport();
  bool MayWrite(TextView fileName);
  void ShowAbout();

  Text Say(TextId id, TextView argument = {}) const;    // for controls and menus, which undo a doubled "&"
  Text Plain(TextId id, TextView argument = {}) const;  // for what shows every "&"

  TSystem& m_system;
  const TGlobalVars& m_vars;
  TGlobalReg& m_reg;
  TRegMain m_main;
  TScale m_scale;
  TGdiObject m_font = MakeWindowFont(m_scale, false);
  TImageList m_sectionImages;
  TImageList m_actionImages;
  TImageList m_linkImages;
  std::unique_ptr<TSectionsOwner> m_sectionsOwner;
  std::unique_ptr<TResultsOwner> m_resultsOwner;
  TTreeControl m_sectionsTree;
  TTreeControl m_resultsTree;
  TNavigationPane m_navigation;
  HMENU m_menu = nullptr;
  HWND m_toolbar = nullptr;
  HWND m_statusBar = nullptr;
  HWND m_statusProgress = nullptr;
  HWND m_chooser = nullptr;
  HWND m_registryButton = nullptr;
  HWND m_tip = nullptr;
  HACCEL m_accelerators = nullptr;
  HWND m_lastFocus = nullptr;
  Text m_version;
  Text m_summary;
  int m_navigationWidth;
  int m_toolbarWidth = 0;  // of all buttons in one row
  bool m_dragging = false;
};

}  // namespace corvalt
