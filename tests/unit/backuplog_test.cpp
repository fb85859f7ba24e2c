#include "repair/backuplog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "repair/prepare.h"
#include "repair/restoredeleted.h"
#include "tests/support/mainrig.h"
#include "tests/support/names.h"
#include "tests/support/repairrig.h"
#include "tests/support/storerig.h"
#include "tests/support/testconsole.h"

namespace corvalt {

namespace {

constexpr TextView kOld = u"HKEY_CURRENT_USER\\Software\\Old";
constexpr TextView kRun = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Run";
const std::string kRepairLine = "\xEF\xBB\xBF; repair, 11/15/2026 12:00:00 PM\r\n";
const std::string kKeyLine = "HKEY_CURRENT_USER\\Software\\Old\t\tkey deleted\tdone\r\n";
const std::string kValueLine = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Run\tUpdater\tvalue deleted\tdone\r\n";

// A key and a value, both broken and checked.
class TLoggedRepair : public TRepairRig {
 public:
  TLoggedRepair() {
    System.Registry.Set(kOld, u"Path", u"x");
    System.Registry.Set(kRun, u"Updater", u"C:\\gone.exe");
    TResultsNode* section = AddSection(u"Broken");
    Add(section, KeyProblem(kHkeyCurrentUser, u"\\Software\\Old"));
    Add(section, ValueProblem(kHkeyLocalMachine, u"\\Software\\Run", u"Updater"));
  }

  void Add(TResultsNode* section, const ScanProblem& problem) {
    AddProblem(section, problem);
  }

  Text LogPath() {
    return Vars.SuiteBackupsFolder + u"46341.5.log";
  }
  std::string Log() {
    return System.Disk.Content(LogPath()).value_or("(none)");
  }
};

// What the log of the backup "1" holds behind the run's line when these changes are made.
std::string LoggedLines(const std::vector<TRegistryChange>& changes) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  TSystem system = rig.System.Bundle();
  TBackupLog log(system, rig.Vars, Named(u"1"), TBackupLog::TRun::Repair);
  for (const TRegistryChange& change : changes)
    log.Changed(change);
  log.Finish();
  EXPECT_EQ(log.Failure(), nullptr);
  const std::string text = rig.System.Disk.Content(Text(kFolder) + u"1.log").value_or("");
  EXPECT_TRUE(text.starts_with(kRepairLine)) << text;
  return text.substr(std::min(kRepairLine.size(), text.size()));
}

std::ptrdiff_t CountOf(const TJournal& journal, const std::string& entry) {
  return std::count(journal.Entries().begin(), journal.Entries().end(), entry);
}

}  // namespace

TEST(BackupLog, ListsEachChangeOfARepairBesideItsBackup) {
  TLoggedRepair rig;
  rig.Repair();
  EXPECT_EQ(rig.Log(), kRepairLine + kKeyLine + kValueLine);
  EXPECT_EQ(EncodeUtf8(rig.Outcome.LogFailure), "");
}

TEST(BackupLog, NamesWhatFailed) {
  TLoggedRepair rig;
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == "section: " + Said(TextId::RepairingSection) + " Broken...") {
      rig.System.Registry.Set(kOld, u"New", u"x");
      rig.System.Registry.Deny(kRun);
    }
  });
  EXPECT_EQ(rig.Log(), kRepairLine + "HKEY_CURRENT_USER\\Software\\Old\t\tkey deleted\tnot as saved\r\n" +
                           "HKEY_LOCAL_MACHINE\\SOFTWARE\\Run\tUpdater\tvalue deleted\taccess denied\r\n");
}

TEST(BackupLog, ListsTheOrderThatARepairWrites) {
  constexpr std::int32_t kMruImage = 17;
  TRepairRig rig;
  const TextView recent = u"HKEY_CURRENT_USER\\Software\\Recent";
  rig.System.Registry.Set(recent, u"a", u"C:\\gone.txt");
  rig.System.Registry.Set(recent, u"b", u"C:\\good.txt");
  rig.System.Registry.Set(recent, u"MRUList", u"ab");
  rig.AddProblem(rig.AddSection(u"s"),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a", kMruImage));
  rig.Repair();
  EXPECT_EQ(rig.System.Disk.Content(rig.Vars.SuiteBackupsFolder + u"46341.5.log"),
            kRepairLine + "HKEY_CURRENT_USER\\Software\\Recent\ta\tvalue deleted\tdone\r\n" +
                "HKEY_CURRENT_USER\\Software\\Recent\tMRUList\tvalue written\tdone\r\n");
}

TEST(BackupLog, GetsTheLinesOfARestoreBehindThoseOfTheRepair) {
  TLoggedRepair rig;
  rig.Repair();
  rig.System.Clock.Time += 1;
  EXPECT_EQ(rig.RestoreTheBackup(), TRestoreEnd::Restored);
  const std::string repair = kRepairLine + kKeyLine + kValueLine;
  EXPECT_EQ(rig.Log().substr(0, repair.size()), repair);
  EXPECT_EQ(rig.Log().substr(repair.size()),
            "; restore, 11/16/2026 12:00:00 PM\r\n"
            "HKEY_CURRENT_USER\\Software\\Old\t\tkey created\tdone\r\n"
            "HKEY_CURRENT_USER\\Software\\Old\tPath\tvalue written\tdone\r\n"
            "HKEY_LOCAL_MACHINE\\SOFTWARE\\Run\tUpdater\tvalue written\tdone\r\n"
            "HKEY_CURRENT_USER\\Software\\Old\t\tattributes written\tdone\r\n");
}

TEST(BackupLog, ListsTheParentsThatARestoreCreates) {
  TLoggedRepair rig;
  rig.Repair();
  rig.System.Registry.RemoveKey(kRun);
  rig.System.Registry.RemoveKey(u"HKEY_CURRENT_USER\\Software");
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"46341.5");
  EXPECT_EQ(outcome.End, TRestoreEnd::Restored);
  EXPECT_EQ(outcome.Import.KeysWritten, 3U);
  EXPECT_NE(rig.Log().find("HKEY_CURRENT_USER\\Software\t\tkey created\tdone\r\n"
                           "HKEY_CURRENT_USER\\Software\\Old\t\tkey created\tdone\r\n"),
            std::string::npos)
      << rig.Log();
}

TEST(BackupLog, ListsWhatARestoreCouldNotWrite) {
  TLoggedRepair rig;
  rig.Repair();
  rig.System.Registry.Deny(kRun);
  EXPECT_EQ(rig.RestoreTheBackup(), TRestoreEnd::Incomplete);
  EXPECT_NE(rig.Log().find("\\Run\tUpdater\tvalue written\taccess denied\r\n"), std::string::npos)
      << rig.Log();
}

TEST(BackupLog, OfARestoreThatIsStoppedHoldsWhatWasWritten) {
  TLoggedRepair rig;
  rig.Repair();
  TSystem system = rig.System.Bundle();
  TRestoreGuide guide;
  guide.Stop = [asked = 0]() mutable { return ++asked > 1; };
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"46341.5", guide).End, TRestoreEnd::Stopped);
  EXPECT_TRUE(rig.Log().find("\\Old\t\tkey created\tdone\r\n") != std::string::npos) << rig.Log();
  EXPECT_TRUE(rig.Log().find("Updater\tvalue written") == std::string::npos) << rig.Log();
}

TEST(BackupLog, IsWrittenByNoRestoreThatChangesNothing) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  TSystem system = rig.System.Bundle();
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"1").End, TRestoreEnd::Restored);
  EXPECT_FALSE(rig.HasFile(u"1.log"));
}

TEST(BackupLog, IsNotWrittenWithoutABackup) {
  TLoggedRepair rig;
  rig.System.Registry.SetInteger(
      u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules",
      u"RegistryCleaner", 0);
  rig.Repair();
  EXPECT_FALSE(rig.System.Registry.HasKey(kOld));
  EXPECT_TRUE(rig.System.Disk.AllBelow(rig.Vars.SuiteBackupsFolder).empty());
}

TEST(BackupLog, IsNotWrittenWhereTheBackupHasGone) {
  TLoggedRepair rig;
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == "section: " + Said(TextId::RepairingSection) + " Broken...")
      rig.System.Disk.Remove(rig.Vars.SuiteBackupsFolder + u"46341.5");
  });
  EXPECT_FALSE(rig.System.Registry.HasKey(kOld));
  EXPECT_EQ(rig.Log(), "(none)");
  EXPECT_EQ(EncodeUtf8(rig.Outcome.LogFailure), "");
}

TEST(BackupLog, IsWrittenByNothingButRepairsAndRestores) {
  TConsoleRig rig;
  const Text folder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\";
  rig.Scan.System.Disk.AddFile(folder + u"index.ini", "[46340]\r\nType=11001\r\n");
  rig.Scan.System.Disk.AddFile(folder + u"46340", "REGEDIT4\r\n");
  EXPECT_NE(rig.Run({u"scan", u"--sections", DecimalText(Section::RegistryIntegrity)}), 3);
  EXPECT_EQ(rig.Run({u"ignore", u"add", u"x"}), 0);
  // The start sequence and the ignore list have written into the registry.
  EXPECT_TRUE(rig.Scan.System.Registry.HasKey(u"HKEY_CURRENT_USER\\Software\\TessalySoft"));
  EXPECT_EQ(rig.Scan.System.Disk.AllBelow(folder).size(), 2U);
}

TEST(BackupLog, HoldsWhatWasDeletedBeforeTheCancel) {
  TLoggedRepair rig;
  TJournal journal;
  rig.System.KeepJournal(journal);
  rig.Repair([](const std::string& update, TWorkerThread& thread) {
    if (update == "item: " + Said(TextId::DeletingKey) + " ")
      thread.Terminate();
  });
  EXPECT_EQ(rig.Outcome.NotReached, 1U);
  EXPECT_EQ(rig.Log(), kRepairLine + kKeyLine);
  EXPECT_EQ(CountOf(journal, "flush file " + EncodeUtf8(rig.LogPath())), 1);
}

TEST(BackupLog, IsWrittenInBlocksOfWholeLines) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  TJournal journal;
  rig.System.KeepJournal(journal);
  TSystem system = rig.System.Bundle();
  const Text path = u"\\" + Text(999, u'k');
  TBackupLog log(system, rig.Vars, Named(u"1"), TBackupLog::TRun::Repair);
  for (int i = 0; i < 150; ++i)
    log.Changed({TChangeKind::KeyDeleted, kHkeyCurrentUser, path, {}, TRawResult::Done});
  const std::string written = rig.System.Disk.Content(Text(kFolder) + u"1.log").value_or("");
  EXPECT_TRUE(written.ends_with("\tdone\r\n"));
  log.Finish();
  const std::string append = "append to file " + EncodeUtf8(Text(kFolder) + u"1.log");
  EXPECT_EQ(CountOf(journal, append), 3);
  const std::string whole = rig.System.Disk.Content(Text(kFolder) + u"1.log").value_or("");
  EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 151);
}

TEST(BackupLog, KeepsEveryNameOnItsLineAndApartFromOthers) {
  const auto line = [](TextView name) {
    return LoggedLines({{TChangeKind::ValueWritten, kHkeyCurrentUser, u"\\K", Text(name), TRawResult::Done}});
  };
  const auto expected = [](const std::string& name) {
    return "HKEY_CURRENT_USER\\K\t" + name + "\tvalue written\tdone\r\n";
  };
  EXPECT_EQ(line(u"a\r\nb\tc"), expected("a^000d^000ab^0009c"));
  EXPECT_EQ(line(u"^000D"), expected("^005e000D"));
  EXPECT_EQ(line(Text(1, u'\0')), expected("^0000"));
  EXPECT_EQ(line(Text(1, char16_t{0xD800}) + u"x"), expected("^d800x"));
  EXPECT_EQ(line(Text(1, char16_t{0xDC00})), expected("^dc00"));
  EXPECT_EQ(line(u"\u2028\u202E\u0085"), expected("^2028^202e^0085"));
  EXPECT_EQ(line(u"Größe %s \U0001F600"), expected("Gr\xC3\xB6\xC3\x9F"
                                                   "e %s \xF0\x9F\x98\x80"));
}

TEST(BackupLog, NamesEveryResult) {
  std::vector<TRegistryChange> changes;
  for (const TRawResult result :
       {TRawResult::Done, TRawResult::Missing, TRawResult::Denied, TRawResult::Link,
        TRawResult::MustBeVolatile, TRawResult::Refused, TRawResult::InPart, TRawResult::Failed})
    changes.push_back({TChangeKind::KeyDeleted, kHkeyUsers, u"\\K", {}, result});
  std::string expected;
  for (const char* name : {"done", "missing", "access denied", "is a link", "must be volatile",
                           "not as saved", "in part", "failed"})
    expected += std::string("HKEY_USERS\\K\t\tkey deleted\t") + name + "\r\n";
  EXPECT_EQ(LoggedLines(changes), expected);
}

TEST(ABackupLogThatFails, StopsNoRepairAndIsToldOnce) {
  TLoggedRepair rig;
  rig.System.Disk.FailGrowing(kErrorDiskFull);
  rig.Repair();
  EXPECT_EQ(rig.Outcome.Deleted.size(), 2U);
  EXPECT_EQ(rig.FailureText, "");
  EXPECT_EQ(EncodeUtf8(rig.Outcome.LogFailure), EncodeUtf8(rig.LogPath()) + ": System message 112.");
}

TEST(ABackupLogThatFails, InTheMiddleWritesNothingMore) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  TSystem system = rig.System.Bundle();
  TBackupLog log(system, rig.Vars, Named(u"1"), TBackupLog::TRun::Repair);
  const TRegistryChange change = {
      TChangeKind::KeyDeleted, kHkeyUsers, u"\\" + Text(70000, u'k'), {}, TRawResult::Done};
  log.Changed(change);
  const std::string before = rig.System.Disk.Content(Text(kFolder) + u"1.log").value_or("");
  EXPECT_GT(before.size(), 70000U);
  rig.System.Disk.FailGrowing(kErrorDiskFull, {}, 1);
  log.Changed(change);
  EXPECT_NE(log.Failure(), nullptr);
  log.Changed(change);
  log.Finish();
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"1.log"), before);
}

TEST(ABackupLogThatFails, BecauseALinkStandsInItsPlaceTouchesNeither) {
  TLoggedRepair rig;
  rig.System.Disk.AddFile(rig.LogPath(), "precious");
  rig.System.Disk.MakeLink(rig.LogPath());
  rig.Repair();
  EXPECT_FALSE(rig.System.Registry.HasKey(kOld));
  EXPECT_EQ(rig.Log(), "precious");
  EXPECT_NE(EncodeUtf8(rig.Outcome.LogFailure).find("System message 681."), std::string::npos);
}

TEST(ABackupLogThatFails, IsToldByTheWindowAfterTheRepair) {
  TMainRig rig;
  rig.BreakMany(2);
  rig.Main.Scan();
  rig.System.Disk.FailGrowing(kErrorDiskFull);
  rig.Main.Repair();
  EXPECT_FALSE(rig.IsBroken(0));
  EXPECT_EQ(rig.Dialogs.back().Results.back(), Said(TextId::RepairFinalMessage) + "|0");
  ASSERT_EQ(rig.System.Calls.size(), 1U);
  EXPECT_TRUE(rig.System.Calls[0].starts_with(FailureBox(Says(TextId::ChangesNotListed) + u"(")))
      << rig.System.Calls[0];
  EXPECT_TRUE(rig.System.Calls[0].ends_with(".log: System message 112.)")) << rig.System.Calls[0];
}

TEST(ABackupLogThatFails, IsToldByTheConsoleAndChangesNoExitCode) {
  TConsoleRig rig;
  const TextView folders =
      u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
  rig.Scan.System.Registry.Set(folders, u"Fonts", u"C:\\gone");
  rig.Scan.System.Disk.FailGrowing(kErrorDiskFull);
  const std::string failure = Said(TextId::ChangesNotListed,
                                   u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly "
                                   u"Utilities\\Backups\\46341.5.log: System message 112.") +
                              "\n";
  EXPECT_EQ(rig.Run({u"repair", u"--sections", DecimalText(Section::RegistryIntegrity), u"--yes"}), 0);
  EXPECT_EQ(rig.Told(), Said(TextId::BackupNamed, u"46341.5") + "\n" + Said(TextId::EntriesRepaired, u"1") +
                            "\n" + failure);
  rig.Console.Told.clear();
  EXPECT_EQ(rig.Run({u"restore", u"46341.5"}), 0);
  EXPECT_EQ(rig.Told(), Said(TextId::RestoreDone, u"46341.5") + "\n" + failure);
}

TEST(ABackupLogThatFails, IsToldOnceAlsoWhenTheRestoreIsIncomplete) {
  TLoggedRepair rig;
  rig.Repair();
  rig.System.Registry.Deny(kRun);
  rig.System.Disk.FailGrowing(kErrorDiskFull);
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"46341.5");
  EXPECT_EQ(EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale)),
            Said(TextId::RestoreIncomplete, u"row") + "\r\n" + Said(TextId::EntriesNotWritten, u"2") +
                "\r\n" + Said(TextId::ChangesNotListed, rig.LogPath() + u": System message 112."));
}

}  // namespace corvalt
