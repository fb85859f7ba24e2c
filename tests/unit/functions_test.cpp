#include "core/functions.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

// A machine with the fixed drive C and an optical drive E.
class PathChecks : public testing::Test {
 protected:
  PathChecks() {
    Vars.WindowsFolder = u"C:\\Windows\\";
    Vars.SystemFolder = u"C:\\Windows\\system32\\";
    Vars.ProgramFilesFolder = u"C:\\Program Files\\";
    Vars.TempFolder = u"C:\\Temp Folder\\";
    Vars.FixedDrives = u"C:\\;";
    Vars.SearchFolders = {u"C:\\Tools", u"C:\\Windows\\", u"C:\\Windows\\system32\\",
                          u"C:\\Program Files\\Internet Explorer"};
    for (const Text& folder : Vars.SearchFolders)
      Disk.AddFolder(folder);
  }

  bool Exists(TextView path) {
    return Checks.FileOrFolderExists(path, false);
  }
  bool FileExists(TextView path) {
    return Checks.FileOrFolderExists(path, true);
  }
  bool CommandExists(TextView command) {
    return Checks.CommandLineFileExists(command, false);
  }
  bool CommandBeforeCommaExists(TextView command) {
    return Checks.CommandLineFileExists(command, true);
  }

  TMemoryDisk Disk;
  TGlobalVars Vars;
  TPathChecks Checks{Disk, Vars};
};

using ExpandVariables = PathChecks;

TEST_F(ExpandVariables, ReplacesTheSixReferencesBeforeASeparator) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"%SystemRoot%\\explorer.exe"), u"C:\\WINDOWS\\EXPLORER.EXE");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%ProgramFiles%\\App"), u"C:\\PROGRAM FILES\\APP");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%SystemDirectory%\\a.dll"), u"C:\\WINDOWS\\SYSTEM32\\A.DLL");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%WINDIR%\\explorer.exe"), u"C:\\WINDOWS\\EXPLORER.EXE");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%TEMP%\\a"), u"C:\\TEMP FOLDER\\A");
}

TEST_F(ExpandVariables, OnlyTheFolderOfTheLastReferenceKeepsItsLetterCase) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"%tmp%\\a"), u"C:\\Temp Folder\\A");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%temp%\\a;%tmp%\\b"), u"C:\\TEMP FOLDER\\A;C:\\Temp Folder\\B");
}

TEST_F(ExpandVariables, WithoutTheSeparatorNothingIsReplaced) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"%windir%explorer.exe"), u"%WINDIR%EXPLORER.EXE");
  EXPECT_EQ(Checks.ExpandPathVariables(u"%windir%"), u"%WINDIR%");
}

TEST_F(ExpandVariables, OtherReferencesStay) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"%APPDATA%\\a"), u"%APPDATA%\\A");
}

TEST_F(ExpandVariables, ReplacesEverywhere) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"%windir%\\a %windir%\\b"), u"C:\\WINDOWS\\A C:\\WINDOWS\\B");
}

TEST_F(ExpandVariables, AReferenceInAnInsertedFolderIsReplacedByALaterStepOnly) {
  Vars.WindowsFolder = u"%Temp%\\x\\";
  EXPECT_EQ(Checks.ExpandPathVariables(u"%windir%\\"), u"C:\\TEMP FOLDER\\X\\");
  Vars.TempFolder = u"%windir%\\";
  Vars.WindowsFolder = u"C:\\Windows\\";
  EXPECT_EQ(Checks.ExpandPathVariables(u"%temp%\\a"), u"%WINDIR%\\A");
}

TEST_F(ExpandVariables, ATextWithoutReferencesIsUpperCased) {
  EXPECT_EQ(Checks.ExpandPathVariables(u"c:\\caf\u00E9"), u"C:\\CAF\u00C9");
  EXPECT_EQ(Checks.ExpandPathVariables(u""), u"");
}

using FileOrFolder = PathChecks;

TEST_F(FileOrFolder, TellsFilesFromFolders) {
  Disk.AddFile(u"C:\\App\\a.exe");
  EXPECT_TRUE(FileExists(u"c:\\app\\A.EXE"));
  EXPECT_TRUE(Exists(u"C:\\App"));
  EXPECT_FALSE(FileExists(u"C:\\App"));
  EXPECT_FALSE(Exists(u"C:\\App\\b.exe"));
}

TEST_F(FileOrFolder, WhatIsNotOnAFixedDriveAlwaysExists) {
  Disk.AddDrive(u"E:\\", 5);
  EXPECT_TRUE(Exists(u"E:\\setup.exe"));
  EXPECT_TRUE(Exists(u"Q:\\nowhere.exe"));
}

TEST_F(FileOrFolder, PathsWithoutADriveAlwaysExist) {
  EXPECT_TRUE(Exists(u"gone.exe"));
  EXPECT_TRUE(Exists(u"\\gone.exe"));
  EXPECT_TRUE(Exists(u""));
  EXPECT_TRUE(Exists(u"C"));
}

TEST_F(FileOrFolder, NetworkPathsAlwaysExist) {
  EXPECT_TRUE(Exists(u"\\\\server\\share\\gone.exe"));
  EXPECT_TRUE(Exists(u"\\\\server\\share"));
  EXPECT_TRUE(Exists(u"\\\\server"));
  EXPECT_TRUE(Exists(u"\\\\"));
}

TEST_F(FileOrFolder, TheDrivesLetterCaseDoesNotCount) {
  EXPECT_FALSE(Exists(u"c:\\gone.exe"));
}

TEST_F(FileOrFolder, APathRelativeToAFixedDriveIsJudged) {
  EXPECT_FALSE(Exists(u"C:gone.exe"));
}

TEST_F(FileOrFolder, WildcardsMatchNothing) {
  Disk.AddFile(u"C:\\App\\a.exe");
  EXPECT_FALSE(Exists(u"C:\\App\\*.exe"));
  EXPECT_FALSE(Exists(u"C:\\Ap?"));
}

TEST_F(FileOrFolder, A64BitSystemIsAskedAgainWithoutTheRedirection) {
  Disk.RedirectFolder(u"C:\\Windows\\system32", u"C:\\Windows\\SysWOW64");
  Disk.AddFile(u"C:\\Windows\\system32\\only64.dll");
  Disk.AddFile(u"C:\\Windows\\SysWOW64\\only32.dll");
  EXPECT_TRUE(FileExists(u"C:\\Windows\\system32\\only32.dll"));
  EXPECT_EQ(Disk.RedirectionSwitches(), 0);
  EXPECT_TRUE(FileExists(u"C:\\Windows\\system32\\only64.dll"));
  EXPECT_FALSE(FileExists(u"C:\\Windows\\system32\\gone.dll"));
  EXPECT_EQ(Disk.RedirectionSwitches(), 2);
  EXPECT_EQ(Disk.RedirectionDepth(), 0);
}

TEST_F(FileOrFolder, WithoutProgramFilesX86TheRedirectionIsLeftAlone) {
  Disk.RedirectFolder(u"C:\\Windows\\system32", u"C:\\Windows\\SysWOW64");
  Disk.SetEnvironmentVariable(u"ProgramFiles(x86)", u"");
  Disk.AddFile(u"C:\\Windows\\system32\\only64.dll");
  EXPECT_FALSE(FileExists(u"C:\\Windows\\system32\\only64.dll"));
  EXPECT_EQ(Disk.RedirectionSwitches(), 0);
}

TEST_F(FileOrFolder, ASystemWithoutTheSwitchAnswersAsBefore) {
  Disk.SetEnvironmentVariable(u"ProgramFiles(x86)", u"C:\\Program Files (x86)");
  EXPECT_FALSE(FileExists(u"C:\\gone.dll"));
  EXPECT_EQ(Disk.RedirectionDepth(), 0);
}

TEST_F(FileOrFolder, TheFolderAloneHasNoFixedDriveRule) {
  EXPECT_FALSE(Checks.DirectoryExists(u"E:\\gone"));
  EXPECT_TRUE(Checks.DirectoryExists(u"C:\\Windows"));
}

using SplitCommand = PathChecks;

TEST_F(SplitCommand, FindsTheFileBeforeItsSwitches) {
  Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\Program Files\\App\\app.exe -x"),
            u"C:\\Program Files\\App\\app.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"  C:\\Program Files\\App\\app.exe -x -y  "),
            u"C:\\Program Files\\App\\app.exe");
}

TEST_F(SplitCommand, AddsTheExtension) {
  Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\Program Files\\App\\app -x"), u"C:\\Program Files\\App\\app.exe");
}

TEST_F(SplitCommand, TheLongestLeadingPartWins) {
  Disk.AddFile(u"C:\\App\\a");
  Disk.AddFile(u"C:\\App\\a b.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\App\\a b c"), u"C:\\App\\a b.exe");
}

TEST_F(SplitCommand, OnlyTheWholeTextMayBeAFolder) {
  Disk.AddFolder(u"C:\\App");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\App"), u"C:\\App");
  EXPECT_FALSE(Checks.SplitCommandFile(u"C:\\App -x"));
  Disk.AddFolder(u"C:\\Other.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\Other"), u"C:\\Other.exe");
  EXPECT_FALSE(Checks.SplitCommandFile(u"C:\\Other -x"));
}

TEST_F(SplitCommand, ShortNamesAreTestedInTheirLongForm) {
  Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  Disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\PROGRA~1\\App\\app"), u"C:\\Program Files\\App\\app.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\PROGRA~1\\App\\app -x"), u"C:\\Program Files\\App\\app.exe");
}

TEST_F(SplitCommand, TheCutsWorkOnTheTextAsItWasWritten) {
  // The long form has a blank that the short one lacks: a cut there would find "C:\Program.exe".
  Disk.AddFolder(u"C:\\Program Files\\App");
  Disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  Disk.AddFile(u"C:\\Program.exe");
  EXPECT_FALSE(Checks.SplitCommandFile(u"C:\\PROGRA~1\\App\\gone.exe -x"));
}

TEST_F(SplitCommand, ATextThatHasNoLongFormIsUsedAsItIs) {
  Disk.AddFile(u"C:\\App~\\a.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"C:\\App~\\a"), u"C:\\App~\\a.exe");
}

TEST_F(SplitCommand, NothingIsFoundWhenNoBlankIsLeft) {
  EXPECT_FALSE(Checks.SplitCommandFile(u"C:\\Gone\\a b c"));
  EXPECT_FALSE(Checks.SplitCommandFile(u"C:\\Gone\\a"));
}

TEST_F(SplitCommand, CutsBeyondThePathsGreatestLengthAreNotTried) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  Text command = u"C:\\Tools\\tool.exe";
  for (int i = 0; i < 500; ++i)
    command += u" " + Text(2000, u'x');
  EXPECT_EQ(Checks.SplitCommandFile(command), u"C:\\Tools\\tool.exe");
  EXPECT_LT(Disk.Questions(), 50);
}

TEST_F(SplitCommand, ACutOfThePathsGreatestLengthIsTried) {
  const Text longest = Text(u"C:\\Tools\\").append(32767 - 9, u'a');
  Disk.AddFile(longest);
  EXPECT_EQ(Checks.SplitCommandFile(longest + u" -x"), longest);
}

TEST_F(SplitCommand, ABareNameIsSoughtInTheSearchFolders) {
  Disk.AddFile(u"C:\\Windows\\notepad.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"notepad"), u"C:\\Windows\\notepad.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"notepad.exe %1"), u"C:\\Windows\\notepad.exe");
  EXPECT_FALSE(Checks.SplitCommandFile(u"gone"));
}

TEST_F(SplitCommand, TheFirstSearchFolderThatHasItWins) {
  Disk.AddFile(u"C:\\Windows\\notepad.exe");
  Disk.AddFile(u"C:\\Windows\\system32\\notepad.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"notepad"), u"C:\\Windows\\notepad.exe");
  Disk.AddFile(u"C:\\Tools\\notepad.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"notepad"), u"C:\\Tools\\notepad.exe");
}

TEST_F(SplitCommand, ASearchFolderWithABlankIsCutToo) {
  Disk.AddFile(u"C:\\Program.exe");
  EXPECT_EQ(Checks.SplitCommandFile(u"gone"), u"C:\\Program.exe");
}

TEST_F(SplitCommand, ASearchFolderOnAnotherDriveHoldsEverything) {
  Vars.SearchFolders.push_back(u"E:\\bin");
  EXPECT_EQ(Checks.SplitCommandFile(u"gone"), u"E:\\bin\\gone");
}

TEST_F(SplitCommand, AnEmptyCommandNamesTheFirstSearchFolder) {
  EXPECT_EQ(Checks.SplitCommandFile(u"  "), u"C:\\Tools\\");
  Vars.SearchFolders.clear();
  EXPECT_FALSE(Checks.SplitCommandFile(u""));
}

TEST_F(SplitCommand, ANetworkCommandIsABareName) {
  EXPECT_FALSE(Checks.SplitCommandFile(u"\\\\server\\share\\a.exe"));
  Disk.AddFile(u"C:\\Tools\\server\\share\\a.exe");
  EXPECT_TRUE(Checks.SplitCommandFile(u"\\\\server\\share\\a.exe"));
}

TEST_F(SplitCommand, OnADriveThatIsNotFixedTheWholeTextIsTheFile) {
  EXPECT_EQ(Checks.SplitCommandFile(u"E:\\setup.exe -x"), u"E:\\setup.exe -x");
}

using CommandLine = PathChecks;

TEST_F(CommandLine, IsCutBeforeTheFirstSlash) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(CommandExists(u"C:\\Tools\\tool.exe /install"));
  EXPECT_TRUE(CommandExists(u"C:\\Tools\\tool.exe/install"));
}

TEST_F(CommandLine, IsCutBeforeTheFirstCommaOnlyWhenAsked) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(CommandBeforeCommaExists(u"C:\\Tools\\tool.exe,1"));
  EXPECT_TRUE(CommandBeforeCommaExists(u"C:\\Tools\\tool.exe ,1"));
  EXPECT_FALSE(CommandExists(u"C:\\Tools\\tool.exe,1"));
}

TEST_F(CommandLine, IsCutBeforeTheFirstDoubleQuote) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(CommandExists(u"C:\\Tools\\tool.exe\"%1\""));
  EXPECT_TRUE(CommandExists(u"C:\\Tools\\tool.exe \"C:\\a/b\""));
}

TEST_F(CommandLine, ExpandsNothingItself) {
  Disk.AddFile(u"C:\\Windows\\explorer.exe");
  EXPECT_FALSE(CommandExists(u"%WINDIR%\\explorer.exe"));
}

TEST_F(CommandLine, AnEmptyOneExists) {
  EXPECT_TRUE(CommandExists(u""));
  EXPECT_TRUE(CommandExists(u" /x"));
}

TEST_F(CommandLine, QuotesHoldAWholePath) {
  Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  EXPECT_TRUE(CommandExists(u"\"C:\\Program Files\\App\\app.exe\" /x, y"));
  EXPECT_TRUE(CommandExists(u" \"C:\\Program Files\\App\\app\" %1"));
  EXPECT_TRUE(CommandExists(u"\"C:\\Program Files\\App\""));
  EXPECT_FALSE(CommandExists(u"\"C:\\Program Files\\App\\app.exe -x\""));
  EXPECT_FALSE(CommandExists(u"\"C:\\Program Files\\App\\gone.exe\" C:\\Program Files\\App\\app.exe"));
}

TEST_F(CommandLine, AMissingClosingQuoteTakesTheRest) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(CommandExists(u"\"C:\\Tools\\tool.exe"));
  EXPECT_FALSE(CommandExists(u"\"C:\\Tools\\tool.exe /x"));
}

TEST_F(CommandLine, QuotedShortNamesAreMadeLong) {
  Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  Disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  EXPECT_TRUE(CommandExists(u"\"C:\\PROGRA~1\\App\\app.exe\""));
  EXPECT_TRUE(CommandExists(u"\"C:\\PROGRA~1\\App\\app\""));
  EXPECT_FALSE(CommandExists(u"\"C:\\PROGRA~1\\App\\gone\""));
}

TEST_F(CommandLine, QuotedBareNamesAreSoughtWithAndWithoutExtension) {
  Disk.AddFile(u"C:\\Tools\\tool.exe");
  Disk.AddFile(u"C:\\Windows\\notepad.exe");
  EXPECT_TRUE(CommandExists(u"\"tool\" -x"));
  EXPECT_TRUE(CommandExists(u"\"notepad.exe\""));
  EXPECT_FALSE(CommandExists(u"\"notepad.exe -x\""));
  EXPECT_FALSE(CommandExists(u"\"gone\""));
}

TEST_F(CommandLine, EmptyQuotesNameTheFirstSearchFolder) {
  EXPECT_TRUE(CommandExists(u"\"\" -x"));
  Vars.SearchFolders.clear();
  EXPECT_FALSE(CommandExists(u"\"\" -x"));
}

TEST(FormatSize, CountsBytesInTheSingular) {
  TMemoryLocale locale;
  EXPECT_EQ(FormatSize(0, locale), u"0 Byte");
  EXPECT_EQ(FormatSize(1023, locale), u"1023 Byte");
  EXPECT_EQ(FormatSize(-5000000, locale), u"-5000000 Byte");
  EXPECT_EQ(FormatSize(INT64_MIN, locale), u"-9223372036854775808 Byte");
}

TEST(FormatSize, TakesTheUnitByPowersOf1024) {
  TMemoryLocale locale;
  EXPECT_EQ(FormatSize(1024, locale), u"1.00 KB");
  EXPECT_EQ(FormatSize(1536, locale), u"1.50 KB");
  EXPECT_EQ(FormatSize(1048575, locale), u"1,024.00 KB");
  EXPECT_EQ(FormatSize(1048576, locale), u"1.00 MB");
  EXPECT_EQ(FormatSize(1073741823, locale), u"1,024.00 MB");
  EXPECT_EQ(FormatSize(1073741824, locale), u"1.00 GB");
  EXPECT_EQ(FormatSize(INT64_MAX, locale), u"8,589,934,592.00 GB");
}

TEST(FormatSize, RoundsHalvesUp) {
  TMemoryLocale locale;
  EXPECT_EQ(FormatSize(1024 + 128, locale), u"1.13 KB");  // 1.125
  EXPECT_EQ(FormatSize(1024 + 1, locale), u"1.00 KB");
  EXPECT_EQ(FormatSize(1024 + 51, locale), u"1.05 KB");
}

TEST(FormatSize, UsesTheUsersSeparators) {
  TMemoryLocale locale;
  locale.Decimal = u",";
  locale.Thousands = u".";
  EXPECT_EQ(FormatSize(std::int64_t{1234} * 1073741824, locale), u"1.234,00 GB");
  locale.Thousands = u"";
  EXPECT_EQ(FormatSize(std::int64_t{1234} * 1073741824, locale), u"1234,00 GB");
}

TEST(ShowFileProperties, AsksTheSystemWithTheMask) {
  std::vector<std::string> calls;
  TMemoryPrograms programs(calls);
  EXPECT_TRUE(ShowFileProperties(u"C:\\a.txt", programs));
  EXPECT_EQ(calls, (std::vector<std::string>{"properties C:\\a.txt 1100"}));
  programs.Starts = false;
  EXPECT_FALSE(ShowFileProperties(u"C:\\a.txt", programs));
}

TEST(FileSize, IsThatOfTheFirstMatch) {
  TMemoryDisk disk;
  disk.AddFile(u"C:\\a\\one.txt", "12345");
  EXPECT_EQ(disk.FileSize(u"C:\\a\\one.txt"), 5);
  EXPECT_EQ(disk.FileSize(u"C:\\a\\*.txt"), 5);
  EXPECT_EQ(disk.FileSize(u"C:\\a\\gone.txt"), 0);
  EXPECT_EQ(disk.FileSize(u"C:\\gone\\one.txt"), 0);
}

}  // namespace

}  // namespace corvalt
