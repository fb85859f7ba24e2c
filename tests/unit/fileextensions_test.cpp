#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kFileExts = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\";

Text FullPathOf(TextView extension) {
  return u"HKEY_CURRENT_USER" + Text(kFileExts) + Text(extension);
}

ScanProblem Empty(TextView extension) {
  return KeyProblem(kHkeyCurrentUser, Text(kFileExts) + Text(extension), u"", u"", Says(TextId::EmptyKey));
}

void AddManyExtensions(TScanRig& rig) {
  TMemoryRegistry& registry = rig.System.Registry;
  registry.AddKey(FullPathOf(u"_zz"));
  registry.AddKey(FullPathOf(u".Empty"));
  registry.Set(FullPathOf(u".value"), u"", u"");
  registry.Set(FullPathOf(u".list\\OpenWithList"), u"a", u"notepad.exe");
  registry.Set(FullPathOf(u".ids\\OpenWithProgids"), u"txtfile", u"");
  registry.AddKey(FullPathOf(u".subs\\OpenWithList"));
  registry.AddKey(FullPathOf(u".subs\\OpenWithProgids"));
  registry.Set(FullPathOf(u".choice\\UserChoice"), u"Progid", u"txtfile");
  registry.Deny(FullPathOf(u".denied"));
  registry.AddKey(FullPathOf(u"DDECache"));
  registry.AddKey(FullPathOf(u"OPENWITHLIST"));
  registry.AddKey(FullPathOf(u"openwithprogids"));
}

}  // namespace

TEST(FileExtensions, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  AddManyExtensions(rig);

  rig.Run({Section::FileExtensions});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"File Extensions", 7, kNoRootKey, 5)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".choice"), Empty(u".Empty"), Empty(u".subs"),
                                                  Empty(u"openwithprogids"), Empty(u"_zz")}));
}

TEST(FileExtensions, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  AddManyExtensions(rig);

  rig.Run({Section::FileExtensions});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".choice"), Empty(u".Empty"), Empty(u".subs"),
                                                  Empty(u"_zz"), Empty(u"openwithprogids")}));
}

TEST(FileExtensions, OneValueOfTheKeyOrOfEitherSubkeyMakesItUsed) {
  for (const TextView subKey : {u".abc", u".abc\\OpenWithList", u".abc\\OpenWithProgids"}) {
    TScanRig rig;
    rig.System.Registry.AddKey(FullPathOf(u".abc\\OpenWithList"));
    rig.System.Registry.AddKey(FullPathOf(u".abc\\OpenWithProgids"));
    rig.Run({Section::FileExtensions});
    EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".abc")}));

    rig.System.Registry.Set(FullPathOf(subKey), u"", u"");
    rig.Run({Section::FileExtensions});
    EXPECT_TRUE(rig.Headers().empty()) << EncodeUtf8(subKey);
  }
}

TEST(FileExtensions, ValuesOfAnyOtherSubkeyDoNotCount) {
  TScanRig rig;
  rig.System.Registry.Set(FullPathOf(u".abc\\UserChoice"), u"Progid", u"abcfile");
  rig.System.Registry.Set(FullPathOf(u".abc\\OpenWithList\\Below"), u"a", u"b");

  rig.Run({Section::FileExtensions});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".abc")}));
}

TEST(FileExtensions, AKeyThatDoesNotOpenIsTakenForUsed) {
  TScanRig rig;
  rig.System.Registry.Deny(FullPathOf(u".abc"));

  rig.Run({Section::FileExtensions});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(FileExtensions, ASubkeyThatDoesNotOpenDoesNotMakeItUsed) {
  TScanRig rig;
  rig.System.Registry.Set(FullPathOf(u".abc\\OpenWithList"), u"a", u"b");
  rig.System.Registry.Deny(FullPathOf(u".abc\\OpenWithList"));

  rig.Run({Section::FileExtensions});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".abc")}));
}

TEST(FileExtensions, TheShellsOwnKeysAreNeverReportedWhateverTheirCase) {
  TScanRig rig;
  for (const TextView name : {u"ddecache", u"OpenWithList"})
    rig.System.Registry.AddKey(FullPathOf(name));
  rig.Run({Section::FileExtensions});
  EXPECT_TRUE(rig.Headers().empty());

  rig.System.Registry.AddKey(FullPathOf(u"ddecache2"));
  rig.Run({Section::FileExtensions});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u"ddecache2")}));
}

TEST(FileExtensions, NoSettingsLeaveNoHeader) {
  TScanRig rig;

  rig.Run({Section::FileExtensions});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(FileExtensions, ProgressNamesTheKeyOfEveryExtension) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    rig.System.Registry.Set(FullPathOf(NumberedName(u".e", i)), u"", u"");
  rig.System.Registry.Deny(FullPathOf(u".e000"));

  rig.Run({Section::FileExtensions});

  const std::string key = "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("File Extensions", {key + ".e050", "bar: 42", key + ".e100", "bar: 84"}));
}

TEST(FileExtensions, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  rig.System.Registry.AddKey(FullPathOf(u".a"));
  rig.System.Registry.AddKey(FullPathOf(u".b"));

  rig.RunAndCancel({Section::FileExtensions}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::FileExtensions}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u".a")}));
}

TEST(FileExtensions, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  AddManyExtensions(rig);
  ExpectConsistentWhereverCancelled(rig, Section::FileExtensions);
}

}  // namespace corvalt
