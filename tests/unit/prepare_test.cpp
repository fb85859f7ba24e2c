#include "repair/prepare.h"

#include <gtest/gtest.h>

#include "system/queueuithread.h"
#include "system/systemerror.h"
#include "tests/support/names.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

constexpr TextView kFolder = u"C:\\Backups\\";
constexpr TextView kLegacyFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\";

class TPrepareRig {
 public:
  TPrepareRig() {
    Vars.AppDataFolder = u"C:\\Users\\Ann\\AppData\\";
    Vars.SuiteBackupsFolder = kFolder;
    Vars.BackupsMax = 60;
    Vars.BackupsDelete = 1;
    Vars.Texts = NumberedTexts();
  }

  void Run(bool cancelAtOnce = false) {
    TSystem system = System.Bundle();
    bool finished = false;
    const auto onFinished = [&](TWorkerThread& thread) {
      FailureText = EncodeUtf8(DescribeException(thread.FatalException(), System.Locale));
      finished = true;
    };
    // The lock keeps the thread from its first index until it has been told to terminate.
    std::unique_ptr<THeldLock> lock = System.Interprocess.HoldEveryLock();
    TPrepare& prepare = TWorkerThread::Launch<TPrepare>(
        TPrepareContext{.System = system, .Vars = Vars, .UiThread = UiThread, .OnFinished = onFinished});
    if (cancelAtOnce)
      prepare.Terminate();
    lock.reset();
    UiThread.RunUntil([&finished] { return finished; });
  }

  std::string Index() {
    return System.Disk.Content(Text(kFolder) + u"index.ini").value_or("(none)");
  }

  TMemorySystem System;
  TGlobalVars Vars;
  TQueueUiThread UiThread;
  std::string FailureText;
};

}  // namespace

TEST(Maintenance, MigratesThenPrunes) {
  TPrepareRig rig;
  rig.System.Disk.AddFile(Text(kFolder) + u"index.ini", "[2]\r\nType=29001\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\n[46341]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "x");
  rig.Run();
  // The old backup that was migrated is pruned in the same run, with its moved file.
  EXPECT_EQ(rig.Index(), "[46341]\r\nType=11001\r\n");
  EXPECT_FALSE(rig.System.Disk.Content(Text(kFolder) + u"1"));
  EXPECT_EQ(rig.FailureText, "");
}

TEST(Maintenance, StopsPruningWhenToldToTerminate) {
  TPrepareRig rig;
  rig.System.Disk.AddFile(Text(kFolder) + u"index.ini", "[1]\r\n[2]\r\n");
  rig.Run(true);
  EXPECT_EQ(rig.Index(), "[1]\r\n[2]\r\n");
}

TEST(Maintenance, EndsWithTheReasonInTheUsersWords) {
  TPrepareRig rig;
  rig.System.Disk.AddFile(Text(kFolder) + u"index.ini", "[1]\r\n");
  rig.System.Disk.FailReading(kErrorAccessDenied);
  rig.Run();
  EXPECT_EQ(rig.FailureText,
            EncodeUtf8(Says(TextId::MaintenanceFailed, u"C:\\Backups\\index.ini: System message 5.")));
}

TEST(Maintenance, TellsAFailureThatStaysAtTheFirstStartOnly) {
  TPrepareRig rig;
  rig.System.Disk.AddFolder(Text(kLegacyFolder) + u"index.ini");
  rig.Run();
  EXPECT_EQ(rig.FailureText, EncodeUtf8(Says(TextId::MaintenanceFailed,
                                             Text(kLegacyFolder) + u"index.ini: System message 5.")));
  rig.Run();
  EXPECT_EQ(rig.FailureText, "");
  rig.System.Disk.Remove(Text(kLegacyFolder) + u"index.ini");
  rig.Run();
  rig.System.Disk.AddFolder(Text(kLegacyFolder) + u"index.ini");
  rig.Run();
  EXPECT_NE(rig.FailureText, "");
}

TEST(Maintenance, OfAnEmptyDiskChangesNothing) {
  TPrepareRig rig;
  rig.Run();
  EXPECT_EQ(rig.Index(), "(none)");
  EXPECT_EQ(rig.FailureText, "");
}

}  // namespace corvalt
