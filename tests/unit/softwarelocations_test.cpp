#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kAppPaths = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths";

Text FullPathOf(TextView program) {
  return u"HKEY_LOCAL_MACHINE" + Text(kAppPaths) + u"\\" + Text(program);
}

void Register(TScanRig& rig, TextView program, TextView target, TextView folder = {}) {
  rig.System.Registry.Set(FullPathOf(program), u"", target);
  if (!folder.empty())
    rig.System.Registry.Set(FullPathOf(program), u"Path", folder);
}

ScanProblem Missing(TextView program, TextView target) {
  return KeyProblem(kHkeyLocalMachine, Text(kAppPaths) + u"\\" + Text(program), u"", target,
                    Says(TextId::MissingApplicationFile, target));
}

// The texts that the section found to be missing.
std::vector<Text> MissingTargets(TScanRig& rig) {
  rig.Run({Section::SoftwareLocations});
  std::vector<Text> targets;
  for (const ScanProblem& problem : rig.Problems())
    targets.push_back(problem.ValueData);
  return targets;
}

void RegisterManyPrograms(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Tools\\here.exe");
  Register(rig, u"Alpha.exe", u"C:\\Old\\alpha.exe");
  Register(rig, u"bare.exe", u"BARE.EXE", u"C:\\Gone");
  Register(rig, u"denied.exe", u"C:\\Old\\denied.exe");
  rig.System.Registry.Deny(FullPathOf(u"denied.exe"));
  rig.System.Registry.AddKey(FullPathOf(u"empty.exe"));
  Register(rig, u"here.exe", u"C:\\Tools\\here.exe");
  Register(rig, u"nopath.exe", u"nopath.exe");
  Register(rig, u"other.exe", u"wholly.exe", u"C:\\Gone");
  Register(rig, u"quoted.exe", u"\"C:\\Old\\quoted.exe\" /start");
  Register(rig, u"_early.exe", u"C:\\Old\\_early.exe");
}

}  // namespace

TEST(SoftwareLocations, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyPrograms(rig);

  rig.Run({Section::SoftwareLocations});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Software Locations", 12, kNoRootKey, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Alpha.exe", u"C:\\Old\\alpha.exe"),
                                                  Missing(u"bare.exe", u"C:\\Gone\\BARE.EXE"),
                                                  Missing(u"quoted.exe", u"\"C:\\Old\\quoted.exe\" /start"),
                                                  Missing(u"_early.exe", u"C:\\Old\\_early.exe")}));
}

TEST(SoftwareLocations, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyPrograms(rig);

  EXPECT_EQ(MissingTargets(rig),
            (std::vector<Text>{u"C:\\Old\\_early.exe", u"C:\\Old\\alpha.exe", u"C:\\Gone\\BARE.EXE",
                               u"\"C:\\Old\\quoted.exe\" /start"}));
}

TEST(SoftwareLocations, ABareTargetNamedAsItsKeyIsLookedForInItsFolder) {
  TScanRig rig;
  Register(rig, u"app.exe", u"APP.EXE", u"C:\\Prog");
  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"C:\\Prog\\APP.EXE"}));

  rig.System.Disk.AddFile(u"C:\\Prog\\app.exe");
  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, AFolderThatEndsWithABackslashGetsNoSecond) {
  TScanRig rig;
  Register(rig, u"app.exe", u"app.exe", u"C:\\Prog\\");

  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"C:\\Prog\\app.exe"}));
}

TEST(SoftwareLocations, TheFolderIsIgnoredWhenTheTargetDiffersFromTheKey) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Prog\\app.exe");
  Register(rig, u"app.exe", u"C:\\Old\\app.exe", u"C:\\Prog");

  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"C:\\Old\\app.exe"}));
}

TEST(SoftwareLocations, ATargetWithoutAColonIsNeverReported) {
  TScanRig rig;
  Register(rig, u"app.exe", u"app.exe");
  Register(rig, u"empty.exe", u"", u"C:\\Gone");
  Register(rig, u"expand.exe", u"%ProgramFiles%\\gone.exe");
  Register(rig, u"other.exe", u"another.exe", u"C:\\Gone");

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, ATargetNamedAsItsKeyStaysAsItIsWithoutAFolder) {
  TScanRig rig;
  Register(rig, u"gone:stream", u"gone:stream");

  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"gone:stream"}));
}

TEST(SoftwareLocations, AColonAnywhereInTheTargetMakesItJudged) {
  TScanRig rig;
  Register(rig, u"app.exe", u"gone:stream");

  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"gone:stream"}));
}

TEST(SoftwareLocations, AQuotedTargetIsCutAtItsClosingQuote) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Prog\\app.exe");
  Register(rig, u"app.exe", u"\"C:\\Prog\\app.exe\" C:\\Old\\gone.txt");

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, ATargetIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Prog\\app.exe");
  Register(rig, u"app.exe", u"C:\\Prog\\app.exe,1");

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, AnExpandableTargetIsReadUnexpanded) {
  TScanRig rig;
  rig.System.Registry.SetExpand(FullPathOf(u"app.exe"), u"", u"C:\\%NAME%\\app.exe");

  EXPECT_EQ(MissingTargets(rig), (std::vector<Text>{u"C:\\%NAME%\\app.exe"}));
}

TEST(SoftwareLocations, ATargetThatIsNoTextReadsEmpty) {
  TScanRig rig;
  rig.System.Registry.SetInteger(FullPathOf(u"app.exe"), u"", 1);

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, ATargetOnADriveThatIsNotFixedExists) {
  TScanRig rig;
  Register(rig, u"app.exe", u"E:\\setup.exe");

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, KeysBelowAProgramAreNotVisited) {
  TScanRig rig;
  Register(rig, u"app.exe\\Sub", u"C:\\Old\\app.exe");

  EXPECT_TRUE(MissingTargets(rig).empty());
}

TEST(SoftwareLocations, NothingRegisteredLeavesNoHeader) {
  TScanRig rig;

  rig.Run({Section::SoftwareLocations});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(SoftwareLocations, ProgressNamesTheKeyAndRoundsAHalfToEven) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    Register(rig, NumberedName(u"p", i), u"here.exe");

  rig.Run({Section::SoftwareLocations});

  // The 51st and the 101st call: 51 x 100 / 120 = 42.5 and 101 x 100 / 120 = 84.17.
  const std::string key = "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Software Locations", {key + "p050", "bar: 42", key + "p100", "bar: 84"}));
}

TEST(SoftwareLocations, AKeyThatDoesNotOpenMakesNoProgress) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i)
    Register(rig, NumberedName(u"p", i), u"here.exe");
  for (int i = 0; i < 5; ++i)
    rig.System.Registry.Deny(FullPathOf(NumberedName(u"p", i)));

  rig.Run({Section::SoftwareLocations});

  // The 51st call is that of the 56th key: 56 x 100 / 60 = 93.3.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Software Locations",
                      {"item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\p055", "bar: 93"}));
}

TEST(SoftwareLocations, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  Register(rig, u"a.exe", u"C:\\Old\\a.exe");
  Register(rig, u"b.exe", u"C:\\Old\\b.exe");

  rig.RunAndCancel({Section::SoftwareLocations}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::SoftwareLocations}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"a.exe", u"C:\\Old\\a.exe")}));
}

TEST(SoftwareLocations, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RegisterManyPrograms(rig);
  ExpectConsistentWhereverCancelled(rig, Section::SoftwareLocations);
}

}  // namespace corvalt
