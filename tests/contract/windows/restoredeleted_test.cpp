// The restore dialog and the backup viewer themselves: what they show, and which buttons do something when.
#include "ui/windows/restoredeleted.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/memory/memorysystem.h"
#include "tests/support/scanrig.h"
#include "ui/windows/backupview.h"
#include "ui/windows/lists.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

Text TextOf(HWND window) {
  wchar_t text[1000] = {};
  GetWindowTextW(window, text, 1000);
  return Text(FromWide(text));
}

HWND FindControl(HWND dialog, const wchar_t* className) {
  return FindWindowExW(dialog, nullptr, className, nullptr);
}

// A dialog over a folder of backups.
class RestoreWindow : public testing::Test {
 protected:
  RestoreWindow() {
    m_vars.SuiteBackupsFolder = u"C:\\Backups\\";
    m_vars.Texts = NumberedTexts();
  }
  ~RestoreWindow() override {
    m_dialog.reset();
    DestroyWindow(m_owner);
  }

  void AddBackup(std::string_view name) {
    m_index += "[" + std::string(name) + "]\r\nType=11001\r\n";
    m_memory.Disk.AddFile(u"C:\\Backups\\index.ini", m_index);
    m_memory.Disk.AddFile(u"C:\\Backups\\" + FromAscii(name), "REGEDIT4\r\n");
  }
  void Open() {
    m_dialog.emplace(m_system, m_vars, m_owner);
  }
  HWND List() const {
    return FindControl(m_dialog->Handle(), WC_LISTVIEWW);
  }
  HWND Button(const wchar_t* caption) const {
    return FindWindowExW(m_dialog->Handle(), nullptr, L"BUTTON", caption);
  }
  void Press(const wchar_t* caption) const {
    ::SendMessageW(Button(caption), BM_CLICK, 0, 0);
  }
  // The captions of the buttons that do something now.
  TLines Enabled() const {
    TLines captions;
    for (const wchar_t* caption : {L"11037", L"10034", L"10003", L"10013"}) {
      if (IsWindowEnabled(Button(caption)))
        captions.push_back(EncodeUtf8(FromWide(caption)));
    }
    return captions;
  }
  Text Cell(int row, int column) const {
    wchar_t text[200] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 200;
    ::SendMessageW(List(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return Text(FromWide(text));
  }
  Text ColumnCaption(int column) const {
    wchar_t text[200] = {};
    LVCOLUMNW info = {};
    info.mask = LVCF_TEXT;
    info.pszText = text;
    info.cchTextMax = 200;
    ::SendMessageW(List(), LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&info));
    return Text(FromWide(text));
  }
  LRESULT RowCount() const {
    return ::SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0);
  }
  int SelectedRow() const {
    return SelectedListRow(List());
  }
  void Select(int row, bool selected = true) const {
    LVITEMW item = {};
    item.stateMask = LVIS_SELECTED;
    item.state = selected ? LVIS_SELECTED : 0;
    ::SendMessageW(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }

  TMemorySystem m_memory;
  TSystem m_system = m_memory.Bundle();
  TGlobalVars m_vars;
  HWND m_owner = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 100, 100, 800, 600, nullptr, nullptr,
                                 ProgramInstance(), nullptr);
  std::optional<TfrmRestore> m_dialog;

 private:
  std::string m_index;
};

const TLines kAll = {"11037", "10034", "10003", "10013"};
const TLines kCancelAlone = {"10013"};

}  // namespace

TEST_F(RestoreWindow, ShowsItsTextsInTheUsersLanguage) {
  Open();
  EXPECT_EQ(TextOf(m_dialog->Handle()), u"11037");
  EXPECT_EQ(TextOf(FindControl(m_dialog->Handle(), L"STATIC")), u"11038");
  EXPECT_EQ(ColumnCaption(0), u"10033");
  EXPECT_EQ(ColumnCaption(1), u"10011");
}

TEST_F(RestoreWindow, AnEmptyListLeavesCancelAlone) {
  Open();
  EXPECT_EQ(RowCount(), 0);
  EXPECT_EQ(Enabled(), kCancelAlone);
}

TEST_F(RestoreWindow, ShowsTheNewestBackupFirstAndSelected) {
  AddBackup("46340");
  AddBackup("46341.5");
  Open();
  ASSERT_EQ(RowCount(), 2);
  EXPECT_EQ(Cell(0, 0), u"11039 - 11/15/2026 12:00:00 PM");
  EXPECT_EQ(Cell(0, 1), u"10 Byte");
  EXPECT_EQ(Cell(1, 0), u"11039 - 11/14/2026 12:00:00 AM");
  EXPECT_EQ(::SendMessageW(List(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 0);
  EXPECT_EQ(Enabled(), kAll);
}

TEST_F(RestoreWindow, ItsButtonsDoSomethingWhileARowIsSelected) {
  AddBackup("46340");
  Open();
  Select(0, false);
  EXPECT_EQ(Enabled(), kCancelAlone);
  Select(0, true);
  EXPECT_EQ(Enabled(), kAll);
}

TEST_F(RestoreWindow, RowsAreReadAsAWholeStaySelectedAndCannotBeEdited) {
  AddBackup("46340");
  Open();
  const LONG_PTR style = GetWindowLongPtrW(List(), GWL_STYLE);
  EXPECT_EQ(style & LVS_TYPEMASK, LVS_REPORT);
  EXPECT_NE(style & LVS_SHOWSELALWAYS, 0);
  EXPECT_EQ(style & LVS_EDITLABELS, 0);
  EXPECT_NE(::SendMessageW(List(), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & LVS_EX_FULLROWSELECT, 0);
}

TEST_F(RestoreWindow, RemoveTakesTheRowAndItsFileAwayAtOnceAndAsksNothing) {
  AddBackup("46340");
  AddBackup("46341");
  Open();
  Press(L"10034");
  EXPECT_EQ(RowCount(), 1);
  EXPECT_EQ(Cell(0, 0), u"11039 - 11/14/2026 12:00:00 AM");
  EXPECT_FALSE(m_memory.Disk.Content(u"C:\\Backups\\46341"));
  EXPECT_TRUE(m_memory.Disk.Content(u"C:\\Backups\\46340"));
  EXPECT_EQ(m_memory.Calls, TLines());
}

TEST_F(RestoreWindow, AfterARemovalTheNextRowIsSelectedAndAtTheEndTheOneBefore) {
  for (const char* name : {"46340", "46341", "46342"})
    AddBackup(name);
  Open();
  Select(1);
  Press(L"10034");
  EXPECT_EQ(SelectedRow(), 1);
  EXPECT_EQ(Cell(1, 0), u"11039 - 11/14/2026 12:00:00 AM");
  EXPECT_EQ(Enabled(), kAll);
  Press(L"10034");
  EXPECT_EQ(SelectedRow(), 0);
  Press(L"10034");
  EXPECT_EQ(SelectedRow(), -1);
  EXPECT_EQ(Enabled(), kCancelAlone);
}

TEST_F(RestoreWindow, TheDeleteKeyRemovesTheSelectedRow) {
  AddBackup("46340");
  AddBackup("46341");
  Open();
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  EXPECT_EQ(RowCount(), 1);
  EXPECT_FALSE(m_memory.Disk.Content(u"C:\\Backups\\46341"));
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  EXPECT_EQ(RowCount(), 0);
  EXPECT_EQ(m_memory.Calls, TLines());
}

TEST_F(RestoreWindow, ADeleteKeyThatIsHeldDownRemovesOneRow) {
  AddBackup("46340");
  AddBackup("46341");
  Open();
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  constexpr LPARAM kRepeated = (1 << 30) | 1;
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, kRepeated);
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, kRepeated);
  EXPECT_EQ(RowCount(), 1);
  EXPECT_TRUE(m_memory.Disk.Content(u"C:\\Backups\\46340"));
}

TEST_F(RestoreWindow, ADoubleClickOnARowViewsIt) {
  AddBackup("46340");
  Open();
  // A file that can't be read says so instead of opening the viewer.
  m_memory.Disk.FailReading(5);
  NMITEMACTIVATE click = {};
  click.hdr = {List(), 101, NM_DBLCLK};
  click.iItem = -1;
  ::SendMessageW(m_dialog->Handle(), WM_NOTIFY, 101, reinterpret_cast<LPARAM>(&click));
  EXPECT_EQ(m_memory.Calls, TLines());
  click.iItem = 0;
  ::SendMessageW(m_dialog->Handle(), WM_NOTIFY, 101, reinterpret_cast<LPARAM>(&click));
  ASSERT_EQ(m_memory.Calls.size(), 1U);
  EXPECT_TRUE(m_memory.Calls[0].starts_with("failure 40001 | 40012(")) << m_memory.Calls[0];
}

// A second window of the thread, as a message box or another program's window is.
TEST_F(RestoreWindow, TheControlWithTheKeyboardGetsItBackWhenTheDialogIsActiveAgain) {
  AddBackup("46340");
  Open();
  ShowWindow(m_dialog->Handle(), SW_SHOW);
  const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100,
                                     nullptr, nullptr, ProgramInstance(), nullptr);
  SetActiveWindow(m_dialog->Handle());
  SetFocus(Button(L"10003"));
  SetActiveWindow(other);
  ASSERT_NE(GetFocus(), Button(L"10003"));
  SetActiveWindow(m_dialog->Handle());
  EXPECT_EQ(GetFocus(), Button(L"10003"));
  // A control that takes no input any more leaves the keyboard to the first.
  SetActiveWindow(other);
  EnableWindow(Button(L"10003"), FALSE);
  SetActiveWindow(m_dialog->Handle());
  EXPECT_EQ(GetFocus(), List());
  DestroyWindow(other);
}

TEST_F(RestoreWindow, ARowWhoseFileCannotBeDeletedStays) {
  AddBackup("46340");
  Open();
  m_memory.Disk.FailDeleting(5);
  Press(L"10034");
  EXPECT_EQ(RowCount(), 1);
  EXPECT_EQ(Enabled(), kAll);
  EXPECT_EQ(m_memory.Calls.size(), 1U);
}

TEST_F(RestoreWindow, ARestoreAsksAndKeepsTheRow) {
  AddBackup("46340");
  Open();
  m_memory.MessageBoxes.Answers = {TAnswer::Yes};
  Press(L"11037");
  EXPECT_EQ(m_memory.Calls, TLines({"question 10044 | 11040(11039 - 11/14/2026 12:00:00 AM)",
                                    "information 10045 | 11041(11039 - 11/14/2026 12:00:00 AM)"}));
  EXPECT_EQ(RowCount(), 1);
  EXPECT_EQ(Enabled(), kAll);
}

TEST_F(RestoreWindow, TheViewerShowsTheFileUnderTheRowsText) {
  const Tfrmbackupview viewer({u"11039 - now", u"REGEDIT4\r\n\x2400"}, m_vars, m_owner);
  EXPECT_EQ(TextOf(viewer.Handle()), u"11039 - now");
  EXPECT_EQ(TextOf(FindControl(viewer.Handle(), L"TessalyTextView")), u"REGEDIT4\r\n\x2400");
  EXPECT_EQ(TextOf(FindControl(viewer.Handle(), L"BUTTON")), u"10014");
}

TEST_F(RestoreWindow, TheViewersButtonStaysInTheMiddle) {
  const Tfrmbackupview viewer({u"now", u"text"}, m_vars, m_owner);
  const HWND button = FindControl(viewer.Handle(), L"BUTTON");
  for (const int width : {500, 641, 900}) {
    SetWindowPos(viewer.Handle(), nullptr, 0, 0, width, 300, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    RECT place = {};
    GetWindowRect(button, &place);
    MapWindowPoints(nullptr, viewer.Handle(), reinterpret_cast<POINT*>(&place), 2);
    const int inside = static_cast<int>(viewer.ClientSize().cx);
    EXPECT_EQ(place.left, CenteredLeft(inside, static_cast<int>(place.right - place.left))) << width;
  }
}

}  // namespace corvalt
