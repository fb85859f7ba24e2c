// The tree control in a real window: what is cut off can be read all the same.
#include "ui/windows/treecontrol.h"

#include <gtest/gtest.h>

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
    DestroyWindow(m_frame);
  }

  void Add(TextView caption) {
    auto node = std::make_unique<TNamedNode>();
    node->Caption = caption;
    m_model.Add(nullptr, std::move(node));
    m_control.Refresh();
  }

  // Moves the mouse over a row; answers the text of its tip, empty when it has none.
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
  Text SearchText(const TTreeNode&) const override {
    return {};
  }
  Text EmptyHint() const override {
    return {};
  }
  bool MayCheck() const override {
    return true;
  }
  void RowSelected(TTreeNode*) override {
  }
  void RowChecked(TTreeNode*) override {
  }
  void RowsMoved() override {
  }
  int ColumnWidth() const override {
    return 0;
  }
  void SetColumnWidth(int) override {
  }

  HWND m_frame = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 300, nullptr,
                                 nullptr, ProgramInstance(), nullptr);

 protected:
  TTreeModel m_model;

 private:
  TTreeControl m_control{m_model, *this, {}};
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
