#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kCache = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\";
constexpr TextView kUninstall =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

void Cache(TScanRig& rig, TextView program) {
  rig.System.Registry.SetRaw(u"HKEY_LOCAL_MACHINE" + Text(kCache) + Text(program),
                             {u"SlowInfoCache", kRegBinary, {40, 2, 0, 0}});
}

void Install(TScanRig& rig, TextView program) {
  rig.System.Registry.AddKey(Text(kUninstall) + u"\\" + Text(program));
}

ScanProblem Gone(TextView program) {
  return KeyProblem(kHkeyLocalMachine, Text(kCache) + Text(program), u"", u"",
                    Says(TextId::MissingUninstaller, program));
}

void CacheManyPrograms(TScanRig& rig) {
  for (const TextView program : {u"_old", u"App", u"Gone", u"ODD CASE", u"denied", u"{1-2}"})
    Cache(rig, program);
  for (const TextView program : {u"App", u"odd case", u"denied", u"Uncached"})
    Install(rig, program);
  rig.System.Registry.Deny(Text(kUninstall) + u"\\denied");
}

}  // namespace

TEST(ArpCache, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  CacheManyPrograms(rig);

  rig.Run({Section::ArpCache});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"ARP Cache", 22, kNoRootKey, 3)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"Gone"), Gone(u"_old"), Gone(u"{1-2}")}));
}

TEST(ArpCache, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  CacheManyPrograms(rig);

  rig.Run({Section::ArpCache});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"_old"), Gone(u"Gone"), Gone(u"{1-2}")}));
}

TEST(ArpCache, AnEntryOfTheSameNameIsEnoughWhateverItsContents) {
  TScanRig rig;
  Cache(rig, u"App");
  Install(rig, u"Other");
  rig.Run({Section::ArpCache});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"App")}));

  Install(rig, u"App");
  rig.Run({Section::ArpCache});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ArpCache, NamesCompareAsKeyNamesDo) {
  TScanRig rig;
  Cache(rig, u"M\u00DCLLER");
  Cache(rig, u"M\u00DCLLER 2");
  Install(rig, u"m\u00FCller");

  rig.Run({Section::ArpCache});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"M\u00DCLLER 2")}));
}

TEST(ArpCache, AnEntryBelowAnotherDoesNotCount) {
  TScanRig rig;
  Cache(rig, u"App");
  Install(rig, u"Other\\App");

  rig.Run({Section::ArpCache});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"App")}));
}

TEST(ArpCache, NothingIsReportedWhenTheUninstallListDoesNotOpen) {
  TScanRig rig;
  Cache(rig, u"App");
  rig.Run({Section::ArpCache});
  EXPECT_TRUE(rig.Headers().empty());

  rig.System.Registry.Deny(kUninstall);
  rig.Run({Section::ArpCache});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ArpCache, AnEmptyUninstallListMakesEveryEntryAProblem) {
  TScanRig rig;
  Cache(rig, u"App");
  rig.System.Registry.AddKey(kUninstall);

  rig.Run({Section::ArpCache});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Gone(u"App")}));
}

TEST(ArpCache, ProgressNamesTheKeyWithItsLeadingBackslash) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    Cache(rig, NumberedName(u"p", i));

  rig.Run({Section::ArpCache});

  const std::string key = "item: \\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\";
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("ARP Cache", {key + "p050", "bar: 42", key + "p100", "bar: 84"}));
}

TEST(ArpCache, ACancelledScanLooksAtNoItem) {
  TScanRig rig;
  CacheManyPrograms(rig);

  rig.RunAndCancel({Section::ArpCache}, 1);

  EXPECT_TRUE(rig.Headers().empty());
}

}  // namespace corvalt
