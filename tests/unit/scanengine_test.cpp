// What every scanner shares: the hand-over of problems, the ignore lists, the judgement of a path, the
// throttled progress and cancelling.

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"
#include "ui/resultsrows.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kVendor = u"HKEY_CURRENT_USER\\Software\\Vendor";
constexpr TextView kSharedDlls =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
constexpr TextView kUserShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

// Whether a scan of the user's hive reports no problem for a value with this text.
bool Passes(TScanRig& rig, TextView text) {
  rig.System.Registry.Set(kVendor, u"Exe", text);
  rig.Run({Section::FilesOfCurrentUser});
  return rig.Problems().empty();
}

// Values of the list of shared files that are never reported: their names are no paths, their counts are 1.
void AddSharedFiles(TScanRig& rig, int count) {
  for (int i = 0; i < count; ++i)
    rig.System.Registry.SetInteger(kSharedDlls, NumberedName(u"f", i), 1);
}

}  // namespace

// The judgement of a path

TEST(CommandPath, AReferenceIsExpandedAndASwitchCutOff) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  EXPECT_TRUE(Passes(rig, u"%ProgramFiles%\\App\\app.exe /s"));
  EXPECT_FALSE(Passes(rig, u"%ProgramFiles%\\App\\gone.exe /s"));
}

TEST(CommandPath, AnyOtherReferenceStaysAndMakesTheTextUnjudged) {
  TScanRig rig;
  EXPECT_TRUE(Passes(rig, u"%Vendor%\\gone.exe"));
  EXPECT_TRUE(Passes(rig, u"%windir%gone.exe"));
}

TEST(CommandPath, TheExpandedTextIsLowerCaseSoThatUpperCaseModulesAreCutToo) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\shell.dll");
  EXPECT_TRUE(Passes(rig, u"%WINDIR%\\SHELL.DLL\\123"));
  EXPECT_FALSE(Passes(rig, u"C:\\Windows\\SHELL.DLL\\123"));
}

TEST(CommandPath, APlaceholderDriveAnywhereIsNotJudged) {
  TScanRig rig;
  EXPECT_TRUE(Passes(rig, u"?:\\Gone\\gone.exe"));
  EXPECT_TRUE(Passes(rig, u"C:\\Gone\\gone.exe or ?:\\Gone"));
}

TEST(CommandPath, ATextThatIsNoLocalPathIsNotJudged) {
  TScanRig rig;
  EXPECT_TRUE(Passes(rig, u"rundll32.exe shell32.dll,Control_RunDLL"));
  EXPECT_TRUE(Passes(rig, u"gone.exe"));
  EXPECT_TRUE(Passes(rig, u"C:/Gone/gone.exe"));
  EXPECT_TRUE(Passes(rig, u"\\\\server\\share\\gone.exe"));
  EXPECT_TRUE(Passes(rig, u""));
}

TEST(CommandPath, WhatStandsBeforeTheDriveLetterIsDropped) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"@C:\\Tools\\tool.exe"));
  EXPECT_TRUE(Passes(rig, u"file, or;\"program\"|(=C:\\Tools\\tool.exe"));
  EXPECT_FALSE(Passes(rig, u"@C:\\Tools\\gone.exe"));
}

TEST(CommandPath, WithTheColonAtTheVeryFrontTheWholeTextIsJudged) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_FALSE(Passes(rig, u":\\Tools\\tool.exe"));
}

TEST(CommandPath, OnlyTheFirstOfTwoPathsIsJudged) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\tool.exe C:\\Gone\\gone.exe"));
  EXPECT_FALSE(Passes(rig, u"C:\\Gone\\gone.exe C:\\Tools\\tool.exe"));
}

TEST(CommandPath, ADriveThatIsNotFixedIsNotJudged) {
  TScanRig rig;
  EXPECT_TRUE(Passes(rig, u"E:\\setup.exe"));
  EXPECT_FALSE(Passes(rig, u"C:\\setup.exe"));
}

TEST(CommandPath, TwoApostrophesEndThePathAtTheNextOne) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"'C:\\Tools\\tool.exe' quietly"));
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\tool.exe'a'b"));
}

TEST(CommandPath, OneApostropheBelongsToTheName) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Ann's\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"C:\\Ann's\\tool.exe"));
}

TEST(CommandPath, ApostrophesAreCountedInTheWholeText) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Ann's\\tool.exe");
  EXPECT_FALSE(Passes(rig, u"'run C:\\Ann's\\tool.exe"));
}

TEST(CommandPath, TwoApostrophesBeforeThePathLeaveItWhole) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"'run' C:\\Tools\\tool.exe"));
}

TEST(CommandPath, AQuoteACommaASemicolonAndABarEndThePath) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  for (const TextView text : {u"C:\\Tools\\tool.exe\" x", u"C:\\Tools\\tool.exe,1", u"C:\\Tools\\tool.exe;x",
                              u"C:\\Tools\\tool.exe|x", u"\"C:\\Tools\\tool.exe\" -x"}) {
    EXPECT_TRUE(Passes(rig, text)) << EncodeUtf8(text);
  }
}

TEST(CommandPath, ANameThatHoldsASeparatorIsJudgedWithoutItsRest) {
  TScanRig rig;
  for (const TextView name : {u"a,b.exe", u"a;b.exe"}) {
    rig.System.Disk.AddFile(Text(u"C:\\Tools\\") + Text(name));
    EXPECT_FALSE(Passes(rig, Text(u"C:\\Tools\\") + Text(name))) << EncodeUtf8(name);
  }
}

TEST(CommandPath, WhatContinuesBelowAModuleIsJudgedByTheModule) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\shell32.dll");
  rig.System.Disk.AddFile(u"C:\\Tools\\grid.ocx");
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"C:\\Windows\\system32\\shell32.dll\\123"));
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\grid.ocx\\1"));
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\tool.exe\\1\\2"));
  EXPECT_FALSE(Passes(rig, u"C:\\Windows\\system32\\gone.dll\\123"));
  EXPECT_FALSE(Passes(rig, u"C:\\Tools\\tool.com\\1"));
}

TEST(CommandPath, AModuleIsKnownInLowerCaseAlone) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\a.Dll");
  rig.System.Disk.AddFile(u"C:\\Tools\\b.OCX");
  rig.System.Disk.AddFile(u"C:\\Tools\\c.Exe");
  EXPECT_FALSE(Passes(rig, u"C:\\Tools\\a.Dll\\1"));
  EXPECT_FALSE(Passes(rig, u"C:\\Tools\\b.OCX\\1"));
  EXPECT_FALSE(Passes(rig, u"C:\\Tools\\c.Exe\\1"));
}

TEST(CommandPath, TheFirstModuleOfEachKindCountsOneKindAfterTheOther) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\a.dll");
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\a.dll\\b.dll\\c"));
  // Cut below b.dll first, then below g.ocx, then below t.exe.
  rig.System.Disk.AddFile(u"C:\\Tools\\t.exe");
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\t.exe\\g.ocx\\b.dll\\c"));
}

TEST(CommandPath, ABracketIsCutOffWhenTheWholeTextIsGone) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.exe");
  rig.System.Disk.AddFolder(u"C:\\Program Files (x86)\\App");
  EXPECT_TRUE(Passes(rig, u"C:\\Tools\\tool.exe(1)"));
  EXPECT_TRUE(Passes(rig, u"C:\\Program Files (x86)\\App"));
  EXPECT_FALSE(Passes(rig, u"C:\\Tools\\gone.exe(1)"));
}

TEST(CommandPath, ABracketAfterAFolderLeavesTheFolder) {
  TScanRig rig;
  rig.System.Disk.AddFolder(u"C:\\Program Files");
  EXPECT_TRUE(Passes(rig, u"C:\\Program Files (x86)\\Gone"));
}

TEST(CommandPath, AProgramIsFoundWithoutItsExtensionAndBeforeBlanks) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\My Tools\\tool.exe");
  EXPECT_TRUE(Passes(rig, u"C:\\My Tools\\tool"));
  EXPECT_TRUE(Passes(rig, u"C:\\My Tools\\tool.exe -a -b"));
  EXPECT_FALSE(Passes(rig, u"C:\\My Tools\\gone.exe -a -b"));
}

TEST(CommandPath, TheNameOfASharedFileIsJudgedTheSameWay) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\grid.ocx");
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\Tools\\grid.ocx\\1"=dword:00000001
"C:\\Tools\\gone.ocx\\1"=dword:00000001
)");
  rig.Run({Section::SharedPrograms});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"C:\\Tools\\gone.ocx\\1");
}

// Empty keys, through the section that looks for them below HKEY_CLASSES_ROOT

namespace {

bool CountsAsEmpty(TScanRig& rig) {
  rig.Run({Section::FileAssociations});
  return !rig.Problems().empty();
}

// What a scan thread without any checked section returns for a key of the user.
bool IsKeyEmpty(TScanRig& rig, TextView keyPath, bool recursive) {
  rig.Sections.CheckOnly({});
  TSystem system = rig.System.Bundle();
  std::optional<bool> answer;
  const auto onFinished = [&](TWorkerThread& thread) {
    answer = dynamic_cast<TScan&>(thread).IsKeyEmpty(kHkeyCurrentUser, keyPath, recursive);
  };
  const TScanContext context = {.System = system,
                                .Vars = rig.Vars,
                                .Reg = rig.Reg,
                                .Sections = rig.Sections,
                                .Results = rig.Results,
                                .UiThread = rig.UiThread,
                                .OnFinished = onFinished};
  TWorkerThread::Launch<TScan>(context, rig.Dialog);
  rig.UiThread.RunUntil([&answer] { return answer.has_value(); });
  return *answer;
}

}  // namespace

TEST(KeyEmptiness, AKeyWithNothingIsEmpty) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing]
)");
  EXPECT_TRUE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, OneValueIsEnoughToBeUsed) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing]
"n"=dword:00000000
)");
  EXPECT_FALSE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, TheUnnamedValueCountsEvenWithAnEmptyText) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing]
@=""
)");
  EXPECT_FALSE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, EmptySubKeysOfEveryDepthLeaveAKeyEmpty) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing\a\b\c]
[HKEY_CLASSES_ROOT\thing\d]
)");
  EXPECT_TRUE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, OneValueFarBelowMakesAKeyUsed) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing\a]
[HKEY_CLASSES_ROOT\thing\b\c]
"n"=dword:00000000
)");
  EXPECT_FALSE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, AKeyThatDoesNotOpenIsNotEmpty) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing]
)");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\thing");
  EXPECT_FALSE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, ASubKeyThatDoesNotOpenMakesAKeyUsed) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\thing\a]
)");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\thing\\a");
  EXPECT_FALSE(CountsAsEmpty(rig));
}

TEST(KeyEmptiness, SubKeysCountByThemselvesWhenTheyAreNotLookedInto) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\thing\a]
)");
  EXPECT_FALSE(IsKeyEmpty(rig, u"\\thing", false));
  EXPECT_TRUE(IsKeyEmpty(rig, u"\\thing", true));
  EXPECT_TRUE(IsKeyEmpty(rig, u"\\thing\\a", false));
  EXPECT_FALSE(IsKeyEmpty(rig, u"\\missing", false));
  EXPECT_FALSE(IsKeyEmpty(rig, u"\\missing", true));
}

TEST(KeyEmptiness, AnOnlySubKeyWithOneValueMakesAKeyUsedInBothWays) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\thing\a]
"v"=""
)");
  EXPECT_FALSE(IsKeyEmpty(rig, u"\\thing", false));
  EXPECT_FALSE(IsKeyEmpty(rig, u"\\thing", true));
}

// The hand-over to the tree

TEST(ProblemNodes, AHeaderCarriesItsCaptionAndTheNumberOfItsProblems) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
"B"="C:\\gone2"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, 2)}));
}

TEST(ProblemNodes, EveryNodeIsCheckedAndAHeaderOpensWithItsFirstProblem) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
)");
  rig.Run({Section::FilesOfCurrentUser});
  TResultsNode* header = rig.Results.FirstRoot();
  ASSERT_NE(header, nullptr);
  EXPECT_EQ(header->State, TCheckState::Checked);
  EXPECT_TRUE(header->Expanded);
  EXPECT_EQ(rig.Results.FirstChild(header)->State, TCheckState::Checked);
  EXPECT_FALSE(rig.Results.FirstChild(header)->Expanded);
}

TEST(ProblemNodes, TheNumberIsStoredWhenTheSectionEnds) {
  TScanRig rig;
  std::vector<std::uint32_t> counts;
  rig.Results = TResultsTreeModel([&](TextView) {
    if (rig.Results.FirstRoot() != nullptr)
      counts.push_back(rig.Results.FirstRoot()->Problem.ChildCount);
    return 0;
  });
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
"B"="C:\\gone2"
)");
  rig.Run({Section::FilesOfCurrentUser});
  // Two texts are measured for each problem, before it is added.
  EXPECT_EQ(counts, (std::vector<std::uint32_t>{0, 0, 0, 0}));
  EXPECT_EQ(rig.Headers()[0].ChildCount, 2u);
}

TEST(ProblemNodes, ASectionThatFindsNothingLeavesNoTrace) {
  TScanRig rig;
  rig.Run({Section::FilesOfCurrentUser, Section::SharedPrograms});
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
  EXPECT_EQ(rig.Results.Model().TotalCount(), 0u);
}

TEST(ProblemNodes, TheColumnGrowsToTheLongestTextAndAHundredPixels) {
  TScanRig rig;
  rig.Results = TResultsTreeModel([](TextView text) { return static_cast<int>(text.size()) * 10; });
  // Neither the key path nor the description has 20 characters.
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.ColumnWidth(), 300);
  // The key path has 41 characters, more than the description.
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor\a23456789012345678901234]
"A"="C:\\gone1"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.ColumnWidth(), 41 * 10 + 100);
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"B"="C:\\1234567890123456789012345678901234567890"
)");
  rig.Run({Section::FilesOfCurrentUser});
  const Text description =
      Says(TextId::MissingFileOfValue, u"B", u"C:\\1234567890123456789012345678901234567890");
  EXPECT_EQ(rig.Results.ColumnWidth(), static_cast<int>(description.size()) * 10 + 100);
}

TEST(ProblemNodes, TheColumnNeverShrinksAndStaysAtItsExactWidth) {
  TScanRig rig;
  rig.Results = TResultsTreeModel([](TextView) { return 200; });
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.ColumnWidth(), 300);
  rig.Results.SetColumnWidth(700);
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.ColumnWidth(), 700);
}

TEST(ProblemNodes, IgnoredProblemsDoNotWidenTheColumn) {
  TScanRig rig;
  rig.Results = TResultsTreeModel([](TextView text) { return static_cast<int>(text.size()) * 100; });
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
)");
  rig.Reg.IgnoreList = {u"gone1"};
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.ColumnWidth(), 300);
}

TEST(ProblemNodes, AnErrorInAScannerEndsTheScanAndCountsWhatItFound) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
[HKEY_CURRENT_USER\Software\Zeta]
"B"="C:\\gone2"
[HKEY_CURRENT_USER\Software\Empty]
)");
  // What adding a problem throws comes to the scanner.
  rig.Results = TResultsTreeModel([](TextView text) -> int {
    if (text == u"\\Software\\Zeta")
      throw std::runtime_error("no more");
    return 0;
  });
  rig.Run({Section::FilesOfCurrentUser, Section::ObsoleteSoftware});
  ASSERT_NE(rig.Failure, nullptr);
  EXPECT_EQ(rig.Problems().size(), 1U);
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, 1)}));
  // No row looks as if the scan were still at it.
  const TLanguageTexts texts = NumberedTexts();
  const TResultsRows rows(rig.Results, texts, {});
  EXPECT_EQ(EncodeUtf8(rows.Lines(*rig.Results.FirstRoot()).front().Content),
            "HKEY_CURRENT_USER - Files and Folders  " + EncodeUtf8(Says(TextId::HeaderCount, u"1")));
}

TEST(ProblemNodes, AnErrorInAScannerThatFoundNothingLeavesNoHeader) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
[HKEY_CURRENT_USER\Software\Empty]
)");
  rig.Run({Section::FilesOfCurrentUser, Section::AdwareAndSpyware,
           Section::ObsoleteSoftware});  // no adware catalogue is there
  ASSERT_NE(rig.Failure, nullptr);
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, 1)}));
}

// The ignore lists

namespace {

// A value that is reported unless it is ignored: HKEY_CURRENT_USER, \Software\Vendor, "Exe", C:\Old\app.exe.
TScanRig& WithProblem(TScanRig& rig) {
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"Exe"="C:\\Old\\app.exe"
)");
  return rig;
}

bool IsIgnoredBy(const Text& entry) {
  TScanRig rig;
  WithProblem(rig).Reg.IgnoreList = {entry};
  rig.Run({Section::FilesOfCurrentUser});
  return rig.Problems().empty();
}

bool IsIgnoredByBuiltIn(const Text& entry) {
  TScanRig rig;
  WithProblem(rig).Reg.BuiltInExclusions = {entry};
  rig.Run({Section::FilesOfCurrentUser});
  return rig.Problems().empty();
}

}  // namespace

TEST(IgnoreLists, ThatChangeWhileAScanRunsCountForTheNext) {
  TScanRig rig;
  // The text of a section's header is measured before anything of the section is looked at.
  rig.Results = TResultsTreeModel([&rig](TextView) {
    rig.Reg.IgnoreList = rig.Reg.BuiltInExclusions = {u"vendor"};
    return 1;
  });
  WithProblem(rig).Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Problems().size(), 1u);
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_TRUE(rig.Problems().empty());
}

TEST(IgnoreLists, AnEntryMatchesAnywhereInRootPathNameAndData) {
  EXPECT_TRUE(IsIgnoredBy(u"hkey_current_user\\software\\vendor\\exe\\c:\\old\\app.exe"));
  EXPECT_TRUE(IsIgnoredBy(u"vendor\\exe\\c:"));
  EXPECT_TRUE(IsIgnoredBy(u"p.ex"));
  EXPECT_FALSE(IsIgnoredBy(u"vendor\\c:\\old"));
  EXPECT_FALSE(IsIgnoredBy(u"hkey_local_machine"));
  EXPECT_FALSE(IsIgnoredBy(u"app.exe\\"));
}

TEST(IgnoreLists, TheBuiltInListMatchesTheSameWay) {
  EXPECT_TRUE(IsIgnoredByBuiltIn(u"HKEY_CURRENT_USER\\software\\VENDOR"));
  EXPECT_TRUE(IsIgnoredByBuiltIn(u"p.ex"));
  EXPECT_FALSE(IsIgnoredByBuiltIn(u"hkey_local_machine"));
  EXPECT_FALSE(IsIgnoredByBuiltIn(u""));
}

TEST(IgnoreLists, LetterCaseDoesNotCount) {
  EXPECT_TRUE(IsIgnoredBy(u"HKEY_CURRENT_USER\\SOFTWARE\\VENDOR\\EXE\\C:\\OLD"));
  EXPECT_TRUE(IsIgnoredBy(u"oLd\\APP"));
}

TEST(IgnoreLists, AnEntryHasNoWildcards) {
  EXPECT_FALSE(IsIgnoredBy(u"hkey_current_user\\software\\*"));
  EXPECT_FALSE(IsIgnoredBy(u"app.ex?"));
}

TEST(IgnoreLists, ASwitchedOffEntryIsPassedOver) {
  EXPECT_FALSE(IsIgnoredBy(u";vendor"));
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\a;vendor]
"Exe"="C:\\Old\\app.exe"
)");
  rig.Reg.IgnoreList = {u";vendor"};
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Problems().size(), 1u);
}

TEST(IgnoreLists, ASemicolonLaterInAnEntryIsPlainText) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\a;vendor]
"Exe"="C:\\Old\\app.exe"
)");
  rig.Reg.IgnoreList = {u"a;vendor"};
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_TRUE(rig.Problems().empty());
}

TEST(IgnoreLists, AnEmptyEntryMatchesNothing) {
  EXPECT_FALSE(IsIgnoredBy(u""));
}

TEST(IgnoreLists, EveryEntryOfEitherListCounts) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone1"
"B"="C:\\gone2"
"C"="C:\\gone3"
"D"="C:\\gone4"
)");
  rig.Reg.BuiltInExclusions = {u"nothing", u"gone1"};
  rig.Reg.IgnoreList = {u"nowhere", u";gone4", u"gone2", u"", u"GONE3"};
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"D");
}

TEST(IgnoreLists, APathMatchesKeysWhoseNamesOnlyBeginWithIt) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Foo]
"A"="C:\\gone1"
[HKEY_CURRENT_USER\Software\FooBar\Deep]
"A"="C:\\gone1"
[HKEY_CURRENT_USER\Software\Fo]
"A"="C:\\gone1"
)");
  rig.Reg.IgnoreList = {u"hkey_current_user\\software\\foo"};
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\Software\\Fo");
}

TEST(IgnoreLists, TheUnnamedValueLeavesTwoBackslashes) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
@="C:\\gone1"
)");
  rig.Reg.IgnoreList = {u"vendor\\\\c:\\gone1"};
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_TRUE(rig.Problems().empty());
}

TEST(IgnoreLists, ASectionWhoseProblemsAreAllIgnoredLeavesNoTrace) {
  TScanRig rig;
  WithProblem(rig).Reg.IgnoreList = {u"\\vendor\\"};
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
}

// Suppressed headers. The header of a section without a root is tested as HKEY_CURRENT_USER.

TEST(SuppressedHeader, TheFirstProblemBecomesTheSectionNode) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\gone1"=dword:00000001
"C:\\gone2"=dword:00000001
"C:\\gone3"=dword:00000001
)");
  rig.Reg.IgnoreList = {u"hkey_current_user"};
  rig.Run({Section::SharedPrograms});
  const std::vector<ScanProblem> headers = rig.Headers();
  ASSERT_EQ(headers.size(), 1u);
  EXPECT_EQ(headers[0].ValueName, u"C:\\gone1");
  EXPECT_EQ(headers[0].SectionCaption, u"");
  EXPECT_EQ(headers[0].ChildCount, 2u);
  ASSERT_EQ(rig.Problems().size(), 2u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"C:\\gone2");
  EXPECT_EQ(rig.Problems()[1].ValueName, u"C:\\gone3");
}

TEST(SuppressedHeader, ALoneProblemIsDeletedAtTheSectionsEnd) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\gone1"=dword:00000001
)");
  rig.Reg.IgnoreList = {u"hkey_current_user"};
  rig.Run({Section::SharedPrograms});
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
}

TEST(SuppressedHeader, ASectionThatFindsNothingTouchesNoOtherSectionsNode) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Vendor]
"Exe"="C:\\Old\\app.exe"
)");
  rig.Reg.IgnoreList = {u"hkey_current_user"};
  rig.Run({Section::FilesOfLocalMachine, Section::SharedPrograms, Section::SoftwareLocations});
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_LOCAL_MACHINE - Files and Folders", 1, kHkeyLocalMachine, 1)}));
}

TEST(SuppressedHeader, TheHeadersTextIsTheRootsNameAndTwoBackslashes) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone"
"B"="C:\\gone"
"C"="C:\\gone"
)");
  rig.Reg.BuiltInExclusions = {u"hkey_current_user\\\\"};
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Headers().size(), 1u);
  EXPECT_EQ(rig.Headers()[0].ValueName, u"A");
  EXPECT_EQ(rig.Problems().size(), 2u);
}

TEST(SuppressedHeader, ThreeBackslashesMatchNoHeader) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"A"="C:\\gone"
)");
  rig.Reg.BuiltInExclusions = {u"hkey_current_user\\\\\\"};
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Headers().size(), 1u);
  EXPECT_EQ(rig.Headers()[0].SectionCaption, u"HKEY_CURRENT_USER - Files and Folders");
}

TEST(SuppressedHeader, AnotherSectionKeepsItsOwnHeader) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\gone1"=dword:00000001
"C:\\gone2"=dword:00000001
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\App]
)");
  rig.Reg.IgnoreList = {u"hkey_current_user"};
  rig.Run({Section::SharedPrograms, Section::AddRemovePrograms});
  const std::vector<ScanProblem> headers = rig.Headers();
  ASSERT_EQ(headers.size(), 2u);
  EXPECT_EQ(headers[0].ValueName, u"C:\\gone1");
  EXPECT_EQ(headers[1].SectionCaption, u"Add/Remove Programs");
}

// Progress

TEST(Progress, TheFirstRefreshComesWithTheFiftyFirstCallAndThenEveryFiftieth) {
  TScanRig rig;
  AddSharedFiles(rig, 120);
  rig.Run({Section::SharedPrograms});
  // 51 x 100 / 120 is 42.5, which goes to the even 42; 101 x 100 / 120 is 84.2.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Shared Programs",
                      {"item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\f050", "bar: 42",
                       "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\f100", "bar: 84"}));
}

TEST(Progress, AHundredAndTwentyCallsAfterARefreshRefreshTwice) {
  TScanRig rig;
  AddSharedFiles(rig, 51 + 120);
  rig.Run({Section::SharedPrograms});
  TStrings labels;
  for (const std::string& update : rig.Dialog.Updates) {
    if (update.starts_with("item: S"))
      labels.push_back(update.substr(update.size() - 4));
  }
  EXPECT_EQ(labels, (TStrings{"f050", "f100", "f150"}));
}

TEST(Progress, FiftyCallsRefreshNothing) {
  TScanRig rig;
  AddSharedFiles(rig, 50);
  rig.Run({Section::SharedPrograms});
  EXPECT_EQ(rig.Dialog.Updates, SectionStart("Shared Programs", 100));
}

TEST(Progress, CallsAreCountedAcrossSections) {
  TScanRig rig;
  for (int i = 0; i < 30; ++i)
    rig.System.Registry.Set(kUserShellFolders, NumberedName(u"s", i), u"C:\\Windows");
  AddSharedFiles(rig, 80);
  rig.Run({Section::RegistryIntegrity, Section::SharedPrograms});
  // The 51st call is the 21st shared file: 21 x 100 / 80 is 26.25. The 101st is the 71st: 88.75.
  TStrings updates = SectionStart("Registry Integrity", 50);
  const TStrings shared = UpdatesOf(
      "Shared Programs", {"item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\f020", "bar: 26",
                          "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\f070", "bar: 89"});
  updates.insert(updates.end(), shared.begin(), shared.end());
  EXPECT_EQ(rig.Dialog.Updates, updates);
}

TEST(Progress, EachScanCountsItsCallsAnew) {
  TScanRig rig;
  AddSharedFiles(rig, 30);
  rig.Run({Section::SharedPrograms});
  rig.Run({Section::SharedPrograms});
  EXPECT_EQ(rig.Dialog.Updates.size(), 3u);
}

TEST(Progress, APercentageHalfwayGoesToTheEvenNumber) {
  EXPECT_EQ(RoundHalfToEven(0.5), 0);
  EXPECT_EQ(RoundHalfToEven(1.5), 2);
  EXPECT_EQ(RoundHalfToEven(2.5), 2);
  EXPECT_EQ(RoundHalfToEven(37.5), 38);
  EXPECT_EQ(RoundHalfToEven(62.5), 62);
  EXPECT_EQ(RoundHalfToEven(62.51), 63);
  EXPECT_EQ(RoundHalfToEven(99.49), 99);
  EXPECT_EQ(ShareOfBar(0, 8, 100), 12);
  EXPECT_EQ(ShareOfBar(2, 8, 100), 38);
  EXPECT_EQ(ShareOfBar(0, 4, 50, 50), 62);
}

TEST(Progress, TheOverallBarRoundsHalvesToEven) {
  TScanRig rig;
  rig.Run({Section::RegistryIntegrity, Section::FilesOfLocalMachine, Section::FilesOfCurrentUser,
           Section::FilesOfUsers, Section::ObsoleteSoftware, Section::CustomControls, Section::FileExtensions,
           Section::FileAssociations});
  TStrings positions;
  for (const std::string& update : rig.Dialog.Updates) {
    if (update.starts_with("overall"))
      positions.push_back(update);
  }
  EXPECT_EQ(positions, (TStrings{"overall: 12", "overall: 25", "overall: 38", "overall: 50", "overall: 62",
                                 "overall: 75", "overall: 88", "overall: 100"}));
}

TEST(Progress, TheDialogIsLeftAloneOnceTheScanIsCancelled) {
  TScanRig rig;
  // The services run to their end whatever the thread is told: 60 calls.
  for (int i = 0; i < 60; ++i) {
    rig.System.Registry.Set(
        u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\" + NumberedName(u"s", i), u"ImagePath",
        u"x");
  }
  rig.RunAndCancel({Section::WindowsServices}, 1);
  EXPECT_EQ(rig.Dialog.Updates, SectionStart("Windows Services", 100));
  rig.Run({Section::WindowsServices});
  EXPECT_EQ(rig.Dialog.Updates.size(), 5u);
}

TEST(Progress, NoSectionBearsTheNameThatIsNeverThrottled) {
  for (const TSection& section : SectionCatalogue())
    EXPECT_NE(section.ProgressName, u"ShortCuts");
}

}  // namespace corvalt
