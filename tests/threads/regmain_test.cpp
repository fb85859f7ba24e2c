// Scan, the Repair button and closing, over and over, with real threads. Nothing here waits for a time to
// pass.

#include <gtest/gtest.h>

#include "tests/support/mainrig.h"

namespace corvalt {

namespace {

constexpr int kRounds = 100;
constexpr int kProblems = 30;

// What a round leaves: nothing runs, no dialog is remembered, and the header counts its rows.
void ExpectNothingLeftBehind(TMainRig& rig) {
  EXPECT_FALSE(rig.Main.AnyThreadRuns());
  for (const TDialogRecord& dialog : rig.Dialogs)
    EXPECT_FALSE(dialog.IsThere);
  const std::size_t results = rig.Dialogs.empty() ? 0 : rig.Dialogs.back().Results.size();
  rig.Main.UpdateSummary();
  if (!rig.Dialogs.empty()) {
    EXPECT_EQ(rig.Dialogs.back().Results.size(), results);
  }
  if (rig.RowCount() > 0) {
    EXPECT_EQ(rig.Header(0)->Problem.ChildCount, rig.RowCount());
  }
  EXPECT_EQ(rig.Enabled(), rig.RowCount() > 0 ? "scan repair restore export" : "scan restore");
  EXPECT_TRUE(rig.System.Calls.empty());
  rig.Dialogs.clear();
}

// Closes the dialog after it has been told something this often; waits for the end where the end comes first.
TMainRig::TUser CloseAfter(TMainRig& rig, std::size_t updates) {
  return [&rig, updates](TDialogRecord& dialog) {
    rig.PumpUntil([&] { return dialog.Updates.size() >= updates || !rig.Main.WorkerRuns(); });
  };
}

// Closes the dialog when the tree holds this many nodes.
TMainRig::TUser CloseAtNodes(TMainRig& rig, std::size_t nodes) {
  return [&rig, nodes](TDialogRecord&) {
    rig.PumpUntil([&] { return rig.Main.Results().Model().TotalCount() >= nodes || !rig.Main.WorkerRuns(); });
  };
}

}  // namespace

TEST(MainWindowThreads, ScanRepairButtonAndCloseAHundredTimesOverLeaveNothingBehind) {
  TMainRig rig;
  for (int round = 0; round < kRounds; ++round) {
    rig.BreakMany(kProblems);
    rig.Users.push_back([&rig](TDialogRecord&) {
      rig.WaitForTheEnd();
      rig.Main.Repair();
    });
    rig.Main.Scan();
    ASSERT_EQ(rig.Dialogs.size(), 2u);
    EXPECT_EQ(rig.RowCount(), 0u);
    EXPECT_FALSE(rig.IsBroken(kProblems - 1));
    ExpectNothingLeftBehind(rig);
  }
}

TEST(MainWindowThreads, ScansThatAreClosedAnywhereLeaveWhatTheyFound) {
  TMainRig rig;
  rig.BreakMany(kProblems);
  for (int round = 0; round < kRounds; ++round) {
    rig.Users.push_back(CloseAtNodes(rig, static_cast<std::size_t>(round % (kProblems + 2))));
    rig.Main.Scan();
    rig.WaitForTheEnd();
    EXPECT_LE(rig.RowCount(), static_cast<std::size_t>(kProblems));
    ExpectNothingLeftBehind(rig);
  }
}

TEST(MainWindowThreads, RepairsFromTheScansDialogThatAreClosedAnywhereLeaveNothingBehind) {
  TMainRig rig;
  for (int round = 0; round < kRounds; ++round) {
    rig.BreakMany(kProblems);
    rig.Users.push_back([&rig](TDialogRecord&) {
      rig.WaitForTheEnd();
      rig.Main.Repair();
    });
    rig.Users.push_back(CloseAfter(rig, static_cast<std::size_t>(round)));
    rig.Main.Scan();
    rig.WaitForTheEnd();
    ExpectNothingLeftBehind(rig);
  }
}

TEST(MainWindowThreads, ScansBesideTheMaintenanceLeaveNothingBehind) {
  TMainRig rig;
  rig.BreakMany(kProblems);
  for (int round = 0; round < kRounds; ++round) {
    rig.Main.StartMaintenance();
    rig.Main.Scan();
    rig.PumpUntil([&rig] { return !rig.Main.AnyThreadRuns(); });
    EXPECT_EQ(rig.RowCount(), static_cast<std::size_t>(kProblems));
    ExpectNothingLeftBehind(rig);
  }
}

TEST(MainWindowThreads, TheWindowMayGoInTheMiddleOfAnything) {
  for (int round = 0; round < kRounds; ++round) {
    TMainRig rig;
    rig.BreakMany(kProblems);
    rig.Main.StartMaintenance();
    rig.Users.push_back(CloseAtNodes(rig, static_cast<std::size_t>(round % kProblems)));
    rig.Main.Scan();
    rig.Main.TerminateThreads();
    rig.PumpUntil([&rig] { return !rig.Main.AnyThreadRuns(); });
    rig.Main.SaveSettings();
    ExpectNothingLeftBehind(rig);
  }
}

}  // namespace corvalt
