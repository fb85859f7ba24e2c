// When found problems reach the results tree. Each test of an occasion looks at the tree right after it, so
// that it fails when the batch waits for a later one.

#include "scan/problembatch.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;
using std::chrono::milliseconds;

ScanProblem Header(TextView caption) {
  ScanProblem header;
  header.SectionCaption = caption;
  return header;
}

ScanProblem Problem(TextView keyPath) {
  ScanProblem problem;
  problem.KeyPath = keyPath;
  return problem;
}

// A batch over a tree in memory, with a clock that stands still and a user interface that runs a routine at
// once.
class ProblemBatch : public ::testing::Test {
 protected:
  // The captions of the headers, the key paths of the problems with a blank before each.
  TStrings Rows() const {
    TStrings rows;
    ForEachHeader(Results, [&](const TResultsNode* header) {
      rows.push_back(EncodeUtf8(header->Problem.SectionCaption));
      ForEachProblem(Results, header, [&](const TResultsNode* problem) {
        rows.push_back(" " + EncodeUtf8(problem->Problem.KeyPath));
      });
    });
    return rows;
  }

  void Wait(milliseconds time) {
    Time += time;
  }

  TResultsTreeModel Results;
  std::chrono::steady_clock::time_point Time;
  bool IsCancelled = false;
  bool IsShut = false;  // there is no user interface any more
  int Waits = 0;        // for the user interface

  TProblemBatch Batch{{.Results = Results,
                       .Synchronize =
                           [this](const TProblemBatch::TRoutine& routine) {
                             ++Waits;
                             if (!IsShut)
                               routine();
                           },
                       .IsCancelled = [this] { return IsCancelled; },
                       .Now = [this] { return Time; }}};
};

}  // namespace

TEST_F(ProblemBatch, WhatIsFoundWaits) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Batch.Add(Problem(u"\\a"));
    Batch.HandOverIfDue();
    EXPECT_EQ(Rows(), TStrings{});
    EXPECT_EQ(Waits, 0);
  });
}

TEST_F(ProblemBatch, TheEndOfASectionHandsOverTheWholeSectionInOneWait) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Batch.Add(Problem(u"\\a"));
    Batch.Add(Problem(u"\\b"));
  });
  EXPECT_EQ(Rows(), (TStrings{"Section", " \\a", " \\b"}));
  EXPECT_EQ(Waits, 1);
}

TEST_F(ProblemBatch, AChangeOfTheDialogComesAfterTheRowsAndInTheSameWait) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Batch.Add(Problem(u"\\a"));
    TStrings atTheChange;
    Batch.Show([&] { atTheChange = Rows(); });
    EXPECT_EQ(atTheChange, (TStrings{"Section", " \\a"}));
    EXPECT_EQ(Waits, 1);
  });
}

TEST_F(ProblemBatch, AChangeOfTheDialogIsShownWithoutAnyRow) {
  bool shown = false;
  Batch.Show([&] { shown = true; });
  EXPECT_TRUE(shown);
}

TEST_F(ProblemBatch, AfterFiftyMillisecondsTheNextRowIsHandedOverWithTheOthers) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Wait(milliseconds(49));
    Batch.Add(Problem(u"\\a"));
    EXPECT_EQ(Rows(), TStrings{});
    Wait(milliseconds(1));
    Batch.Add(Problem(u"\\b"));
    EXPECT_EQ(Rows(), (TStrings{"Section", " \\a", " \\b"}));
    EXPECT_EQ(Waits, 1);
  });
}

TEST_F(ProblemBatch, AfterFiftyMillisecondsACheckIsEnough) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Wait(milliseconds(49));
    Batch.HandOverIfDue();
    EXPECT_EQ(Rows(), TStrings{});
    Wait(milliseconds(1));
    Batch.HandOverIfDue();
    EXPECT_EQ(Rows(), TStrings{"Section"});
  });
}

TEST_F(ProblemBatch, TheFiftyMillisecondsBeginWithTheFirstRowOfEachBatch) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Wait(milliseconds(50));
    Batch.HandOverIfDue();
    Wait(milliseconds(200));
    Batch.Add(Problem(u"\\a"));
    EXPECT_EQ(Rows(), TStrings{"Section"});
    Wait(milliseconds(50));
    Batch.HandOverIfDue();
    EXPECT_EQ(Rows(), (TStrings{"Section", " \\a"}));
  });
}

TEST_F(ProblemBatch, AfterCancelEveryRowIsHandedOverAtOnce) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    IsCancelled = true;
    Batch.Add(Problem(u"\\a"));
    EXPECT_EQ(Rows(), (TStrings{"Section", " \\a"}));
    Batch.Add(Problem(u"\\b"));
    EXPECT_EQ(Rows(), (TStrings{"Section", " \\a", " \\b"}));
  });
}

TEST_F(ProblemBatch, AfterCancelACheckHandsOverWhatWasFoundBefore) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    IsCancelled = true;
    Batch.HandOverIfDue();
    EXPECT_EQ(Rows(), TStrings{"Section"});
  });
}

TEST_F(ProblemBatch, WhatWasFoundBeforeAnExceptionIsHandedOverAndItsSectionEnds) {
  const auto scanner = [&] {
    Batch.Add(Header(u"Section"));
    Batch.Add(Problem(u"\\a"));
    throw std::runtime_error("the disk is gone");
  };
  EXPECT_THROW(Batch.RunSection(scanner), std::runtime_error);
  EXPECT_EQ(Rows(), (TStrings{"Section", " \\a"}));
  EXPECT_EQ(Results.FirstRoot()->Problem.ChildCount, 1u);
}

TEST_F(ProblemBatch, ARowBelongsToTheSectionInWhichItWasFoundHoweverItIsHandedOver) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"One"));
    Batch.Add(Problem(u"\\a"));
    Wait(milliseconds(50));
    Batch.Add(Problem(u"\\b"));
    Batch.Add(Problem(u"\\c"));
  });
  Batch.RunSection([&] { Batch.Add(Header(u"Empty")); });
  Batch.RunSection([&] {
    Batch.Add(Header(u"Two"));
    Batch.Show([] {});
    Batch.Add(Problem(u"\\d"));
  });
  EXPECT_EQ(Rows(), (TStrings{"One", " \\a", " \\b", " \\c", "Two", " \\d"}));
  EXPECT_EQ(Results.FirstRoot()->Problem.ChildCount, 3u);
}

TEST_F(ProblemBatch, WithoutItsHeaderASectionsFirstRowIsItsHeader) {
  Batch.RunSection([&] {
    Batch.Add(Header(u"One"));
    Batch.Add(Problem(u"\\a"));
  });
  Batch.RunSection([&] {
    Batch.Add(Problem(u"\\b"));
    Batch.Add(Problem(u"\\c"));
  });
  Batch.RunSection([] {});
  EXPECT_EQ(Rows(), (TStrings{"One", " \\a", "", " \\c"}));
}

TEST_F(ProblemBatch, AnEmptyBatchWaitsForNobody) {
  IsCancelled = true;
  Batch.HandOverIfDue();
  EXPECT_EQ(Waits, 0);
}

TEST_F(ProblemBatch, RowsThatTheTreeCouldNotTakeAreNotHandedOverAgain) {
  int measured = 0;
  Results = TResultsTreeModel([&measured](TextView) -> int {
    if (++measured == 3)
      throw std::runtime_error("no memory");
    return 0;
  });
  const auto scanner = [&] {
    Batch.Add(Header(u"Section"));
    Batch.Add(Problem(u"\\a"));
    Batch.Add(Problem(u"\\b"));
    Batch.Show([] {});
  };
  EXPECT_THROW(Batch.RunSection(scanner), std::runtime_error);
  EXPECT_EQ(Rows(), TStrings());  // the header has gone with its section, which has no problem
  EXPECT_EQ(Waits, 2);
}

TEST_F(ProblemBatch, WithoutAUserInterfaceTheRowsAreDropped) {
  IsShut = true;
  Batch.RunSection([&] {
    Batch.Add(Header(u"Section"));
    Batch.Show([] {});
    Batch.HandOverIfDue();
    EXPECT_EQ(Waits, 1);
  });
  EXPECT_EQ(Rows(), TStrings{});
}

}  // namespace corvalt
