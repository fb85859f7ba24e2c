#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kNtFonts = u"\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\fonts";
constexpr TextView kFonts = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\fonts";

// Registers a font of the Windows XP machine.
void Register(TScanRig& rig, TextView font, TextView file) {
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE" + Text(kNtFonts), font, file);
}

ScanProblem Missing(TextView font, TextView file) {
  return ValueProblem(kHkeyLocalMachine, kNtFonts, font, file, Says(TextId::MissingFontFile, file, font));
}

std::vector<Text> MissingFonts(TScanRig& rig) {
  rig.Run({Section::WindowsFonts});
  std::vector<Text> names;
  for (const ScanProblem& problem : rig.Problems())
    names.push_back(problem.ValueName);
  return names;
}

void RegisterManyFonts(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Windows\\fonts\\arial.ttf");
  rig.System.Disk.AddFile(u"C:\\More\\own.ttf");
  rig.System.Disk.AddFile(u"C:\\Tools\\tool.fon");
  Register(rig, u"Zapf (TrueType)", u"zapf.ttf");
  Register(rig, u"Arial (TrueType)", u"arial.ttf");
  Register(rig, u"Own (TrueType)", u"C:\\More\\own.ttf");
  Register(rig, u"Gone (TrueType)", u"C:\\More\\gone.ttf");
  Register(rig, u"Tool", u"tool.fon");
  Register(rig, u"Elsewhere", u"E:\\gone.ttf");
  Register(rig, u"Blanks", u"C:\\More\\two words.ttf");
}

}  // namespace

TEST(WindowsFonts, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyFonts(rig);

  rig.Run({Section::WindowsFonts});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Windows Fonts", 14, kNoRootKey, 3)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Zapf (TrueType)", u"zapf.ttf"),
                                                  Missing(u"Gone (TrueType)", u"C:\\More\\gone.ttf"),
                                                  Missing(u"Blanks", u"C:\\More\\two words.ttf")}));
}

TEST(WindowsFonts, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyFonts(rig);

  EXPECT_EQ(MissingFonts(rig), (std::vector<Text>{u"Blanks", u"Gone (TrueType)", u"Zapf (TrueType)"}));
}

TEST(WindowsFonts, TwoVersionNamesAloneChooseTheNtKey) {
  struct TCase {
    TextView VersionName;
    TextView Key;
  };
  for (const TCase& each : {TCase{u"xp", kNtFonts}, TCase{u"2000", kNtFonts}, TCase{u"vista", kFonts},
                            TCase{u"nt3.51", kFonts}, TCase{u"nt4.0", kFonts}, TCase{u"95", kFonts},
                            TCase{u"98", kFonts}, TCase{u"me", kFonts}, TCase{u"", kFonts}}) {
    TScanRig rig;
    rig.Vars.WindowsVersionName = each.VersionName;
    rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE" + Text(kNtFonts), u"Gone", u"gone.ttf");
    rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE" + Text(kFonts), u"Gone", u"gone.ttf");

    rig.Run({Section::WindowsFonts});

    EXPECT_EQ(AllFields(rig.Problems()),
              AllFields({ValueProblem(kHkeyLocalMachine, each.Key, u"Gone", u"gone.ttf",
                                      Says(TextId::MissingFontFile, u"gone.ttf", u"Gone"))}))
        << EncodeUtf8(each.VersionName);
  }
}

TEST(WindowsFonts, NothingIsReportedWhereTheVersionsKeyIsMissing) {
  TScanRig rig;
  rig.Vars.WindowsVersionName = u"vista";
  Register(rig, u"Gone", u"gone.ttf");

  rig.Run({Section::WindowsFonts});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(WindowsFonts, ABareNameInTheFontsFolderIsValid) {
  TScanRig rig;
  Register(rig, u"Arial", u"arial.ttf");
  EXPECT_EQ(MissingFonts(rig), (std::vector<Text>{u"Arial"}));

  rig.System.Disk.AddFile(u"C:\\Windows\\fonts\\arial.ttf");
  EXPECT_TRUE(MissingFonts(rig).empty());
}

TEST(WindowsFonts, ABareNameOnTheSearchPathIsValid) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\dos.fon");
  Register(rig, u"Dos", u"dos.fon");

  EXPECT_TRUE(MissingFonts(rig).empty());
}

TEST(WindowsFonts, AnEmptyValueAndOneThatIsNoTextAreValid) {
  TScanRig rig;
  Register(rig, u"Empty", u"");
  rig.System.Registry.SetInteger(u"HKEY_LOCAL_MACHINE" + Text(kNtFonts), u"Number", 7);

  EXPECT_TRUE(MissingFonts(rig).empty());
}

// What stands before the quote is the fonts folder, which exists.
TEST(WindowsFonts, AQuotedMissingFileIsJudgedByTheFontsFolder) {
  TScanRig rig;
  Register(rig, u"Quoted", u"\"C:\\Old\\gone.ttf\"");

  EXPECT_TRUE(MissingFonts(rig).empty());
}

TEST(WindowsFonts, AFileIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\fonts\\set.ttc");
  Register(rig, u"Set", u"set.ttc,2");

  EXPECT_TRUE(MissingFonts(rig).empty());
}

TEST(WindowsFonts, ProgressNamesTheKeyAlone) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\fonts\\arial.ttf");
  for (int i = 0; i < 120; ++i)
    Register(rig, NumberedName(u"f", i), u"arial.ttf");

  rig.Run({Section::WindowsFonts});

  const std::string label = "item: SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\fonts";
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Windows Fonts", {label, "bar: 42", label, "bar: 84"}));
}

TEST(WindowsFonts, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  Register(rig, u"One", u"one.ttf");
  Register(rig, u"Two", u"two.ttf");

  rig.RunAndCancel({Section::WindowsFonts}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::WindowsFonts}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"One", u"one.ttf")}));
}

TEST(WindowsFonts, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RegisterManyFonts(rig);
  ExpectConsistentWhereverCancelled(rig, Section::WindowsFonts);
}

}  // namespace corvalt
