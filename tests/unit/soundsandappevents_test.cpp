#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kApps = u"\\AppEvents\\Schemes\\Apps";

Text FullPathOf(TextView subPath) {
  return u"HKEY_CURRENT_USER" + Text(kApps) + Text(subPath);
}

ScanProblem Missing(TextView subPath, TextView name, TextView data) {
  return ValueProblem(kHkeyCurrentUser, Text(kApps) + Text(subPath), name, data,
                      Says(TextId::MissingFileOfValue, name, data));
}

void AssignManySounds(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Windows\\media\\ding.wav");
  rig.System.Registry.Set(FullPathOf(u"\\_Chat\\Ring\\.current"), u"", u"C:\\Old\\ring.wav");
  rig.System.Registry.Set(FullPathOf(u"\\.Default\\Beep\\.current"), u"", u"C:\\Windows\\media\\ding.wav");
  rig.System.Registry.Set(FullPathOf(u"\\.Default\\Open\\.current"), u"", u"C:\\Old\\open.wav");
  rig.System.Registry.SetExpand(FullPathOf(u"\\Explorer\\Empty\\.current"), u"sound",
                                u"%SystemRoot%\\media\\gone.wav");
  rig.System.Registry.Set(FullPathOf(u"\\Explorer\\Empty\\.current"), u"another", u"C:\\Old\\empty.wav");
  rig.System.Registry.Set(FullPathOf(u"\\Explorer\\Silent\\.current"), u"", u"");
  rig.System.Registry.SetInteger(FullPathOf(u"\\Explorer\\Silent"), u"C:\\Old\\x.wav", 1);
  rig.System.Registry.Set(FullPathOf(u""), u"", u"C:\\Old\\top.wav");
}

}  // namespace

TEST(SoundsAndAppevents, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  AssignManySounds(rig);

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Sounds and Appevents", 1, kHkeyCurrentUser, 5)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"", u"", u"C:\\Old\\top.wav"),
                       Missing(u"\\.Default\\Open\\.current", u"", u"C:\\Old\\open.wav"),
                       Missing(u"\\Explorer\\Empty\\.current", u"sound", u"%SystemRoot%\\media\\gone.wav"),
                       Missing(u"\\Explorer\\Empty\\.current", u"another", u"C:\\Old\\empty.wav"),
                       Missing(u"\\_Chat\\Ring\\.current", u"", u"C:\\Old\\ring.wav")}));
}

TEST(SoundsAndAppevents, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  AssignManySounds(rig);

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"", u"", u"C:\\Old\\top.wav"),
                       Missing(u"\\.Default\\Open\\.current", u"", u"C:\\Old\\open.wav"),
                       Missing(u"\\_Chat\\Ring\\.current", u"", u"C:\\Old\\ring.wav"),
                       Missing(u"\\Explorer\\Empty\\.current", u"another", u"C:\\Old\\empty.wav"),
                       Missing(u"\\Explorer\\Empty\\.current", u"sound", u"%SystemRoot%\\media\\gone.wav")}));
}

TEST(SoundsAndAppevents, KeysOutsideTheSchemesAreNotVisited) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Names", u"", u"C:\\Old\\a.wav");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\AppEvents\\EventLabels", u"", u"C:\\Old\\a.wav");
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE\\AppEvents\\Schemes\\Apps", u"", u"C:\\Old\\a.wav");

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(SoundsAndAppevents, BelowAKeyNamedSystemOnlyTheControlSetInUseIsWalked) {
  TScanRig rig;
  rig.System.Registry.Set(FullPathOf(u"\\System"), u"own", u"C:\\Old\\own.wav");
  rig.System.Registry.Set(FullPathOf(u"\\System\\Beep"), u"", u"C:\\Old\\beep.wav");
  rig.System.Registry.Set(FullPathOf(u"\\System\\CURRENTCONTROLSET"), u"", u"C:\\Old\\set.wav");

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"\\System", u"own", u"C:\\Old\\own.wav"),
                       Missing(u"\\System\\CurrentControlSet", u"", u"C:\\Old\\set.wav")}));
}

TEST(SoundsAndAppevents, TheWalkOfSubkeysEndsAtTheMirror) {
  TScanRig rig;
  rig.System.Registry.Set(FullPathOf(u"\\Alpha"), u"", u"C:\\Old\\a.wav");
  rig.System.Registry.Set(FullPathOf(u"\\Wow6432Node"), u"", u"C:\\Old\\w.wav");
  rig.System.Registry.Set(FullPathOf(u"\\Zeta"), u"", u"C:\\Old\\z.wav");

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"\\Alpha", u"", u"C:\\Old\\a.wav")}));
}

TEST(SoundsAndAppevents, TheBarStaysAtZero) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    rig.System.Registry.Set(FullPathOf(u""), NumberedName(u"v", i), u"");

  rig.Run({Section::SoundsAndAppevents});

  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Sounds and Appevents", {"item: AppEvents\\Schemes\\Apps\\v050", "bar: 0",
                                               "item: AppEvents\\Schemes\\Apps\\v100", "bar: 0"}));
}

TEST(SoundsAndAppevents, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  AssignManySounds(rig);
  ExpectConsistentWhereverCancelled(rig, Section::SoundsAndAppevents);
}

}  // namespace corvalt
