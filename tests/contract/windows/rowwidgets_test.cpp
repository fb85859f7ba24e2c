// The drop-down list and the button on the selected row: when a choice counts as made, and what the wheel
// does.
#include "ui/windows/rowwidgets.h"

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/repairrig.h"
#include "tests/support/scanrig.h"
#include "ui/windows/commands.h"
#include "ui/windows/maintrees.h"

namespace corvalt {

namespace {

// A results tree of many problems in a window that takes the notices of the drop-down list.
class RowWidgets : public testing::Test, private TTreeControlOwner {
 protected:
  RowWidgets() {
    m_frameMessages.Attach(m_frame, [this](UINT message, WPARAM wParam, LPARAM) {
      if (message == WM_COMMAND && LOWORD(wParam) == kChooserId && m_widgets.IsChoiceMade(HIWORD(wParam)))
        m_choices.push_back(m_widgets.Choice());
      return std::optional<LRESULT>();
    });
    m_tree.Create(m_frame, kResultsTreeId, nullptr);
    MoveWindow(m_tree.Handle(), 0, 0, 500, 200, FALSE);
    m_widgets.Create(m_tree.Font());
    TResultsNode* header = m_results.AddNode(nullptr);
    for (int i = 0; i < 50; ++i)
      m_results.AddNode(header)->Problem = KeyProblem(kHkeyCurrentUser, u"\\Old" + DecimalText(i));
    m_tree.Refresh();
    m_tree.SelectRow(header->Children.front().get());
    SetFocus(Chooser());
  }
  ~RowWidgets() override {
    DestroyWindow(m_tree.Handle());
    DestroyWindow(m_frame);
  }

  HWND Chooser() const {
    return GetDlgItem(m_tree.Handle(), kChooserId);
  }
  void Press(WPARAM key) const {
    ::SendMessageW(Chooser(), WM_KEYDOWN, key, 1);
  }
  void Wheel(int notches) const {
    ::SendMessageW(Chooser(), WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA), 0);
  }
  void Open() const {
    ::SendMessageW(Chooser(), CB_SHOWDROPDOWN, TRUE, 0);
  }
  int ScrollPosition() const {
    return GetScrollPos(m_tree.Handle(), SB_VERT);
  }

  TLanguageTexts m_texts = NumberedTexts();
  TResultsTreeModel m_results;
  TResultsRows m_rows{m_results, m_texts, {[] { return false; }, [](const Text&) {}, [] {}}};
  HWND m_frame = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 600, 300, nullptr,
                                 nullptr, ProgramInstance(), nullptr);
  TTreeControl m_tree{m_results.Model(), *this, {true, true, false}};
  TRowWidgets m_widgets{m_rows, m_results, m_tree};
  TSubclass m_frameMessages;
  // The places that were chosen.
  std::vector<std::int32_t> m_choices;

 private:
  int RowUnits(const TTreeNode& node) const override {
    return TResultsRows::HeightInUnits(static_cast<const TResultsNode&>(node));
  }
  TRowLook LookOf(const TTreeNode&) const override {
    return {};
  }
  Text TreeName() const override {
    return {};
  }
  Text ActionName(bool) const override {
    return {};
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
    m_rows.Select(static_cast<TResultsNode*>(node));
    m_widgets.Fill();
  }
  void RowChecked(TTreeNode*) override {
  }
  void RowsMoved() override {
    m_widgets.Place();
  }
  int ColumnWidth() const override {
    return m_results.ColumnWidth();
  }
  void SetColumnWidth(int width) override {
    m_results.SetColumnWidth(width);
  }
};

}  // namespace

TEST_F(RowWidgets, AClosedListPassesTheWheelOnToTheTree) {
  Wheel(-1);
  EXPECT_GT(ScrollPosition(), 0);
  EXPECT_EQ(m_widgets.Choice(), kChoiceRepair);
  EXPECT_TRUE(m_choices.empty());
  Wheel(1);
  EXPECT_EQ(ScrollPosition(), 0);
}

TEST_F(RowWidgets, AKeyInTheClosedListIsAChoice) {
  Press(VK_DOWN);
  EXPECT_EQ(m_widgets.Choice(), kChoiceSkip);
  ASSERT_FALSE(m_choices.empty());
  EXPECT_EQ(m_choices.back(), kChoiceSkip);
}

TEST_F(RowWidgets, LookingThroughTheOpenListIsNoChoiceUntilEnter) {
  Open();
  Press(VK_DOWN);
  Press(VK_DOWN);
  EXPECT_TRUE(m_choices.empty());
  Press(VK_RETURN);
  ASSERT_FALSE(m_choices.empty());
  EXPECT_EQ(m_choices.back(), kChoiceIgnore);
  EXPECT_TRUE(m_widgets.ChoiceDiffers());
}

TEST_F(RowWidgets, EscapeInTheOpenListBringsTheRowsChoiceBack) {
  Open();
  Press(VK_DOWN);
  Press(VK_ESCAPE);
  EXPECT_TRUE(m_choices.empty());
  EXPECT_EQ(m_widgets.Choice(), kChoiceRepair);
  EXPECT_FALSE(m_widgets.ChoiceDiffers());
  // The next time a choice counts again.
  Open();
  Press(VK_DOWN);
  Press(VK_RETURN);
  ASSERT_FALSE(m_choices.empty());
  EXPECT_EQ(m_choices.back(), kChoiceSkip);
}

TEST_F(RowWidgets, ListAndButtonHaveNamesToAssistiveTechnology) {
  const auto nameOf = [](HWND control) {
    IAccessible* object = nullptr;
    AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               reinterpret_cast<void**>(&object));
    VARIANT self = {};
    self.vt = VT_I4;
    BSTR name = nullptr;
    object->get_accName(self, &name);
    const Text text(FromWide(name, SysStringLen(name)));
    SysFreeString(name);
    object->Release();
    return text;
  };
  EXPECT_EQ(nameOf(Chooser()), Says(TextId::RowAction));
  EXPECT_EQ(nameOf(m_widgets.Button()), Says(TextId::ButtonOpenInRegedit));
}

TEST_F(RowWidgets, TheOpenListTakesTheWheel) {
  Open();
  Wheel(-1);
  EXPECT_EQ(ScrollPosition(), 0);
  Press(VK_ESCAPE);
}

}  // namespace corvalt
