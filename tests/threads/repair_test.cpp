// Scan, cancel, repair and close, with real threads. Nothing here waits for a time to pass.

#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

constexpr std::int32_t kCurrentUserFiles = 22;
constexpr int kValues = 200;

Text NumberedKey(int i) {
  return u"HKEY_CURRENT_USER\\Software\\App\\" + DecimalText(i);
}

// Many values that point at missing files.
class TBusyRig : public TRepairRig {
 public:
  TBusyRig() {
    for (int i = 0; i < kValues; ++i)
      System.Registry.Set(NumberedKey(i), u"File", u"C:\\gone.exe");
  }

  int Left() const {
    int left = 0;
    for (int i = 0; i < kValues; ++i)
      left += System.Registry.HasValue(NumberedKey(i), u"File") ? 1 : 0;
    return left;
  }

  // What is gone must be in the one listed backup.
  void ExpectEverythingComesBack() {
    if (Left() < kValues)
      RestoreTheBackup();
    EXPECT_EQ(Left(), kValues);
  }
};

// A repair that is still running when the user interface goes away, and the moment when its thread is gone.
class TAbandonedRepair {
 public:
  explicit TAbandonedRepair(TBusyRig& rig) : m_system(rig.System.Bundle()) {
    // The thread drops its end handler as it is freed, and with it the last copy of this.
    const std::shared_ptr<void> alive(nullptr, [this](void*) { m_gone.set_value(); });
    m_cleaning = &TWorkerThread::Launch<TCleaning>(TCleaningContext{.System = m_system,
                                                                    .Vars = rig.Vars,
                                                                    .Results = rig.Results,
                                                                    .UiThread = rig.UiThread,
                                                                    .OnFinished = [alive](TWorkerThread&) {}},
                                                   m_dialog);
  }
  TCleaning& Thread() {
    return *m_cleaning;
  }
  void WaitUntilItIsGone() {
    m_gone.get_future().wait();
  }

 private:
  TSystem m_system;
  TRecordingDialog m_dialog;
  std::promise<void> m_gone;
  TCleaning* m_cleaning = nullptr;
};

}  // namespace

TEST(RepairThread, ScansRepairsAndScansAgain) {
  TBusyRig rig;
  rig.Run({kCurrentUserFiles});
  EXPECT_EQ(rig.Problems().size(), static_cast<std::size_t>(kValues));
  rig.Repair();
  EXPECT_EQ(rig.Left(), 0);
  rig.Run({kCurrentUserFiles});
  EXPECT_TRUE(rig.Problems().empty());
  rig.ExpectEverythingComesBack();
}

TEST(RepairThread, CancelledAfterAnyUpdateLeavesEverythingDeletedInTheBackup) {
  for (int after = 1; after < 2 * kValues; after += 37) {
    TBusyRig rig;
    rig.Run({kCurrentUserFiles});
    int updates = 0;
    rig.Repair([&updates, after](const std::string&, TWorkerThread& thread) {
      if (++updates == after)
        thread.Terminate();
    });
    EXPECT_EQ(rig.Outcome.NotReached, static_cast<std::size_t>(rig.Left()));
    rig.ExpectEverythingComesBack();
  }
}

TEST(RepairThread, ClosingTheProgramWhileItRunsLeavesEverythingDeletedInTheBackup) {
  for (int routines = 0; routines < 2 * kValues + 3; routines += 61) {
    TBusyRig rig;
    rig.Run({kCurrentUserFiles});
    TAbandonedRepair repair(rig);
    int run = 0;
    rig.UiThread.RunUntil([&run, routines] { return run++ == routines; });
    rig.UiThread.Shut();
    repair.WaitUntilItIsGone();
    rig.ExpectEverythingComesBack();
  }
}

TEST(RepairThread, TwoCopiesOfTheProgramLoseNoBackupOfEachOther) {
  TBusyRig rig;
  TSystem system = rig.System.Bundle();
  constexpr int kBackups = 20;
  const auto makeBackups = [&](int first) {
    TMemoryClock clock;
    TSystem copy = {
        system.Registry,    system.Raw, system.Probe,        system.Files,    system.Machine,
        system.Locale,      clock,      system.MessageBoxes, system.Programs, system.EditorWindows,
        system.Interprocess};
    for (int i = 0; i < kBackups; ++i) {
      clock.Time = first + i;
      BackupStore store(copy, rig.Vars);
      static_cast<void>(store.CommitBackup(store.BeginBackup()));
    }
  };
  std::thread other(makeBackups, 47000);
  makeBackups(46000);
  other.join();
  EXPECT_EQ(rig.Backups().size(), 2U * kBackups);
}

}  // namespace corvalt
