#include <gtest/gtest.h>

#include "platform/memory/memoryrawregistry.h"
#include "platform/memory/memorysecurity.h"
#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

class MemoryRegistry : public ::testing::Test {
 protected:
  TKeyPlace PlaceOf(TRootKey rootKey, TextView keyPath) {
    TKeyPlace place;
    EXPECT_EQ(m_raw.FindKey(rootKey, keyPath, place), TRawResult::Done);
    return place;
  }
  TKeyPlace PlaceOfValue(TextView keyPath, TextView name) {
    TKeyPlace place;
    EXPECT_EQ(m_raw.FindValue(kHkeyClassesRoot, keyPath, name, place), TRawResult::Done);
    return place;
  }
  TKeyAttributes AttributesOf(TRootKey rootKey, TextView keyPath) {
    TKeyAttributes attributes;
    EXPECT_EQ(m_raw.ReadAttributes(rootKey, keyPath, attributes), TRawResult::Done);
    return attributes;
  }

  TMemoryRegistry m_registry;
  TMemoryRawRegistry m_raw{m_registry};
};

const TKeyCheck kEveryKey = [](TextView, const TRawKey&) { return true; };
const TValueCheck kEveryValue = [](const TRawValue&) { return true; };

constexpr TextView kUserTxt = u"HKEY_CURRENT_USER\\Software\\Classes\\.txt";
constexpr TextView kMachineTxt = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.txt";

// "HKEY_CLASSES_ROOT Key" and "Merged View of HKEY_CLASSES_ROOT", learn.microsoft.com.

TEST_F(MemoryRegistry, TheClassesShowTheUsersOverTheMachines) {
  m_registry.Set(kUserTxt, u"Both", u"user");
  m_registry.Set(kMachineTxt, u"both", u"machine");
  m_registry.Set(kMachineTxt, u"Machine", u"machine");
  m_registry.AddKey(Text(kUserTxt) + u"\\User");
  m_registry.AddKey(Text(kMachineTxt) + u"\\Machine");
  TRawKey key;
  ASSERT_EQ(m_raw.ReadKey(kHkeyClassesRoot, u"\\.txt", key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, (std::vector<Text>{u"Machine", u"User"}));
  ASSERT_EQ(key.Values.size(), 2u);
  EXPECT_EQ(key.Values[0], (TRawValue{u"Both", kRegSz, StringBytes(u"user")}));
  EXPECT_EQ(key.Values[1].Name, u"Machine");
}

TEST_F(MemoryRegistry, AClassIsFoundInTheHiveThatHoldsIt) {
  m_registry.AddKey(kUserTxt);
  m_registry.AddKey(kMachineTxt);
  m_registry.AddKey(u"HKEY_CLASSES_ROOT\\.doc");
  EXPECT_EQ(PlaceOf(kHkeyClassesRoot, u"\\.TXT"),
            (TKeyPlace{kHkeyCurrentUser, u"\\Software\\Classes\\.txt"}));
  EXPECT_EQ(PlaceOf(kHkeyClassesRoot, u"\\.doc"),
            (TKeyPlace{kHkeyLocalMachine, u"\\SOFTWARE\\Classes\\.doc"}));
  TKeyPlace place;
  EXPECT_EQ(m_raw.FindKey(kHkeyClassesRoot, u"\\", place), TRawResult::Failed);
}

TEST_F(MemoryRegistry, AValueOfAClassIsFoundInTheHiveThatHoldsIt) {
  m_registry.Set(kUserTxt, u"User", u"x");
  m_registry.Set(kMachineTxt, u"Machine", u"x");
  EXPECT_EQ(PlaceOfValue(u"\\.txt", u"user").RootKey, kHkeyCurrentUser);
  EXPECT_EQ(PlaceOfValue(u"\\.txt", u"machine").RootKey, kHkeyLocalMachine);
}

TEST_F(MemoryRegistry, AValueIsWrittenToTheUsersClassAndANewKeyToTheMachines) {
  m_registry.AddKey(kUserTxt);
  m_registry.AddKey(kMachineTxt);
  EXPECT_EQ(m_raw.WriteValue(kHkeyClassesRoot, u"\\.txt", {u"v", kRegSz, {}}), TRawResult::Done);
  EXPECT_EQ(m_raw.CreateKey(kHkeyClassesRoot, u"\\.txt\\New"), TRawResult::Done);
  EXPECT_TRUE(m_registry.HasValue(kUserTxt, u"v"));
  EXPECT_FALSE(m_registry.HasValue(kMachineTxt, u"v"));
  EXPECT_FALSE(m_registry.HasKey(Text(kUserTxt) + u"\\New"));
  EXPECT_TRUE(m_registry.HasKey(Text(kMachineTxt) + u"\\New"));
}

TEST_F(MemoryRegistry, DeletingAClassLeavesTheMachinesUnderTheUsers) {
  m_registry.Set(kUserTxt, u"v", u"user");
  m_registry.Set(kMachineTxt, u"v", u"machine");
  m_registry.AddKey(Text(kMachineTxt) + u"\\shell");
  EXPECT_EQ(m_raw.DeleteKey(kHkeyClassesRoot, u"\\.txt"), TRawResult::Done);
  EXPECT_FALSE(m_registry.HasKey(kUserTxt));
  EXPECT_TRUE(m_registry.HasKey(Text(kMachineTxt) + u"\\shell"));
}

TEST_F(MemoryRegistry, AVolatileKeyTakesOnlyVolatileSubKeys) {
  // RegCreateKeyEx, learn.microsoft.com: ERROR_CHILD_MUST_BE_VOLATILE.
  m_registry.MakeVolatile(u"HKEY_CURRENT_USER\\Volatile");
  bool isNew = true;
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Volatile\\Sub"), TRawResult::MustBeVolatile);
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Volatile\\Sub", {u"", true}, isNew), TRawResult::Done);
  EXPECT_TRUE(isNew);
  EXPECT_EQ(AttributesOf(kHkeyCurrentUser, u"\\Volatile\\Sub").IsVolatile, true);
}

TEST_F(MemoryRegistry, MissingParentsAreVolatileOnlyBelowAVolatileKey) {
  m_registry.MakeVolatile(u"HKEY_CURRENT_USER\\Volatile");
  bool isNew = false;
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Volatile\\Parent\\Sub"), TRawResult::MustBeVolatile);
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Volatile\\Parent\\Sub", {u"Class", true}, isNew),
            TRawResult::Done);
  EXPECT_EQ(AttributesOf(kHkeyCurrentUser, u"\\Volatile\\Parent").IsVolatile, true);
  EXPECT_EQ(AttributesOf(kHkeyCurrentUser, u"\\Volatile\\Parent").ClassName, u"");
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Lasting\\Sub", {u"", true}, isNew), TRawResult::Done);
  EXPECT_EQ(AttributesOf(kHkeyCurrentUser, u"\\Lasting").IsVolatile, false);
}

TEST_F(MemoryRegistry, ANewKeyInheritsAndHasNoPermissionsOfItsOwn) {
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Key\\Sub");
  EXPECT_FALSE(AttributesOf(kHkeyCurrentUser, u"\\Key").HasOwnSecurity);
  EXPECT_FALSE(AttributesOf(kHkeyCurrentUser, u"\\Key\\Sub").HasOwnSecurity);
}

TEST_F(MemoryRegistry, PermissionsOfItsOwnAreSetAndReadBack) {
  const TBytes own = SecurityBytes({.Owner = u"S-1-5-18", .Access = {{u"S-1-5-18"}}, .IsProtected = true});
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Key");
  TAttributesLost lost;
  ASSERT_EQ(m_raw.WriteAttributes(kHkeyCurrentUser, u"\\Key", {std::nullopt, own}, lost), TRawResult::Done);
  EXPECT_FALSE(lost.Any());
  const TKeyAttributes attributes = AttributesOf(kHkeyCurrentUser, u"\\Key");
  EXPECT_EQ(attributes.Security, own);
  EXPECT_TRUE(attributes.HasOwnSecurity);
}

TEST_F(MemoryRegistry, WhatCanNotBeSetIsTold) {
  const TBytes own = SecurityBytes({.Owner = u"S-1-5-18", .Access = {{u"S-1-5-18"}}});
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Key");
  m_registry.SetsOwners = false;
  m_registry.SetsTimes = false;
  TAttributesLost lost;
  ASSERT_EQ(m_raw.WriteAttributes(kHkeyCurrentUser, u"\\Key", {std::uint64_t{1}, own}, lost),
            TRawResult::Done);
  EXPECT_TRUE(lost.Security);
  EXPECT_TRUE(lost.LastWrite);
}

TEST_F(MemoryRegistry, AKeyThatMovedIsNotDeleted) {
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Set1\\Key");
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Set2\\Key");
  m_registry.MakeLink(u"HKEY_CURRENT_USER\\Current", u"HKEY_CURRENT_USER\\Set1");
  EXPECT_EQ(PlaceOf(kHkeyCurrentUser, u"\\Current\\Key"), (TKeyPlace{kHkeyCurrentUser, u"\\Set1\\Key"}));
  EXPECT_EQ(m_raw.DeleteKeyAt({kHkeyCurrentUser, u"\\Current\\Key"}, kEveryKey), TRawResult::Refused);
  EXPECT_EQ(m_raw.DeleteValueAt({kHkeyCurrentUser, u"\\Current\\Key"}, u"v", kEveryValue),
            TRawResult::Refused);
  EXPECT_TRUE(m_registry.HasKey(u"HKEY_CURRENT_USER\\Set1\\Key"));
}

TEST_F(MemoryRegistry, AKeyThatRefusesSubKeysIsTold) {
  m_registry.LetUse(u"HKEY_CURRENT_USER\\Key", TMemoryRights::NoSubKeys);
  EXPECT_EQ(m_raw.MayCreateSubKeys(kHkeyCurrentUser, u"\\Key"), TRawResult::Denied);
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Key\\Sub"), TRawResult::Denied);
  EXPECT_EQ(m_raw.DeleteKey(kHkeyCurrentUser, u"\\Key"), TRawResult::Done);
}

TEST_F(MemoryRegistry, TheOtherViewIsThereOnlyWhereTheSystemHasIt) {
  TMemoryRegistry other;
  other.AddKey(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Key");
  EXPECT_EQ(m_raw.OpenView(TRegistryView::Bits32), nullptr);
  m_registry.OtherView = &other;
  const auto view = m_raw.OpenView(TRegistryView::Bits32);
  ASSERT_NE(view, nullptr);
  TRawKey key;
  EXPECT_EQ(view->ReadKey(kHkeyLocalMachine, u"\\SOFTWARE\\Key", key), TRawResult::Done);
  EXPECT_EQ(m_raw.ReadKey(kHkeyLocalMachine, u"\\SOFTWARE\\Key", key), TRawResult::Missing);
}

TEST_F(MemoryRegistry, BothRootsHoldClasses) {
  EXPECT_TRUE(m_registry.HasKey(u"HKEY_CURRENT_USER\\Software\\Classes"));
  EXPECT_TRUE(m_registry.HasKey(u"HKEY_LOCAL_MACHINE\\Software\\Classes"));
}

}  // namespace

}  // namespace corvalt
