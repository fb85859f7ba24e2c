// The console program from its arguments to its exit code, over a system in memory.

#include <gtest/gtest.h>

#include "scan/catalogue.h"
#include "tests/support/testconsole.h"
#include "ui/console/arguments.h"
#include "ui/console/problemlisting.h"

namespace corvalt {

namespace {

constexpr TextView kShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr TextView kRunKey = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";

constexpr char kHelpHint[] = "40112\n";

const std::string kShellFolderListing =
    "Registry Integrity (1)\n"
    "  HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\n"
    "    Value: Fonts\n"
    "    11068(Fonts|C:\\gone)\n";

class ConsoleProgram : public testing::Test {
 protected:
  void AddShellFolderProblem() {
    m_rig.Scan.System.Registry.Set(kShellFolders, u"Fonts", u"C:\\gone");
  }

  void ExpectWrongUsage(const std::vector<Text>& arguments, const std::string& line) {
    const int startsBefore = m_rig.Starts;
    EXPECT_EQ(m_rig.Run(arguments), 2);
    EXPECT_EQ(m_rig.Starts, startsBefore);
    EXPECT_EQ(m_rig.Told(), line + "\n" + kHelpHint);
    EXPECT_EQ(m_rig.Console.Output, "");
    m_rig.Console.Told.clear();
  }

  std::optional<std::string> File(TextView path) {
    return m_rig.Scan.System.Disk.Content(path);
  }

  TConsoleRig m_rig;
};

std::size_t Lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

TEST_F(ConsoleProgram, WithoutACommandIsWrongUsage) {
  ExpectWrongUsage({}, "40100");
}

TEST_F(ConsoleProgram, The32BitProgramSaysOnA64BitWindowsThatTheOtherIsTheRightOne) {
  m_rig.Scan.System.Disk.SetEnvironmentVariable(u"PROCESSOR_ARCHITEW6432", u"AMD64");
  EXPECT_EQ(m_rig.Run({u"sections"}), 0);
  EXPECT_EQ(m_rig.Told(), "40036\n");
}

TEST_F(ConsoleProgram, OnItsOwnSystemItSaysNothingOfThat) {
  EXPECT_EQ(m_rig.Run({u"sections"}), 0);
  EXPECT_EQ(m_rig.Told(), "");
}

TEST_F(ConsoleProgram, WrongArgumentsAreToldAndNothingRuns) {
  ExpectWrongUsage({u"scam"}, "40101(scam)");
  ExpectWrongUsage({u"--quiet"}, "40101(--quiet)");
  ExpectWrongUsage({u"sections", u"all"}, "40103(all)");
  ExpectWrongUsage({u"sections", u"--quiet"}, "40102(--quiet)");
  ExpectWrongUsage({u"scan", u"now"}, "40103(now)");
  ExpectWrongUsage({u"scan", u"--Quiet"}, "40102(--Quiet)");
  ExpectWrongUsage({u"scan", u"--quiet", u"--quiet"}, "40104(--quiet)");
  ExpectWrongUsage({u"scan", u"--json", u"a", u"--json", u"b"}, "40104(--json)");
  ExpectWrongUsage({u"scan", u"--json"}, "40105(--json)");
  ExpectWrongUsage({u"scan", u"--json", u"--quiet"}, "40105(--json)");
  ExpectWrongUsage({u"scan", u"--report", u""}, "40105(--report)");
  ExpectWrongUsage({u"--version", u"1"}, "40103(1)");
}

TEST_F(ConsoleProgram, TheReportNeedsAFile) {
  ExpectWrongUsage({u"scan", u"--report", u"-"}, "40107");
}

TEST_F(ConsoleProgram, ASectionThatDoesNotExistIsWrongUsage) {
  for (const Text code : {u"2", u"0", u"99", u"x", u"", u"1x", u"+", u"99999999999"}) {
    const Text list = u"1," + code;
    ExpectWrongUsage({u"scan", u"--sections", list}, "40106(" + EncodeUtf8(code) + ")");
  }
}

TEST_F(ConsoleProgram, HelpNamesEveryCommandAndEveryExitCode) {
  EXPECT_EQ(m_rig.Run({u"--help"}), 0);

  for (const std::string text :
       {"  corvaltc sections\n      40131\n", "  corvaltc scan [--sections", "  corvaltc repair [--sections",
        "  corvaltc backups\n", "  corvaltc restore NAME [--foreign]\n", "  corvaltc ignore list",
        "  --json       40141\n", "  0  40148\n", "  1  40149\n", "  2  40150\n", "  3  40151\n",
        "  4  40153\n"})
    EXPECT_NE(m_rig.Console.Output.find(text), std::string::npos) << text;
  EXPECT_EQ(m_rig.Starts, 0);
}

TEST_F(ConsoleProgram, HelpIsAskedForInFourWays) {
  m_rig.Run({u"--help"});
  const std::string help = std::exchange(m_rig.Console.Output, {});
  for (const Text word : {u"help", u"-h", u"/?"}) {
    EXPECT_EQ(m_rig.Run({word}), 0);
    EXPECT_EQ(std::exchange(m_rig.Console.Output, {}), help);
  }
}

TEST_F(ConsoleProgram, HelpBreaksLongTextsBetweenWords) {
  const std::string line = "40151=" + std::string(60, 'a') + " " + std::string(60, 'b') + "\n";
  m_rig.Texts.Selected =
      TLanguageTable::FromFile(std::vector<std::uint8_t>(line.begin(), line.end()), m_rig.Scan.System.Locale);
  m_rig.Run({u"help"});
  const std::string expected = "  3  " + std::string(60, 'a') + "\n     " + std::string(60, 'b') + "\n";
  EXPECT_NE(m_rig.Console.Output.find(expected), std::string::npos) << m_rig.Console.Output;
}

TEST_F(ConsoleProgram, AValueMayFollowItsOptionAfterAnEqualsSign) {
  AddShellFolderProblem();
  EXPECT_EQ(m_rig.Run({u"scan", u"--sections=1", u"--json=C:\\a=b.json", u"--quiet"}), 1);
  EXPECT_TRUE(File(u"C:\\a=b.json"));
  ExpectWrongUsage({u"scan", u"--json="}, "40105(--json)");
  ExpectWrongUsage({u"scan", u"--quiet=yes"}, "40102(--quiet=yes)");
  ExpectWrongUsage({u"scan", u"--json=a", u"--json", u"b"}, "40104(--json)");
}

TEST_F(ConsoleProgram, AReportAndJsonOfOneFileAreRefusedHoweverItIsSpelled) {
  AddShellFolderProblem();
  m_rig.Scan.System.Disk.CurrentFolder = u"C:\\Reports";
  const std::vector<std::pair<Text, Text>> spellings = {{u"C:\\a.txt", u"c:\\A.TXT"},
                                                        {u"a.txt", u".\\a.txt"},
                                                        {u"a.txt", u"c:/reports//A.txt"},
                                                        {u"..\\a.txt", u"\\a.txt"},
                                                        {u"C:\\b\\..\\a.txt", u"C:\\a.txt"}};
  for (const auto& [report, json] : spellings) {
    EXPECT_EQ(m_rig.Run({u"scan", u"--report", report, u"--json", json}), 2) << EncodeUtf8(json);
    EXPECT_EQ(m_rig.Told(), std::string("40108\n") + kHelpHint);
    EXPECT_EQ(m_rig.Console.Output, "");
    m_rig.Console.Told.clear();
  }
}

TEST_F(ConsoleProgram, AReportMayHaveTheNameThatMeansStandardOutputForJson) {
  AddShellFolderProblem();
  m_rig.Scan.System.Disk.CurrentFolder = u"C:";
  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1", u"--report", u"C:\\-", u"--json", u"-"}), 1);
  EXPECT_TRUE(File(u"C:\\-"));
}

TEST_F(ConsoleProgram, HelpIsGivenBehindACommandToo) {
  EXPECT_EQ(m_rig.Run({u"scan", u"--quiet", u"--help"}), 0);

  EXPECT_NE(m_rig.Console.Output.find("40147\n"), std::string::npos);
  EXPECT_EQ(m_rig.Starts, 0);
}

TEST_F(ConsoleProgram, VersionIsOneLine) {
  EXPECT_EQ(m_rig.Run({u"--version"}), 0);

  EXPECT_EQ(m_rig.Console.Output, "corvaltc 9.8.7\n");
}

TEST_F(ConsoleProgram, SectionsListsCodesAndCaptionsInTheOrderOfTheRun) {
  EXPECT_EQ(m_rig.Run({u"sections"}), 0);

  EXPECT_EQ(Lines(m_rig.Console.Output), SectionCatalogue().size());
  EXPECT_TRUE(
      m_rig.Console.Output.starts_with("1\tRegistry Integrity\n"
                                       "21\tHKEY_LOCAL_MACHINE - Files and Folders\n"
                                       "22\tHKEY_CURRENT_USER - Files and Folders\n"
                                       "23\tHKEY_USERS - Files and Folders\n"
                                       "100\tAdware and Spyware\n"));
  const TSection& last = SectionCatalogue().back();
  EXPECT_TRUE(m_rig.Console.Output.ends_with(std::to_string(last.Code) + "\t" +
                                             EncodeUtf8(last.HeaderCaption) + "\n"));
}

TEST_F(ConsoleProgram, EveryCommandRunsTheStartSequenceFirst) {
  EXPECT_EQ(m_rig.Run({u"sections"}), 0);

  EXPECT_EQ(m_rig.Starts, 1);
  EXPECT_TRUE(m_rig.Scan.System.Registry.HasValue(
      u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings", u"BackupsMax"));
}

TEST_F(ConsoleProgram, AStartThatFailsEndsWithTheSystemsMessage) {
  // Each root takes four characters, the system's buffer 129.
  for (char16_t letter = 0x4E00; letter < 0x4E00 + 33; ++letter)
    m_rig.Scan.System.Disk.AddDrive(Text(1, letter) + u":\\", kDriveFixed);

  EXPECT_EQ(m_rig.Run({u"sections"}), 3);
  EXPECT_EQ(m_rig.Told(), EncodeUtf8(m_rig.Scan.System.Locale.SystemMessage(14)) + "\n");
}

TEST_F(ConsoleProgram, AScanThatFindsNothingAnswersZeroAndWritesNothing) {
  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1"}), 0);

  EXPECT_EQ(m_rig.Console.Output, "");
  EXPECT_EQ(m_rig.Told(), "");
}

TEST_F(ConsoleProgram, AScanListsWhatItFindsAndAnswersOne) {
  AddShellFolderProblem();

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1"}), 1);
  EXPECT_EQ(m_rig.Console.Output, kShellFolderListing);
}

TEST_F(ConsoleProgram, OnlyTheNamedSectionsRun) {
  AddShellFolderProblem();
  m_rig.Scan.System.Registry.Set(kRunKey, u"Old", u"C:\\old.exe");

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"8,19"}), 1);
  EXPECT_TRUE(m_rig.Console.Output.starts_with("Startup programs (1)\n"));
}

TEST_F(ConsoleProgram, WithoutSectionsAllRunWhateverIsTickedInTheWindow) {
  AddShellFolderProblem();
  m_rig.Scan.WriteCatalogue("<programs/>");
  m_rig.Scan.System.Registry.SetInteger(
      u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Sections", u"8", 1);

  EXPECT_EQ(m_rig.Run({u"scan"}), 1);
  EXPECT_TRUE(m_rig.Console.Output.starts_with(kShellFolderListing));
  for (const TSection& section : SectionCatalogue()) {
    const std::string label = "11035 " + EncodeUtf8(section.ProgressName) + "...";
    const bool isShown =
        std::any_of(m_rig.Console.Progress.begin(), m_rig.Console.Progress.end(),
                    [&label](const std::string& line) { return line.find(label) != std::string::npos; });
    EXPECT_TRUE(isShown) << label;
  }
}

TEST_F(ConsoleProgram, ProgressIsClearedAtTheEnd) {
  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1"}), 0);

  EXPECT_EQ(m_rig.Console.Progress.back(), "");
  EXPECT_EQ(m_rig.Console.Progress.end()[-2], "100%  11035 Registry Integrity...  ");
}

TEST_F(ConsoleProgram, QuietListsNothingAndShowsNoProgress) {
  AddShellFolderProblem();

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1", u"--quiet"}), 1);
  EXPECT_EQ(m_rig.Console.Output, "");
  EXPECT_TRUE(m_rig.Console.Progress.empty());
}

TEST_F(ConsoleProgram, JsonToStandardOutputStandsThereAlone) {
  AddShellFolderProblem();

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1", u"--json", u"-"}), 1);
  EXPECT_TRUE(
      m_rig.Console.Output.starts_with("{\"formatVersion\":1,\"sections\":[\n{\"caption\":\"Registry "
                                       "Integrity\",\"rootKey\":\"HKEY_CURRENT_USER\""));
  EXPECT_TRUE(m_rig.Console.Output.ends_with("]}]}\n"));
}

TEST_F(ConsoleProgram, JsonIsInEnglishWhateverTheUsersLanguage) {
  AddShellFolderProblem();
  m_rig.Run({u"scan", u"--sections", u"1", u"--json", u"-"});
  const std::string english = std::exchange(m_rig.Console.Output, {});
  const std::string line = "11068=Es fehlt: %s2\n";
  m_rig.Texts.Selected =
      TLanguageTable::FromFile(std::vector<std::uint8_t>(line.begin(), line.end()), m_rig.Scan.System.Locale);

  m_rig.Run({u"scan", u"--sections", u"1", u"--json", u"-"});
  EXPECT_EQ(std::exchange(m_rig.Console.Output, {}), english);
  m_rig.Run({u"scan", u"--sections", u"1"});
  EXPECT_NE(m_rig.Console.Output.find("    Es fehlt: C:\\gone\n"), std::string::npos) << m_rig.Console.Output;
}

TEST_F(ConsoleProgram, ReportAndJsonAreWrittenBesideTheListing) {
  AddShellFolderProblem();

  EXPECT_EQ(
      m_rig.Run({u"scan", u"--json", u"C:\\found.json", u"--sections", u"1", u"--report", u"C:\\r.log"}), 1);
  EXPECT_EQ(m_rig.Console.Output, kShellFolderListing);
  EXPECT_TRUE(File(u"C:\\found.json").value_or("").starts_with("{\"formatVersion\":1,\"sections\":["));
  EXPECT_TRUE(File(u"C:\\r.log").value_or("").starts_with("Report created on "));
  EXPECT_TRUE(
      File(u"C:\\r.log").value_or("").ends_with("Problems found on your computer (Total 1 Problems):\r\n"));
}

TEST_F(ConsoleProgram, AFileThatCannotBeWrittenIsToldAndTheRestIsStillWritten) {
  AddShellFolderProblem();
  m_rig.Scan.System.Disk.FailReplacing(kErrorAccessDenied);

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1", u"--report", u"C:\\r.txt", u"--json", u"C:\\j.json"}),
            3);
  const std::string reason = EncodeUtf8(m_rig.Scan.System.Locale.SystemMessage(kErrorAccessDenied));
  EXPECT_EQ(m_rig.Told(), "40008(C:\\r.txt: " + reason + ")\n40008(C:\\j.json: " + reason + ")\n");
  EXPECT_EQ(m_rig.Console.Output, kShellFolderListing);
}

TEST_F(ConsoleProgram, StandardOutputThatFailsIsAFailure) {
  AddShellFolderProblem();
  m_rig.Console.WriteFailure = kErrorDiskFull;

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1"}), 3);
  EXPECT_EQ(m_rig.Run({u"sections"}), 3);
  EXPECT_EQ(m_rig.Run({u"--help"}), 3);
  const std::string reason = EncodeUtf8(m_rig.Scan.System.Locale.SystemMessage(kErrorDiskFull));
  EXPECT_EQ(m_rig.Told(), "40008(" + reason + ")\n40008(" + reason + ")\n");
}

TEST_F(ConsoleProgram, AScanThatFailsTellsTheReasonAndWritesWhatItFound) {
  AddShellFolderProblem();

  EXPECT_EQ(m_rig.Run({u"scan", u"--json", u"C:\\found.json", u"--report", u"C:\\r.txt"}), 3);
  EXPECT_TRUE(m_rig.Told().starts_with("40002(")) << m_rig.Told();
  EXPECT_NE(File(u"C:\\found.json").value_or("").find("\"valueName\":\"Fonts\""), std::string::npos);
  EXPECT_NE(File(u"C:\\r.txt").value_or("").find("Total 1 Problems"), std::string::npos);
  EXPECT_TRUE(m_rig.Console.Output.starts_with(kShellFolderListing));
}

TEST_F(ConsoleProgram, TheInterruptKeyCancelsTheScanAndKeepsWhatWasFound) {
  AddShellFolderProblem();
  m_rig.Scan.System.Registry.Set(kRunKey, u"Good", u"C:\\Windows");
  m_rig.Scan.System.Registry.Set(
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\a.exe", u"",
      u"C:\\gone\\a.exe");
  bool wasTaken = false;
  m_rig.Scan.System.Registry.OnRead = [&] {
    const bool isInStartup = m_rig.Console.Progress.size() > 0 &&
                             m_rig.Console.Progress.back().find("Startup") != std::string::npos;
    if (isInStartup && !wasTaken)
      wasTaken = m_rig.Console.Interrupt();
  };

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1,8,10", u"--json", u"C:\\found.json"}), 1);
  EXPECT_TRUE(wasTaken);
  EXPECT_EQ(m_rig.Console.Output, kShellFolderListing);
  EXPECT_EQ(m_rig.Told(), "40114\n");
  EXPECT_NE(File(u"C:\\found.json").value_or("").find("\"valueName\":\"Fonts\""), std::string::npos);
}

TEST_F(ConsoleProgram, ACancelledScanThatFoundNothingAnswersZero) {
  m_rig.Scan.System.Registry.Set(kShellFolders, u"Fonts", u"C:\\Windows");
  m_rig.Scan.System.Registry.Set(kRunKey, u"Old", u"C:\\old.exe");
  m_rig.Scan.System.Registry.OnRead = [&] {
    if (!m_rig.Console.Progress.empty())
      m_rig.Console.Interrupt();
  };

  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1,8"}), 0);
  EXPECT_EQ(m_rig.Told(), "40114\n");
}

TEST_F(ConsoleProgram, TheInterruptKeyEndsTheProgramAgainAfterTheScan) {
  EXPECT_EQ(m_rig.Run({u"scan", u"--sections", u"1"}), 0);

  EXPECT_FALSE(m_rig.Console.Interrupt());
}

TEST(ProblemListing, SaysPathValueAndDescriptionOfEachKind) {
  TResultsTreeModel results;
  TResultsNode* header = results.AddNode(nullptr);
  header->Problem.SectionCaption = u"Lists";
  const auto add = [&](TProblemKind kind, TextView keyPath, TextView valueName) {
    ScanProblem& problem = results.AddNode(header)->Problem;
    problem.RootKey = kHkeyLocalMachine;
    problem.Kind = kind;
    problem.KeyPath = keyPath;
    problem.ValueName = valueName;
    problem.Description = u"Salt && Pepper";
  };
  add(TProblemKind::Key, u"\\Key", u"ImagePath");
  add(TProblemKind::Value, u"\\Key", u"Name");
  add(TProblemKind::Value, u"\\Key", {});
  add(TProblemKind::Value, u"\\Key", TextView(u"\0", 1));
  add(TProblemKind::File, u"C:\\a.txt", {});

  EXPECT_EQ(ProblemListing(results),
            "Lists (5)\n"
            "  HKEY_LOCAL_MACHINE\\Key\n"
            "    Salt & Pepper\n"
            "  HKEY_LOCAL_MACHINE\\Key\n"
            "    Value: Name\n"
            "    Salt & Pepper\n"
            "  HKEY_LOCAL_MACHINE\\Key\n"
            "    Value: (default)\n"
            "    Salt & Pepper\n"
            "  HKEY_LOCAL_MACHINE\\Key\n"
            "    Value: (default)\n"
            "    Salt & Pepper\n"
            "  C:\\a.txt\n"
            "    Salt & Pepper\n");
}

TEST(ProblemListing, AnEmptyLineStandsBetweenSections) {
  TResultsTreeModel results;
  results.AddNode(nullptr)->Problem.SectionCaption = u"A";
  results.AddNode(nullptr)->Problem.SectionCaption = u"B";

  EXPECT_EQ(ProblemListing(results), "A (0)\n\nB (0)\n");
}

TEST(ProblemListing, WhatALineCannotShowIsReplaced) {
  TResultsTreeModel results;
  results.AddNode(nullptr)->Problem.SectionCaption = {u'a', u'\n', 0x1B, 0x9B, 0xD800, 0xE9};

  EXPECT_EQ(ProblemListing(results), "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xC3\xA9 (0)\n");
}

TEST(SectionCodes, AreSeparatedByCommas) {
  EXPECT_EQ(ParseSectionCodes(u"1"), (std::vector<std::int32_t>{1}));
  EXPECT_EQ(ParseSectionCodes(u"100,21,1"), (std::vector<std::int32_t>{100, 21, 1}));
}

}  // namespace corvalt
