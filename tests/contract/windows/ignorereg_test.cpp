// The ignore list manager itself: its rows and their check boxes, and what each button does.
#include "ui/windows/ignorereg.h"
#include "core/settingskeys.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/memory/memorysystem.h"
#include "tests/support/names.h"
#include "tests/support/scanrig.h"
#include "ui/windows/lists.h"

namespace corvalt {

namespace {

using TEntries = std::vector<Text>;

Text TextOf(HWND window) {
  wchar_t text[1000] = {};
  GetWindowTextW(window, text, 1000);
  return Text(FromWide(text));
}

class IgnoreListWindow : public testing::Test {
 protected:
  IgnoreListWindow() {
    m_vars.Texts = NumberedTexts();
  }
  ~IgnoreListWindow() override {
    m_dialog.reset();
    DestroyWindow(m_owner);
  }

  void Open(TEntries entries) {
    m_reg.IgnoreList = std::move(entries);
    m_dialog.emplace(m_system, m_vars, m_reg, m_owner);
  }
  HWND List() const {
    return FindWindowExW(m_dialog->Handle(), nullptr, WC_LISTVIEWW, nullptr);
  }
  HWND Button(TextId caption) const {
    return FindWindowExW(m_dialog->Handle(), nullptr, L"BUTTON", Wide(Says(caption)));
  }
  void Press(TextId caption) const {
    ::SendMessageW(Button(caption), BM_CLICK, 0, 0);
  }
  bool MayRemove() const {
    return IsWindowEnabled(Button(TextId::ButtonRemove)) != FALSE;
  }
  void SetState(int row, UINT state, UINT mask) const {
    LVITEMW item = {};
    item.stateMask = mask;
    item.state = state;
    ::SendMessageW(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }
  void Select(int row) const {
    SetState(row, LVIS_SELECTED, LVIS_SELECTED);
  }
  void SetChecked(int row, bool checked) const {
    SetState(row, INDEXTOSTATEIMAGEMASK(checked ? 2u : 1u), LVIS_STATEIMAGEMASK);
  }
  // The rows; an unchecked one begins with "-".
  TEntries Rows() const {
    TEntries rows;
    const LRESULT count = ::SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
      wchar_t text[2000] = {};
      LVITEMW item = {};
      item.pszText = text;
      item.cchTextMax = 2000;
      const auto index = static_cast<WPARAM>(row);
      ::SendMessageW(List(), LVM_GETITEMTEXTW, index, reinterpret_cast<LPARAM>(&item));
      const LRESULT state = ::SendMessageW(List(), LVM_GETITEMSTATE, index, LVIS_STATEIMAGEMASK);
      const bool isChecked = static_cast<UINT>(state) == INDEXTOSTATEIMAGEMASK(2u);
      rows.push_back((isChecked ? u"" : u"-") + Text(FromWide(text)));
    }
    return rows;
  }
  TEntries Stored() {
    return LoadIgnoreList(m_system);
  }

  TMemorySystem m_memory;
  TSystem m_system = m_memory.Bundle();
  TGlobalVars m_vars;
  TGlobalReg m_reg;
  HWND m_owner = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 100, 100, 800, 600, nullptr, nullptr,
                                 ProgramInstance(), nullptr);
  std::optional<Tfrmignorereg> m_dialog;
};

}  // namespace

TEST_F(IgnoreListWindow, ShowsItsTextsInTheUsersLanguage) {
  Open({});
  EXPECT_EQ(TextOf(m_dialog->Handle()), Says(TextId::IgnoreListManager));
  EXPECT_EQ(TextOf(FindWindowExW(m_dialog->Handle(), nullptr, L"STATIC", nullptr)),
            Says(TextId::IgnoreListExplanation, Says(TextId::ProgramTitle)));
  for (const TextId caption : {TextId::ButtonRemove, TextId::ButtonOk, TextId::ButtonCancel})
    EXPECT_NE(Button(caption), nullptr);
  wchar_t text[100] = {};
  LVCOLUMNW column = {};
  column.mask = LVCF_TEXT;
  column.pszText = text;
  column.cchTextMax = 100;
  ::SendMessageW(List(), LVM_GETCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  EXPECT_EQ(FromWide(text), Says(TextId::ColumnIgnoredEntry));
}

TEST_F(IgnoreListWindow, ShowsCheckBoxesAndNoHeader) {
  Open({});
  EXPECT_NE(GetWindowLongPtrW(List(), GWL_STYLE) & LVS_NOCOLUMNHEADER, 0);
  EXPECT_NE(::SendMessageW(List(), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & LVS_EX_CHECKBOXES, 0);
}

TEST_F(IgnoreListWindow, ShowsEachEntryInOrderAndSwitchedOffOnesUncheckedWithoutTheirMark) {
  Open({u"b", u";a", u"c"});
  EXPECT_EQ(Rows(), TEntries({u"b", u"-a", u"c"}));
}

TEST_F(IgnoreListWindow, ShowsALongEntryWholeUnlessItIsSwitchedOff) {
  Open({Text(1200, u'x'), u";" + Text(1200, u'y')});
  EXPECT_EQ(Rows(), TEntries({Text(1200, u'x'), u"-" + Text(1000, u'y')}));
}

TEST_F(IgnoreListWindow, RemoveTakesTheSelectedRowAtOnceAndNeedsOne) {
  Open({u"a", u"b"});
  EXPECT_FALSE(MayRemove());
  Select(0);
  EXPECT_TRUE(MayRemove());
  Press(TextId::ButtonRemove);
  EXPECT_EQ(Rows(), TEntries({u"b"}));
  EXPECT_TRUE(m_memory.Calls.empty());
  // Not before OK.
  EXPECT_EQ(m_reg.IgnoreList, TEntries({u"a", u"b"}));
}

TEST_F(IgnoreListWindow, AfterARemovalTheNextRowIsSelectedAndAtTheEndTheOneBefore) {
  Open({u"a", u"b", u"c"});
  Select(1);
  Press(TextId::ButtonRemove);
  EXPECT_EQ(SelectedListRow(List()), 1);
  Press(TextId::ButtonRemove);
  EXPECT_EQ(SelectedListRow(List()), 0);
  EXPECT_TRUE(MayRemove());
  Press(TextId::ButtonRemove);
  EXPECT_FALSE(MayRemove());
}

TEST_F(IgnoreListWindow, TheDeleteKeyRemovesTheSelectedRow) {
  Open({u"a", u"b"});
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  EXPECT_EQ(Rows(), TEntries({u"a", u"b"}));
  Select(0);
  ::SendMessageW(List(), WM_KEYDOWN, VK_DELETE, 1);
  EXPECT_EQ(Rows(), TEntries({u"b"}));
}

TEST_F(IgnoreListWindow, OkStoresWhatTheRowsShow) {
  Open({u"a", u";b", u"c"});
  SetChecked(0, false);
  SetChecked(1, true);
  Select(2);
  Press(TextId::ButtonRemove);
  Press(TextId::ButtonOk);
  EXPECT_EQ(m_reg.IgnoreList, TEntries({u";a", u"b"}));
  EXPECT_EQ(Stored(), TEntries({u";a", u"b"}));
}

TEST_F(IgnoreListWindow, ARowCheckedAfterAnotherWasRemovedIsTheOneThatIsStored) {
  Open({u"a", u"b", u"c"});
  Select(0);
  Press(TextId::ButtonRemove);
  SetChecked(1, false);
  Press(TextId::ButtonOk);
  EXPECT_EQ(m_reg.IgnoreList, TEntries({u"b", u";c"}));
}

TEST_F(IgnoreListWindow, CancelChangesNothing) {
  m_memory.Registry.SetInteger(u"HKEY_CURRENT_USER" + Text(kIgnoreListKey), u"a", 1);
  Open({u"a"});
  SetChecked(0, false);
  Select(0);
  Press(TextId::ButtonRemove);
  Press(TextId::ButtonCancel);
  EXPECT_EQ(m_reg.IgnoreList, TEntries({u"a"}));
  EXPECT_EQ(Stored(), TEntries({u"a"}));
}

}  // namespace corvalt
