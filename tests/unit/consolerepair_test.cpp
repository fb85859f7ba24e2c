// The console program's commands that change something, over a system in memory.

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/names.h"
#include "tests/support/regtext.h"
#include "tests/support/testconsole.h"

namespace corvalt {

namespace {

constexpr TextView kShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr TextView kModules =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";
constexpr TextView kIgnored =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\IgnoreList";

// The user's broken shell folder, before and after a repair.
constexpr std::string_view kBroken =
    R"([HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\gone"
)";
constexpr std::string_view kRepaired =
    R"([HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
)";

constexpr std::string_view kApp = R"([HKEY_CURRENT_USER\Software\App]
"File"="C:\\gone"
)";
constexpr std::string_view kRepairedApp = "[HKEY_CURRENT_USER\\Software\\App]\n";

// A text as a line of the console.
std::string Line(const Text& text) {
  return EncodeUtf8(text) + "\n";
}

// How a text with an argument begins.
std::string Begin(TextId text) {
  return EncodeUtf8(Says(text)) + "(";
}

const std::string kListing =
    "Registry Integrity (1)\n"
    "  HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\n"
    "    Value: Fonts\n"
    "    " +
    Line(Says(TextId::MissingShellFolder, u"Fonts", u"C:\\gone"));

class ConsoleRepair : public testing::Test {
 protected:
  ConsoleRepair() {
    LoadRegText(m_rig.Scan.System.Registry, kBroken);
  }

  // Forgets what was written and told before.
  int Run(const std::vector<Text>& arguments) {
    m_rig.Console.Output.clear();
    m_rig.Console.Told.clear();
    return m_rig.Run(arguments);
  }

  int Repair(std::vector<Text> more = {u"--yes"}) {
    more.insert(more.begin(), {u"repair", u"--sections", DecimalText(Section::RegistryIntegrity)});
    return Run(more);
  }

  // A broken value, and a link to its key: the problem that is found behind the link stays.
  void AddLinkedApp() {
    LoadRegText(m_rig.Scan.System.Registry, kApp);
    m_rig.Scan.System.Registry.MakeLink(u"HKEY_CURRENT_USER\\Software\\Link",
                                        u"HKEY_CURRENT_USER\\Software\\App");
  }

  std::string TextOf(TextView key) {
    return RegText(m_rig.Scan.System.Registry, key);
  }

  bool HasProblem() {
    return m_rig.Scan.System.Registry.HasValue(kShellFolders, u"Fonts");
  }

  Text BackupsFolder() {
    return u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\";
  }

  TConsoleRig m_rig;
};

}  // namespace

TEST_F(ConsoleRepair, WithoutYesListsWhatItWouldDeleteAndDeletesNothing) {
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"index.ini", "[1]\r\nType=11001\r\n");
  EXPECT_EQ(Repair({}), 1);
  EXPECT_EQ(m_rig.Console.Output, kListing);
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::NothingDeletedWithoutYes)));
  EXPECT_EQ(TextOf(kShellFolders), kBroken);
  // Not even an old backup.
  EXPECT_EQ(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"index.ini"), "[1]\r\nType=11001\r\n");
}

TEST_F(ConsoleRepair, WithYesBacksUpAndDeletes) {
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(TextOf(kShellFolders), kRepaired);
  EXPECT_EQ(m_rig.Console.Output, "");
  EXPECT_EQ(m_rig.Told(),
            Line(Says(TextId::BackupNamed, u"46341.5")) + Line(Says(TextId::EntriesRepaired, u"1")));
}

TEST_F(ConsoleRepair, WithNothingToDoAnswersZeroAndMakesNoBackup) {
  Repair();
  m_rig.Scan.System.Clock.Time += 1;
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(m_rig.Told(), "");
  EXPECT_FALSE(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46342.5"));
}

TEST_F(ConsoleRepair, TidiesTheBackupsUpFirst) {
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"index.ini", "[1]\r\nType=11001\r\n");
  EXPECT_EQ(Repair(), 0);
  EXPECT_EQ(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"index.ini"), "[46341.5]\r\nType=11001\r\n");
}

TEST_F(ConsoleRepair, ListsWhatIsLeftAndAnswersOne) {
  AddLinkedApp();
  EXPECT_EQ(Run({u"repair", u"--sections", DecimalText(Section::FilesOfCurrentUser), u"--yes"}), 1);
  EXPECT_EQ(TextOf(u"HKEY_CURRENT_USER\\Software\\App"), kRepairedApp);
  EXPECT_NE(m_rig.Console.Output.find("\\Software\\Link\n"), std::string::npos) << m_rig.Console.Output;
  EXPECT_EQ(m_rig.Console.Output.find("\\Software\\App\n"), std::string::npos);
  EXPECT_NE(m_rig.Told().find(Line(Says(TextId::EntriesNotSaved, u"1"))), std::string::npos) << m_rig.Told();
}

TEST_F(ConsoleRepair, ListsWhatCouldNotBeDeletedAndAnswersOne) {
  m_rig.Scan.System.Registry.LetUse(kShellFolders, TMemoryRights::Read);
  EXPECT_EQ(Repair(), 1);
  EXPECT_EQ(TextOf(kShellFolders), kBroken);
  EXPECT_EQ(m_rig.Console.Output, kListing);
  EXPECT_EQ(m_rig.Told(),
            Line(Says(TextId::BackupNamed, u"46341.5")) + Line(Says(TextId::EntriesNotDeleted, u"1")));
}

TEST_F(ConsoleRepair, ListsWhatIsLeftOnStandardErrorWhereStandardOutputHoldsJson) {
  AddLinkedApp();
  EXPECT_EQ(
      Run({u"repair", u"--sections", DecimalText(Section::FilesOfCurrentUser), u"--yes", u"--json", u"-"}),
      1);
  EXPECT_EQ(m_rig.Console.Output.front(), '{');
  EXPECT_NE(m_rig.Told().find("  HKEY_CURRENT_USER\\Software\\Link\n"), std::string::npos) << m_rig.Told();
}

TEST_F(ConsoleRepair, AnswersThreeWithTheReasonWhenTheDiskIsFull) {
  m_rig.Scan.System.Disk.FailReplacing(kErrorDiskFull);
  EXPECT_EQ(Repair(), 3);
  EXPECT_EQ(TextOf(kShellFolders), kBroken);
  EXPECT_NE(m_rig.Told().find(Begin(TextId::RepairFailedBeforeDeletion)), std::string::npos) << m_rig.Told();
  EXPECT_NE(m_rig.Told().find("System message 112."), std::string::npos) << m_rig.Told();
}

TEST_F(ConsoleRepair, CancelledWhileItWaitsForTheBackupsListsWhatIsLeftAndAnswersOne) {
  TMemoryInterprocess& interprocess = m_rig.Scan.System.Interprocess;
  std::unique_ptr<THeldLock> others;
  // Another copy takes the lock while this one scans.
  m_rig.Scan.System.Registry.OnRead = [&, mainThread = std::this_thread::get_id()] {
    if (std::this_thread::get_id() != mainThread && !others)
      others = interprocess.HoldEveryLock();
  };
  bool wasTaken = false;
  interprocess.OnWait = [&] { wasTaken = m_rig.Console.Interrupt(); };
  EXPECT_EQ(Repair(), 1);
  EXPECT_TRUE(wasTaken);
  EXPECT_EQ(TextOf(kShellFolders), kBroken);
  EXPECT_EQ(m_rig.Console.Output, kListing);
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::EntriesNotReached, u"1")));
  EXPECT_FALSE(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46341.5"));
}

TEST_F(ConsoleRepair, RepairsAlsoWhenTheBackupsCannotBeTidiedUp) {
  m_rig.Scan.System.Disk.AddFile(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\index.ini",
                                 "[1]\r\n");
  m_rig.Scan.System.Disk.MakeUnreadable(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\index.ini");
  EXPECT_EQ(Repair(), 0);
  EXPECT_NE(m_rig.Told().find(Begin(TextId::MaintenanceFailed)), std::string::npos) << m_rig.Told();
  EXPECT_FALSE(HasProblem());
}

TEST_F(ConsoleRepair, AnswersThreeWhenTheScanFails) {
  EXPECT_EQ(Run({u"repair", u"--sections",
                 DecimalText(Section::RegistryIntegrity) + u"," + DecimalText(Section::AdwareAndSpyware),
                 u"--yes"}),
            3);
  EXPECT_TRUE(HasProblem());
}

TEST_F(ConsoleRepair, WithBackupsSwitchedOffNeedsASecondWord) {
  LoadRegText(m_rig.Scan.System.Registry, R"(
[HKEY_CURRENT_USER\Software\TessalySoft\Tessaly Utilities\Settings\AvailableModules]
"RegistryCleaner"=dword:00000000
)");
  EXPECT_EQ(Repair(), 2);
  EXPECT_TRUE(HasProblem());
  EXPECT_EQ(Repair({u"--yes", u"--no-backup"}), 0);
  EXPECT_FALSE(HasProblem());
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::EntriesRepaired, u"1")));
  EXPECT_FALSE(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"index.ini"));
}

TEST_F(ConsoleRepair, MakesABackupInSpiteOfTheWordWhereTheSettingsWantOne) {
  EXPECT_EQ(Repair({u"--yes", u"--no-backup"}), 0);
  EXPECT_TRUE(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46341.5"));
}

TEST_F(ConsoleRepair, AnswersForTheDeletionsWhenWhatIsLeftCannotBeWritten) {
  AddLinkedApp();
  m_rig.Console.WriteFailure = kErrorDiskFull;
  EXPECT_EQ(Run({u"repair", u"--sections", DecimalText(Section::FilesOfCurrentUser), u"--yes"}), 1);
  EXPECT_EQ(TextOf(u"HKEY_CURRENT_USER\\Software\\App"), kRepairedApp);
}

TEST_F(ConsoleRepair, MakesABackupWhenBackupsAreSwitchedOffDuringTheScan) {
  // The scan reads on a thread of its own.
  m_rig.Scan.System.Registry.OnRead = [this, mainThread = std::this_thread::get_id()] {
    if (std::this_thread::get_id() != mainThread)
      m_rig.Scan.System.Registry.SetInteger(kModules, u"RegistryCleaner", 0);
  };
  EXPECT_EQ(Repair(), 0);
  EXPECT_TRUE(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46341.5"));
}

TEST_F(ConsoleRepair, WritesWhatItFoundAsJsonBeforeItDeletes) {
  EXPECT_EQ(Repair({u"--yes", u"--json", u"-"}), 0);
  EXPECT_NE(m_rig.Console.Output.find("\"valueName\":\"Fonts\""), std::string::npos) << m_rig.Console.Output;
  LoadRegText(m_rig.Scan.System.Registry, kBroken);
  EXPECT_EQ(Repair({u"--yes", u"--json", u"C:\\no folder\\a.json"}), 3);
  EXPECT_TRUE(HasProblem());
}

TEST_F(ConsoleRepair, RefusesWrongArguments) {
  EXPECT_EQ(Run({u"repair", u"all"}), 2);
  EXPECT_EQ(Run({u"repair", u"--quiet"}), 2);
  EXPECT_EQ(Run({u"repair", u"--sections", u"2", u"--yes"}), 2);
  EXPECT_EQ(Run({u"backups", u"all"}), 2);
  EXPECT_EQ(Run({u"restore"}), 2);
  EXPECT_EQ(Run({u"restore", u"1", u"2"}), 2);
  EXPECT_EQ(Run({u"ignore"}), 2);
  EXPECT_EQ(Run({u"ignore", u"list", u"x"}), 2);
  EXPECT_EQ(Run({u"ignore", u"add"}), 2);
  EXPECT_EQ(Run({u"ignore", u"add", u""}), 2);
  EXPECT_EQ(m_rig.Starts, 0);
}

TEST_F(ConsoleRepair, BackupsListsNameTimeAndSizeNewestFirst) {
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"index.ini",
                                 "[46340]\r\nType=11001\r\n[46341.5]\r\nType=11001\r\n[3]\r\nType=1\r\n");
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"46341.5", "12345");
  EXPECT_EQ(Run({u"backups"}), 0);
  EXPECT_EQ(m_rig.Console.Output, "46341.5\t11/15/2026 12:00:00 PM\t5\n46340\t11/14/2026 12:00:00 AM\t0\n");
  EXPECT_EQ(m_rig.Told(), "");
}

TEST_F(ConsoleRepair, BackupsSaysWhyTheyCannotBeListed) {
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"index.ini", "");
  m_rig.Scan.System.Disk.MakeUnreadable(BackupsFolder() + u"index.ini");
  EXPECT_EQ(Run({u"backups"}), 3);
  EXPECT_TRUE(m_rig.Told().starts_with(Begin(TextId::BackupsNotListed))) << m_rig.Told();
}

TEST_F(ConsoleRepair, RestoreBringsItBack) {
  Repair();
  EXPECT_EQ(Run({u"restore", u"46341.5"}), 0);
  EXPECT_EQ(TextOf(kShellFolders), kBroken);
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::RestoreDone, u"46341.5")));
}

TEST_F(ConsoleRepair, RestoreAnswersOneWhenLinesAreSkipped) {
  Repair();
  const std::string text = *m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46341.5");
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"46341.5", text + "nonsense\r\n");
  EXPECT_EQ(Run({u"restore", u"46341.5"}), 1);
  EXPECT_TRUE(HasProblem());
  const std::size_t lines = SplitLines(FromAscii(text)).size();
  EXPECT_EQ(m_rig.Told(),
            Line(Says(TextId::BackupNotWhole)) + Line(Says(TextId::RestoreIncomplete, u"46341.5")) +
                Line(Says(TextId::LinesSkipped, u"1")) +
                Line(Says(TextId::SkippedLine, DecimalText(static_cast<int>(lines) + 1), u"nonsense")));
}

TEST_F(ConsoleRepair, RestoreRefusesABackupMadeElsewhereUnlessToldOtherwise) {
  Repair();
  m_rig.Scan.System.Machine.Computer = u"OTHER";
  EXPECT_EQ(Run({u"restore", u"46341.5"}), 3);
  EXPECT_FALSE(HasProblem());
  const std::string foreign = Line(Says(TextId::BackupForeign, u"ANNS-PC", u"S-1-5-21-1000-2000-3000-1001"));
  EXPECT_EQ(m_rig.Told(), foreign + Line(Says(TextId::UseForeign)));
  EXPECT_EQ(Run({u"restore", u"46341.5", u"--foreign"}), 0);
  EXPECT_TRUE(HasProblem());
  EXPECT_EQ(m_rig.Told(), foreign + Line(Says(TextId::RestoreDone, u"46341.5")));
}

TEST_F(ConsoleRepair, RestoreGoesOnWithAFileThatIsNotWhole) {
  Repair();
  std::string text = *m_rig.Scan.System.Disk.Content(BackupsFolder() + u"46341.5");
  text.resize(text.rfind(";Corvalt end="));
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"46341.5", text);
  EXPECT_EQ(Run({u"restore", u"46341.5"}), 1);
  EXPECT_TRUE(HasProblem());
  EXPECT_EQ(m_rig.Told(),
            Line(Says(TextId::BackupNotWhole)) + Line(Says(TextId::RestoreIncomplete, u"46341.5")));
}

TEST_F(ConsoleRepair, RestoreRefusesWhatIsNotListed) {
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"7", "REGEDIT4\r\n[HKEY_CURRENT_USER\\Made]\r\n");
  EXPECT_EQ(Run({u"restore", u"7"}), 3);
  EXPECT_EQ(TextOf(u"HKEY_CURRENT_USER\\Made"), "");
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::BackupMissing, u"7")));
}

TEST_F(ConsoleRepair, RestoreRefusesAFileWithoutTheHeader) {
  Repair();
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"46341.5", "[HKEY_CURRENT_USER\\Made]\r\n");
  EXPECT_EQ(Run({u"restore", u"46341.5"}), 3);
  EXPECT_EQ(m_rig.Told(), Line(Says(TextId::BackupDamaged, u"46341.5")));
}

TEST_F(ConsoleRepair, OnlyARepairTidiesTheBackupsUp) {
  const std::string index = "[1]\r\nType=11001\r\n";
  m_rig.Scan.System.Disk.AddFile(BackupsFolder() + u"index.ini", index);
  Run({u"backups"});
  Run({u"restore", u"1"});
  Run({u"scan", u"--sections", DecimalText(Section::RegistryIntegrity)});
  Run({u"ignore", u"list"});
  EXPECT_EQ(m_rig.Scan.System.Disk.Content(BackupsFolder() + u"index.ini"), index);
}

TEST_F(ConsoleRepair, IgnoreAddsListsAndRemovesEntries) {
  EXPECT_EQ(Run({u"ignore", u"add", u"HKEY_CURRENT_USER\\A\\"}), 0);
  EXPECT_EQ(Run({u"ignore", u"add", u"HKEY_CURRENT_USER\\B\\"}), 0);
  EXPECT_EQ(Run({u"ignore", u"list"}), 0);
  EXPECT_EQ(m_rig.Console.Output, "HKEY_CURRENT_USER\\A\\\nHKEY_CURRENT_USER\\B\\\n");
  EXPECT_EQ(Run({u"ignore", u"remove", u"hkey_current_user\\a\\"}), 0);
  EXPECT_EQ(Run({u"ignore", u"list"}), 0);
  EXPECT_EQ(m_rig.Console.Output, "HKEY_CURRENT_USER\\B\\\n");
  EXPECT_EQ(Run({u"ignore", u"remove", u"HKEY_CURRENT_USER\\A\\"}), 1);
}

TEST_F(ConsoleRepair, IgnoreShowsAndRemovesSwitchedOffEntries) {
  LoadRegText(m_rig.Scan.System.Registry, R"(
[HKEY_CURRENT_USER\Software\TessalySoft\Tessaly Utilities\Corvalt\IgnoreList]
";off"=dword:00000001
"off"=dword:00000001
)");
  EXPECT_EQ(Run({u"ignore", u"list"}), 0);
  EXPECT_EQ(m_rig.Console.Output, ";off\noff\n");
  EXPECT_EQ(Run({u"ignore", u"remove", u"off"}), 0);
  EXPECT_FALSE(m_rig.Scan.System.Registry.HasValue(kIgnored, u";off"));
  EXPECT_FALSE(m_rig.Scan.System.Registry.HasValue(kIgnored, u"off"));
}

TEST_F(ConsoleRepair, IgnoreSaysWhenTheListCannotBeStored) {
  m_rig.Scan.System.Registry.Deny(kIgnored);
  EXPECT_EQ(Run({u"ignore", u"add", u"x"}), 3);
}

}  // namespace corvalt
