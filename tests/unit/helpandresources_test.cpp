#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kHelp = u"\\SOFTWARE\\Microsoft\\Windows\\Help";
constexpr TextView kHtmlHelp = u"\\SOFTWARE\\Microsoft\\Windows\\Html Help";

void Register(TScanRig& rig, TextView key, TextView file, TextView folder) {
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE" + Text(key), file, folder);
}

ScanProblem Missing(TextView key, TextView file, TextView folder, TextView path) {
  return ValueProblem(kHkeyLocalMachine, key, file, folder, Says(TextId::MissingHelpFile, file, path));
}

void RegisterManyFiles(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Help\\here.hlp");
  rig.System.Disk.AddFile(u"C:\\Help\\here.chm");
  Register(rig, kHtmlHelp, u"here.chm", u"C:\\Help");
  Register(rig, kHtmlHelp, u"gone.chm", u"C:\\Help");
  Register(rig, kHelp, u"old.hlp", u"C:\\Old");
  Register(rig, kHelp, u"here.hlp", u"C:\\Help\\");
  Register(rig, kHelp, u"gone.hlp", u"C:\\Help\\");
  Register(rig, kHelp, u"cd.hlp", u"E:\\Help");
}

}  // namespace

TEST(HelpAndResources, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyFiles(rig);

  rig.Run({Section::HelpAndResources});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Help and Resources", 15, kNoRootKey, 3)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(kHelp, u"old.hlp", u"C:\\Old", u"C:\\Old\\old.hlp"),
                       Missing(kHelp, u"gone.hlp", u"C:\\Help\\", u"C:\\Help\\gone.hlp"),
                       Missing(kHtmlHelp, u"gone.chm", u"C:\\Help", u"C:\\Help\\gone.chm")}));
}

TEST(HelpAndResources, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyFiles(rig);

  rig.Run({Section::HelpAndResources});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(kHelp, u"gone.hlp", u"C:\\Help\\", u"C:\\Help\\gone.hlp"),
                       Missing(kHelp, u"old.hlp", u"C:\\Old", u"C:\\Old\\old.hlp"),
                       Missing(kHtmlHelp, u"gone.chm", u"C:\\Help", u"C:\\Help\\gone.chm")}));
}

TEST(HelpAndResources, AnEmptyFolderIsTestedAsItStands) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\found.hlp");
  Register(rig, kHelp, u"found.hlp", u"");
  Register(rig, kHelp, u"gone.hlp", u"");

  rig.Run({Section::HelpAndResources});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHelp, u"gone.hlp", u"", u"\\gone.hlp")}));
}

TEST(HelpAndResources, AFolderThatIsNoTextReadsEmpty) {
  TScanRig rig;
  rig.System.Registry.SetInteger(u"HKEY_LOCAL_MACHINE" + Text(kHelp), u"gone.hlp", 1);

  rig.Run({Section::HelpAndResources});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHelp, u"gone.hlp", u"", u"\\gone.hlp")}));
}

TEST(HelpAndResources, TheDefaultValueIsJudgedByItsFolder) {
  TScanRig rig;
  Register(rig, kHelp, u"", u"C:\\Old");

  rig.Run({Section::HelpAndResources});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHelp, u"", u"C:\\Old", u"C:\\Old\\")}));
}

TEST(HelpAndResources, APathIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Help\\a");
  Register(rig, kHelp, u"a,b.hlp", u"C:\\Help");

  rig.Run({Section::HelpAndResources});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(HelpAndResources, EachKeyMayBeMissing) {
  TScanRig rig;
  Register(rig, kHtmlHelp, u"gone.chm", u"C:\\Help");

  rig.Run({Section::HelpAndResources});
  EXPECT_EQ(rig.Problems().size(), 1u);

  rig.System.Registry.RemoveKey(u"HKEY_LOCAL_MACHINE" + Text(kHtmlHelp));
  rig.Run({Section::HelpAndResources});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(HelpAndResources, EachKeyFillsOneHalfOfTheBar) {
  TScanRig rig;
  rig.System.Disk.AddFolder(u"C:\\Help");
  for (int i = 0; i < 60; ++i) {
    for (const TextView key : {kHelp, kHtmlHelp}) {
      rig.System.Disk.AddFile(u"C:\\Help\\" + NumberedName(u"h", i));
      Register(rig, key, NumberedName(u"h", i), u"C:\\Help");
    }
  }

  rig.Run({Section::HelpAndResources});

  // The 51st value of the first key, 51 x 50 / 60 = 42.5, and the 41st of the second, 50 + 41 x 50 / 60
  // = 84.2.
  EXPECT_EQ(
      rig.Dialog.Updates,
      UpdatesOf("Help and Resources", {"item: SOFTWARE\\Microsoft\\Windows\\Help\\h050", "bar: 42",
                                       "item: SOFTWARE\\Microsoft\\Windows\\Html Help\\h040", "bar: 84"}));
}

TEST(HelpAndResources, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  Register(rig, kHelp, u"a.hlp", u"C:\\Old");
  Register(rig, kHelp, u"b.hlp", u"C:\\Old");
  Register(rig, kHtmlHelp, u"c.chm", u"C:\\Old");

  rig.RunAndCancel({Section::HelpAndResources}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::HelpAndResources}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHelp, u"a.hlp", u"C:\\Old", u"C:\\Old\\a.hlp")}));
}

TEST(HelpAndResources, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RegisterManyFiles(rig);
  ExpectConsistentWhereverCancelled(rig, Section::HelpAndResources);
}

}  // namespace corvalt
