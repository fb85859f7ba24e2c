// The backup store when something fails in the middle, when other programs work on it, and when its folder is
// not what it seems.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "repair/prepare.h"
#include "tests/support/names.h"
#include "tests/support/storerig.h"

namespace corvalt {

namespace {

const Text kIndexPath = Text(kFolder) + u"index.ini";

TSystem WithInterprocess(TSystem system, TInterprocess& interprocess) {
  return {system.Registry, system.Raw,           system.Probe, system.Files,
          system.Machine,  system.Locale,        system.Clock, system.MessageBoxes,
          system.Programs, system.EditorWindows, interprocess};
}

void Maintain(TStoreRig& rig) {
  TSystem system = rig.System.Bundle();
  MaintainBackups(system, rig.Vars, Never);
}

// Takes the store's lock as the program of this user, and says how the wait ended.
std::string RemoveAs(TMemoryInterprocess& interprocess, TStoreRig& rig) {
  TSystem system = WithInterprocess(rig.System.Bundle(), interprocess);
  try {
    BackupStore(system, rig.Vars).RemoveBackup(Named(u"1"));
    return "done";
  } catch (...) {
    return EncodeUtf8(DescribeException(std::current_exception(), system.Locale));
  }
}

std::unique_ptr<THeldLock> LockAs(TMemoryInterprocess& interprocess, TStoreRig& rig) {
  TSystem system = WithInterprocess(rig.System.Bundle(), interprocess);
  return LockBackups(system, rig.Vars, {});
}

}  // namespace

TEST(ABackupOnAFullDisk, LeavesNeitherFileNorIndexWhereThereWereNone) {
  TStoreRig rig;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  rig.System.Disk.FailReplacing(kErrorDiskFull);
  EXPECT_THROW(static_cast<void>(store.CommitBackup(name)), TSystemException);
  // The index could not be written again: the backup stays listed, and goes when it is old.
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"46341.5");
  BackupStore again = rig.Store();
  rig.System.Disk.Remove(kIndexPath);
  EXPECT_THROW(static_cast<void>(again.CommitBackup(again.BeginBackup())), TSystemException);
  EXPECT_TRUE(rig.System.Disk.AllBelow(kFolder).empty());
}

TEST(ABackupThatFails, TakesOutItsOwnSectionAndNoOther) {
  TStoreRig rig;
  rig.SetIndex("; by hand\r\n[46000.25]\r\nType=29001\r\n29601=more.bin\r\n");
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"46341.5");
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  EXPECT_EQ(rig.Index(), "; by hand\r\n[46000.25]\r\nType=29001\r\n29601=more.bin\r\n");
}

TEST(ABackupThatFails, TellsTheFirstFailureAlsoWhenNothingCanBeTakenBack) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  rig.System.Disk.FailReplacing(kErrorDiskFull);
  rig.System.Disk.FailReading(kErrorAccessDenied);
  try {
    static_cast<void>(store.CommitBackup(name));
    ADD_FAILURE() << "nothing was thrown";
  } catch (const TSystemException& failure) {
    EXPECT_EQ(failure.Error().Code, kErrorDiskFull);
  }
}

TEST(ABackupThatFails, InTheTickOfAnotherLeavesThatOne) {
  TStoreRig rig;
  rig.BackUpOneValue();
  const std::optional<std::string> file = rig.System.Disk.Content(Text(kFolder) + u"46341.5");
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"46341.5");
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"46341.5"), file);
}

TEST(ABackupThatFails, AfterItHasReplacedAnotherOfItsTickPutsThatOneBack) {
  TStoreRig rig;
  rig.BackUpOneValue();
  const std::optional<std::string> file = rig.System.Disk.Content(Text(kFolder) + u"46341.5");
  BackupStore second = rig.Store();
  const TBackupName name = second.BeginBackup();
  rig.System.Disk.FailReading(kErrorAccessDenied, u"46341.5", 1);
  EXPECT_THROW(static_cast<void>(second.CommitBackup(name)), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"46341.5"), file);
}

TEST(ABackupThatFails, LeavesTheOneThatAnotherRunMadeInItsTickMeanwhile) {
  TStoreRig rig;
  BackupStore first = rig.Store();
  const TBackupName name = first.BeginBackup();
  rig.BackUpOneValue();
  const std::optional<std::string> file = rig.System.Disk.Content(Text(kFolder) + u"46341.5");
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"46341.5");
  EXPECT_THROW(static_cast<void>(first.CommitBackup(name)), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"46341.5"), file);
}

TEST(ABackupThatFails, GivesAnotherModulesSectionOfItsNameBack) {
  TStoreRig rig;
  rig.SetIndex("[46341.5]\r\nType=29001\r\n");
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"46341.5");
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  EXPECT_EQ(rig.Index(), "[46341.5]\r\nType=29001\r\n");
}

TEST(ABackupThatIsAbandoned, LeavesNothing) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  static_cast<void>(store.BeginBackup());
  store.AbandonBackup();
  EXPECT_TRUE(rig.System.Disk.AllBelow(kFolder).empty());
}

TEST(ABackupThatIsAbandoned, AfterItsCommitStays) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  static_cast<void>(store.CommitBackup(store.BeginBackup()));
  store.AbandonBackup();
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  EXPECT_TRUE(rig.HasFile(u"46341.5"));
}

TEST(ABackupThatWasKilled, BeforeItsFileWasWrittenIsListedSoThatPruningFindsIt) {
  TStoreRig rig;
  {
    BackupStore store = rig.Store();
    static_cast<void>(store.BeginBackup());
  }
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  rig.System.Clock.Time = kNow + 91;
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Index(), "");
}

TEST(ABackup, IsNotGoodWhenAnotherProgramTakesItOutOfTheIndexMeanwhile) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  rig.Store().RemoveBackup(name);
  EXPECT_THROW(static_cast<void>(store.CommitBackup(name)), TProgramException);
  EXPECT_FALSE(rig.HasFile(u"46341.5"));
}

TEST(ABackup, IsExportedAndWrittenWithoutTheLock) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  const std::unique_ptr<THeldLock> others = rig.System.Interprocess.HoldEveryLock();
  rig.System.Interprocess.LongestPatience = std::chrono::milliseconds(1);
  rig.System.Registry.AddKey(kKey);
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(kKey)), TExportResult::Done);
  EXPECT_NE(store.CommitBackup(name).PlaceOfKey(KeyAt(kKey)), nullptr);
}

// CreateFile, learn.microsoft.com: what is open without FILE_SHARE_DELETE can't be deleted.
TEST(ABackupWhoseRepairRuns, IsNotRemovedByAnotherCopy) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  static_cast<void>(store.CommitBackup(name));
  EXPECT_THROW(rig.Store().RemoveBackup(name), TSystemException);
  EXPECT_TRUE(rig.HasFile(u"46341.5"));
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  store.ReleaseBackup();
  rig.Store().RemoveBackup(name);
  EXPECT_FALSE(rig.HasFile(u"46341.5"));
}

TEST(ABackupWhoseRepairRuns, IsListedAgainWhenAnotherCopyHasPrunedIt) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 1;
  BackupStore store = rig.Store();
  static_cast<void>(store.CommitBackup(store.BeginBackup()));
  rig.System.Disk.AddFile(Text(kFolder) + u"46341.5.log", "changes");
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Listed(), TNames());
  EXPECT_TRUE(rig.HasFile(u"46341.5"));
  EXPECT_TRUE(rig.HasFile(u"46341.5.log"));
  store.ReleaseBackup();
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
}

TEST(WaitingForTheBackups, EndsWithAMessageThatNamesTheProgram) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Interprocess.LongestPatience = std::chrono::milliseconds(20);
  const std::unique_ptr<THeldLock> others = rig.System.Interprocess.HoldEveryLock();
  EXPECT_EQ(RemoveAs(rig.System.Interprocess, rig), Said(TextId::BackupsInUse, Says(TextId::ProgramTitle)));
  EXPECT_TRUE(rig.HasFile(u"1"));
}

TEST(WaitingForTheBackups, EndsWhenItIsAskedToStop) {
  TStoreRig rig;
  const std::unique_ptr<THeldLock> others = rig.System.Interprocess.HoldEveryLock();
  TSystem system = rig.System.Bundle();
  BackupStore store(system, rig.Vars, [] { return true; });
  EXPECT_THROW(static_cast<void>(store.BeginBackup()), TBackupWorkStopped);
  EXPECT_THROW(store.PruneBackups([] { return true; }), TBackupWorkStopped);
  MaintainBackups(system, rig.Vars, [] { return true; });
}

TEST(WaitingForTheBackups, IsNoPartOfListingThem) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  const std::unique_ptr<THeldLock> others = rig.System.Interprocess.HoldEveryLock();
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(TwoUsersOfAPortableStore, WaitForEachOther) {
  TStoreRig rig;
  rig.Vars.IsPortable = true;
  TMemoryInterprocess other;
  other.Locks = rig.System.Interprocess.Locks;
  other.User = u"S-1-5-21-1-2-3-1002";
  other.LongestPatience = std::chrono::milliseconds(20);
  std::unique_ptr<THeldLock> held = LockAs(rig.System.Interprocess, rig);
  EXPECT_EQ(RemoveAs(other, rig), Said(TextId::BackupsInUse, Says(TextId::ProgramTitle)));
  held.reset();
  EXPECT_EQ(RemoveAs(other, rig), "done");
}

TEST(TwoUsersOfAPortableStore, LoseNoBackupOfEachOther) {
  TStoreRig rig;
  rig.Vars.IsPortable = true;
  TMemoryInterprocess other;
  other.Locks = rig.System.Interprocess.Locks;
  other.User = u"S-1-5-21-1-2-3-1002";
  const auto makeBackups = [&rig](TInterprocess& interprocess, int first) {
    TMemoryClock clock;
    TSystem system = WithInterprocess(rig.System.Bundle(), interprocess);
    TSystem timed = {
        system.Registry,    system.Raw, system.Probe,        system.Files,    system.Machine,
        system.Locale,      clock,      system.MessageBoxes, system.Programs, system.EditorWindows,
        system.Interprocess};
    for (int i = 0; i < 20; ++i) {
      clock.Time = first + i;
      BackupStore store(timed, rig.Vars);
      static_cast<void>(store.CommitBackup(store.BeginBackup()));
    }
  };
  std::thread second([&] { makeBackups(other, 47000); });
  makeBackups(rig.System.Interprocess, 46000);
  second.join();
  EXPECT_EQ(rig.Listed().size(), 40U);
}

TEST(TwoUsersOfStoresOfTheirOwn, DoNotWaitForEachOther) {
  TStoreRig rig;
  TMemoryInterprocess other;
  other.Locks = rig.System.Interprocess.Locks;
  other.User = u"S-1-5-21-1-2-3-1002";
  const std::unique_ptr<THeldLock> held = LockAs(rig.System.Interprocess, rig);
  EXPECT_EQ(RemoveAs(other, rig), "done");
}

TEST(AnIndexInUse, IsWaitedForTwoSeconds) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.FailReading(kErrorSharingViolation, u"index.ini", 39);
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
  rig.System.Disk.FailReading(kErrorSharingViolation, u"index.ini");
  rig.System.Clock.Slept = {};
  EXPECT_THROW(rig.Listed(), TSystemException);
  EXPECT_EQ(rig.System.Clock.Slept, std::chrono::seconds(2));
}

// MoveFileEx, learn.microsoft.com: a file that somebody has open can't be replaced; access is denied.
TEST(AnIndexInUse, IsReplacedAsSoonAsItIsFree) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.FailReplacing(kErrorAccessDenied, u"index.ini", 10);
  rig.BackUpOneValue();
  EXPECT_EQ(rig.Listed(), TNames({"1", "46341.5"}));
}

TEST(AnIndexOfOtherModules, KeepsTheirBytes) {
  TStoreRig rig;
  // Bytes that no character of the code page has, a value with blanks, three kinds of line ends.
  const std::string theirs = "\r\n[1.5]\rType = 29001 \n29601=\x81\x8D\x8F\x90\x9D\xFF\r\n;\xE4\r\n";
  rig.SetIndex(theirs);
  rig.BackUpOneValue();
  EXPECT_EQ(rig.Index(), theirs + "[46341.5]\r\nType=11001\r\n");
  rig.Store().RemoveBackup(Named(u"46341.5"));
  EXPECT_EQ(rig.Index(), theirs);
}

TEST(PruningManyBackups, ReadsTheIndexOnceAndWritesItOnce) {
  TStoreRig rig;
  TJournal journal;
  TNames names;
  for (int i = 0; i < 100; ++i)
    names.push_back(std::to_string(46000 + i));
  rig.AddBackups(names);
  rig.System.KeepJournal(journal);
  rig.Store().PruneBackups(Never);
  const auto isReplacement = [](const std::string& entry) { return entry.starts_with("replace"); };
  EXPECT_EQ(std::count_if(journal.Entries().begin(), journal.Entries().end(), isReplacement), 1);
  EXPECT_EQ(rig.Index(), "");
}

TEST(PruningAKilledPruning, FindsWhatItLeftListed) {
  TStoreRig rig;
  rig.AddBackups({"1", "2", "46341"});
  // The files were deleted, and the index was not written any more.
  rig.System.Disk.FailReplacing(kErrorDiskFull);
  EXPECT_THROW(rig.Store().PruneBackups(Never), TSystemException);
  EXPECT_FALSE(rig.HasFile(u"1"));
  rig.System.Disk.FailReplacing(0);
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Listed(), TNames({"46341"}));
}

TEST(ABackupFolderThatIsALink, IsNeitherReadNorChanged) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.MakeLink(kFolder);
  EXPECT_THROW(rig.Listed(), TProgramException);
  EXPECT_THROW(rig.BackUpOneValue(), TProgramException);
  EXPECT_THROW(rig.Store().PruneBackups(Never), TProgramException);
  EXPECT_THROW(rig.Store().RemoveBackup(Named(u"1")), TProgramException);
  EXPECT_TRUE(rig.HasFile(u"1"));
  EXPECT_EQ(rig.Index(), "[1]\r\nType=11001\r\n");
}

// "Reparse Point Tags", learn.microsoft.com: other reparse points than name surrogates are the folder itself.
TEST(ABackupFolderThatIsAnotherReparsePoint, IsAFolderLikeAnyOther) {
  TStoreRig rig;
  rig.AddBackups({"46341"});
  rig.System.Disk.MakeLink(kFolder, false);
  EXPECT_EQ(rig.Listed(), TNames({"46341"}));
  rig.BackUpOneValue();
  EXPECT_EQ(rig.Listed(), TNames({"46341", "46341.5"}));
}

TEST(ABackupFolderThatChangesPlaces, IsPrunedWhereItWasOpened) {
  TStoreRig rig;
  rig.AddBackups({"1", "2", "46341"});
  bool swapped = false;
  const auto swap = [&] {
    if (!std::exchange(swapped, true)) {
      rig.System.Disk.Remove(Text(kFolder.substr(0, kFolder.size() - 1)));
      for (const TextView name : {u"1", u"2", u"index.ini"})
        rig.System.Disk.AddFile(Text(kFolder) + Text(name), "precious");
    }
    return false;
  };
  rig.Store().PruneBackups(swap);
  for (const TextView name : {u"1", u"2", u"index.ini"})
    EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + Text(name)), "precious") << EncodeUtf8(name);
}

TEST(LeftTemporaryFiles, AreRemovedWhenTheyAreOursAndTheirProgramHasEnded) {
  TStoreRig rig;
  rig.System.Interprocess.RunningProcesses = {40};
  const std::vector<TextView> gone = {u"46341.5.44-0.tmp", u"46341,5.44-99.tmp", u"index.ini.44-0.tmp",
                                      u"46341.5.log.44-1.tmp"};
  const std::vector<TextView> kept = {u"46341.5.40-0.tmp", u"46341.5.tmp",      u"46341.5.44.tmp",
                                      u"notes.44-0.tmp",   u"46341.5.44-0.tmq", u"46341.5.4x-0.tmp",
                                      u".44-0.tmp",        u"44-0.tmp",         u"46341.5.99999999999-0.tmp"};
  for (const TextView name : gone)
    rig.AddFile(name);
  for (const TextView name : kept)
    rig.AddFile(name);
  rig.AddFile(u"46341.6.44-0.tmp");
  rig.System.Disk.MakeLink(Text(kFolder) + u"46341.6.44-0.tmp");
  Maintain(rig);
  for (const TextView name : gone)
    EXPECT_FALSE(rig.HasFile(name)) << EncodeUtf8(name);
  for (const TextView name : kept)
    EXPECT_TRUE(rig.HasFile(name)) << EncodeUtf8(name);
  EXPECT_TRUE(rig.HasFile(u"46341.6.44-0.tmp"));
}

TEST(TheListOfChanges, GoesWithItsBackup) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 3;
  rig.AddBackups({"1", "46339", "46340", "46341"});
  for (const TextView name : {u"1.log", u"46339.log", u"46340.log", u"46341.log", u"46342.log"})
    rig.AddFile(name);
  // One is too old, and two more are too many.
  rig.Store().PruneBackups(Never);
  for (const TextView name : {u"1.log", u"46339.log"})
    EXPECT_FALSE(rig.HasFile(name)) << EncodeUtf8(name);
  EXPECT_TRUE(rig.HasFile(u"46341.log"));
  rig.Store().RemoveBackup(Named(u"46341"));
  EXPECT_FALSE(rig.HasFile(u"46341.log"));
  EXPECT_TRUE(rig.HasFile(u"46342.log"));
}

TEST(TheListOfChanges, OfAnotherModuleOrALinkStays) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=29001\r\n[2]\r\nType=11001\r\n");
  rig.AddFile(u"1.log");
  rig.AddFile(u"2.log");
  rig.System.Disk.MakeLink(Text(kFolder) + u"2.log");
  rig.Store().PruneBackups(Never);
  EXPECT_TRUE(rig.HasFile(u"1.log"));
  EXPECT_TRUE(rig.HasFile(u"2.log"));
}

// It names its sections at each start again, and a backup that was removed came back as a row without a file.
TEST(AnOldIndexThatCannotBeDeleted, BringsNoRemovedBackupBack) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[46300]\r\n[46301]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"46300", "REGEDIT4\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"46301", "REGEDIT4\r\n");
  rig.System.Disk.FailDeleting(kErrorAccessDenied, u"Corvalt\\Backups\\index.ini");
  EXPECT_THROW(rig.Store().MigrateLegacyBackups(), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46300", "46301"}));
  rig.Store().RemoveBackup(Named(u"46300"));
  EXPECT_THROW(rig.Store().MigrateLegacyBackups(), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46301"}));
}

TEST(AnOldIndexThatCannotBeRead, DoesNotKeepTheBackupsFromBeingPruned) {
  TStoreRig rig;
  rig.AddBackups({"1", "46341"});
  rig.System.Disk.AddFolder(Text(kLegacyFolder) + u"index.ini");
  EXPECT_THROW(Maintain(rig), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"46341"}));
}

}  // namespace corvalt
