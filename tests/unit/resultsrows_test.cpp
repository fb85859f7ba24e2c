// The rows of the results tree: what they say, the selected row, the check boxes and the choices.

#include "ui/resultsrows.h"

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/repairrig.h"
#include "ui/tree/treelayout.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

// A tree with its rows, and a window that notes what it is asked.
class ResultsRows : public testing::Test {
 protected:
  TResultsNode* AddHeader(TextView caption, std::uint32_t childCount = 0) {
    TResultsNode* node = Tree.AddNode(nullptr);
    node->Problem.SectionCaption = caption;
    node->Problem.ChildCount = childCount;
    return node;
  }
  TResultsNode* AddProblem(TResultsNode* header,
                           ScanProblem problem = KeyProblem(kHkeyCurrentUser, u"\\Old")) {
    TResultsNode* node = Tree.AddNode(header);
    node->Problem = std::move(problem);
    return node;
  }
  void Uncheck(TResultsNode* node) {
    Tree.Model().SetChecked(node, false);
    Rows.Checked(node);
  }
  void Check(TResultsNode* node) {
    Tree.Model().SetChecked(node, true);
    Rows.Checked(node);
  }

  // A row's lines; a bold one begins with "*", a grey one with "~".
  TLines LinesOf(const TResultsNode* node) const {
    TLines lines;
    for (const TRowLine& line : Rows.Lines(*node))
      lines.push_back((line.Bold ? "*" : line.Grey ? "~" : "") + EncodeUtf8(line.Content));
    return lines;
  }

  TResultsTreeModel Tree;
  TLanguageTexts Texts = NumberedTexts();
  bool UserSaysYes = true;
  // What happens while the question stands.
  std::function<void()> Meanwhile = [] {};
  int Questions = 0;
  int SummaryChanges = 0;
  TLines IgnoreEntries;
  // Rows in the tree when the entry came.
  std::size_t NodesAtEntry = 0;
  TResultsRows Rows{Tree,
                    Texts,
                    {[this] {
                       ++Questions;
                       Meanwhile();
                       return UserSaysYes;
                     },
                     [this](const Text& entry) {
                       IgnoreEntries.push_back(EncodeUtf8(entry));
                       NodesAtEntry = Tree.Model().TotalCount();
                     },
                     [this] { ++SummaryChanges; }}};
};

}  // namespace

// Lines and heights

TEST_F(ResultsRows, AHeaderOfASectionBeingScannedSaysSo) {
  EXPECT_EQ(LinesOf(AddHeader(u"Fonts")), TLines({"*Fonts - " + Said(TextId::HeaderScanning) + "..."}));
}

TEST_F(ResultsRows, AHeaderSaysItsStoredCountBehindTwoBlanks) {
  EXPECT_EQ(LinesOf(AddHeader(u"Fonts", 3)), TLines({"*Fonts  " + Said(TextId::HeaderCount, u"3")}));
}

TEST_F(ResultsRows, AHeaderCountsByItsStoredCountAndNotByItsRows) {
  TResultsNode* header = AddHeader(u"Fonts");
  AddProblem(header);
  EXPECT_EQ(LinesOf(header), TLines({"*Fonts - " + Said(TextId::HeaderScanning) + "..."}));
}

TEST_F(ResultsRows, AKeyProblemShowsRootAndPathThenItsReasonInGrey) {
  ScanProblem problem = KeyProblem(kHkeyLocalMachine, u"\\Software\\Old");
  problem.Description = u"why";
  EXPECT_EQ(LinesOf(AddProblem(AddHeader(u"A"), problem)),
            TLines({Said(TextId::RowLocation) + " HKEY_LOCAL_MACHINE\\Software\\Old", "~why"}));
}

TEST_F(ResultsRows, AValueProblemShowsItsKey) {
  const TResultsNode* node = AddProblem(AddHeader(u"A"), ValueProblem(kHkeyUsers, u"\\Run", u"Updater"));
  EXPECT_EQ(LinesOf(node).front(), Said(TextId::RowLocation) + " HKEY_USERS\\Run");
}

TEST_F(ResultsRows, AFileProblemShowsItsFileWithoutRoot) {
  EXPECT_EQ(LinesOf(AddProblem(AddHeader(u"A"), FileProblem(u"C:\\a.lnk"))).front(),
            Said(TextId::RowLocation) + " C:\\a.lnk");
}

TEST_F(ResultsRows, TheSelectedProblemHasNoGreyAndAThirdLineForItsControls) {
  ScanProblem problem = KeyProblem(kHkeyCurrentUser, u"\\Old");
  problem.Description = u"why";
  TResultsNode* node = AddProblem(AddHeader(u"A"), problem);
  Rows.Select(node);
  EXPECT_EQ(LinesOf(node), TLines({Said(TextId::RowLocation) + " HKEY_CURRENT_USER\\Old", "why",
                                   Said(TextId::RowAction) + " "}));
}

TEST_F(ResultsRows, ASelectedHeaderKeepsItsOneLine) {
  TResultsNode* header = AddHeader(u"Fonts", 1);
  Rows.Select(header);
  EXPECT_EQ(LinesOf(header), TLines({"*Fonts  " + Said(TextId::HeaderCount, u"1")}));
  EXPECT_EQ(TResultsRows::HeightInUnits(*header), 1);
}

TEST_F(ResultsRows, PathsKeepTheirAmpersandsAndDescriptionsShowEachOnce) {
  ScanProblem problem = KeyProblem(kHkeyCurrentUser, u"\\A && B & C");
  problem.Description = u"A && B";
  EXPECT_EQ(LinesOf(AddProblem(AddHeader(u"A"), problem)),
            TLines({Said(TextId::RowLocation) + " HKEY_CURRENT_USER\\A && B & C", "~A & B"}));
  problem = FileProblem(u"C:\\A && B");
  EXPECT_EQ(LinesOf(AddProblem(AddHeader(u"A"), problem)).front(), Said(TextId::RowLocation) + " C:\\A && B");
}

TEST_F(ResultsRows, AHeaderIsOneUnitHighAProblemTwoAndTheSelectedOneThree) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  EXPECT_EQ(TResultsRows::HeightInUnits(*header), 1);
  EXPECT_EQ(TResultsRows::HeightInUnits(*node), 2);
  Rows.Select(node);
  EXPECT_EQ(TResultsRows::HeightInUnits(*node), 3);
}

// Selection

TEST_F(ResultsRows, SelectingAnotherRowTakesTheFirstBackToTwoLines) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* first = AddProblem(header);
  TResultsNode* second = AddProblem(header);
  Rows.Select(first);
  Rows.Select(second);
  EXPECT_EQ(TResultsRows::HeightInUnits(*first), 2);
  EXPECT_EQ(TResultsRows::HeightInUnits(*second), 3);
  EXPECT_EQ(Rows.SelectedProblem(), second);
}

TEST_F(ResultsRows, SelectingAHeaderLeavesNoProblemSelected) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  Rows.Select(node);
  Rows.Select(header);
  EXPECT_EQ(Rows.Selected(), header);
  EXPECT_EQ(Rows.SelectedProblem(), nullptr);
  EXPECT_TRUE(header->Problem.StateFlag1);
  EXPECT_FALSE(node->Problem.StateFlag1);
}

TEST_F(ResultsRows, SelectingNoRowChangesNothing) {
  TResultsNode* node = AddProblem(AddHeader(u"A"));
  Rows.Select(node);
  Rows.Select(nullptr);
  EXPECT_EQ(Rows.Selected(), node);
  EXPECT_TRUE(node->Problem.StateFlag1);
}

TEST_F(ResultsRows, SelectingTheSelectedRowAgainKeepsIt) {
  TResultsNode* node = AddProblem(AddHeader(u"A"));
  Rows.Select(node);
  Rows.Select(node);
  EXPECT_EQ(Rows.SelectedProblem(), node);
  EXPECT_EQ(TResultsRows::HeightInUnits(*node), 3);
}

TEST_F(ResultsRows, AForgottenRowIsBackToTwoLines) {
  TResultsNode* node = AddProblem(AddHeader(u"A"));
  Rows.Select(node);
  Rows.ForgetSelection();
  EXPECT_EQ(Rows.Selected(), nullptr);
  EXPECT_EQ(TResultsRows::HeightInUnits(*node), 2);
}

TEST_F(ResultsRows, ARowThatHasLeftTheTreeIsSelectedNoMore) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  TResultsNode* other = AddProblem(header);
  Rows.Select(node);
  Tree.DeleteNode(node);
  EXPECT_EQ(Rows.Selected(), nullptr);
  Rows.Select(other);
  Tree.Clear();
  EXPECT_EQ(Rows.Selected(), nullptr);
  EXPECT_EQ(Rows.SelectedProblem(), nullptr);
}

// The layout adds heights up and keeps the sums: it must hear of every row that grows or shrinks.
TEST_F(ResultsRows, TheLayoutFollowsTheSelection) {
  constexpr int kUnit = 10;
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* first = AddProblem(header);
  TResultsNode* middle = AddProblem(header);
  TResultsNode* last = AddProblem(header);
  TTreeLayout layout(Tree.Model(), [](const TTreeNode& node) {
    return kUnit * TResultsRows::HeightInUnits(static_cast<const TResultsNode&>(node));
  });
  EXPECT_EQ(layout.TotalHeight(), 70);
  Rows.Select(first);
  EXPECT_EQ(layout.TotalHeight(), 80);
  EXPECT_EQ(layout.RowOf(last).Top, 60);
  // From above downwards, and back up.
  Rows.Select(last);
  EXPECT_EQ(layout.TotalHeight(), 80);
  EXPECT_EQ(layout.RowOf(last).Top, 50);
  EXPECT_EQ(layout.RowAt(35)->Node, middle);
  Rows.Select(first);
  EXPECT_EQ(layout.RowOf(last).Top, 60);
  Rows.Select(header);
  EXPECT_EQ(layout.TotalHeight(), 70);
  Rows.Select(last);
  Rows.ForgetSelection();
  EXPECT_EQ(layout.TotalHeight(), 70);
}

// The selected row's controls

TEST_F(ResultsRows, ARegistryProblemOffersThreeChoicesAndTheRegistryEditor) {
  for (const ScanProblem& problem :
       {KeyProblem(kHkeyCurrentUser, u"\\Old"), ValueProblem(kHkeyCurrentUser, u"\\Old", u"v")}) {
    Rows.Select(AddProblem(AddHeader(u"A"), problem));
    const TRowControls controls = Rows.Controls();
    EXPECT_EQ(controls.Choices,
              std::vector<Text>(
                  {Says(TextId::ChoiceRepair), Says(TextId::ChoiceDoNotRepair), Says(TextId::ChoiceIgnore)}));
    EXPECT_EQ(controls.ButtonCaption, Says(TextId::ButtonOpenInRegedit));
    EXPECT_EQ(controls.ButtonTip, Says(TextId::TipOpenInRegedit));
  }
}

TEST_F(ResultsRows, AFileProblemOffersTwoChoicesAndItsProperties) {
  Rows.Select(AddProblem(AddHeader(u"A"), FileProblem(u"C:\\a")));
  const TRowControls controls = Rows.Controls();
  EXPECT_EQ(controls.Choices,
            std::vector<Text>({Says(TextId::ChoiceRepairFile), Says(TextId::ChoiceDoNotRepairFile)}));
  EXPECT_EQ(controls.ButtonCaption, Says(TextId::ButtonProperties));
  EXPECT_EQ(controls.ButtonTip, Says(TextId::TipProperties));
}

TEST_F(ResultsRows, TheChooserShowsTheMark) {
  TResultsNode* node = AddProblem(AddHeader(u"A"));
  Rows.Select(node);
  EXPECT_EQ(Rows.Controls().Choice, 0);
  Uncheck(node);
  EXPECT_EQ(Rows.Controls().Choice, 1);
  Check(node);
  EXPECT_EQ(Rows.Controls().Choice, 0);
}

// Check boxes

TEST_F(ResultsRows, UncheckingARowMarksItAsSkippedAndCheckingAsRepaired) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  TResultsNode* sibling = AddProblem(header);
  Uncheck(node);
  EXPECT_EQ(node->Problem.CheckMark, TCheckMark::Skip);
  EXPECT_EQ(sibling->Problem.CheckMark, TCheckMark::Repair);
  EXPECT_EQ(header->State, TCheckState::Mixed);
  Check(node);
  EXPECT_EQ(node->Problem.CheckMark, TCheckMark::Repair);
  EXPECT_EQ(header->State, TCheckState::Checked);
}

TEST_F(ResultsRows, UncheckingAHeaderMarksEveryChildAsSkippedAndCheckingAsRepaired) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* first = AddProblem(header);
  TResultsNode* second = AddProblem(header);
  TResultsNode* elsewhere = AddProblem(AddHeader(u"B"));
  Uncheck(first);
  Uncheck(header);
  EXPECT_EQ(first->Problem.CheckMark, TCheckMark::Skip);
  EXPECT_EQ(second->Problem.CheckMark, TCheckMark::Skip);
  EXPECT_EQ(elsewhere->Problem.CheckMark, TCheckMark::Repair);
  Check(header);
  EXPECT_EQ(first->Problem.CheckMark, TCheckMark::Repair);
  EXPECT_EQ(second->Problem.CheckMark, TCheckMark::Repair);
}

TEST_F(ResultsRows, AHeadersOwnMarkDoesNotFollowItsCheckBox) {
  TResultsNode* header = AddHeader(u"A");
  AddProblem(header);
  Uncheck(header);
  EXPECT_EQ(header->Problem.CheckMark, TCheckMark::Repair);
}

TEST_F(ResultsRows, EachCheckUpdatesTheSummaryOnce) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  AddProblem(header);
  Uncheck(node);
  EXPECT_EQ(SummaryChanges, 1);
  Check(header);
  EXPECT_EQ(SummaryChanges, 2);
}

// Choices

TEST_F(ResultsRows, ChoosingNotToRepairUnchecksTheRow) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  AddProblem(header);
  Rows.Select(node);
  Rows.Choose(kChoiceSkip);
  EXPECT_EQ(node->Problem.CheckMark, TCheckMark::Skip);
  EXPECT_EQ(node->State, TCheckState::Unchecked);
  EXPECT_EQ(header->State, TCheckState::Mixed);
  EXPECT_EQ(SummaryChanges, 1);
  EXPECT_EQ(Questions, 0);
}

TEST_F(ResultsRows, ChoosingForTheOnlyRowGivesItsHeaderTheSameState) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  Rows.Select(node);
  Rows.Choose(kChoiceSkip);
  EXPECT_EQ(header->State, TCheckState::Unchecked);
  Rows.Choose(kChoiceRepair);
  EXPECT_EQ(node->Problem.CheckMark, TCheckMark::Repair);
  EXPECT_EQ(node->State, TCheckState::Checked);
  EXPECT_EQ(header->State, TCheckState::Checked);
}

TEST_F(ResultsRows, ChoosingWithoutASelectedProblemDoesNothing) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  for (const std::int32_t choice : {kChoiceRepair, kChoiceSkip, kChoiceIgnore}) {
    Rows.Choose(choice);
    Rows.Select(header);
    Rows.Choose(choice);
    Rows.ForgetSelection();
  }
  EXPECT_EQ(node->State, TCheckState::Checked);
  EXPECT_EQ(Questions, 0);
  EXPECT_EQ(SummaryChanges, 0);
}

TEST_F(ResultsRows, IgnoringRemovesTheRowThenAddsItsEntry) {
  TResultsNode* header = AddHeader(u"A", 2);
  TResultsNode* node = AddProblem(header, ValueProblem(kHkeyLocalMachine, u"\\Run", u"Updater"));
  TResultsNode* sibling = AddProblem(header);
  Rows.Select(node);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Questions, 1);
  EXPECT_EQ(IgnoreEntries, TLines({"HKEY_LOCAL_MACHINE\\Run\\Updater"}));
  EXPECT_EQ(NodesAtEntry, 2u);
  EXPECT_EQ(Tree.FirstChild(header), sibling);
  EXPECT_EQ(SummaryChanges, 1);
}

TEST_F(ResultsRows, AfterARowIsIgnoredTheNextOneIsSelectedAndAtTheEndTheOneBefore) {
  TResultsNode* header = AddHeader(u"A", 3);
  TResultsNode* first = AddProblem(header);
  TResultsNode* second = AddProblem(header);
  TResultsNode* third = AddProblem(header);
  Rows.Select(second);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Rows.Selected(), third);
  EXPECT_TRUE(third->Problem.StateFlag1);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Rows.Selected(), first);
}

TEST_F(ResultsRows, AfterASectionsOnlyRowIsIgnoredTheNextSectionIsSelected) {
  TResultsNode* before = AddHeader(u"A");
  AddProblem(before);
  TResultsNode* header = AddHeader(u"B");
  TResultsNode* row = AddProblem(header);
  TResultsNode* after = AddHeader(u"C");
  TResultsNode* last = AddProblem(after);
  Rows.Select(row);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Rows.Selected(), after);
  Rows.Select(last);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Rows.Selected(), before);
  Rows.Select(static_cast<TResultsNode*>(before->Children.front().get()));
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Rows.Selected(), nullptr);
}

TEST_F(ResultsRows, TheEntryOfAKeyEndsInASeparator) {
  Rows.Select(AddProblem(AddHeader(u"A"), KeyProblem(kHkeyCurrentUser, u"\\Software\\Old")));
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(IgnoreEntries, TLines({"HKEY_CURRENT_USER\\Software\\Old\\"}));
}

TEST_F(ResultsRows, IgnoringTheOnlyRowRemovesItsHeaderToo) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* other = AddHeader(u"B");
  AddProblem(other);
  Rows.Select(AddProblem(header));
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Tree.FirstRoot(), other);
  EXPECT_EQ(Tree.NextSibling(other), nullptr);
  EXPECT_EQ(Tree.Model().TotalCount(), 2u);
  EXPECT_EQ(IgnoreEntries.size(), 1u);
}

TEST_F(ResultsRows, IgnoringChangesNeitherCountNorCheckOfTheHeader) {
  TResultsNode* header = AddHeader(u"A", 2);
  TResultsNode* node = AddProblem(header);
  TResultsNode* sibling = AddProblem(header);
  Uncheck(sibling);
  Rows.Select(node);
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(header->Problem.ChildCount, 2u);
  EXPECT_EQ(header->State, TCheckState::Mixed);
}

TEST_F(ResultsRows, SayingNoToIgnoringChangesNothing) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* node = AddProblem(header);
  AddProblem(header);
  Uncheck(node);
  Rows.Select(node);
  UserSaysYes = false;
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Questions, 1);
  EXPECT_TRUE(IgnoreEntries.empty());
  EXPECT_EQ(Tree.Model().TotalCount(), 3u);
  EXPECT_EQ(Rows.SelectedProblem(), node);
  EXPECT_EQ(Rows.Controls().Choice, 1);
  EXPECT_EQ(node->State, TCheckState::Unchecked);
}

TEST_F(ResultsRows, ARowThatIsLeftWhileTheQuestionStandsIsNotIgnored) {
  TResultsNode* header = AddHeader(u"A");
  Rows.Select(AddProblem(header));
  Meanwhile = [this, header] { Rows.Select(header); };
  Rows.Choose(kChoiceIgnore);
  EXPECT_EQ(Tree.Model().TotalCount(), 2u);
  EXPECT_TRUE(IgnoreEntries.empty());
}

TEST_F(ResultsRows, ARowThatLeavesTheTreeWhileTheQuestionStandsIsNotIgnored) {
  Rows.Select(AddProblem(AddHeader(u"A")));
  Meanwhile = [this] { Tree.Clear(); };
  Rows.Choose(kChoiceIgnore);
  EXPECT_TRUE(IgnoreEntries.empty());
}

// After a repair

TEST_F(ResultsRows, RemovedRowsGoAndTheirHeadersCountTheRest) {
  TResultsNode* header = AddHeader(u"A", 3);
  TResultsNode* first = AddProblem(header);
  TResultsNode* second = AddProblem(header);
  TResultsNode* third = AddProblem(header);
  Uncheck(second);
  first->Problem.StateFlag2 = true;
  third->Problem.StateFlag2 = true;
  Rows.DropRemoved();
  EXPECT_EQ(Tree.FirstChild(header), second);
  EXPECT_EQ(Tree.NextSibling(second), nullptr);
  EXPECT_EQ(header->Problem.ChildCount, 1u);
  EXPECT_EQ(header->State, TCheckState::Unchecked);
}

TEST_F(ResultsRows, RowsOfTwoStatesLeaveTheirHeaderMixed) {
  TResultsNode* header = AddHeader(u"A", 3);
  AddProblem(header)->Problem.StateFlag2 = true;
  AddProblem(header);
  Uncheck(AddProblem(header));
  Rows.DropRemoved();
  EXPECT_EQ(header->State, TCheckState::Mixed);
  EXPECT_EQ(header->Problem.ChildCount, 2u);
}

TEST_F(ResultsRows, HeadersWithoutRowsGo) {
  for (int i = 0; i < 2; ++i) {
    TResultsNode* header = AddHeader(u"A", 2);
    AddProblem(header)->Problem.StateFlag2 = true;
    AddProblem(header)->Problem.StateFlag2 = true;
  }
  TResultsNode* kept = AddHeader(u"B", 1);
  AddProblem(kept);
  AddHeader(u"C");
  Rows.DropRemoved();
  EXPECT_EQ(Tree.FirstRoot(), kept);
  EXPECT_EQ(Tree.NextSibling(kept), nullptr);
  EXPECT_EQ(Tree.Model().TotalCount(), 2u);
}

TEST_F(ResultsRows, ARemovedRowIsSelectedNoMoreAndAKeptOneStays) {
  TResultsNode* header = AddHeader(u"A");
  TResultsNode* removed = AddProblem(header);
  TResultsNode* kept = AddProblem(header);
  removed->Problem.StateFlag2 = true;
  Rows.Select(removed);
  Rows.DropRemoved();
  EXPECT_EQ(Rows.Selected(), nullptr);
  Rows.Select(kept);
  Rows.DropRemoved();
  EXPECT_EQ(Rows.Selected(), kept);
}

TEST_F(ResultsRows, DroppingFromAnEmptyTreeDoesNothing) {
  Rows.DropRemoved();
  EXPECT_EQ(Tree.Model().TotalCount(), 0u);
}

TEST_F(ResultsRows, AChoiceThatTheListDoesNotHaveChangesNothing) {
  TResultsNode* header = AddHeader(u"Fonts");
  TResultsNode* key = AddProblem(header);
  TResultsNode* file = AddProblem(header, FileProblem(u"C:\\gone.txt"));
  for (TResultsNode* node : {key, file}) {
    Rows.Select(node);
    Rows.Choose(-1);
    Rows.Choose(3);
  }
  Rows.Choose(kChoiceIgnore);
  for (const TResultsNode* node : {key, file}) {
    EXPECT_EQ(node->Problem.CheckMark, TCheckMark::Repair);
    EXPECT_EQ(node->State, TCheckState::Checked);
  }
  EXPECT_EQ(Questions, 0);
  EXPECT_EQ(SummaryChanges, 0);
}

}  // namespace corvalt
