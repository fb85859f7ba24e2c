// Where keys lie, what they have beside values, and the deletion of what was saved.
#include <algorithm>

#include "platform/memory/memorysecurity.h"
#include "system/securitydescriptor.h"
#include "tests/contract/registrycontract.h"

namespace corvalt {

namespace {

class RawKeysContract : public TRegistryContract {
 protected:
  TKeyPlace PlaceOf(TextView name) {
    TKeyPlace place;
    EXPECT_EQ(m_system.Raw.FindKey(kScratchRoot, At(name), place), TRawResult::Done) << EncodeUtf8(name);
    m_system.Raw.ReleaseKeys();
    return place;
  }
  TKeyAttributes AttributesOf(TextView name) {
    TKeyAttributes attributes;
    EXPECT_EQ(m_system.Raw.ReadAttributes(kScratchRoot, At(name), attributes), TRawResult::Done);
    m_system.Raw.ReleaseKeys();
    return attributes;
  }
  bool Exists(TextView name) {
    return OpenStore()->KeyExists(At(name));
  }
};

const TKeyCheck kEveryKey = [](TextView, const TRawKey&) { return true; };

TEST_F(RawKeysContract, AValueComesBackUnderItsStoredName) {
  Put(u"Key", {u"MixedCase", kRegSz, {}});
  TRawValue value;
  ASSERT_EQ(m_system.Raw.ReadValue(kScratchRoot, At(u"Key"), u"mixedCASE", value), TRawResult::Done);
  EXPECT_EQ(value.Name, u"MixedCase");
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Key"), u"mixedcase"), TRawResult::Done);
  Put(u"Key", {u"MIXEDCASE", kRegSz, {}});
  ASSERT_EQ(m_system.Raw.ReadValue(kScratchRoot, At(u"Key"), u"mixedCASE", value), TRawResult::Done);
  EXPECT_EQ(value.Name, u"MIXEDCASE");
}

TEST_F(RawKeysContract, AKeyReadsWithItsStoredNames) {
  Put(u"Key", {u"MixedCase", kRegSz, {}});
  Create(u"Key\\SubKey");
  TRawKey key;
  ASSERT_EQ(m_system.Raw.ReadKey(kScratchRoot, At(u"KEY"), key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, std::vector<Text>{u"SubKey"});
  ASSERT_EQ(key.Values.size(), 1u);
  EXPECT_EQ(key.Values[0].Name, u"MixedCase");
}

TEST_F(RawKeysContract, APlaceIsSpelledAsItIsStored) {
  Create(u"Clsid\\SubKey");
  EXPECT_EQ(PlaceOf(u"CLSID\\subkey"), (TKeyPlace{kScratchRoot, At(u"Clsid\\SubKey")}));
}

TEST_F(RawKeysContract, APlaceHasTheLinksAboveItFollowed) {
  Create(u"Target\\Sub");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  EXPECT_EQ(PlaceOf(u"Link\\Sub"), (TKeyPlace{kScratchRoot, At(u"Target\\Sub")}));
  TKeyPlace place;
  EXPECT_EQ(m_system.Raw.FindKey(kScratchRoot, At(u"Link"), place), TRawResult::Link);
}

TEST_F(RawKeysContract, AMissingKeyAndARootHaveNoPlace) {
  TKeyPlace place = {kHkeyUsers, u"\\before"};
  EXPECT_EQ(m_system.Raw.FindKey(kScratchRoot, At(u"Missing"), place), TRawResult::Missing);
  EXPECT_EQ(m_system.Raw.FindKey(kHkeyClassesRoot, u"\\", place), TRawResult::Failed);
  EXPECT_EQ(m_system.Raw.FindValue(kScratchRoot, At(u""), u"missing", place), TRawResult::Missing);
  EXPECT_EQ(place, (TKeyPlace{kHkeyUsers, u"\\before"}));
}

TEST_F(RawKeysContract, AValueOfARootKeyLiesThereAndIsDeletedThere) {
  const TRawValue value = {
      m_subject->ScratchKey().substr(m_subject->ScratchKey().rfind(u'\\') + 1), kRegSz, {}};
  ASSERT_EQ(m_system.Raw.WriteValue(kScratchRoot, u"\\", value), TRawResult::Done);
  TKeyPlace place;
  EXPECT_EQ(m_system.Raw.FindValue(kScratchRoot, u"\\", value.Name, place), TRawResult::Done);
  EXPECT_EQ(place, (TKeyPlace{kScratchRoot, u"\\"}));
  const TValueCheck isIt = [&value](const TRawValue& met) { return met == value; };
  EXPECT_EQ(m_system.Raw.DeleteValueAt(place, value.Name, isIt), TRawResult::Done);
  TRawValue gone;
  EXPECT_EQ(m_system.Raw.ReadValue(kScratchRoot, u"\\", value.Name, gone), TRawResult::Missing);
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(place, kEveryKey), TRawResult::Failed);
}

// HKEY_CLASSES_ROOT shows two keys.
TEST_F(RawKeysContract, AValueOfTheMergedRootLiesNowhere) {
  TRawKey key;
  ASSERT_EQ(m_system.Raw.ReadKey(kHkeyClassesRoot, u"\\", key), TRawResult::Done);
  TKeyPlace place;
  for (const TRawValue& value : key.Values)
    EXPECT_EQ(m_system.Raw.FindValue(kHkeyClassesRoot, u"\\", value.Name, place), TRawResult::Failed);
  EXPECT_NE(m_system.Raw.DeleteValueAt({kHkeyClassesRoot, u"\\"}, u"", [](const TRawValue&) { return true; }),
            TRawResult::Done);
}

TEST_F(RawKeysContract, AClassOfTheMachineIsPlacedInItsHive) {
  const Text name =
      u"\\CorvaltContract." + m_subject->ScratchKey().substr(m_subject->ScratchKey().rfind(u'\\') + 1);
  ASSERT_EQ(m_system.Raw.WriteValue(kHkeyLocalMachine, u"\\Software\\Classes" + name, {u"v", kRegSz, {}}),
            TRawResult::Done);
  TKeyPlace key;
  TKeyPlace value;
  EXPECT_EQ(m_system.Raw.FindKey(kHkeyClassesRoot, name, key), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.FindValue(kHkeyClassesRoot, name, u"v", value), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.DeleteKey(kHkeyClassesRoot, name), TRawResult::Done);
  EXPECT_TRUE(SamePlace(key, {kHkeyLocalMachine, u"\\Software\\Classes" + name}));
  EXPECT_TRUE(SamePlace(value, key));
  TRawKey gone;
  EXPECT_EQ(m_system.Raw.ReadKey(kHkeyLocalMachine, u"\\Software\\Classes" + name, gone),
            TRawResult::Missing);
}

TEST_F(RawKeysContract, ANewKeyHasItsClassAndTellsThatItIsNew) {
  bool isNew = false;
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"A\\Key"), {u"Class", false}, isNew), TRawResult::Done);
  EXPECT_TRUE(isNew);
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"A\\Key"), {u"Other", false}, isNew), TRawResult::Done);
  EXPECT_FALSE(isNew);
  EXPECT_EQ(AttributesOf(u"A\\Key").ClassName, u"Class");
  EXPECT_EQ(AttributesOf(u"A").ClassName, u"");
}

TEST_F(RawKeysContract, AVolatileKeyTellsItWhereTheSystemDoes) {
  bool isNew = false;
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile"), {u"", true}, isNew), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile\\Sub"), {u"", true}, isNew), TRawResult::Done);
  EXPECT_EQ(AttributesOf(u"Volatile").IsVolatile.value_or(true), true);
  Create(u"Key");
  EXPECT_EQ(AttributesOf(u"Key").IsVolatile.value_or(false), false);
}

// RegCreateKeyEx, learn.microsoft.com: a volatile key has only volatile subkeys.
TEST_F(RawKeysContract, AVolatileKeyTakesNoLastingSubKey) {
  bool isNew = false;
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile"), {u"", true}, isNew), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile\\Sub")), TRawResult::MustBeVolatile);
  EXPECT_FALSE(Exists(u"Volatile\\Sub"));
}

TEST_F(RawKeysContract, MissingParentsBelowAVolatileKeyAreVolatileToo) {
  bool isNew = false;
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile"), {u"", true}, isNew), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile\\A\\B\\Sub"), {u"Class", false}, isNew),
            TRawResult::MustBeVolatile);
  EXPECT_FALSE(Exists(u"Volatile\\A"));
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Volatile\\A\\B\\Sub"), {u"Class", true}, isNew),
            TRawResult::Done);
  EXPECT_TRUE(isNew);
  EXPECT_EQ(AttributesOf(u"Volatile\\A\\B").ClassName, u"");
  for (const TextView parent : {u"Volatile\\A\\Lasting", u"Volatile\\A\\B\\Lasting"})
    EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(parent)), TRawResult::MustBeVolatile);
}

TEST_F(RawKeysContract, MissingParentsOfAVolatileKeyLastWhereTheyCan) {
  bool isNew = false;
  ASSERT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Lasting\\Volatile"), {u"", true}, isNew),
            TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Lasting\\Sub")), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Lasting\\Volatile\\Sub")), TRawResult::MustBeVolatile);
}

TEST_F(RawKeysContract, AnOrdinaryKeyHasNoPermissionsOfItsOwn) {
  Create(u"Key\\Sub");
  const TKeyAttributes attributes = AttributesOf(u"Key\\Sub");
  EXPECT_TRUE(ParseSecurity(attributes.Security));
  EXPECT_FALSE(attributes.HasOwnSecurity);
  EXPECT_NE(attributes.LastWrite, 0u);
}

TEST_F(RawKeysContract, PermissionsAreSetAndReadBack) {
  Create(u"Key\\Sub");
  const TBytes before = AttributesOf(u"Key\\Sub").Security;
  ASSERT_TRUE(ParseSecurity(before));
  // The user keeps every right, so that the key can be removed again; the entry is the key's own.
  const TBytes list = SecurityBytes({.Access = {{u"S-1-1-0"}}, .IsProtected = true});
  TBytes wanted = list;
  // Neither owner nor group: a user may not set every one.
  std::fill(wanted.begin() + 4, wanted.begin() + 12, std::uint8_t{0});
  TAttributesLost lost;
  ASSERT_EQ(m_system.Raw.WriteAttributes(kScratchRoot, At(u"Key\\Sub"), {std::nullopt, wanted}, lost),
            TRawResult::Done);
  EXPECT_FALSE(lost.Security);
  const TKeyAttributes after = AttributesOf(u"Key\\Sub");
  EXPECT_TRUE(after.HasOwnSecurity);
  EXPECT_TRUE(HasSecurity(after.Security, wanted));
}

TEST_F(RawKeysContract, ADamagedDescriptorIsNotSetAndTold) {
  Create(u"Key");
  const TBytes before = AttributesOf(u"Key").Security;
  TAttributesLost lost;
  ASSERT_EQ(m_system.Raw.WriteAttributes(kScratchRoot, At(u"Key"), {std::nullopt, TBytes(40, 0xFF)}, lost),
            TRawResult::Done);
  EXPECT_TRUE(lost.Security);
  EXPECT_EQ(AttributesOf(u"Key").Security, before);
}

// Wine's routine succeeds and sets nothing.
TEST_F(RawKeysContract, WhetherTheTimeWasSetIsTold) {
  constexpr std::uint64_t kWanted = 130000000000000000;
  Create(u"Key");
  TAttributesLost lost;
  ASSERT_EQ(m_system.Raw.WriteAttributes(kScratchRoot, At(u"Key"), {kWanted, {}}, lost), TRawResult::Done);
  EXPECT_EQ(lost.LastWrite, AttributesOf(u"Key").LastWrite != kWanted);
}

TEST_F(RawKeysContract, AttributesOfALinkAreNeitherReadNorSet) {
  Create(u"Target");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  TKeyAttributes attributes;
  TAttributesLost lost;
  EXPECT_EQ(m_system.Raw.ReadAttributes(kScratchRoot, At(u"Link"), attributes), TRawResult::Link);
  EXPECT_EQ(m_system.Raw.WriteAttributes(kScratchRoot, At(u"Link"), {std::uint64_t{1}, {}}, lost),
            TRawResult::Link);
}

TEST_F(RawKeysContract, SubKeysMayBeCreatedWhereALinkLeads) {
  Create(u"Target");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  EXPECT_EQ(m_system.Raw.MayCreateSubKeys(kScratchRoot, At(u"Link")), TRawResult::Done);
}

TEST_F(RawKeysContract, SubKeysMayBeCreatedWhereTheUserHasTheRight) {
  Create(u"Key");
  Create(u"Denied");
  m_subject->Deny(At(u"Denied"));
  EXPECT_EQ(m_system.Raw.MayCreateSubKeys(kScratchRoot, At(u"Key")), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.MayCreateSubKeys(kScratchRoot, At(u"Denied")), TRawResult::Denied);
  EXPECT_EQ(m_system.Raw.MayCreateSubKeys(kScratchRoot, At(u"Missing")), TRawResult::Missing);
}

TEST_F(RawKeysContract, OnlyAnExistingKeyWithEveryRightOpensWithFullAccess) {
  Create(u"Key");
  Create(u"Denied");
  m_subject->Deny(At(u"Denied"));
  const auto opens = [this](TextView name) {
    return m_system.Raw.OpensWithFullAccess(kScratchRoot, TextView(At(name)).substr(1));
  };
  EXPECT_TRUE(opens(u"Key"));
  EXPECT_FALSE(opens(u"Missing"));
  EXPECT_FALSE(opens(u"Denied"));
  EXPECT_FALSE(opens(TextView(u"Key\0", 4)));
  EXPECT_FALSE(m_system.Raw.OpensWithFullAccess(kScratchRoot, At(u"Key")));
}

TEST_F(RawKeysContract, AKeyWhoseNameIsInNoCodePageOpensWithFullAccess) {
  Create(u"\u65E5\u672C");
  EXPECT_TRUE(m_system.Raw.OpensWithFullAccess(kScratchRoot, TextView(At(u"\u65E5\u672C")).substr(1)));
}

TEST_F(RawKeysContract, ATreeIsDeletedAfterEveryKeyOfItWasAgreedTo) {
  Put(u"Key", {u"v", kRegSz, {}});
  Put(u"Key\\A\\Leaf", {u"leaf", kRegSz, {}});
  Create(u"Key\\B");
  std::vector<Text> met;
  const TKeyCheck check = [&met](TextView pathBelow, const TRawKey& key) {
    met.push_back(Text(pathBelow) + u"|" + DecimalText(static_cast<std::int64_t>(key.Values.size())));
    return true;
  };
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(PlaceOf(u"Key"), check), TRawResult::Done);
  // Each is looked at once more when it is deleted.
  ASSERT_EQ(met.size(), 8U);
  std::sort(met.begin(), met.begin() + 4);
  std::sort(met.begin() + 4, met.end());
  const std::vector<Text> expected = {u"\\A\\Leaf|1", u"\\A|0", u"\\B|0", u"|1"};
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), met.begin()));
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), met.begin() + 4));
  EXPECT_FALSE(Exists(u"Key"));
}

TEST_F(RawKeysContract, NothingOfATreeIsDeletedWhenOneKeyIsRefused) {
  Put(u"Key\\A\\Leaf", {u"leaf", kRegSz, {}});
  Create(u"Key\\B");
  const TKeyCheck check = [](TextView pathBelow, const TRawKey&) { return pathBelow != u"\\A\\Leaf"; };
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(PlaceOf(u"Key"), check), TRawResult::Refused);
  EXPECT_TRUE(Exists(u"Key\\A\\Leaf"));
  EXPECT_TRUE(Exists(u"Key\\B"));
}

// The longer a tree takes, the likelier somebody writes into it.
TEST_F(RawKeysContract, AKeyThatChangesAfterItWasAgreedToStays) {
  Put(u"Key\\A", {u"old", kRegSz, {}});
  Put(u"Key\\B", {u"old", kRegSz, {}});
  const TKeyPlace place = PlaceOf(u"Key");
  int met = 0;
  const TKeyCheck check = [&](TextView, const TRawKey& key) {
    // The third key is the last one that is looked at before the first is deleted.
    if (++met == 3) {
      EXPECT_TRUE(OpenStoreAt(u"Key\\A")->WriteString(u"new", u"x"));
    }
    return std::ranges::none_of(key.Values, [](const TRawValue& value) { return value.Name == u"new"; });
  };
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(place, check), TRawResult::InPart);
  EXPECT_TRUE(OpenStoreAt(u"Key\\A")->ValueExists(u"new"));
  EXPECT_TRUE(OpenStoreAt(u"Key\\A")->ValueExists(u"old"));
  EXPECT_FALSE(Exists(u"Key\\B"));
}

TEST_F(RawKeysContract, AKeyThatGoesWhileItsTreeIsDeletedKeepsNothingFromTheDeletion) {
  Create(u"Key\\A");
  Create(u"Key\\B");
  const TKeyPlace place = PlaceOf(u"Key");
  int met = 0;
  const TKeyCheck check = [&](TextView, const TRawKey&) {
    if (++met == 3) {
      const std::unique_ptr<RegistryStore> store = OpenStore();
      EXPECT_TRUE(store->DeleteKey(At(u"Key\\A")));
    }
    return true;
  };
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(place, check), TRawResult::Done);
  EXPECT_FALSE(Exists(u"Key"));
}

TEST_F(RawKeysContract, AKeyReachedThroughALinkIsDeletedOnlyAtItsRealPlace) {
  Create(u"Target\\Sub");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  EXPECT_EQ(m_system.Raw.DeleteKeyAt({kScratchRoot, At(u"Link\\Sub")}, kEveryKey), TRawResult::Refused);
  EXPECT_EQ(m_system.Raw.DeleteKeyAt({kScratchRoot, At(u"Link")}, kEveryKey), TRawResult::Link);
  EXPECT_TRUE(Exists(u"Target\\Sub"));
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(PlaceOf(u"Link\\Sub"), kEveryKey), TRawResult::Done);
  EXPECT_FALSE(Exists(u"Target\\Sub"));
}

// What is made a link between the look at a tree and its deletion leads nowhere: the handle is the key's.
TEST_F(RawKeysContract, ALinkPlantedWhileATreeIsLookedAtIsNotFollowed) {
  Create(u"Target\\Sub");
  Create(u"Key\\Sub");
  bool planted = false;
  const TKeyCheck check = [&](TextView pathBelow, const TRawKey&) {
    if (pathBelow == u"\\Sub" && !planted) {
      planted = true;
      OpenStoreAt(u"Key\\Sub\\Deeper");
      m_subject->MakeLink(At(u"Key\\Sub\\Deeper\\Link"), At(u"Target"));
    }
    return true;
  };
  EXPECT_NE(m_system.Raw.DeleteKeyAt(PlaceOf(u"Key"), check), TRawResult::Done);
  EXPECT_TRUE(Exists(u"Target\\Sub"));
  EXPECT_TRUE(Exists(u"Key\\Sub\\Deeper"));
}

TEST_F(RawKeysContract, ASubKeyThatHasGoneSinceItWasListedKeepsNothingFromTheDeletion) {
  Create(u"Key\\A");
  Create(u"Key\\B");
  const TKeyCheck check = [&](TextView pathBelow, const TRawKey&) {
    if (pathBelow.empty()) {
      const std::unique_ptr<RegistryStore> store = m_system.Registry.CreateStore(TRegistryAccess::Full);
      store->SetRootKey(kScratchRoot);
      store->DeleteKey(At(u"Key\\A"));
    }
    return true;
  };
  EXPECT_EQ(m_system.Raw.DeleteKeyAt(PlaceOf(u"Key"), check), TRawResult::Done);
  EXPECT_FALSE(Exists(u"Key"));
}

TEST_F(RawKeysContract, AValueIsDeletedOnlyAsItWasAgreedTo) {
  Put(u"Key", {u"Value", kRegSz, UnitBytes(u"x")});
  const TKeyPlace place = PlaceOf(u"Key");
  TRawValue met;
  const auto check = [&met](bool agreed) {
    return [&met, agreed](const TRawValue& value) {
      met = value;
      return agreed;
    };
  };
  EXPECT_EQ(m_system.Raw.DeleteValueAt(place, u"VALUE", check(false)), TRawResult::Refused);
  EXPECT_EQ(met, (TRawValue{u"Value", kRegSz, UnitBytes(u"x")}));
  EXPECT_TRUE(OpenStoreAt(u"Key")->ValueExists(u"value"));
  EXPECT_EQ(m_system.Raw.DeleteValueAt(place, u"VALUE", check(true)), TRawResult::Done);
  EXPECT_FALSE(OpenStoreAt(u"Key")->ValueExists(u"value"));
  EXPECT_EQ(m_system.Raw.DeleteValueAt(place, u"VALUE", check(true)), TRawResult::Missing);
}

TEST_F(RawKeysContract, TheOwnViewIsAlwaysThere) {
  Create(u"Key");
  const auto view = m_system.Raw.OpenView(m_system.Raw.View());
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->View(), m_system.Raw.View());
  TRawKey key;
  EXPECT_EQ(view->ReadKey(kScratchRoot, At(u"Key"), key), TRawResult::Done);
}

}  // namespace

}  // namespace corvalt
