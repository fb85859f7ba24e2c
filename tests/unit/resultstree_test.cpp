#include "ui/resultstree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvalt {

namespace {

// Two headers, "A" with the problems "a1" and "a2", "B" with the problem "b1".
class AResultsTree : public ::testing::Test {
 protected:
  AResultsTree() {
    TResultsNode* a = Add(nullptr, u"A");
    Add(a, u"a1");
    Add(a, u"a2");
    Add(Add(nullptr, u"B"), u"b1");
  }

  TResultsNode* Add(TResultsNode* parent, TextView name) {
    TResultsNode* const node = Tree.AddNode(parent);
    (parent == nullptr ? Tree.Data(node).SectionCaption : Tree.Data(node).KeyPath) = name;
    return node;
  }

  // The problems of the whole tree, through a const tree.
  std::vector<Text> Problems() const {
    std::vector<Text> paths;
    const TResultsTree& tree = Tree;
    ForEachProblem(tree, [&](const TResultsNode* node) { paths.push_back(tree.Data(node).KeyPath); });
    return paths;
  }

  std::vector<Text> Headers() const {
    std::vector<Text> captions;
    const TResultsTree& tree = Tree;
    ForEachHeader(tree,
                  [&](const TResultsNode* node) { captions.push_back(tree.Data(node).SectionCaption); });
    return captions;
  }

  TResultsTreeModel Tree;
};

}  // namespace

TEST_F(AResultsTree, IsReadInTreeOrderWhileItIsConst) {
  EXPECT_EQ(Headers(), (std::vector<Text>{u"A", u"B"}));
  EXPECT_EQ(Problems(), (std::vector<Text>{u"a1", u"a2", u"b1"}));
}

TEST_F(AResultsTree, WithoutProblemsHasNoneToVisit) {
  Tree.Clear();
  EXPECT_TRUE(Headers().empty());
  EXPECT_TRUE(Problems().empty());
}

TEST_F(AResultsTree, LosesTheDeletedProblemsAndTheHeadersLeftWithoutAny) {
  Tree.DeleteProblems([](const TResultsNode& node) { return node.Problem.KeyPath != u"a2"; });
  EXPECT_EQ(Headers(), (std::vector<Text>{u"A"}));
  EXPECT_EQ(Problems(), (std::vector<Text>{u"a2"}));
  EXPECT_EQ(Tree.Data(Tree.FirstRoot()).ChildCount, 1U);
}

TEST_F(AResultsTree, AHeaderFollowsTheCheckMarksOfWhatIsLeft) {
  TResultsNode* const header = Tree.FirstRoot();
  Tree.Model().SetChecked(Tree.FirstChild(header), false);
  ASSERT_EQ(Tree.CheckState(header), TCheckState::Mixed);
  Tree.DeleteProblems([](const TResultsNode& node) { return node.Problem.KeyPath == u"a1"; });
  EXPECT_EQ(Tree.CheckState(header), TCheckState::Checked);
}

}  // namespace corvalt
