#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kUninstall = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

Text FullPathOf(TextView entry) {
  return u"HKEY_LOCAL_MACHINE" + Text(kUninstall) + Text(entry);
}

void SetText(TScanRig& rig, TextView entry, TextView name, TextView text) {
  rig.System.Registry.Set(FullPathOf(entry), name, text);
}

ScanProblem Missing(TextView entry, TextView command) {
  return KeyProblem(kHkeyLocalMachine, Text(kUninstall) + Text(entry), u"", u"",
                    Says(TextId::MissingUninstaller, command));
}

ScanProblem WithoutUninstaller(TextView entry) {
  return KeyProblem(kHkeyLocalMachine, Text(kUninstall) + Text(entry), u"", u"", Says(TextId::NoUninstaller));
}

void ListManyPrograms(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\uninst.exe");
  SetText(rig, u"_gone", u"UninstallString", u"\"C:\\Old\\uninst.exe\" /remove");
  SetText(rig, u"App", u"DisplayName", u"App");
  SetText(rig, u"App", u"UninstallString", u"C:\\Program Files\\App\\uninst.exe /S");
  rig.System.Registry.AddKey(FullPathOf(u"Bare"));
  SetText(rig, u"Named", u"DisplayName", u"Named");
  SetText(rig, u"Parent", u"DisplayName", u"Parent");
  rig.System.Registry.AddKey(FullPathOf(u"Parent\\Child"));
  SetText(rig, u"quiet", u"UninstallString", u"");
  SetText(rig, u"quiet", u"QuietUninstallString", u"C:\\Old\\quiet.exe");
  rig.System.Registry.SetInteger(FullPathOf(u"System"), u"SystemComponent", 1);
  rig.System.Registry.Deny(FullPathOf(u"denied"));
}

}  // namespace

TEST(AddRemovePrograms, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  ListManyPrograms(rig);

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Add/Remove Programs", 13, kHkeyLocalMachine, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({WithoutUninstaller(u"Bare"), WithoutUninstaller(u"Named"),
                                                  Missing(u"quiet", u"C:\\Old\\quiet.exe"),
                                                  Missing(u"_gone", u"\"C:\\Old\\uninst.exe\" /remove")}));
}

TEST(AddRemovePrograms, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  ListManyPrograms(rig);

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"_gone", u"\"C:\\Old\\uninst.exe\" /remove"), WithoutUninstaller(u"Bare"),
                       WithoutUninstaller(u"Named"), Missing(u"quiet", u"C:\\Old\\quiet.exe")}));
}

TEST(AddRemovePrograms, AnEmptyEntryHasNoUninstaller) {
  TScanRig rig;
  rig.System.Registry.AddKey(FullPathOf(u"Empty"));

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({WithoutUninstaller(u"Empty")}));
}

TEST(AddRemovePrograms, AnEntryWithoutUninstallerButWithASubkeyIsLeftAlone) {
  TScanRig rig;
  SetText(rig, u"Parent", u"DisplayName", u"Parent");
  rig.System.Registry.AddKey(FullPathOf(u"Parent\\Child"));

  rig.Run({Section::AddRemovePrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AddRemovePrograms, AnyValueWhoseNameHoldsOneOfTheNamesCountsAsAnUninstaller) {
  for (const TextView name :
       {u"NoUninstallStringHere", u"uninstallstring_old", u"MyQuietUninstallString", u"xSYSTEMCOMPONENTx"}) {
    TScanRig rig;
    SetText(rig, u"App", name, u"C:\\Old\\gone.exe");
    rig.Run({Section::AddRemovePrograms});
    EXPECT_TRUE(rig.Headers().empty()) << EncodeUtf8(name);
  }
}

TEST(AddRemovePrograms, ANameThatIsCutShortDoesNotCount) {
  TScanRig rig;
  SetText(rig, u"App", u"UninstallStrin", u"x");
  SetText(rig, u"App", u"System Component", u"x");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({WithoutUninstaller(u"App")}));
}

TEST(AddRemovePrograms, TheNamesAreNotJoinedAcrossValues) {
  TScanRig rig;
  SetText(rig, u"App", u"Uninstall", u"x");
  SetText(rig, u"App", u"String", u"x");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({WithoutUninstaller(u"App")}));
}

TEST(AddRemovePrograms, TheQuietCommandStandsInForAnEmptyOne) {
  TScanRig rig;
  SetText(rig, u"App", u"QuietUninstallString", u"C:\\Old\\quiet.exe");
  rig.Run({Section::AddRemovePrograms});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"App", u"C:\\Old\\quiet.exe")}));

  SetText(rig, u"App", u"UninstallString", u"C:\\Old\\loud.exe");
  rig.Run({Section::AddRemovePrograms});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"App", u"C:\\Old\\loud.exe")}));
}

TEST(AddRemovePrograms, TheQuietCommandIsNotAskedWhenTheOtherExists) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\uninst.exe");
  SetText(rig, u"App", u"UninstallString", u"C:\\App\\uninst.exe");
  SetText(rig, u"App", u"QuietUninstallString", u"C:\\Old\\quiet.exe");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AddRemovePrograms, AnEntryWithTwoEmptyCommandsIsNotReported) {
  TScanRig rig;
  SetText(rig, u"App", u"UninstallString", u"");
  rig.System.Registry.SetInteger(FullPathOf(u"App"), u"QuietUninstallString", 1);

  rig.Run({Section::AddRemovePrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AddRemovePrograms, ACommandIsNotExpanded) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\uninst.exe");
  rig.System.Registry.SetExpand(FullPathOf(u"App"), u"UninstallString", u"%windir%\\uninst.exe");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"App", u"%windir%\\uninst.exe")}));
}

TEST(AddRemovePrograms, ACommandIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\rundll32.exe");
  SetText(rig, u"App", u"UninstallString", u"rundll32.exe setupapi.dll,InstallHinfSection");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AddRemovePrograms, TheUsersListIsNotVisited) {
  TScanRig rig;
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER" + Text(kUninstall) + u"Empty");

  rig.Run({Section::AddRemovePrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AddRemovePrograms, TheSectionMovesTheOverallBarToItsOwnPlaceAndNamesTheEntry) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    rig.System.Registry.SetInteger(FullPathOf(NumberedName(u"p", i)), u"SystemComponent", 1);
  rig.System.Registry.Deny(FullPathOf(u"p000"));

  rig.Run({Section::AddRemovePrograms});

  std::vector<std::string> expected = SectionStart("Add/Remove Programs", 100);
  const std::vector<std::string> again = SectionStart("Add/Remove Programs", 64);
  expected.insert(expected.end(), again.begin(), again.end());
  const std::string key = "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  expected.insert(expected.end(), {key + "p050", "bar: 42", key + "p100", "bar: 84"});
  EXPECT_EQ(rig.Dialog.Updates, expected);
}

TEST(AddRemovePrograms, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  rig.System.Registry.AddKey(FullPathOf(u"One"));
  rig.System.Registry.AddKey(FullPathOf(u"Two"));

  rig.RunAndCancel({Section::AddRemovePrograms}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::AddRemovePrograms}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({WithoutUninstaller(u"One")}));
}

TEST(AddRemovePrograms, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  ListManyPrograms(rig);
  ExpectConsistentWhereverCancelled(rig, Section::AddRemovePrograms);
}

}  // namespace corvalt
