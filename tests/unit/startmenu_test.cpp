#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

constexpr TextView kPrograms =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start Menu2\\Programs";
constexpr TextView kAllUsersMenu = u"C:\\Users\\All\\Start Menu\\Programs\\";
constexpr TextView kUserMenu = u"C:\\Users\\Ann\\Start Menu\\Programs\\";

Text FullPathOf(TextView folder) {
  return u"HKEY_CURRENT_USER" + Text(kPrograms) + u"\\" + Text(folder);
}

// The stored order of a menu folder.
void StoreOrder(TScanRig& rig, TextView folder) {
  rig.System.Registry.SetRaw(FullPathOf(folder), {u"Order", kRegBinary, {8, 0}});
}

void AddMenu(TScanRig& rig, TextView menu, TextView folder) {
  rig.System.Disk.AddFolder(Text(menu) + Text(folder));
}

ScanProblem Missing(TextView folder, TextView name) {
  return KeyProblem(kHkeyCurrentUser, Text(kPrograms) + u"\\" + Text(folder), u"", u"",
                    Says(TextId::MissingStartMenuFolder, name));
}

ScanProblem Empty(TextView folder) {
  return KeyProblem(kHkeyCurrentUser, Text(kPrograms) + u"\\" + Text(folder), u"", u"",
                    Says(TextId::EmptyKey));
}

void StoreManyOrders(TScanRig& rig) {
  AddMenu(rig, kAllUsersMenu, u"Accessories\\Games");
  AddMenu(rig, kUserMenu, u"Own");
  AddMenu(rig, kAllUsersMenu, u"Unordered");
  LoadRegText(rig.System.Registry, R"(
[\_Gone]
"Order"=hex:08,00
[\Accessories]
"Order"=hex:08,00
[\Accessories\Games]
"Order"=hex:08,00
[\Accessories\Old]
"Order"=hex:08,00
[\Gone parent\Gone leaf]
"Order"=hex:08,00
[\Own]
"Order"=hex:08,00
[\Unordered]
"Other"="text"
[\Denied]
"Order"=hex:08,00
)",
              EncodeUtf8(u"HKEY_CURRENT_USER" + Text(kPrograms)));
  rig.System.Registry.Deny(FullPathOf(u"Denied"));
}

}  // namespace

TEST(StartMenu, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  StoreManyOrders(rig);

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Start Menu", 9, kNoRootKey, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"Accessories\\Old", u"Old"), Missing(u"Gone parent\\Gone leaf", u"Gone leaf"),
                       Empty(u"Unordered"), Missing(u"_Gone", u"_Gone")}));
}

TEST(StartMenu, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  StoreManyOrders(rig);

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"_Gone", u"_Gone"), Missing(u"Accessories\\Old", u"Old"),
                       Missing(u"Gone parent\\Gone leaf", u"Gone leaf"), Empty(u"Unordered")}));
}

TEST(StartMenu, AFolderInEitherMenuIsEnough) {
  for (const TextView menu : {kAllUsersMenu, kUserMenu}) {
    TScanRig rig;
    StoreOrder(rig, u"Games");
    rig.Run({Section::StartMenu});
    EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Games", u"Games")}));

    AddMenu(rig, menu, u"Games");
    rig.Run({Section::StartMenu});
    EXPECT_TRUE(rig.Headers().empty()) << EncodeUtf8(menu);
  }
}

TEST(StartMenu, AFileInPlaceOfTheFolderIsNoFolder) {
  TScanRig rig;
  StoreOrder(rig, u"Games");
  rig.System.Disk.AddFile(Text(kUserMenu) + u"Games");

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Games", u"Games")}));
}

TEST(StartMenu, ALeafBelowTheTopIsLookedForBelowItsParentsFolder) {
  TScanRig rig;
  StoreOrder(rig, u"A\\B\\C");
  AddMenu(rig, kUserMenu, u"C");
  rig.Run({Section::StartMenu});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"A\\B\\C", u"C")}));

  AddMenu(rig, kUserMenu, u"A\\B\\C");
  rig.Run({Section::StartMenu});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartMenu, AKeyWithSubkeysIsNeverReported) {
  TScanRig rig;
  AddMenu(rig, kUserMenu, u"Gone\\Leaf");
  StoreOrder(rig, u"Gone\\Leaf");
  rig.System.Disk.Remove(u"C:\\Users\\Ann\\Start Menu");
  AddMenu(rig, kUserMenu, u"");

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Gone\\Leaf", u"Leaf")}));
}

TEST(StartMenu, ALeafWhoseFolderExistsNeedsAnOrder) {
  TScanRig rig;
  AddMenu(rig, kAllUsersMenu, u"Games");
  rig.System.Registry.AddKey(FullPathOf(u"Games"));
  rig.Run({Section::StartMenu});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(u"Games")}));

  rig.System.Registry.SetInteger(FullPathOf(u"Games"), u"ORDER", 0);
  rig.Run({Section::StartMenu});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartMenu, AMissingFolderWithoutOrderIsReportedOnceAsMissing) {
  TScanRig rig;
  rig.System.Registry.AddKey(FullPathOf(u"Games"));

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Games", u"Games")}));
}

// The folder itself is asked for: a path that is not on a fixed drive is not taken for existing.
TEST(StartMenu, AProfileOnADriveThatIsNotFixedIsJudgedAllTheSame) {
  TScanRig rig;
  rig.Vars.AllUsersFolder = u"N:\\All\\";
  rig.Vars.UserProfileFolder = u"N:\\Ann\\";
  StoreOrder(rig, u"Games");

  rig.Run({Section::StartMenu});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"Games", u"Games")}));
}

TEST(StartMenu, TheTopKeyItselfIsNotJudged) {
  TScanRig rig;
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER" + Text(kPrograms));

  rig.Run({Section::StartMenu});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartMenu, AMissingTopKeyLeavesNoHeader) {
  TScanRig rig;

  rig.Run({Section::StartMenu});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartMenu, EachLevelBeginsTheBarAnew) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i) {
    for (const TextView parent : {u"A", u"B"}) {
      const Text folder = Text(parent) + u"\\" + NumberedName(u"c", i);
      AddMenu(rig, kUserMenu, folder);
      StoreOrder(rig, folder);
    }
  }

  rig.Run({Section::StartMenu});

  // A is the first call and B the 62nd; the 51st is the 50th of 60 below A, the 101st the 39th of 60 below B.
  const std::string top =
      "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start Menu2\\Programs\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Start Menu", {top + "A\\c049", "bar: 83", top + "B\\c038", "bar: 65"}));
}

TEST(StartMenu, AKeyThatDoesNotOpenMakesProgress) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    rig.System.Registry.Deny(FullPathOf(NumberedName(u"c", i)));

  rig.Run({Section::StartMenu});

  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Start Menu", {"item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"
                                     "MenuOrder\\Start Menu2\\Programs\\c050",
                                     "bar: 100"}));
}

TEST(StartMenu, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  StoreOrder(rig, u"One");
  StoreOrder(rig, u"Two");

  rig.RunAndCancel({Section::StartMenu}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::StartMenu}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"One", u"One")}));
}

TEST(StartMenu, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  StoreManyOrders(rig);
  ExpectConsistentWhereverCancelled(rig, Section::StartMenu);
}

}  // namespace corvalt
