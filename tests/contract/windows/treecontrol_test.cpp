// The tree control in a real window: what is cut off can be read all the same, what is hidden is not
// selected, and what assistive technology is answered.
#include "ui/windows/treecontrol.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

struct TNamedNode : TTreeNode {
  Text Caption;
};

// A tree of captions in a window that is 200 pixels wide.
class TreeControl : public testing::Test, private TTreeControlOwner {
 protected:
  TreeControl() {
    m_control.Create(m_frame, 1, nullptr);
    MoveWindow(m_control.Handle(), 0, 0, 200, 200, FALSE);
  }
  ~TreeControl() override {
    DestroyWindow(m_control.Handle());
    if (m_wide.Handle() != nullptr)
      DestroyWindow(m_wide.Handle());
    DestroyWindow(m_frame);
  }

  TTreeNode* Add(TextView caption, TTreeNode* parent = nullptr) {
    auto node = std::make_unique<TNamedNode>();
    node->Caption = caption;
    TTreeNode* added = m_model.Add(parent, std::move(node));
    m_control.Refresh();
    return added;
  }
  TTreeNode* AddOpen(TextView caption) {
    TTreeNode* node = Add(caption);
    m_model.SetExpanded(node, true);
    return node;
  }
  // On the expand button of a row at the top level.
  void ClickOpener(TTreeNode* node) {
    const RECT row = m_control.RowRect(node);
    ::SendMessageW(m_control.Handle(), WM_LBUTTONDOWN, MK_LBUTTON,
                   MAKELPARAM(TScale()(9), row.top + (row.bottom - row.top) / 2));
  }
  void Press(WPARAM key) {
    ::SendMessageW(m_control.Handle(), WM_KEYDOWN, key, 0);
  }

  // Moves the mouse over a row; returns the text of its tip, empty when it has none.
  Text TipOfRow(int row) {
    const RECT first = m_control.RowRect(m_model.FirstRoot());
    const int y = first.top + row * (first.bottom - first.top) + 3;
    ::SendMessageW(m_control.Handle(), WM_MOUSEMOVE, 0, MAKELPARAM(20, y));
    HWND tip = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindTip, reinterpret_cast<LPARAM>(&tip));
    wchar_t text[1000] = {};
    TTTOOLINFOW tool = {};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.lpszText = text;
    if (::SendMessageW(tip, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&tool)) == 0)
      return {};
    ::SendMessageW(tip, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    return Text(FromWide(text));
  }

 private:
  static BOOL CALLBACK FindTip(HWND window, LPARAM found) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    if (FromWide(name) == FromWide(TOOLTIPS_CLASSW))
      *reinterpret_cast<HWND*>(found) = window;
    return TRUE;
  }

  int RowUnits(const TTreeNode&) const override {
    return 1;
  }
  TRowLook LookOf(const TTreeNode& node) const override {
    return {kNoImage, {{static_cast<const TNamedNode&>(node).Caption, false, false}}};
  }
  Text TreeName() const override {
    return u"Names";
  }
  Text ActionName(bool checks) const override {
    return checks ? u"Check it" : u"Uncheck it";
  }
  Text SearchText(const TTreeNode&) const override {
    return {};
  }
  Text EmptyHint() const override {
    return {};
  }
  bool MayCheck() const override {
    return true;
  }
  void RowSelected(TTreeNode* node) override {
    m_model.Select(node);
  }
  void RowChecked(TTreeNode*) override {
  }
  void RowsMoved() override {
  }
  int ColumnWidth() const override {
    return m_columnWidth;
  }
  void SetColumnWidth(int width) override {
    m_columnWidth = width;
  }

  HWND m_frame = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 300, nullptr,
                                 nullptr, ProgramInstance(), nullptr);

 protected:
  int m_columnWidth = 0;
  TTreeModel m_model;
  TTreeControl m_control{m_model, *this, {}};
  // A second one with a header over a wide column.
  TTreeControl m_wide{m_model, *this, {.NodesClose = true, .HasHeader = true, .HighlightText = false}};
  void CreateWide() {
    m_columnWidth = 1000;
    m_wide.Create(m_frame, 2, nullptr);
    MoveWindow(m_wide.Handle(), 0, 0, 200, 200, FALSE);
    Add(u"Row");
    m_wide.Refresh();
  }
  int Sideways() const {
    return GetScrollPos(m_wide.Handle(), SB_HORZ);
  }
};

VARIANT Child(LONG number) {
  VARIANT child = {};
  child.vt = VT_I4;
  child.lVal = number;
  return child;
}

// The tree as assistive technology sees it: a section with two rows, and one after it.
class TreeControlAccessible : public TreeControl {
 protected:
  static constexpr LONG kSection = 1;
  static constexpr LONG kFirst = 2;
  static constexpr LONG kLastRow = 4;
  static constexpr LONG kNoRow = 5;

  TreeControlAccessible() {
    AccessibleObjectFromWindow(m_control.Handle(), static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               reinterpret_cast<void**>(&m_tree));
  }
  ~TreeControlAccessible() override {
    m_tree->Release();
  }

  // A text that a routine returned; "-" for none.
  static Text Taken(HRESULT result, BSTR text) {
    const Text taken = result == S_OK ? Text(FromWide(text, SysStringLen(text))) : Text(u"-");
    SysFreeString(text);
    return taken;
  }
  Text NameOf(LONG child) const {
    BSTR name = nullptr;
    const HRESULT result = m_tree->get_accName(Child(child), &name);
    return Taken(result, name);
  }
  Text ActionOf(LONG child) const {
    BSTR action = nullptr;
    const HRESULT result = m_tree->get_accDefaultAction(Child(child), &action);
    return Taken(result, action);
  }
  LONG Selection() const {
    VARIANT selected = {};
    return m_tree->get_accSelection(&selected) == S_OK ? selected.lVal : 0;
  }

  TTreeNode* m_section = AddOpen(u"Section");
  TTreeNode* m_first = Add(u"First", m_section);
  TTreeNode* m_second = Add(u"Second", m_section);
  TTreeNode* m_last = Add(u"Last");
  IAccessible* m_tree = nullptr;
};

}  // namespace

TEST_F(TreeControl, ARowThatIsCutOffShowsItsWholeTextInATip) {
  Add(u"A caption that does not fit into two hundred pixels");
  EXPECT_EQ(TipOfRow(0), u"A caption that does not fit into two hundred pixels");
}

TEST_F(TreeControl, ARowThatCanBeReadHasNoTip) {
  Add(u"A caption that does not fit into two hundred pixels");
  Add(u"Short");
  TipOfRow(0);
  EXPECT_EQ(TipOfRow(1), u"");
}

TEST_F(TreeControl, NoRowHasNoTip) {
  Add(u"A caption that does not fit into two hundred pixels");
  TipOfRow(0);
  EXPECT_EQ(TipOfRow(3), u"");
}

TEST_F(TreeControl, ARowThatTookAnothersPlaceHasItsOwnTip) {
  Add(u"A caption that does not fit into two hundred pixels");
  TipOfRow(0);
  m_model.Delete(m_model.FirstRoot());
  Add(u"Short");
  EXPECT_EQ(TipOfRow(0), u"");
}

// Another width

TEST_F(TreeControl, CaptionsAreDrawnAnewWhenTheWidthChanges) {
  Add(u"A caption that does not fit into two hundred pixels");
  RedrawWindow(m_control.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  MoveWindow(m_control.Handle(), 0, 0, 260, 200, TRUE);
  RECT dirty = {};
  GetUpdateRect(m_control.Handle(), &dirty, FALSE);
  EXPECT_EQ(dirty.left, 0);
  EXPECT_EQ(dirty.right, 260);
}

TEST_F(TreeControl, TheWantedWidthLeavesNoCaptionCutOff) {
  TTreeNode* section = AddOpen(u"Section");
  Add(u"A caption that does not fit into two hundred pixels", section);
  MoveWindow(m_control.Handle(), 0, 0, m_control.WantedWidth(), 200, FALSE);
  EXPECT_EQ(TipOfRow(1), u"");
}

// Sideways

TEST_F(TreeControl, TheWheelWithShiftAndTheTiltedWheelScrollSideways) {
  constexpr UINT kTilt = 0x020E;
  CreateWide();
  ::SendMessageW(m_wide.Handle(), WM_MOUSEWHEEL, MAKEWPARAM(MK_SHIFT, -WHEEL_DELTA), 0);
  const int once = Sideways();
  EXPECT_GT(once, 0);
  ::SendMessageW(m_wide.Handle(), kTilt, MAKEWPARAM(0, WHEEL_DELTA), 0);
  EXPECT_EQ(Sideways(), 2 * once);
  ::SendMessageW(m_wide.Handle(), WM_MOUSEWHEEL, MAKEWPARAM(MK_SHIFT, WHEEL_DELTA), 0);
  ::SendMessageW(m_wide.Handle(), kTilt, MAKEWPARAM(0, -WHEEL_DELTA), 0);
  EXPECT_EQ(Sideways(), 0);
}

TEST_F(TreeControl, ControlWithTheArrowsScrollsSidewaysAndKeepsTheSelection) {
  CreateWide();
  BYTE keys[256] = {};
  GetKeyboardState(keys);
  keys[VK_CONTROL] = 0x80;
  SetKeyboardState(keys);
  ::SendMessageW(m_wide.Handle(), WM_KEYDOWN, VK_RIGHT, 1);
  EXPECT_GT(Sideways(), 0);
  EXPECT_EQ(m_model.Selected(), nullptr);
  ::SendMessageW(m_wide.Handle(), WM_KEYDOWN, VK_LEFT, 1);
  EXPECT_EQ(Sideways(), 0);
  keys[VK_CONTROL] = 0;
  SetKeyboardState(keys);
}

TEST_F(TreeControl, WithoutRowsThereIsNothingToScrollSideways) {
  CreateWide();
  EXPECT_NE(GetWindowLongPtrW(m_wide.Handle(), GWL_STYLE) & WS_HSCROLL, 0);
  m_model.Clear();
  m_wide.Refresh();
  EXPECT_EQ(GetWindowLongPtrW(m_wide.Handle(), GWL_STYLE) & WS_HSCROLL, 0);
}

// What is hidden is not selected

TEST_F(TreeControl, ClosingARowWithTheMouseTakesTheSelectionUpToIt) {
  TTreeNode* section = AddOpen(u"Section");
  TTreeNode* row = Add(u"Row", section);
  TTreeNode* after = Add(u"After");
  m_control.SelectRow(row);
  ClickOpener(section);
  EXPECT_FALSE(section->Expanded);
  EXPECT_EQ(m_model.Selected(), section);
  Press(VK_DOWN);
  EXPECT_EQ(m_model.Selected(), after);
  EXPECT_FALSE(section->Expanded);
}

TEST_F(TreeControl, ClosingARowKeepsASelectionElsewhere) {
  TTreeNode* section = AddOpen(u"Section");
  Add(u"Row", section);
  TTreeNode* after = Add(u"After");
  m_control.SelectRow(after);
  ClickOpener(section);
  EXPECT_FALSE(section->Expanded);
  EXPECT_EQ(m_model.Selected(), after);
}

TEST_F(TreeControl, ClosingARowWithoutASelectionSelectsNone) {
  TTreeNode* section = AddOpen(u"Section");
  Add(u"Row", section);
  ClickOpener(section);
  EXPECT_FALSE(section->Expanded);
  EXPECT_EQ(m_model.Selected(), nullptr);
}

// Assistive technology

TEST_F(TreeControlAccessible, TheTreeAndItsRowsHaveNames) {
  EXPECT_EQ(NameOf(CHILDID_SELF), u"Names");
  EXPECT_EQ(NameOf(kFirst), u"First");
  EXPECT_EQ(NameOf(kLastRow), u"Last");
}

TEST_F(TreeControlAccessible, ItsActionIsNamedInTheUsersLanguage) {
  EXPECT_EQ(ActionOf(kFirst), u"Uncheck it");
  EXPECT_EQ(m_tree->accDoDefaultAction(Child(kFirst)), S_OK);
  EXPECT_EQ(m_first->State, TCheckState::Unchecked);
  EXPECT_EQ(ActionOf(kFirst), u"Check it");
  // The section is mixed now.
  EXPECT_EQ(ActionOf(kSection), u"Check it");
  EXPECT_EQ(ActionOf(CHILDID_SELF), u"-");
}

TEST_F(TreeControlAccessible, ANumberThatIsNoRowIsRefusedByEveryRoutine) {
  for (const LONG number : {kNoRow, -1L}) {
    VARIANT answer = {};
    BSTR text = nullptr;
    IDispatch* object = nullptr;
    LONG place[4] = {};
    EXPECT_EQ(m_tree->get_accChild(Child(number), &object), E_INVALIDARG);
    EXPECT_EQ(m_tree->get_accName(Child(number), &text), E_INVALIDARG);
    EXPECT_EQ(m_tree->get_accValue(Child(number), &text), E_INVALIDARG);
    EXPECT_EQ(m_tree->get_accRole(Child(number), &answer), E_INVALIDARG);
    EXPECT_EQ(m_tree->get_accState(Child(number), &answer), E_INVALIDARG);
    EXPECT_EQ(m_tree->get_accDefaultAction(Child(number), &text), E_INVALIDARG);
    EXPECT_EQ(m_tree->accSelect(SELFLAG_TAKESELECTION, Child(number)), E_INVALIDARG);
    EXPECT_EQ(m_tree->accLocation(&place[0], &place[1], &place[2], &place[3], Child(number)), E_INVALIDARG);
    EXPECT_EQ(m_tree->accNavigate(NAVDIR_NEXT, Child(number), &answer), E_INVALIDARG);
    EXPECT_EQ(m_tree->accDoDefaultAction(Child(number)), E_INVALIDARG);
  }
}

TEST_F(TreeControlAccessible, ARowCanBeSelectedAndAnotherTakesItsPlace) {
  EXPECT_EQ(m_tree->accSelect(SELFLAG_TAKESELECTION, Child(kFirst)), S_OK);
  EXPECT_EQ(Selection(), kFirst);
  EXPECT_EQ(m_tree->accSelect(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION, Child(kLastRow)), S_OK);
  EXPECT_EQ(m_model.Selected(), m_last);
}

TEST_F(TreeControlAccessible, ASelectionOfSeveralRowsIsRefused) {
  m_control.SelectRow(m_first);
  for (const LONG flag : {SELFLAG_ADDSELECTION, SELFLAG_EXTENDSELECTION, SELFLAG_REMOVESELECTION})
    EXPECT_EQ(m_tree->accSelect(flag, Child(kLastRow)), E_INVALIDARG);
  EXPECT_EQ(m_tree->accSelect(SELFLAG_TAKESELECTION, Child(CHILDID_SELF)), E_INVALIDARG);
  EXPECT_EQ(Selection(), kFirst);
}

TEST_F(TreeControlAccessible, TheTreeItselfTakesTheKeyboard) {
  SetFocus(nullptr);
  EXPECT_EQ(m_tree->accSelect(SELFLAG_TAKEFOCUS, Child(CHILDID_SELF)), S_OK);
  EXPECT_EQ(GetFocus(), m_control.Handle());
  EXPECT_EQ(m_model.Selected(), nullptr);
}

TEST_F(TreeControlAccessible, AClosedRowsSelectionIsTheRowItself) {
  m_control.SelectRow(m_second);
  ClickOpener(m_section);
  EXPECT_EQ(Selection(), kSection);
}

TEST_F(TreeControlAccessible, ARowIsFoundWhereItLies) {
  LONG left = 0;
  LONG top = 0;
  LONG width = 0;
  LONG height = 0;
  ASSERT_EQ(m_tree->accLocation(&left, &top, &width, &height, Child(kFirst)), S_OK);
  VARIANT row = {};
  EXPECT_EQ(m_tree->accHitTest(left + width / 2, top + height / 2, &row), S_OK);
  EXPECT_EQ(row.lVal, kFirst);
  // Below the last row there is the tree.
  ASSERT_EQ(m_tree->accLocation(&left, &top, &width, &height, Child(CHILDID_SELF)), S_OK);
  EXPECT_EQ(m_tree->accHitTest(left + width / 2, top + height - 1, &row), S_OK);
  EXPECT_EQ(row.lVal, CHILDID_SELF);
  EXPECT_EQ(m_tree->accHitTest(left, top + height, &row), S_FALSE);
}

TEST_F(TreeControlAccessible, AnObjectThatOutlivesItsWindowSaysSo) {
  DestroyWindow(m_control.Handle());
  LONG count = 7;
  BSTR name = nullptr;
  VARIANT state = {};
  EXPECT_EQ(m_tree->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
  EXPECT_EQ(m_tree->get_accName(Child(CHILDID_SELF), &name), CO_E_OBJNOTCONNECTED);
  EXPECT_EQ(m_tree->get_accState(Child(CHILDID_SELF), &state), CO_E_OBJNOTCONNECTED);
}

}  // namespace corvalt
