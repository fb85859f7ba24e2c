// The tree without a window, and the results tree that stands on it.

#include "ui/tree/treemodel.h"

#include <gtest/gtest.h>

#include "ui/resultstree.h"

namespace corvalt {

namespace {

// Two roots; the first has three children, the second of which has two of its own.
struct TSmallTree {
  TSmallTree() {
    First = Add(nullptr);
    A = Add(First);
    B = Add(First);
    B1 = Add(B);
    B2 = Add(B);
    C = Add(First);
    Second = Add(nullptr);
  }

  TTreeNode* Add(TTreeNode* parent) {
    return Model.Add(parent, std::make_unique<TTreeNode>());
  }

  TTreeModel Model;
  TTreeNode* First;
  TTreeNode* A;
  TTreeNode* B;
  TTreeNode* B1;
  TTreeNode* B2;
  TTreeNode* C;
  TTreeNode* Second;
};

}  // namespace

TEST(TreeModel, NodesFollowEachOtherInTheOrderTheyWereAdded) {
  TSmallTree tree;
  EXPECT_EQ(tree.Model.FirstRoot(), tree.First);
  EXPECT_EQ(tree.Model.NextSibling(tree.First), tree.Second);
  EXPECT_EQ(tree.Model.NextSibling(tree.Second), nullptr);
  EXPECT_EQ(tree.Model.FirstChild(tree.First), tree.A);
  EXPECT_EQ(tree.Model.NextSibling(tree.A), tree.B);
  EXPECT_EQ(tree.Model.NextSibling(tree.C), nullptr);
  EXPECT_EQ(tree.Model.FirstChild(tree.A), nullptr);
  EXPECT_EQ(tree.B2->Parent, tree.B);
  EXPECT_EQ(tree.Model.TotalCount(), 7u);
}

TEST(TreeModel, AnEmptyTreeHasNoRoot) {
  const TTreeModel model;
  EXPECT_EQ(model.FirstRoot(), nullptr);
  EXPECT_EQ(model.TotalCount(), 0u);
}

TEST(TreeModel, ClearLeavesNothing) {
  TSmallTree tree;
  tree.Model.Clear();
  EXPECT_EQ(tree.Model.FirstRoot(), nullptr);
  EXPECT_EQ(tree.Model.TotalCount(), 0u);
}

TEST(TreeModel, DeletingANodeTakesWhatIsBelowItAndClosesTheGap) {
  TSmallTree tree;
  tree.Model.Delete(tree.B);
  EXPECT_EQ(tree.Model.NextSibling(tree.A), tree.C);
  EXPECT_EQ(tree.C->Index, 1u);
  EXPECT_EQ(tree.Model.TotalCount(), 4u);
  tree.Model.Delete(tree.First);
  EXPECT_EQ(tree.Model.FirstRoot(), tree.Second);
  EXPECT_EQ(tree.Second->Index, 0u);
  EXPECT_EQ(tree.Model.TotalCount(), 1u);
}

TEST(TreeModel, ChildrenAreDeletedByATestInOnePass) {
  TSmallTree tree;
  tree.Model.DeleteChildren(tree.First, [&tree](const TTreeNode& node) { return &node != tree.C; });
  EXPECT_EQ(tree.Model.FirstChild(tree.First), tree.C);
  EXPECT_EQ(tree.Model.NextSibling(tree.C), nullptr);
  EXPECT_EQ(tree.C->Index, 0u);
  EXPECT_EQ(tree.Model.TotalCount(), 3u);
}

TEST(TreeModel, ATestThatAcceptsNoneDeletesNone) {
  TSmallTree tree;
  tree.Model.DeleteChildren(tree.First, [](const TTreeNode&) { return false; });
  EXPECT_EQ(tree.Model.TotalCount(), 7u);
  EXPECT_EQ(tree.Model.NextSibling(tree.B), tree.C);
}

TEST(TreeModel, UncheckingAParentUnchecksEverythingBelowIt) {
  TSmallTree tree;
  tree.Model.SetChecked(tree.First, false);
  for (const TTreeNode* node : {tree.First, tree.A, tree.B, tree.B1, tree.B2, tree.C})
    EXPECT_EQ(node->State, TCheckState::Unchecked);
  EXPECT_EQ(tree.Second->State, TCheckState::Checked);
  tree.Model.SetChecked(tree.First, true);
  for (const TTreeNode* node : {tree.First, tree.A, tree.B, tree.B1, tree.B2, tree.C})
    EXPECT_EQ(node->State, TCheckState::Checked);
}

TEST(TreeModel, ChildrenThatDifferMakeEveryParentMixed) {
  TSmallTree tree;
  tree.Model.SetChecked(tree.B1, false);
  EXPECT_EQ(tree.B->State, TCheckState::Mixed);
  EXPECT_EQ(tree.First->State, TCheckState::Mixed);
  EXPECT_EQ(tree.A->State, TCheckState::Checked);
}

TEST(TreeModel, AMixedChildAmongUncheckedOnesMakesItsParentMixed) {
  TSmallTree tree;
  for (TTreeNode* node : {tree.A, tree.B1, tree.C})
    tree.Model.SetChecked(node, false);
  EXPECT_EQ(tree.B->State, TCheckState::Mixed);
  EXPECT_EQ(tree.First->State, TCheckState::Mixed);
}

TEST(TreeModel, AParentFollowsChildrenThatAgree) {
  TSmallTree tree;
  for (TTreeNode* node : {tree.A, tree.B1, tree.B2, tree.C})
    tree.Model.SetChecked(node, false);
  EXPECT_EQ(tree.B->State, TCheckState::Unchecked);
  EXPECT_EQ(tree.First->State, TCheckState::Unchecked);
  for (TTreeNode* node : {tree.A, tree.B1, tree.B2, tree.C})
    tree.Model.SetChecked(node, true);
  EXPECT_EQ(tree.B->State, TCheckState::Checked);
  EXPECT_EQ(tree.First->State, TCheckState::Checked);
}

TEST(TreeModel, ANodeWithoutChildrenKeepsItsState) {
  TSmallTree tree;
  tree.Model.SetChecked(tree.A, false);
  EXPECT_EQ(TTreeModel::StateFromChildren(*tree.A), TCheckState::Unchecked);
  EXPECT_EQ(TTreeModel::StateFromChildren(*tree.C), TCheckState::Checked);
}

// The results tree

TEST(ResultsTree, ANewNodeIsACheckedProblemAsTheScanLeavesIt) {
  TResultsTreeModel tree;
  TResultsNode* node = tree.AddNode(nullptr);
  EXPECT_EQ(tree.CheckState(node), TCheckState::Checked);
  const ScanProblem& problem = tree.Data(node);
  EXPECT_EQ(problem.CheckMark, TCheckMark::Repair);
  EXPECT_EQ(problem.ChildCount, 0u);
  EXPECT_FALSE(problem.StateFlag1);
  EXPECT_FALSE(problem.StateFlag2);
}

TEST(ResultsTree, AHeaderOpensWithItsFirstProblemAndStaysAsTheUserLeavesIt) {
  TResultsTreeModel tree;
  TResultsNode* header = tree.AddNode(nullptr);
  EXPECT_FALSE(header->Expanded);
  tree.AddNode(header);
  EXPECT_TRUE(header->Expanded);
  header->Expanded = false;
  tree.AddNode(header);
  EXPECT_FALSE(header->Expanded);
}

TEST(ResultsTree, CountsAndWalksItsProblems) {
  TResultsTreeModel tree;
  TResultsNode* header = tree.AddNode(nullptr);
  TResultsNode* other = tree.AddNode(nullptr);
  TResultsNode* first = tree.AddNode(header);
  TResultsNode* second = tree.AddNode(header);
  EXPECT_EQ(tree.ChildCount(header), 2u);
  EXPECT_EQ(tree.ChildCount(other), 0u);
  EXPECT_EQ(tree.FirstRoot(), header);
  EXPECT_EQ(tree.NextSibling(header), other);
  EXPECT_EQ(tree.FirstChild(header), first);
  EXPECT_EQ(tree.NextSibling(first), second);
  tree.DeleteNode(first);
  EXPECT_EQ(tree.FirstChild(header), second);
  tree.Clear();
  EXPECT_EQ(tree.FirstRoot(), nullptr);
}

TEST(ResultsTree, ItsColumnBeginsThreeHundredPixelsWide) {
  TResultsTreeModel tree;
  EXPECT_EQ(tree.ColumnWidth(), 300);
  tree.SetColumnWidth(512);
  EXPECT_EQ(tree.ColumnWidth(), 512);
}

}  // namespace corvalt
