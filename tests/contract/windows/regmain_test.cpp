// The main window itself, over a system in memory: what stands where, what its menus hold, and what its
// commands and keys do.
#include "ui/windows/regmain.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/windows/windowsuithread.h"
#include "tests/support/names.h"
#include "tests/support/scanrig.h"
#include "ui/windows/commands.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

std::string TextOf(HWND window) {
  wchar_t text[1000] = {};
  GetWindowTextW(window, text, 1000);
  return EncodeUtf8(FromWide(text));
}

SIZE SizeOf(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

int LeftOf(HWND child) {
  RECT place = {};
  GetWindowRect(child, &place);
  MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&place), 2);
  return static_cast<int>(place.left);
}

HWND ChildOf(HWND parent, const wchar_t* className) {
  return FindWindowExW(parent, nullptr, className, nullptr);
}

// "first | - | last", a hyphen for a separator.
std::string EntriesOf(HMENU menu) {
  std::string entries;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    wchar_t text[1000] = {};
    GetMenuStringW(menu, static_cast<UINT>(i), text, 1000, MF_BYPOSITION);
    const bool isSeparator = (GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_SEPARATOR) != 0;
    entries += (i == 0 ? "" : " | ") + (isSeparator ? "-" : EncodeUtf8(FromWide(text)));
  }
  return entries;
}

// The same of a menu with these captions; kSeparator for a separator.
constexpr std::nullopt_t kSeparator = std::nullopt;
std::string Entries(const std::vector<std::optional<TextId>>& captions) {
  std::string entries;
  for (const std::optional<TextId>& caption : captions)
    entries += (entries.empty() ? "" : " | ") + (caption ? EncodeUtf8(Says(*caption)) : "-");
  return entries;
}

BOOL CALLBACK AddWindow(HWND window, LPARAM windows) {
  reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
  return TRUE;
}

class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    m_rig.Vars.ProgramFolder = u"C:\\Suite\\";
    m_window.emplace(m_system, m_rig.Vars, m_rig.Reg, m_uiThread, u"1.2.3");
    m_window->Show(SW_HIDE);
  }

  HWND Window() const {
    return m_window->Handle();
  }
  HWND Results() const {
    return GetDlgItem(Window(), kResultsTreeId);
  }
  HWND Navigation() const {
    return ChildOf(Window(), L"TessalyNavigationPane");
  }
  HWND StatusBar() const {
    return ChildOf(Window(), L"msctls_statusbar32");
  }
  HWND Chooser() const {
    return ChildOf(Results(), L"ComboBox");
  }
  HWND RegistryButton() const {
    return ChildOf(Results(), L"Button");
  }
  std::vector<HWND> Controls() const {
    std::vector<HWND> controls;
    EnumChildWindows(Window(), AddWindow, reinterpret_cast<LPARAM>(&controls));
    return controls;
  }

  void Command(int command) const {
    ::SendMessageW(Window(), WM_COMMAND, static_cast<WPARAM>(command), 0);
  }
  // Runs the program's loop over what was posted, and closes the window.
  int RunToTheEnd() {
    ::PostMessageW(Window(), WM_CLOSE, 0, 0);
    return m_window->Run();
  }
  TLines& Calls() {
    return m_rig.System.Calls;
  }
  bool SectionsAreStored() {
    return m_rig.System.Registry.HasValue(
        u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Sections", u"100");
  }

  // The entries of the menu that comes up at a point of the screen.
  std::string ContextMenuAt(POINT place) {
    std::string entries;
    SetWindowSubclass(Window(), NoteMenu, 1, reinterpret_cast<DWORD_PTR>(&entries));
    ::SendMessageW(Window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Window()),
                   MAKELPARAM(place.x, place.y));
    RemoveWindowSubclass(Window(), NoteMenu, 1);
    return entries;
  }

  TScanRig m_rig;
  TSystem m_system = m_rig.System.Bundle();
  TWindowsUiThread m_uiThread{[](const std::exception_ptr&) { ADD_FAILURE() << "a routine has thrown"; }};
  std::optional<TfrmRegMain> m_window;

 private:
  static LRESULT CALLBACK NoteMenu(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                   DWORD_PTR entries) {
    if (message == WM_INITMENUPOPUP)
      *reinterpret_cast<std::string*>(entries) = EntriesOf(reinterpret_cast<HMENU>(wParam));
    if (message == WM_ENTERIDLE)
      EndMenu();
    return DefSubclassProc(window, message, wParam, lParam);
  }
};

}  // namespace

// What stands where

TEST_F(MainWindow, IsInTheMiddleOfTheScreenWithItsInsideOf750By527) {
  const SIZE inside = m_window->ClientSize();
  EXPECT_EQ(inside.cx, 750);
  EXPECT_EQ(inside.cy, 527);
  RECT place = {};
  RECT work = {};
  GetWindowRect(Window(), &place);
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  EXPECT_NEAR(place.left - work.left, work.right - place.right, 1);
  EXPECT_NEAR(place.top - work.top, work.bottom - place.bottom, 1);
}

TEST_F(MainWindow, HasTheProgramsTitle) {
  EXPECT_EQ(TextOf(Window()), EncodeUtf8(Says(TextId::ProgramTitle)));
}

TEST_F(MainWindow, ItsMenusHoldWhatIsOfferedAndNothingHidden) {
  const HMENU bar = GetMenu(Window());
  EXPECT_EQ(EntriesOf(bar), Entries({TextId::MenuFile, TextId::MenuAction, TextId::MenuHelp}));
  EXPECT_EQ(EntriesOf(GetSubMenu(bar, 0)), Entries({TextId::ActionExport, kSeparator, TextId::ActionExit}));
  EXPECT_EQ(EntriesOf(GetSubMenu(bar, 1)),
            Entries({TextId::ActionScan, TextId::ActionRepair, kSeparator, TextId::ActionRestore}));
  EXPECT_EQ(EntriesOf(GetSubMenu(bar, 2)),
            Entries({TextId::ActionHelpContents}) + "\tF1 | " +
                Entries({kSeparator, TextId::ActionHomePage, kSeparator, TextId::ActionAbout}));
}

TEST_F(MainWindow, ItsToolbarHasFourButtonsWithCaptionAndPicture) {
  const HWND toolbar = GetDlgItem(Window(), kToolbarId);
  TLines buttons;
  const auto count = static_cast<int>(::SendMessageW(toolbar, TB_BUTTONCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    TBBUTTON button = {};
    ::SendMessageW(toolbar, TB_GETBUTTON, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&button));
    wchar_t text[1000] = {};
    ::SendMessageW(toolbar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(button.idCommand),
                   reinterpret_cast<LPARAM>(text));
    buttons.push_back((button.fsStyle & BTNS_SEP) != 0
                          ? "-"
                          : EncodeUtf8(FromWide(text)) + " " + std::to_string(button.iBitmap));
  }
  const auto button = [](TextId caption, int picture) {
    return EncodeUtf8(Says(caption)) + " " + std::to_string(picture);
  };
  EXPECT_EQ(buttons, TLines({button(TextId::ActionScan, 5), button(TextId::ActionRepair, 10), "-",
                             button(TextId::ActionRestore, 6), "-", button(TextId::IgnoreListManager, 9)}));
}

TEST_F(MainWindow, ItsTasksAreFourLinksFromScanToTheIgnoreList) {
  TLines links;
  for (HWND each = nullptr; (each = FindWindowExW(Navigation(), each, L"Button", nullptr)) != nullptr;)
    links.push_back(TextOf(each) + " " + std::to_string(GetDlgCtrlID(each)));
  const auto link = [](TextId caption, int command) {
    return EncodeUtf8(Says(caption)) + " " + std::to_string(command);
  };
  EXPECT_EQ(links, TLines({link(TextId::ActionScan, kCmdScan), link(TextId::ActionRepair, kCmdRepair),
                           link(TextId::ActionRestore, kCmdRestore),
                           link(TextId::IgnoreListManager, kCmdIgnoreList)}));
}

TEST_F(MainWindow, TheSectionsTreeFillsTheNavigationPaneBelowTheTasks) {
  constexpr int kTasks = 125;
  constexpr int kGroupHeader = 25;
  constexpr int kBelow = 25;
  const SIZE pane = SizeOf(Navigation());
  // Wider than 230 where a caption needs it: "HKEY_LOCAL_MACHINE" on the third level does.
  EXPECT_GE(pane.cx, 230);
  const HWND tree = GetDlgItem(Navigation(), kSectionsTreeId);
  EXPECT_EQ(SizeOf(tree).cx, pane.cx);
  EXPECT_EQ(SizeOf(tree).cy, pane.cy - kTasks - 2 * kGroupHeader - kBelow);
  SetWindowPos(Window(), nullptr, 0, 0, 900, 700, SWP_NOMOVE | SWP_NOZORDER);
  EXPECT_EQ(SizeOf(tree).cy, SizeOf(Navigation()).cy - kTasks - 2 * kGroupHeader - kBelow);
}

TEST_F(MainWindow, NoSectionsCaptionIsCutOffAtFirst) {
  const HWND tree = GetDlgItem(Navigation(), kSectionsTreeId);
  RECT inside = {};
  GetClientRect(tree, &inside);
  const TTextMeter meter(TScale(), false);
  // Three levels of 18 pixels, check box, margin and picture stand before it.
  const int left = 3 * 18 + 18 + 4 + 20;
  EXPECT_LE(left + meter.Width(u"HKEY_LOCAL_MACHINE"), inside.right - 5);
}

TEST_F(MainWindow, TheHeadingsOfThePaneAreLabelsWithTheirText) {
  TLines headings;
  for (HWND label = nullptr; (label = FindWindowExW(Navigation(), label, L"Static", nullptr)) != nullptr;)
    headings.push_back(TextOf(label));
  EXPECT_EQ(headings,
            TLines({EncodeUtf8(Says(TextId::GroupTasks)), EncodeUtf8(Says(TextId::GroupSections))}));
}

TEST_F(MainWindow, CannotBeMadeSmallerThanItsPartsNeed) {
  SetWindowPos(Window(), nullptr, 0, 0, 10, 10, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  EXPECT_GE(m_window->ClientSize().cx, 420);
  EXPECT_GE(m_window->ClientSize().cy, 280);
}

TEST_F(MainWindow, TheResultsTreeHasOneColumnAsWideAsItselfUnderAHeader) {
  const HWND header = ChildOf(Results(), L"SysHeader32");
  EXPECT_EQ(SizeOf(header).cy, 20);
  EXPECT_EQ(::SendMessageW(header, HDM_GETITEMCOUNT, 0, 0), 1);
  HDITEMW column = {};
  column.mask = HDI_WIDTH;
  ::SendMessageW(header, HDM_GETITEMW, 0, reinterpret_cast<LPARAM>(&column));
  RECT tree = {};
  GetClientRect(Results(), &tree);
  EXPECT_EQ(column.cxy, tree.right);
}

TEST_F(MainWindow, TheStatusBarHasTwoPartsTheFirst200WideAndAHiddenProgressBar) {
  int edges[8] = {};
  ASSERT_EQ(::SendMessageW(StatusBar(), SB_GETPARTS, 8, reinterpret_cast<LPARAM>(edges)), 2);
  EXPECT_EQ(edges[0], 200);
  const HWND bar = ChildOf(StatusBar(), L"msctls_progress32");
  ASSERT_NE(bar, nullptr);
  EXPECT_EQ(GetWindowLongPtrW(bar, GWL_STYLE) & WS_VISIBLE, 0);
}

TEST_F(MainWindow, AWiderWindowDrawsTheStatusBarAnewWhereItsSizeGripWas) {
  m_window->Show(SW_SHOW);
  UpdateWindow(StatusBar());
  RECT before = {};
  GetClientRect(StatusBar(), &before);
  ASSERT_FALSE(GetUpdateRect(StatusBar(), nullptr, FALSE));
  const SIZE window = SizeOf(Window());
  SetWindowPos(Window(), nullptr, 0, 0, static_cast<int>(window.cx) + 100, static_cast<int>(window.cy),
               SWP_NOZORDER | SWP_NOACTIVATE);
  RECT outdated = {};
  ASSERT_TRUE(GetUpdateRect(StatusBar(), &outdated, FALSE));
  // The grip is a square at the bar's end.
  EXPECT_LE(outdated.left, before.right - before.bottom);
  EXPECT_EQ(outdated.right, before.right + 100);
}

TEST_F(MainWindow, TheSummaryIsALabelOverTheResults) {
  const HWND summary = GetDlgItem(Window(), kSummaryId);
  EXPECT_EQ(TextOf(summary), EncodeUtf8(Says(TextId::Summary)));
  RECT place = {};
  RECT tree = {};
  GetWindowRect(summary, &place);
  GetWindowRect(Results(), &tree);
  EXPECT_EQ(place.bottom, tree.top);
  EXPECT_EQ(place.left, tree.left + 8);
}

TEST_F(MainWindow, ClaimsNoCountsBeforeTheFirstScan) {
  for (const WPARAM part : {0, 1})
    EXPECT_EQ(LOWORD(::SendMessageW(StatusBar(), SB_GETTEXTLENGTHW, part, 0)), 0) << part;
}

TEST_F(MainWindow, TheRowControlsArePartsOfTheTreeAndParkedWithoutASelectedProblem) {
  ASSERT_NE(Chooser(), nullptr);
  ASSERT_NE(RegistryButton(), nullptr);
  EXPECT_EQ(LeftOf(Chooser()), -1000);
  EXPECT_EQ(LeftOf(RegistryButton()), -1000);
  EXPECT_EQ(SizeOf(Chooser()).cx, 225);
  EXPECT_EQ(::SendMessageW(Chooser(), CB_GETITEMHEIGHT, 0, 0), 16);
  EXPECT_EQ(SizeOf(RegistryButton()).cx, 89);
  EXPECT_EQ(SizeOf(RegistryButton()).cy, 22);
  EXPECT_FALSE(IsWindowEnabled(Chooser()));
  EXPECT_FALSE(IsWindowEnabled(RegistryButton()));
}

TEST_F(MainWindow, AnEmptyTreeCanNeitherBeRepairedNorExported) {
  const HMENU bar = GetMenu(Window());
  const HWND toolbar = GetDlgItem(Window(), kToolbarId);
  for (const int command : {kCmdRepair, kCmdExport}) {
    EXPECT_NE(GetMenuState(bar, static_cast<UINT>(command), MF_BYCOMMAND) & MF_GRAYED, 0U) << command;
    Command(command);
  }
  EXPECT_EQ(::SendMessageW(toolbar, TB_ISBUTTONENABLED, kCmdRepair, 0), 0);
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(Navigation(), kCmdRepair)));
  EXPECT_NE(::SendMessageW(toolbar, TB_ISBUTTONENABLED, kCmdScan, 0), 0);
  EXPECT_TRUE(IsWindowEnabled(GetDlgItem(Navigation(), kCmdScan)));
}

// Commands and keys

TEST_F(MainWindow, F1OpensTheHelpTopicWhateverHasTheKeyboard) {
  const std::vector<HWND> controls = Controls();
  ASSERT_GT(controls.size(), 8U);
  for (const HWND control : controls)
    ::PostMessageW(control, WM_KEYDOWN, VK_F1, 1);
  ::PostMessageW(Window(), WM_KEYDOWN, VK_F1, 1);
  RunToTheEnd();
  EXPECT_EQ(Calls(), TLines(controls.size() + 1, "help C:\\Suite\\\\help.chm /Registry_Cleaner.htm"));
}

TEST_F(MainWindow, EnterOnATaskDoesIt) {
  // With nothing ticked the scan says so, and does not run.
  const HWND sections = GetDlgItem(Navigation(), kSectionsTreeId);
  m_window->Show(SW_SHOW);
  ::SendMessageW(sections, WM_KEYDOWN, VK_HOME, 1);
  ::SendMessageW(sections, WM_KEYDOWN, VK_SPACE, 1);
  SetFocus(GetDlgItem(Navigation(), kCmdScan));
  ::PostMessageW(GetFocus(), WM_KEYDOWN, VK_RETURN, 1);
  // A key that is held down repeats; only its first message does the task.
  ::PostMessageW(GetFocus(), WM_KEYDOWN, VK_RETURN, (1 << 30) | 1);
  RunToTheEnd();
  EXPECT_EQ(Calls(), TLines({InformationBox(Says(TextId::HintScan))}));
}

TEST_F(MainWindow, F5AndTheInertEntriesDoNothing) {
  ::PostMessageW(Results(), WM_KEYDOWN, VK_F5, 1);
  for (const int command :
       {kCmdModifyProperties, kCmdBackupEntry, kCmdRemoveEntry, kCmdShowCommandLine, kCmdRefresh})
    Command(command);
  EXPECT_TRUE(IsWindowEnabled(Window()));
  EXPECT_EQ(RunToTheEnd(), 0);
  EXPECT_EQ(Calls(), TLines());
}

TEST_F(MainWindow, HiddenCommandsDoTheirWorkAllTheSame) {
  for (const int command : {kCmdFaq, kCmdRecommend, kCmdDiskCleanup, kCmdStartupManager, kCmdUninstallManager,
                            kCmdProcessManager})
    Command(command);
  EXPECT_EQ(Calls(),
            TLines({"execute open mailto:?subject= &body=", "execute open C:\\Suite\\\\diskcleanup.exe",
                    "execute open C:\\Suite\\\\startupmanager.exe",
                    "execute open C:\\Suite\\\\uninstallmanager.exe",
                    "execute open C:\\Suite\\\\processmanager.exe"}));
}

TEST_F(MainWindow, TheHomePageAndTheUpgradePageAreOpenedAsLinks) {
  Command(kCmdHomePage);
  Command(kCmdUpgrade);
  ASSERT_EQ(Calls().size(), 2U);
  for (const std::string& call : Calls())
    EXPECT_TRUE(call.starts_with("execute open https://")) << call;
  EXPECT_NE(Calls()[0], Calls()[1]);
}

TEST_F(MainWindow, TheAboutBoxSaysTheProgramAndItsVersion) {
  Command(kCmdAbout);
  const Text about = Says(TextId::ProgramTitle) + u"\r\n" + Says(TextId::AboutVersion, u"1.2.3") +
                     u"\r\n\r\n" + Says(TextId::AboutPurpose);
  EXPECT_EQ(Calls(), TLines({"information " + EncodeUtf8(Says(TextId::ActionAbout) + u" | " + about)}));
}

TEST_F(MainWindow, TheRegistryEditorIsNotOpenedWithoutASelectedProblem) {
  Command(kCmdOpenInRegedit);
  EXPECT_EQ(Calls(), TLines());
}

TEST_F(MainWindow, ItsContextMenuHasTheJumpFirstAndTheInertEntries) {
  POINT place = {300, 300};
  ClientToScreen(Window(), &place);
  const std::string entries =
      Entries({TextId::ButtonOpenInRegedit, TextId::ActionModifyProperties, TextId::ActionBackupEntry,
               TextId::ActionRemoveEntry, TextId::ActionShowCommandLine, TextId::ActionRefresh}) +
      "\tF5";
  EXPECT_EQ(ContextMenuAt(place), entries);
  EXPECT_EQ(ContextMenuAt({-1, -1}), entries);
}

TEST_F(MainWindow, TheTitleBarHasTheSystemsMenu) {
  RECT place = {};
  GetWindowRect(Window(), &place);
  const std::string entries = ContextMenuAt({place.left + 300, place.top + 15});
  EXPECT_EQ(entries.find(EncodeUtf8(Says(TextId::ActionModifyProperties))), std::string::npos) << entries;
  EXPECT_EQ(entries, EntriesOf(GetSystemMenu(Window(), FALSE)));
}

// The end

TEST_F(MainWindow, ExitClosesTheWindowAndStoresTheSections) {
  EXPECT_FALSE(SectionsAreStored());
  Command(kCmdExit);
  EXPECT_EQ(Window(), nullptr);
  EXPECT_TRUE(SectionsAreStored());
  EXPECT_EQ(RunToTheEnd(), 0);
}

TEST_F(MainWindow, TheEndOfTheSessionStoresTheSectionsToo) {
  EXPECT_NE(::SendMessageW(Window(), WM_QUERYENDSESSION, 0, 0), 0);
  EXPECT_FALSE(SectionsAreStored());
  ::SendMessageW(Window(), WM_ENDSESSION, TRUE, 0);
  EXPECT_TRUE(SectionsAreStored());
  EXPECT_EQ(RunToTheEnd(), 0);
}

TEST_F(MainWindow, ASessionThatGoesOnAfterAllLeavesTheWindow) {
  ::SendMessageW(Window(), WM_ENDSESSION, FALSE, 0);
  EXPECT_NE(Window(), nullptr);
  EXPECT_FALSE(SectionsAreStored());
}

}  // namespace corvalt
