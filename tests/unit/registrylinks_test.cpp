// Walks of a registry with links: what lies behind a link is found, and no link makes a walk go round.

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kGone = u"C:\\gone.exe";

class RegistryLinks : public ::testing::Test {
 protected:
  void Set(TextView key) {
    Registry.Set(Text(u"HKEY_CURRENT_USER") + Text(key), u"Exe", kGone);
  }
  void Link(TextView key, TextView target) {
    Registry.MakeLink(Text(u"HKEY_CURRENT_USER") + Text(key), Text(u"HKEY_CURRENT_USER") + Text(target));
  }
  // The keys of the problems that a walk of the user's registry finds.
  TStrings KeysFound() {
    Rig.Run({Section::FilesOfCurrentUser});
    TStrings keys;
    for (const ScanProblem& problem : Rig.Problems())
      keys.push_back(EncodeUtf8(problem.KeyPath));
    return keys;
  }

  TScanRig Rig;
  TMemoryRegistry& Registry = Rig.System.Registry;
};

}  // namespace

TEST_F(RegistryLinks, ALinkToAParentIsNotFollowed) {
  Set(u"\\Software\\Vendor\\Tool");
  Link(u"\\Software\\Vendor\\Tool\\Loop", u"\\Software\\Vendor");
  EXPECT_EQ(KeysFound(), TStrings{"\\Software\\Vendor\\Tool"});
}

TEST_F(RegistryLinks, ALinkToItsOwnKeyIsNotFollowed) {
  Set(u"\\Software\\Vendor");
  Link(u"\\Software\\Vendor\\Loop", u"\\Software\\Vendor");
  EXPECT_EQ(KeysFound(), TStrings{"\\Software\\Vendor"});
}

TEST_F(RegistryLinks, ALinkToTheRootIsNotFollowed) {
  Set(u"\\Software\\Vendor");
  Link(u"\\Software\\Loop", u"");
  Link(u"\\Loop", u"");
  EXPECT_EQ(KeysFound(), TStrings{"\\Software\\Vendor"});
}

TEST_F(RegistryLinks, OfTwoLinksToEachOtherOnlyTheFirstIsFollowed) {
  Set(u"\\Software\\A");
  Set(u"\\Software\\B");
  Link(u"\\Software\\A\\ToB", u"\\Software\\B");
  Link(u"\\Software\\B\\ToA", u"\\Software\\A");
  EXPECT_EQ(KeysFound(),
            (TStrings{"\\Software\\A", "\\Software\\A\\ToB", "\\Software\\B", "\\Software\\B\\ToA"}));
}

TEST_F(RegistryLinks, ManyLinksToAParentCostNoMoreThanThemselves) {
  Set(u"\\Software\\Vendor");
  for (int i = 0; i < 50; ++i)
    Link(u"\\Software\\Vendor\\Loop" + DecimalText(i), u"\\Software");
  EXPECT_EQ(KeysFound(), TStrings{"\\Software\\Vendor"});
  EXPECT_LT(Rig.Reads(), 500);
}

// On Windows the user's classes are a hive of their own, and Software\Classes a link to it.
TEST_F(RegistryLinks, WhatLiesBehindALinkElsewhereIsFound) {
  Registry.Set(u"HKEY_CURRENT_USER\\Software\\Classes\\App\\shell", u"Exe", kGone);
  EXPECT_EQ(KeysFound(), TStrings{"\\Software\\Classes\\App\\shell"});
}

TEST_F(RegistryLinks, AKeyThatHoldsOnlyALinkToItsParentIsNotEmpty) {
  Link(u"\\Software\\Vendor\\Loop", u"\\Software");
  Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Empty\\Below");
  Rig.Run({Section::ObsoleteSoftware});
  ASSERT_EQ(Rig.Problems().size(), 1u);
  EXPECT_EQ(Rig.Problems()[0].KeyPath, u"\\software\\Empty");
}

TEST_F(RegistryLinks, AKeyWhoseLinkLeadsToAnEmptyKeyIsEmpty) {
  Registry.AddKey(u"HKEY_CURRENT_USER\\Elsewhere\\Below");
  Link(u"\\Software\\Vendor\\There", u"\\Elsewhere");
  Rig.Run({Section::ObsoleteSoftware});
  ASSERT_EQ(Rig.Problems().size(), 1u);
  EXPECT_EQ(Rig.Problems()[0].KeyPath, u"\\software\\Vendor");
}

TEST_F(RegistryLinks, TheTestForAnEmptyKeyListensToCancel) {
  for (int i = 0; i < 2000; ++i)
    Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Vendor\\Empty" + DecimalText(i));
  Rig.RunAndCancel({Section::ObsoleteSoftware}, 20);
  EXPECT_LT(Rig.Reads(), 60);
  EXPECT_TRUE(Rig.Problems().empty());
}

TEST_F(RegistryLinks, TheStartMenuDoesNotGoRound) {
  const Text programs =
      u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start "
      u"Menu2\\Programs";
  Registry.AddKey(programs + u"\\Folder\\Gone");
  Registry.MakeLink(programs + u"\\Folder\\Loop", programs + u"\\Folder");
  Rig.Run({Section::StartMenu});
  ASSERT_EQ(Rig.Problems().size(), 1u);
  EXPECT_TRUE(Rig.Problems()[0].KeyPath.ends_with(u"\\Folder\\Gone"));
}

}  // namespace corvalt
