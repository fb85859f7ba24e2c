// How many problems there are and how many are marked for repair, in the user's words.

#include "ui/summary.h"

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

// A tree of checked headers, and what is said about it.
struct TTree {
  TResultsNode* AddHeader() {
    return Results.AddNode(nullptr);
  }
  TResultsNode* AddProblem(TResultsNode* header, bool isChecked = true) {
    TResultsNode* node = Results.AddNode(header);
    Results.Model().SetChecked(node, isChecked);
    return node;
  }
  TSummary Summary() {
    return Summarize(Results, Texts);
  }

  TResultsTreeModel Results;
  TLanguageTexts Texts = NumberedTexts();
};

}  // namespace

TEST(Summary, OfNoProblemsSaysNoneTwice) {
  TTree tree;
  const TSummary summary = tree.Summary();
  EXPECT_EQ(summary.Total, 0u);
  EXPECT_EQ(summary.Selected, 0u);
  EXPECT_EQ(summary.TotalText, Says(TextId::NoProblemFound));
  EXPECT_EQ(summary.SelectedText, Says(TextId::NoProblemSelected));
  EXPECT_EQ(summary.Label, Says(TextId::Summary) + u" (" + Says(TextId::NoProblemFound) + u"," +
                               Says(TextId::NoProblemSelected) + u")");
  EXPECT_EQ(summary.FinalMessage,
            Says(TextId::NoProblemFound) + u"," + Says(TextId::NoProblemSelected) + u".");
}

TEST(Summary, OfOneCheckedProblemHasTextsWithoutNumber) {
  TTree tree;
  tree.AddProblem(tree.AddHeader());
  const TSummary summary = tree.Summary();
  EXPECT_EQ(summary.TotalText, Says(TextId::OneProblemFound));
  EXPECT_EQ(summary.SelectedText, Says(TextId::OneProblemSelected));
  EXPECT_EQ(summary.Label, Says(TextId::Summary) + u" (" + Says(TextId::OneProblemFound) + u"," +
                               Says(TextId::OneProblemSelected) + u")");
  EXPECT_EQ(summary.FinalMessage,
            Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) + u".");
}

TEST(Summary, OfSeveralProblemsSaysTheirNumber) {
  TTree tree;
  TResultsNode* header = tree.AddHeader();
  for (int i = 0; i < 12; ++i)
    tree.AddProblem(header, i < 2);
  const TSummary summary = tree.Summary();
  EXPECT_EQ(summary.Total, 12u);
  EXPECT_EQ(summary.Selected, 2u);
  EXPECT_EQ(summary.Label, Says(TextId::Summary) + u" (" + Says(TextId::ProblemsFound, u"12") + u"," +
                               Says(TextId::ProblemsSelected, u"2") + u")");
  EXPECT_EQ(summary.FinalMessage,
            Says(TextId::ProblemsFound, u"12") + u"," + Says(TextId::ProblemsSelected, u"2") + u".");
}

TEST(Summary, ThousandsHaveNoSeparator) {
  TTree tree;
  TResultsNode* header = tree.AddHeader();
  for (int i = 0; i < 1234; ++i)
    tree.AddProblem(header);
  EXPECT_EQ(tree.Summary().TotalText, Says(TextId::ProblemsFound, u"1234"));
}

TEST(Summary, CountsTheProblemsOfAllSections) {
  TTree tree;
  TResultsNode* first = tree.AddHeader();
  tree.AddProblem(first);
  tree.AddProblem(first, false);
  tree.AddProblem(tree.AddHeader());
  const TSummary summary = tree.Summary();
  EXPECT_EQ(summary.Total, 3u);
  EXPECT_EQ(summary.Selected, 2u);
}

TEST(Summary, HeadersAreNoProblemsWhateverTheyCarry) {
  TTree tree;
  TResultsNode* header = tree.AddHeader();
  header->Problem.ChildCount = 7;
  EXPECT_EQ(tree.Summary().Total, 0u);
}

TEST(Summary, TheCheckBoxCountsAndNotTheMark) {
  TTree tree;
  TResultsNode* node = tree.AddProblem(tree.AddHeader());
  node->Problem.CheckMark = TCheckMark::Skip;
  EXPECT_EQ(tree.Summary().Selected, 1u);
  tree.Results.Model().SetChecked(node, false);
  node->Problem.CheckMark = TCheckMark::Repair;
  EXPECT_EQ(tree.Summary().Selected, 0u);
}

TEST(Summary, TheWidestLabelHasTheLargestCounts) {
  EXPECT_EQ(WidestSummary(NumberedTexts()).Label, Says(TextId::Summary) + u" (" +
                                                      Says(TextId::ProblemsFound, u"1000000") + u"," +
                                                      Says(TextId::ProblemsSelected, u"1000000") + u")");
}

}  // namespace corvalt
