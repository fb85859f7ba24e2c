#include "repair/threadclean.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/names.h"
#include "tests/support/regtext.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

constexpr TextView kOld = u"HKEY_CURRENT_USER\\Software\\Old";
constexpr TextView kSettings =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";
constexpr TextView kRunKey = u"HKEY_LOCAL_MACHINE\\Software\\Run";
constexpr TextView kPrograms = u"HKEY_CURRENT_USER\\Menu\\Start Menu2\\Programs";
constexpr TextView kRecent = u"HKEY_CURRENT_USER\\Software\\Recent";
constexpr std::int32_t kStartMenuImage = 9;
constexpr std::int32_t kMruImage = 17;

// The registry of TSmallRepair.
constexpr std::string_view kBroken = R"([HKEY_CURRENT_USER\Software\Old]

[HKEY_CURRENT_USER\Software\Old\Below]
"Deep"="x"
)";
constexpr std::string_view kRun = R"([HKEY_LOCAL_MACHINE\Software\Run]
"Updater"="C:\\gone.exe"
"Good"="C:\\good.exe"
)";
constexpr std::string_view kRepairedRun = R"([HKEY_LOCAL_MACHINE\Software\Run]
"Good"="C:\\good.exe"
)";

// What the dialog shows when a section begins and when something is deleted.
std::string Repairing(const std::string& section) {
  return "section: " + EncodeUtf8(Says(TextId::RepairingSection)) + " " + section + "...";
}

std::string Deleting(TextId text, const std::string& what = {}) {
  return "item: " + EncodeUtf8(Says(text)) + " " + what;
}

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// One section with a key and a value below it, both broken.
class TSmallRepair : public TRepairRig {
 public:
  TSmallRepair() {
    LoadRegText(System.Registry, kBroken);
    LoadRegText(System.Registry, kRun);
    Section = AddSection(u"Broken");
    Key = AddProblem(Section, KeyProblem(kHkeyCurrentUser, u"\\Software\\Old"));
    Value = AddProblem(Section, ValueProblem(kHkeyLocalMachine, u"\\Software\\Run", u"Updater"));
  }

  std::string OldText() {
    return RegText(System.Registry, kOld);
  }
  std::string RunText() {
    return RegText(System.Registry, kRunKey);
  }

  std::vector<std::string> Dump() {
    std::vector<std::string> lines = System.Registry.Dump(u"HKEY_CURRENT_USER");
    for (std::string& line : System.Registry.Dump(u"HKEY_LOCAL_MACHINE"))
      lines.push_back(std::move(line));
    // A value that comes back is the last of its key, in the order of creation.
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  TResultsNode* Section = nullptr;
  TResultsNode* Key = nullptr;
  TResultsNode* Value = nullptr;
};

}  // namespace

TEST(Repair, DeletesWhatIsCheckedAndMarksIt) {
  TSmallRepair rig;
  rig.Repair();
  EXPECT_EQ(rig.OldText(), "");
  EXPECT_EQ(rig.RunText(), kRepairedRun);
  EXPECT_TRUE(rig.Key->Problem.StateFlag2);
  EXPECT_TRUE(rig.Value->Problem.StateFlag2);
  EXPECT_FALSE(rig.Section->Problem.StateFlag2);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 2U);
  EXPECT_EQ(rig.FailureText, "");
}

TEST(Repair, LeavesWhatIsNotChecked) {
  TSmallRepair rig;
  rig.Uncheck(rig.Key);
  rig.Repair();
  EXPECT_EQ(rig.OldText(), kBroken);
  EXPECT_EQ(rig.RunText(), kRepairedRun);
  EXPECT_FALSE(Holds(rig.BackupText(), "Software\\Old"));
  EXPECT_EQ(rig.Unmarked(), TLines({"\\Software\\Old|"}));
}

TEST(Repair, ListsItsBackupThenWritesItThenBeginsToDeleteAndLogsItsChanges) {
  TSmallRepair rig;
  TJournal journal;
  rig.System.KeepJournal(journal);
  rig.Repair();
  const std::string folder = EncodeUtf8(rig.Vars.SuiteBackupsFolder);
  EXPECT_EQ(journal.Entries(),
            TLines({"replace file " + folder + "index.ini", "replace file " + folder + "46341.5",
                    "delete key \\Software\\Old", "delete value Updater",
                    "append to file " + folder + "46341.5.log", "flush file " + folder + "46341.5.log"}));
}

TEST(Repair, IsUndoneByARestoreByteForByte) {
  TSmallRepair rig;
  const std::vector<std::string> before = rig.Dump();
  rig.Repair();
  EXPECT_NE(rig.Dump(), before);
  rig.RestoreTheBackup();
  EXPECT_EQ(rig.Dump(), before);
}

TEST(Repair, WritesTheBackupInTheOrderOfTheTree) {
  TSmallRepair rig;
  rig.Repair();
  const std::string text = rig.BackupText();
  const std::size_t key = text.find("[HKEY_CURRENT_USER\\Software\\Old]");
  const std::size_t value = text.find("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Run]");
  ASSERT_NE(key, std::string::npos) << text;
  ASSERT_NE(value, std::string::npos) << text;
  EXPECT_LT(key, value);
  EXPECT_FALSE(Holds(text, "Good"));
}

TEST(Repair, ExportsAProblemAlsoWhenAnothersExportHoldsItsKey) {
  TSmallRepair rig;
  rig.AddProblem(rig.Section, ValueProblem(kHkeyCurrentUser, u"\\Software\\Old\\Below", u"Deep"));
  const std::vector<std::string> before = rig.Dump();
  rig.Repair();
  const std::string text = rig.BackupText();
  const std::size_t first = text.find("\"Deep\"");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("\"Deep\"", first + 1), std::string::npos);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 3U);
  EXPECT_TRUE(rig.Outcome.Failed.empty());
  rig.RestoreTheBackup();
  EXPECT_EQ(rig.Dump(), before);
}

TEST(Repair, ShowsItsProgressInThisOrder) {
  TSmallRepair rig;
  rig.Repair();
  // Two problems, both backed up: the deletions count to four.
  EXPECT_EQ(rig.Updates,
            TLines({"section: Backup ...", "item: ", "overall: 0",  // the backup
                    "item: ", "bar: 0", "item: ", "bar: 50",        // its two problems
                    Repairing("Broken"), "item: ", "overall: 50",   // the section
                    Deleting(TextId::DeletingKey), "bar: 25",       // the key
                    Deleting(TextId::DeletingValue, "\\Software\\Run - Updater"), "bar: 50"}));  // the value
}

TEST(Repair, ShowsEachAmpersandOfItsTextsOnceAndPathsAsTheyAre) {
  TSmallRepair rig;
  const std::string lines = EncodeUtf8(Says(TextId::RepairingSection)) + "=Repair & clean\n" +
                            EncodeUtf8(Says(TextId::DeletingValue)) + "=Delete & forget\n";
  rig.Vars.Texts.Selected =
      TLanguageTable::FromFile(std::vector<std::uint8_t>(lines.begin(), lines.end()), rig.System.Locale);
  rig.Value->Problem.ValueName = u"a && b";
  rig.Repair();
  EXPECT_EQ(std::count(rig.Updates.begin(), rig.Updates.end(), "section: Repair & clean Broken..."), 1);
  EXPECT_EQ(
      std::count(rig.Updates.begin(), rig.Updates.end(), "item: Delete & forget \\Software\\Run - a && b"),
      1);
}

TEST(Repair, NeverFillsTheBarWhenNotAllIsChecked) {
  TSmallRepair rig;
  rig.Uncheck(rig.Key);
  rig.Repair();
  // Two problems and one backed up: a third.
  EXPECT_EQ(rig.Updates.back(), "bar: 33");
}

TEST(Repair, WithoutABackupFillsTheBar) {
  TSmallRepair rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\TessalySoft\Tessaly Utilities\Settings\AvailableModules]
"RegistryCleaner"=dword:00000000
)");
  rig.Repair();
  EXPECT_EQ(rig.Updates,
            TLines({Repairing("Broken"), "item: ", "overall: 0", Deleting(TextId::DeletingKey), "bar: 50",
                    Deleting(TextId::DeletingValue, "\\Software\\Run - Updater"), "bar: 100"}));
}

TEST(Repair, DoesNotAnnounceASectionThatIsNotFullyChecked) {
  TSmallRepair rig;
  TResultsNode* mixed = rig.AddSection(u"Mixed");
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\M]
)");
  TResultsNode* kept = rig.AddProblem(mixed, KeyProblem(kHkeyCurrentUser, u"\\Kept"));
  rig.AddProblem(mixed, KeyProblem(kHkeyCurrentUser, u"\\M"));
  rig.Uncheck(kept);
  rig.Repair();
  EXPECT_EQ(std::count(rig.Updates.begin(), rig.Updates.end(), Repairing("Mixed")), 0);
  EXPECT_EQ(RegText(rig.System.Registry, u"HKEY_CURRENT_USER\\M"), "");
}

TEST(Repair, RepairsTheCheckedChildrenOfAnUncheckedSection) {
  TSmallRepair rig;
  rig.Section->State = TCheckState::Unchecked;
  rig.Repair();
  EXPECT_EQ(rig.Outcome.Deleted.size(), 2U);
  EXPECT_EQ(std::count(rig.Updates.begin(), rig.Updates.end(), Repairing("Broken")), 0);
}

TEST(Repair, OfNothingCheckedStillWritesAListedBackup) {
  TSmallRepair rig;
  rig.Uncheck(rig.Section);
  const std::vector<std::string> before = rig.Dump();
  rig.Repair();
  EXPECT_EQ(rig.Backups().size(), 1U);
  EXPECT_FALSE(Holds(rig.BackupText(), "["));
  EXPECT_EQ(rig.Dump(), before);
}

TEST(Repair, OfAnEmptyTreeStillWritesAListedBackup) {
  TRepairRig rig;
  rig.Repair();
  EXPECT_EQ(rig.Backups().size(), 1U);
  EXPECT_EQ(rig.Updates, TLines({"section: Backup ...", "item: ", "overall: 0"}));
}

TEST(Repair, WithBackupsSwitchedOffWritesNoneAndDeletesAllTheSame) {
  TSmallRepair rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\TessalySoft\Tessaly Utilities\Settings\AvailableModules]
"RegistryCleaner"=dword:00000000
)");
  rig.Repair();
  EXPECT_FALSE(rig.System.Disk.DirectoryExists(rig.Vars.SuiteBackupsFolder));
  EXPECT_EQ(rig.OldText(), "");
  EXPECT_EQ(rig.RunText(), kRepairedRun);
  EXPECT_EQ(rig.Outcome.BackupName, u"");
  EXPECT_TRUE(rig.Outcome.BackupMade);
}

TEST(Repair, DeletesAFileWithoutBackingItUp) {
  TRepairRig rig;
  rig.System.Disk.AddFile(u"C:\\Menu\\gone.lnk");
  rig.AddProblem(rig.AddSection(u"Files"), FileProblem(u"C:\\Menu\\gone.lnk"));
  rig.Repair();
  EXPECT_FALSE(rig.System.Disk.FileExists(u"C:\\Menu\\gone.lnk"));
  EXPECT_FALSE(Holds(rig.BackupText(), "gone.lnk"));
  EXPECT_EQ(rig.Updates[rig.Updates.size() - 2], Deleting(TextId::DeletingFile, "C:\\Menu\\gone.lnk"));
  EXPECT_TRUE(rig.Unmarked().empty());
}

TEST(Repair, MarksAFileThatCannotBeDeletedAndCountsIt) {
  TRepairRig rig;
  rig.System.Disk.AddFile(u"C:\\Menu\\gone.lnk");
  rig.AddProblem(rig.AddSection(u"Files"), FileProblem(u"C:\\Menu\\gone.lnk"));
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  rig.Repair();
  EXPECT_TRUE(rig.Unmarked().empty());
  EXPECT_EQ(rig.Outcome.Failed.size(), 1U);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 0U);
}

TEST(Repair, TakesAKeyPathWithoutItsBackslashFromTheRoot) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Old]
"Trace"="x"
)");
  TResultsNode* section = rig.AddSection(u"Adware");
  rig.AddProblem(section, ValueProblem(kHkeyCurrentUser, u"Software\\Old", u"Trace"));
  rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"Software\\Old"));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kOld), "");
  EXPECT_TRUE(Holds(rig.BackupText(), "[HKEY_CURRENT_USER\\Software\\Old]"));
}

TEST(Repair, TakesAValueNameOfOneNulForTheUnnamedValue) {
  TRepairRig rig;
  const std::string before = R"([HKEY_CURRENT_USER\Software\Recent]
@="C:\\gone.txt"
)";
  LoadRegText(rig.System.Registry, before);
  rig.AddProblem(rig.AddSection(u"MRU"),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", TextView(u"\0", 1)));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), "[HKEY_CURRENT_USER\\Software\\Recent]\n");
  EXPECT_TRUE(Holds(rig.BackupText(), "@="));
  rig.RestoreTheBackup();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), before);
}

TEST(Repair, NeverBacksUpOrDeletesAWholeRoot) {
  TRepairRig rig;
  const std::string before = R"([HKEY_CURRENT_USER\Software\Old]
"Path"="x"
)";
  LoadRegText(rig.System.Registry, before);
  rig.AddProblem(rig.AddSection(u"Odd"), KeyProblem(kHkeyCurrentUser, u"\\"));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kOld), before);
  EXPECT_FALSE(Holds(rig.BackupText(), "["));
  EXPECT_EQ(rig.Outcome.NotSaved.size(), 1U);
}

TEST(Repair, LeavesAProblemOfUnknownKind) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Old]
)");
  ScanProblem problem = KeyProblem(kHkeyCurrentUser, u"\\Software\\Old");
  problem.Kind = static_cast<TProblemKind>(4);
  rig.AddProblem(rig.AddSection(u"Odd"), problem);
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kOld), "[HKEY_CURRENT_USER\\Software\\Old]\n");
  EXPECT_EQ(rig.Unmarked().size(), 1U);
}

TEST(RepairOfMissingThings, MarksThemAsRemoved) {
  TSmallRepair rig;
  rig.System.Registry.RemoveKey(kOld);
  rig.System.Registry.RemoveKey(kRunKey);
  rig.Repair();
  EXPECT_TRUE(rig.Unmarked().empty());
  EXPECT_EQ(rig.Outcome.Deleted.size(), 2U);
  EXPECT_TRUE(rig.Outcome.Failed.empty());
  // The key of the value doesn't open: no text.
  EXPECT_EQ(rig.Updates[rig.Updates.size() - 2], "item: ");
}

TEST(RepairOfMissingThings, MarksAMissingValueOfAnExistingKey) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Old]
)");
  rig.AddProblem(rig.AddSection(u"Broken"), ValueProblem(kHkeyCurrentUser, u"\\Software\\Old", u"Gone"));
  rig.Repair();
  EXPECT_TRUE(rig.Unmarked().empty());
  EXPECT_EQ(rig.Updates[rig.Updates.size() - 2], Deleting(TextId::DeletingValue, "\\Software\\Old - Gone"));
}

TEST(RepairOfMissingThings, DoesNotDeleteWhatAppearsAfterTheBackup) {
  TRepairRig rig;
  TResultsNode* section = rig.AddSection(u"Broken");
  rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\Software\\Old"));
  rig.AddProblem(section, ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a"));
  const std::string appeared = R"([HKEY_CURRENT_USER\Software\Old]
"New"="x"
)";
  const std::string appearedToo = R"([HKEY_CURRENT_USER\Software\Recent]
"a"="x"
)";
  rig.Repair([&](const std::string& update, TWorkerThread&) {
    if (update == Repairing("Broken")) {
      LoadRegText(rig.System.Registry, appeared);
      LoadRegText(rig.System.Registry, appearedToo);
    }
  });
  EXPECT_EQ(RegText(rig.System.Registry, kOld), appeared);
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), appearedToo);
  EXPECT_EQ(rig.Unmarked().size(), 2U);
}

TEST(RepairOfUnreadableThings, LeavesADeniedKeyAndItsValuesAndGoesOn) {
  TSmallRepair rig;
  const std::string locked = R"([HKEY_CURRENT_USER\Locked]
"v"="x"
)";
  LoadRegText(rig.System.Registry, locked);
  LoadRegText(rig.System.Registry, "[HKEY_CURRENT_USER\\Last]\n");
  rig.AddProblem(rig.Section, ValueProblem(kHkeyCurrentUser, u"\\Locked", u"v"));
  rig.AddProblem(rig.Section, KeyProblem(kHkeyCurrentUser, u"\\Locked"));
  rig.AddProblem(rig.Section, KeyProblem(kHkeyCurrentUser, u"\\Last"));
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\Locked");
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, u"HKEY_CURRENT_USER\\Locked"), locked);
  EXPECT_EQ(RegText(rig.System.Registry, u"HKEY_CURRENT_USER\\Last"), "");
  EXPECT_EQ(rig.Unmarked(), TLines({"\\Locked|v", "\\Locked|"}));
  EXPECT_EQ(rig.Outcome.NotSaved.size(), 2U);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 3U);
  // They count in the percentages all the same: the fifth of five, each counted twice.
  EXPECT_EQ(rig.Updates.back(), "bar: 50");
}

TEST(RepairOfUnreadableThings, LeavesAKeyWithADeniedKeyBelowIt) {
  TRepairRig rig;
  const std::string before = R"([HKEY_CURRENT_USER\Software\Old]
"v"="x"

[HKEY_CURRENT_USER\Software\Old\Locked]
)";
  LoadRegText(rig.System.Registry, before);
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\Software\\Old\\Locked");
  rig.AddProblem(rig.AddSection(u"Broken"), KeyProblem(kHkeyCurrentUser, u"\\Software\\Old"));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kOld), before);
  EXPECT_FALSE(Holds(rig.BackupText(), "["));
  EXPECT_EQ(rig.Unmarked().size(), 1U);
}

TEST(RepairOfUnreadableThings, NeverFollowsARegistryLink) {
  for (const bool backupsOn : {true, false}) {
    TRepairRig rig;
    rig.System.Registry.SetInteger(kSettings, u"RegistryCleaner", backupsOn ? 1 : 0);
    const std::string precious = R"([HKEY_LOCAL_MACHINE\Precious]
"v"="x"
)";
    LoadRegText(rig.System.Registry, precious);
    rig.System.Registry.MakeLink(u"HKEY_CURRENT_USER\\Link", u"HKEY_LOCAL_MACHINE\\Precious");
    rig.System.Registry.MakeLink(u"HKEY_CURRENT_USER\\Parent\\Link", u"HKEY_LOCAL_MACHINE\\Precious");
    TResultsNode* section = rig.AddSection(u"Broken");
    rig.AddProblem(section, ValueProblem(kHkeyCurrentUser, u"\\Link", u"v"));
    rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\Link"));
    rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\Parent"));
    rig.Repair();
    EXPECT_EQ(RegText(rig.System.Registry, u"HKEY_LOCAL_MACHINE\\Precious"), precious) << backupsOn;
    EXPECT_TRUE(rig.System.Registry.HasKey(u"HKEY_CURRENT_USER\\Parent\\Link")) << backupsOn;
    EXPECT_EQ(rig.Unmarked().size(), backupsOn ? 3U : 0U);
    EXPECT_EQ(rig.Outcome.Failed.size(), backupsOn ? 0U : 3U);
  }
}

TEST(AFailedDeletion, IsMarkedAsRemovedAndCounted) {
  TSmallRepair rig;
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == Repairing("Broken")) {
      rig.System.Registry.Deny(kOld);
      rig.System.Registry.Deny(kRunKey);
    }
  });
  EXPECT_EQ(rig.OldText(), kBroken);
  EXPECT_EQ(rig.RunText(), kRun);
  EXPECT_TRUE(rig.Unmarked().empty());
  EXPECT_EQ(rig.Outcome.Failed.size(), 2U);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 0U);
}

TEST(AFailedBackupOfARepair, EndsItBeforeAnythingIsDeletedWhicheverStepFails) {
  struct TCase {
    const char* Name;
    std::function<void(TSmallRepair&)> Break;
    std::string Reason;
  };
  const TCase cases[] = {
      {"folder", [](TSmallRepair& rig) { rig.System.Disk.FailMakingFolders(kErrorAccessDenied); },
       "System message 5."},
      {"write", [](TSmallRepair& rig) { rig.System.Disk.FailReplacing(kErrorDiskFull); },
       "System message 112."},
      {"read back", [](TSmallRepair& rig) { rig.System.Disk.FailReading(kErrorAccessDenied); },
       "System message 5."},
      {"verify", [](TSmallRepair& rig) { rig.System.Disk.CorruptWrites(true); },
       EncodeUtf8(Says(TextId::BackupNotVerified))},
      {"index",
       [](TSmallRepair& rig) {
         const Text index = rig.Vars.SuiteBackupsFolder + u"index.ini";
         rig.System.Disk.AddFile(index);
         rig.System.Disk.MakeUnreadable(index);
       },
       "index.ini: System message 5."},
  };
  const std::string notBegun = EncodeUtf8(Says(TextId::RepairFailedBeforeDeletion)) + "(";
  for (const TCase& each : cases) {
    TSmallRepair rig;
    const std::vector<std::string> before = rig.Dump();
    each.Break(rig);
    rig.Repair();
    EXPECT_EQ(rig.Dump(), before) << each.Name;
    EXPECT_EQ(rig.Unmarked().size(), 2U) << each.Name;
    EXPECT_TRUE(rig.FailureText.starts_with(notBegun)) << rig.FailureText;
    EXPECT_TRUE(Holds(rig.FailureText, each.Reason)) << rig.FailureText;
    EXPECT_FALSE(rig.Outcome.BackupMade) << each.Name;
    EXPECT_EQ(rig.Outcome.NotReached, 2U) << each.Name;
  }
}

TEST(CancellingARepair, DoesNotStopTheBackupButEveryDeletion) {
  TSmallRepair rig;
  const std::vector<std::string> before = rig.Dump();
  rig.Repair([](const std::string& update, TWorkerThread& thread) {
    if (update == "section: Backup ...")
      thread.Terminate();
  });
  EXPECT_EQ(rig.Dump(), before);
  EXPECT_TRUE(Holds(rig.BackupText(), "\"Updater\""));
  EXPECT_EQ(rig.Outcome.NotReached, 2U);
  EXPECT_EQ(rig.Unmarked().size(), 2U);
}

TEST(CancellingARepair, StopsBeforeTheNextProblem) {
  TSmallRepair rig;
  rig.Repair([](const std::string& update, TWorkerThread& thread) {
    if (update == Deleting(TextId::DeletingKey))
      thread.Terminate();
  });
  EXPECT_EQ(rig.OldText(), "");
  EXPECT_EQ(rig.RunText(), kRun);
  EXPECT_EQ(rig.Unmarked(), TLines({"\\Software\\Run|Updater"}));
  EXPECT_EQ(rig.Outcome.NotReached, 1U);
}

TEST(CancellingARepair, StopsBeforeTheNextSection) {
  TSmallRepair rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Next]
)");
  rig.AddProblem(rig.AddSection(u"Next"), KeyProblem(kHkeyCurrentUser, u"\\Next"));
  rig.Repair([](const std::string& update, TWorkerThread& thread) {
    if (Holds(update, "Updater"))
      thread.Terminate();
  });
  EXPECT_EQ(RegText(rig.System.Registry, u"HKEY_CURRENT_USER\\Next"), "[HKEY_CURRENT_USER\\Next]\n");
  EXPECT_FALSE(Holds(rig.Updates.back(), "Next"));
}

TEST(CancellingARepair, MarksWhatWasDeletedWhileItWasCancelled) {
  TSmallRepair rig;
  rig.Repair([&rig](const std::string& update, TWorkerThread& thread) {
    if (update == Repairing("Broken"))
      rig.System.Registry.OnDeletion = [&thread] { thread.Terminate(); };
  });
  EXPECT_EQ(rig.OldText(), "");
  EXPECT_EQ(rig.RunText(), kRun);
  EXPECT_TRUE(rig.Key->Problem.StateFlag2);
  EXPECT_FALSE(rig.Value->Problem.StateFlag2);
  EXPECT_EQ(rig.Outcome.Deleted.size(), 1U);
  // Labels and bars stand still.
  EXPECT_EQ(rig.Updates.back(), "overall: 50");
}

TEST(StartMenuRepair, DeletesTheEmptiedKeysUpToTheProgramsKey) {
  TRepairRig rig;
  const std::string before = R"([HKEY_CURRENT_USER\Menu\Start Menu2\Programs]
"Order"="p"

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A]
"Order"="a"

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
"Order"="b"
)";
  LoadRegText(rig.System.Registry, before);
  rig.AddProblem(rig.AddSection(u"Start Menu", kStartMenuImage),
                 KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B", kStartMenuImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), R"([HKEY_CURRENT_USER\Menu\Start Menu2\Programs]
"Order"="p"
)");
  // The emptied keys' own values are in the backup too.
  rig.RestoreTheBackup();
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), before);
}

TEST(StartMenuRepair, StopsAtTheFirstKeyThatHoldsOtherKeys) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\Other]
)");
  rig.AddProblem(rig.AddSection(u"Start Menu"),
                 KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B", kStartMenuImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), R"([HKEY_CURRENT_USER\Menu\Start Menu2\Programs]

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A]

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\Other]
)");
}

TEST(StartMenuRepair, DeletesAKeyAboveOnlyWhenItsBackupHoldsIt) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
"Order"="b"
)");
  rig.System.Registry.Deny(Text(kPrograms) + u"\\A\\Locked");
  rig.AddProblem(rig.AddSection(u"Start Menu"),
                 KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B", kStartMenuImage));
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == Repairing("Start Menu"))
      rig.System.Registry.RemoveKey(Text(kPrograms) + u"\\A\\Locked");
  });
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), R"([HKEY_CURRENT_USER\Menu\Start Menu2\Programs]

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A]
)");
}

TEST(StartMenuRepair, LooksAtTheProblemsOwnPictureNotAtItsSections) {
  for (const std::int32_t image : {-1, 0}) {
    TRepairRig rig;
    LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
)");
    rig.AddProblem(rig.AddSection(u"Start Menu", kStartMenuImage),
                   KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B", image));
    rig.Repair();
    EXPECT_EQ(RegText(rig.System.Registry, kPrograms), R"([HKEY_CURRENT_USER\Menu\Start Menu2\Programs]

[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A]
)");
  }
}

TEST(StartMenuRepair, TrimsThePathAndDropsItsLastBackslash) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
)");
  rig.AddProblem(rig.AddSection(u"Start Menu"),
                 KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B\\", kStartMenuImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), "[HKEY_CURRENT_USER\\Menu\\Start Menu2\\Programs]\n");
}

TEST(StartMenuRepair, DeletesTheEmptiedKeysAlsoWhenItsOwnWasDeletedMeanwhile) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Menu\Start Menu2\Programs\A\B]
)");
  rig.AddProblem(rig.AddSection(u"Start Menu"),
                 KeyProblem(kHkeyCurrentUser, u"\\Menu\\Start Menu2\\Programs\\A\\B", kStartMenuImage));
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == Repairing("Start Menu"))
      rig.System.Registry.RemoveKey(Text(kPrograms) + u"\\A\\B");
  });
  EXPECT_EQ(RegText(rig.System.Registry, kPrograms), "[HKEY_CURRENT_USER\\Menu\\Start Menu2\\Programs]\n");
}

TEST(MruRepair, WritesTheOrderAlsoWhenItsValueWasDeletedMeanwhile) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"b"="C:\\here.txt"
"MRUList"="ba"
)");
  rig.AddProblem(rig.AddSection(u"MRU"),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a", kMruImage));
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == Repairing("MRU")) {
      EXPECT_EQ(rig.System.Raw.DeleteValue(kHkeyCurrentUser, u"\\Software\\Recent", u"a"), TRawResult::Done);
    }
  });
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
"b"="C:\\here.txt"
"MRUList"="b"
)");
}

TEST(MruRepair, WritesTheOrderOfTheValuesThatStay) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"b"="C:\\gone.txt"
"c"="C:\\gone.txt"
"MRUList"="cba"
)");
  rig.AddProblem(rig.AddSection(u"MRU", kMruImage),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"b", kMruImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"c"="C:\\gone.txt"
"MRUList"="ac"
)");
  // The old order is in the backup too.
  rig.RestoreTheBackup();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"c"="C:\\gone.txt"
"MRUList"="cba"
"b"="C:\\gone.txt"
)");
}

TEST(MruRepair, OfTheLastValueLeavesAnEmptyOrder) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"mruLIST"="a"
)");
  rig.AddProblem(rig.AddSection(u"MRU"),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a", kMruImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
"mruLIST"=""
)");
}

TEST(MruRepair, WritesNoOrderWhereThereWasNone) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
)");
  rig.AddProblem(rig.AddSection(u"MRU"),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a", kMruImage));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
)");
}

TEST(MruRepair, LooksAtTheProblemsOwnPictureNotAtItsSections) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Recent]
"a"="C:\\gone.txt"
"MRUList"="a"
)");
  rig.AddProblem(rig.AddSection(u"MRU", kMruImage),
                 ValueProblem(kHkeyCurrentUser, u"\\Software\\Recent", u"a"));
  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kRecent), R"([HKEY_CURRENT_USER\Software\Recent]
"MRUList"="a"
)");
  EXPECT_FALSE(Holds(rig.BackupText(), "MRUList"));
}

TEST(Cleaning, KeepsItsBackupFromAnotherCopyThatFindsTooMany) {
  TSmallRepair rig;
  rig.Vars.BackupsMax = 1;
  rig.Repair([&rig](const std::string& update, TWorkerThread&) {
    if (update == Repairing("Broken")) {
      TSystem system = rig.System.Bundle();
      BackupStore(system, rig.Vars).PruneBackups([] { return false; });
    }
  });
  EXPECT_EQ(rig.FailureText, "");
  EXPECT_EQ(rig.Backups().size(), 1U);
  EXPECT_EQ(rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_TRUE(rig.System.Registry.HasKey(kOld));
}

}  // namespace corvalt
