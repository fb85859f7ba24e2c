#include "base/keypaths.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

using TNames = std::vector<Text>;

TEST(RootKeyName, GivesTheNameOfEachOfTheSixRoots) {
  EXPECT_EQ(RootKeyName(0x80000000), u"HKEY_CLASSES_ROOT");
  EXPECT_EQ(RootKeyName(0x80000001), u"HKEY_CURRENT_USER");
  EXPECT_EQ(RootKeyName(0x80000002), u"HKEY_LOCAL_MACHINE");
  EXPECT_EQ(RootKeyName(0x80000003), u"HKEY_USERS");
  EXPECT_EQ(RootKeyName(0x80000005), u"HKEY_CURRENT_CONFIG");
  EXPECT_EQ(RootKeyName(0x80000006), u"HKEY_DYN_DATA");
}

TEST(RootKeyName, AnyOtherHandleIsTheCurrentUser) {
  EXPECT_EQ(RootKeyName(0), u"HKEY_CURRENT_USER");
  EXPECT_EQ(RootKeyName(0x80000004), u"HKEY_CURRENT_USER");
  EXPECT_EQ(RootKeyName(0xFFFFFFFF), u"HKEY_CURRENT_USER");
}

TEST(RootKeyFromName, KnowsTheSixNames) {
  EXPECT_EQ(RootKeyFromName(u"HKEY_CURRENT_USER"), kHkeyCurrentUser);
  EXPECT_EQ(RootKeyFromName(u"HKEY_CLASSES_ROOT"), kHkeyClassesRoot);
  EXPECT_EQ(RootKeyFromName(u"HKEY_LOCAL_MACHINE"), kHkeyLocalMachine);
  EXPECT_EQ(RootKeyFromName(u"HKEY_USERS"), kHkeyUsers);
  EXPECT_EQ(RootKeyFromName(u"HKEY_CURRENT_CONFIG"), kHkeyCurrentConfig);
  EXPECT_EQ(RootKeyFromName(u"HKEY_DYN_DATA"), kHkeyDynData);
}

TEST(RootKeyFromName, AnotherLetterCaseIsTheCurrentUser) {
  EXPECT_EQ(RootKeyFromName(u"hkey_local_machine"), kHkeyCurrentUser);
}

TEST(RootKeyFromName, ATrailingSeparatorIsTheCurrentUser) {
  EXPECT_EQ(RootKeyFromName(u"HKEY_LOCAL_MACHINE\\"), kHkeyCurrentUser);
}

TEST(RootKeyFromName, AnEmptyOrUnknownNameIsTheCurrentUser) {
  EXPECT_EQ(RootKeyFromName(u""), kHkeyCurrentUser);
  EXPECT_EQ(RootKeyFromName(u"HKLM"), kHkeyCurrentUser);
}

TEST(IsRootKeyName, HoldsForTheExactNamesAlone) {
  EXPECT_TRUE(IsRootKeyName(u"HKEY_CURRENT_USER"));
  EXPECT_TRUE(IsRootKeyName(u"HKEY_DYN_DATA"));
  EXPECT_FALSE(IsRootKeyName(u"hkey_current_user"));
  EXPECT_FALSE(IsRootKeyName(u"HKEY_USERS\\"));
  EXPECT_FALSE(IsRootKeyName(u""));
}

TEST(ParseKeyPath, OneLeadingSeparatorMeansFromTheRoot) {
  const auto path = ParseKeyPath(u"\\Software\\Foo");
  ASSERT_TRUE(path);
  EXPECT_TRUE(path->FromRoot);
  EXPECT_EQ(path->Names, (TNames{u"Software", u"Foo"}));
}

TEST(ParseKeyPath, WithoutALeadingSeparatorThePathIsRelative) {
  const auto path = ParseKeyPath(u"Foo\\Bar");
  ASSERT_TRUE(path);
  EXPECT_FALSE(path->FromRoot);
  EXPECT_EQ(path->Names, (TNames{u"Foo", u"Bar"}));
}

TEST(ParseKeyPath, RunsOfSeparatorsInsideCountAsOne) {
  EXPECT_EQ(ParseKeyPath(u"\\Software\\\\\\Foo\\\\Bar")->Names, (TNames{u"Software", u"Foo", u"Bar"}));
}

TEST(ParseKeyPath, ATrailingSeparatorIsIgnored) {
  EXPECT_EQ(ParseKeyPath(u"\\Software\\")->Names, (TNames{u"Software"}));
  EXPECT_EQ(ParseKeyPath(u"Foo\\\\")->Names, (TNames{u"Foo"}));
}

TEST(ParseKeyPath, TwoLeadingSeparatorsOpenNothing) {
  EXPECT_FALSE(ParseKeyPath(u"\\\\Software"));
  EXPECT_FALSE(ParseKeyPath(u"\\\\"));
}

TEST(ParseKeyPath, TheEmptyPathAndTheSeparatorAloneNameNoKeyBelow) {
  EXPECT_TRUE(ParseKeyPath(u"")->Names.empty());
  EXPECT_FALSE(ParseKeyPath(u"")->FromRoot);
  EXPECT_TRUE(ParseKeyPath(u"\\")->Names.empty());
  EXPECT_TRUE(ParseKeyPath(u"\\")->FromRoot);
}

TEST(KeyPath, HasOneSeparatorBeforeEachName) {
  EXPECT_EQ(TKeyPath::Parse(kHkeyUsers, u"\\Software\\\\Foo\\")->Path(), u"\\Software\\Foo");
  EXPECT_EQ(TKeyPath::Parse(kHkeyUsers, u"Software\\Foo")->Path(), u"\\Software\\Foo");
  EXPECT_EQ(TKeyPath::Parse(kHkeyUsers, u"Software")->RootKey(), kHkeyUsers);
}

TEST(KeyPath, OfAPathThatOpensNoKeyThereIsNone) {
  EXPECT_FALSE(TKeyPath::Parse(kHkeyUsers, u"\\\\Software"));
}

TEST(KeyPath, TakesAnUnknownRootForTheCurrentUser) {
  EXPECT_EQ(TKeyPath::Parse(kNoRootKey, u"\\Software")->RootKey(), kHkeyCurrentUser);
}

TEST(KeyPath, OfARootHasSubKeysToo) {
  const TKeyPath root = *TKeyPath::Parse(kHkeyUsers, u"");
  EXPECT_TRUE(root.IsRoot());
  EXPECT_EQ(root.Path(), u"\\");
  EXPECT_EQ(root.SubKey(u"Software").Path(), u"\\Software");
  EXPECT_EQ(root.SubKey(u"Software").SubKey(u"Foo").Path(), u"\\Software\\Foo");
  EXPECT_FALSE(root.SubKey(u"Software").IsRoot());
}

TEST(KeyPath, ComparesWithoutRegardToLetterCase) {
  const auto comparable = [](TRootKey rootKey, TextView path) {
    return TKeyPath::Parse(rootKey, path)->Comparable();
  };
  EXPECT_EQ(comparable(kHkeyUsers, u"\\Software\\Foo"), comparable(kHkeyUsers, u"software\\\\FOO\\"));
  EXPECT_NE(comparable(kHkeyUsers, u"\\Software\\Foo"), comparable(kHkeyCurrentUser, u"\\Software\\Foo"));
  EXPECT_NE(comparable(kHkeyUsers, u"\\Software\\Foo"), comparable(kHkeyUsers, u"\\Software\\Fo\\o"));
}

}  // namespace

}  // namespace corvalt
