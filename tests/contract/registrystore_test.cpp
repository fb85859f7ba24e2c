#include <algorithm>

#include "base/lettercase.h"
#include "base/limits.h"
#include "tests/contract/registrycontract.h"

namespace corvalt {

namespace {

using RegistryStoreContract = TRegistryContract;
using TNames = std::vector<Text>;

TEST_F(RegistryStoreContract, NamesCompareWithoutRegardToCaseAndKeepTheirs) {
  const auto store = OpenStoreAt(u"Größe Ärger");
  EXPECT_TRUE(store->WriteString(u"Ünïcode Name", u"text"));
  EXPECT_TRUE(store->WriteString(u"ÜNÏCODE NAME", u"new"));
  EXPECT_EQ(store->ReadString(u"üNïcODE nAME"), u"new");
  EXPECT_EQ(store->GetValueNames(), TNames{u"Ünïcode Name"});
  EXPECT_TRUE(store->OpenKey(m_subject->ScratchKey(), false));
  EXPECT_TRUE(store->KeyExists(u"GRÖßE äRGER"));
  EXPECT_EQ(store->GetKeyNames(), TNames{u"Größe Ärger"});
}

TEST_F(RegistryStoreContract, NamesComeInThePlatformsOrder) {
  const TNames created = {u"b", u"_", u"A", u"Zeta", u"a0", u"Éa"};
  const auto store = OpenStoreAt(u"Key");
  for (const Text& name : created) {
    EXPECT_TRUE(store->WriteInteger(name, 1));
    Create(u"Key\\" + name);
  }
  TNames byUpperCase = created;
  std::sort(byUpperCase.begin(), byUpperCase.end(), TLessIgnoringCase());
  TNames byLowerCase = created;
  std::sort(byLowerCase.begin(), byLowerCase.end(),
            [](const Text& a, const Text& b) { return LowerCase(a) < LowerCase(b); });
  const bool isWine = m_subject->Platform() == TPlatform::Wine;
  EXPECT_EQ(store->GetKeyNames(), isWine ? byLowerCase : byUpperCase);
  EXPECT_EQ(store->GetValueNames(), isWine ? byLowerCase : created);
}

TEST_F(RegistryStoreContract, TheEmptyNameIsTheDefaultValue) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_FALSE(store->ValueExists(u""));
  EXPECT_TRUE(store->WriteString(u"", u"default"));
  EXPECT_TRUE(store->ValueExists(u""));
  EXPECT_EQ(store->ReadString(u""), u"default");
  EXPECT_EQ(store->GetValueNames(), TNames{u""});
  EXPECT_TRUE(store->DeleteValue(u""));
  EXPECT_FALSE(store->ValueExists(u""));
}

TEST_F(RegistryStoreContract, ANameOfOneNulIsTheDefaultValueToo) {
  const Text nul(1, u'\0');
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"", u"default"));
  EXPECT_TRUE(store->ValueExists(nul));
  EXPECT_EQ(store->ReadString(nul), u"default");
  EXPECT_TRUE(store->DeleteValue(nul));
  EXPECT_FALSE(store->ValueExists(u""));
}

// A cut name would mean another value, and a deletion the wrong one.
TEST_F(RegistryStoreContract, AnyOtherNameWithANulMeansNothing) {
  const Text name(u"a\0b", 3);
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"a", u"text"));
  EXPECT_FALSE(store->ValueExists(name));
  EXPECT_EQ(store->GetDataType(name), TDataType::Unknown);
  EXPECT_EQ(store->ReadString(name), u"");
  EXPECT_FALSE(store->WriteString(name, u"other"));
  EXPECT_FALSE(store->DeleteValue(name));
  EXPECT_EQ(store->ReadString(u"a"), u"text");
  Create(u"a");
  EXPECT_FALSE(store->KeyExists(At(name)));
  EXPECT_FALSE(store->DeleteKey(At(name)));
  EXPECT_TRUE(store->KeyExists(At(u"a")));
  EXPECT_FALSE(store->OpenKey(At(name), true));
}

TEST_F(RegistryStoreContract, EveryTypeAnswersItsDataType) {
  const struct {
    std::uint32_t Type;
    TDataType DataType;
  } cases[] = {
      {kRegNone, TDataType::Unknown},
      {kRegSz, TDataType::String},
      {kRegExpandSz, TDataType::ExpandString},
      {kRegBinary, TDataType::Binary},
      {kRegDword, TDataType::Integer},
      {kRegDwordBigEndian, TDataType::Unknown},
      {kRegLink, TDataType::Unknown},
      {kRegMultiSz, TDataType::Unknown},
      {8, TDataType::Unknown},
      {9, TDataType::Unknown},
      {10, TDataType::Unknown},
      {kRegQword, TDataType::Unknown},
      {0x12345678, TDataType::Unknown},
  };
  for (const auto& each : cases)
    Put(u"Key", {DecimalText(each.Type), each.Type, {1, 0, 0, 0}});
  const auto store = OpenStoreAt(u"Key");
  for (const auto& each : cases)
    EXPECT_EQ(store->GetDataType(DecimalText(each.Type)), each.DataType) << each.Type;
  EXPECT_EQ(store->GetDataType(u"missing"), TDataType::Unknown);
  EXPECT_EQ(store->GetValueNames().size(), std::size(cases));
  for (const auto& each : cases)
    EXPECT_EQ(store->GetDataType(DecimalText(each.Type)), each.DataType) << each.Type;
}

TEST_F(RegistryStoreContract, AReadOfTheWrongTypeAnswersNothing) {
  Put(u"Key", {u"binary", kRegBinary, UnitBytes(u"text")});
  Put(u"Key", {u"multi", kRegMultiSz, UnitBytes(Text(u"text\0\0", 6))});
  Put(u"Key", {u"big", kRegDwordBigEndian, {0, 0, 0, 1}});
  Put(u"Key", {u"three", kRegDword, {1, 2, 3}});
  Put(u"Key", {u"eight", kRegQword, {1, 0, 0, 0, 0, 0, 0, 0}});
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"string", u"1"));
  for (const TextView name : {u"binary", u"multi", u"big", u"three", u"eight", u"missing"}) {
    EXPECT_EQ(store->ReadString(name), u"");
    EXPECT_EQ(store->ReadInteger(name), 0);
    EXPECT_FALSE(store->ReadBool(name));
  }
  EXPECT_EQ(store->ReadInteger(u"string"), 0);
  EXPECT_FALSE(store->ReadBool(u"string"));
}

TEST_F(RegistryStoreContract, WhatIsWrittenIsRead) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"text", u"C:\\Täst"));
  EXPECT_TRUE(store->WriteString(u"empty", u""));
  EXPECT_TRUE(store->WriteInteger(u"negative", -2));
  EXPECT_TRUE(store->WriteBool(u"yes", true));
  EXPECT_TRUE(store->WriteBool(u"no", false));
  EXPECT_EQ(store->ReadString(u"text"), u"C:\\Täst");
  EXPECT_EQ(store->ReadString(u"empty"), u"");
  EXPECT_TRUE(store->ValueExists(u"empty"));
  EXPECT_EQ(store->ReadInteger(u"negative"), -2);
  EXPECT_TRUE(store->ReadBool(u"yes"));
  EXPECT_EQ(store->ReadInteger(u"yes"), 1);
  EXPECT_FALSE(store->ReadBool(u"no"));
  EXPECT_EQ(store->GetDataType(u"no"), TDataType::Integer);
}

TEST_F(RegistryStoreContract, ExpandableStringsAreReadUnexpanded) {
  Put(u"Key", {u"path", kRegExpandSz, UnitBytes(Text(u"%windir%\\x\0", 11))});
  EXPECT_EQ(OpenStoreAt(u"Key")->ReadString(u"path"), u"%windir%\\x");
}

TEST_F(RegistryStoreContract, StringsEndAtTheirFirstNulOrTheirLastWholeUnit) {
  TBytes odd = UnitBytes(u"odd");
  odd.push_back(0x41);
  Put(u"Key", {u"bare", kRegSz, UnitBytes(u"bare")});
  Put(u"Key", {u"several", kRegSz, UnitBytes(Text(u"one\0two\0\0", 9))});
  Put(u"Key", {u"odd", kRegSz, odd});
  Put(u"Key", {u"none", kRegSz, {}});
  Put(u"Key", {u"byte", kRegExpandSz, {0x41}});
  const auto store = OpenStoreAt(u"Key");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(store->ReadString(u"bare"), u"bare");
    EXPECT_EQ(store->ReadString(u"several"), u"one");
    EXPECT_EQ(store->ReadString(u"odd"), u"odd");
    EXPECT_EQ(store->ReadString(u"none"), u"");
    EXPECT_EQ(store->ReadString(u"byte"), u"");
    EXPECT_EQ(store->GetValueNames().size(), 5u);
  }
}

TEST_F(RegistryStoreContract, ValuesOverOneMebibyteAreReadWhole) {
  Text large(1500000, u'x');
  large.back() = u'y';
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"large", large));
  EXPECT_TRUE(store->WriteString(u"small", u"s"));
  EXPECT_TRUE(store->ReadString(u"large") == large);
  EXPECT_EQ(store->GetValueNames(), (TNames{u"large", u"small"}));
  EXPECT_EQ(store->GetDataType(u"large"), TDataType::String);
  EXPECT_TRUE(store->ReadString(u"large") == large);
  EXPECT_EQ(store->ReadString(u"small"), u"s");
}

TEST_F(RegistryStoreContract, NamesReachThePlatformsLimits) {
  const Text keyName(kLongestKeyName, u'k');
  const Text valueName(kLongestValueName, u'v');
  const auto store = OpenStoreAt(keyName);
  EXPECT_TRUE(store->WriteString(valueName, u"text"));
  EXPECT_TRUE(store->GetValueNames() == TNames{valueName});
  EXPECT_EQ(store->ReadString(valueName), u"text");
  EXPECT_FALSE(store->WriteString(valueName + u"v", u"text"));
  EXPECT_TRUE(store->OpenKey(m_subject->ScratchKey(), false));
  EXPECT_EQ(store->GetKeyNames(), TNames{keyName});
  EXPECT_FALSE(store->KeyExists(keyName + u"k"));
  EXPECT_FALSE(store->OpenKey(keyName + u"k", true));
}

TEST_F(RegistryStoreContract, IllFormedTextsPassUnchanged) {
  const Text highAlone = {u'a', 0xD800, u'b'};
  const Text swapped = {0xDC00, 0xD800};
  const auto store = OpenStoreAt(highAlone);
  EXPECT_TRUE(store->WriteString(swapped, highAlone));
  EXPECT_TRUE(store->WriteString(u"\uFFFF\uFFFE", swapped));
  EXPECT_EQ(store->ReadString(swapped), highAlone);
  EXPECT_EQ(store->ReadString(u"\uFFFF\uFFFE"), swapped);
  const TNames names = store->GetValueNames();
  EXPECT_NE(std::find(names.begin(), names.end(), swapped), names.end());
  EXPECT_EQ(store->ReadString(swapped), highAlone);
  EXPECT_TRUE(store->OpenKey(m_subject->ScratchKey(), false));
  EXPECT_EQ(store->GetKeyNames(), TNames{highAlone});
  EXPECT_TRUE(store->DeleteKey(highAlone));
  EXPECT_FALSE(store->HasSubKeys());
}

TEST_F(RegistryStoreContract, AMissingKeyLeavesNoKeyOpen) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteInteger(u"value", 1));
  EXPECT_FALSE(store->OpenKey(At(u"Missing"), false));
  EXPECT_FALSE(store->ValueExists(u"value"));
  EXPECT_TRUE(store->GetValueNames().empty());
  EXPECT_TRUE(store->GetKeyNames().empty());
  EXPECT_FALSE(store->WriteInteger(u"value", 2));
}

TEST_F(RegistryStoreContract, AClosedStoreAnswersNothing) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"value", u"text"));
  EXPECT_EQ(store->GetValueNames(), TNames{u"value"});
  store->CloseKey();
  EXPECT_FALSE(store->ValueExists(u"value"));
  EXPECT_EQ(store->GetDataType(u"value"), TDataType::Unknown);
  EXPECT_EQ(store->ReadString(u"value"), u"");
  EXPECT_FALSE(store->HasSubKeys());
  EXPECT_FALSE(store->DeleteValue(u"value"));
}

TEST_F(RegistryStoreContract, OpeningCanCreateTheKeyAndItsParents) {
  const auto store = OpenStore();
  EXPECT_FALSE(store->OpenKey(At(u"A\\B\\C"), false));
  EXPECT_TRUE(store->OpenKey(At(u"A\\B\\C"), true));
  EXPECT_TRUE(store->KeyExists(At(u"A\\B")));
  EXPECT_TRUE(store->OpenKey(At(u"A\\B\\C"), false));
}

TEST_F(RegistryStoreContract, APathWithoutLeadingSeparatorIsRelative) {
  const auto store = OpenStoreAt(u"A");
  EXPECT_TRUE(store->OpenKey(u"B", true));
  EXPECT_TRUE(store->OpenKey(u"C\\D", true));
  EXPECT_TRUE(store->KeyExists(At(u"A\\B\\C\\D")));
  store->CloseKey();
  EXPECT_FALSE(store->KeyExists(u"B"));
  EXPECT_TRUE(store->KeyExists(WithoutLeadingBackslash(At(u"A\\B"))));
}

TEST_F(RegistryStoreContract, RunsOfSeparatorsCountAsOneAndTwoLeadingOnesOpenNothing) {
  const auto store = OpenStoreAt(u"A\\B");
  EXPECT_TRUE(store->OpenKey(At(u"A\\\\\\B\\\\"), false));
  EXPECT_TRUE(store->KeyExists(At(u"A\\B\\")));
  EXPECT_FALSE(store->KeyExists(u"\\" + At(u"A")));
  EXPECT_FALSE(store->OpenKey(u"\\" + At(u"A"), true));
  EXPECT_TRUE(store->OpenKey(u"\\", false));
  EXPECT_TRUE(store->HasSubKeys());
}

TEST_F(RegistryStoreContract, SelectingARootClosesNothing) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"value", u"text"));
  store->SetRootKey(kHkeyLocalMachine);
  EXPECT_EQ(store->ReadString(u"value"), u"text");
  EXPECT_TRUE(store->OpenKey(u"Sub", true));
  store->SetRootKey(kScratchRoot);
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Sub")));
}

TEST_F(RegistryStoreContract, NoRootKeyOpensNothing) {
  const auto store = OpenStore();
  store->SetRootKey(kNoRootKey);
  EXPECT_FALSE(store->KeyExists(m_subject->ScratchKey()));
  EXPECT_FALSE(store->OpenKey(m_subject->ScratchKey(), true));
  EXPECT_FALSE(store->DeleteKey(m_subject->ScratchKey()));
}

TEST_F(RegistryStoreContract, TestingAKeyLeavesTheOpenOneOpen) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"value", u"text"));
  EXPECT_FALSE(store->KeyExists(At(u"Missing")));
  EXPECT_FALSE(store->KeyExists(u"Missing"));
  EXPECT_TRUE(store->KeyExists(m_subject->ScratchKey()));
  EXPECT_EQ(store->ReadString(u"value"), u"text");
}

TEST_F(RegistryStoreContract, AStoreForReadingChangesNothing) {
  const auto writer = OpenStoreAt(u"Key");
  EXPECT_TRUE(writer->WriteString(u"value", u"text"));
  const auto store = OpenStore(TRegistryAccess::Read);
  EXPECT_FALSE(store->OpenKey(At(u"New"), true));
  EXPECT_FALSE(store->KeyExists(At(u"New")));
  EXPECT_TRUE(store->OpenKey(At(u"Key"), true));
  EXPECT_FALSE(store->WriteString(u"value", u"other"));
  EXPECT_FALSE(store->WriteInteger(u"value", 1));
  EXPECT_FALSE(store->DeleteValue(u"value"));
  EXPECT_FALSE(store->DeleteKey(At(u"Key")));
  EXPECT_EQ(store->ReadString(u"value"), u"text");
}

TEST_F(RegistryStoreContract, AKeyWithoutAccessExistsAndDoesNotOpen) {
  Create(u"Key\\Denied\\Below");
  m_subject->Deny(At(u"Key\\Denied"));
  for (const TRegistryAccess access : {TRegistryAccess::Read, TRegistryAccess::Full}) {
    const auto store = OpenStore(access);
    EXPECT_TRUE(store->OpenKey(At(u"Key"), false));
    EXPECT_EQ(store->GetKeyNames(), TNames{u"Denied"});
    EXPECT_TRUE(store->KeyExists(u"Denied"));
    EXPECT_FALSE(store->OpenKey(u"Denied", false));
    EXPECT_TRUE(store->GetKeyNames().empty());
  }
}

TEST_F(RegistryStoreContract, AKeyThatHoldsOneWithoutAccessIsLeftWhole) {
  Create(u"Key\\A\\B");
  Create(u"Key\\Denied");
  Create(u"Key\\Z");
  m_subject->Deny(At(u"Key\\Denied"));
  const auto store = OpenStore();
  EXPECT_FALSE(store->DeleteKey(At(u"Key")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\A\\B")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Denied")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Z")));
}

TEST_F(RegistryStoreContract, ADeepTreeIsDeletedWhole) {
  const auto store = OpenStoreAt(u"Deep");
  for (int level = 0; level < 300; ++level) {
    EXPECT_TRUE(store->OpenKey(u"Level " + DecimalText(level), true));
    EXPECT_TRUE(store->WriteInteger(u"level", level));
  }
  for (int i = 0; i < 100; ++i)
    Create(u"Deep\\Wide " + DecimalText(i) + u"\\Leaf");
  EXPECT_TRUE(store->DeleteKey(At(u"Deep")));
  EXPECT_FALSE(store->KeyExists(At(u"Deep")));
  EXPECT_TRUE(store->KeyExists(m_subject->ScratchKey()));
}

// Nested names longer together than one call of the system can say.
TEST_F(RegistryStoreContract, KeysNestBeyondTheLongestPathOfOneCall) {
  const auto store = OpenStoreAt(u"Deep");
  Text path = At(u"Deep");
  for (int level = 0; level < 150; ++level) {
    const Text name(kLongestKeyName, static_cast<char16_t>(u'a' + level % 26));
    EXPECT_TRUE(store->OpenKey(name, true));
    path += u"\\" + name;
  }
  EXPECT_TRUE(store->WriteString(u"value", u"text"));
  const auto other = OpenStore();
  EXPECT_TRUE(other->KeyExists(path));
  EXPECT_TRUE(other->OpenKey(path, false));
  EXPECT_EQ(other->ReadString(u"value"), u"text");
  EXPECT_TRUE(other->DeleteKey(At(u"Deep")));
  EXPECT_FALSE(other->KeyExists(At(u"Deep")));
}

TEST_F(RegistryStoreContract, DeletionIsPossibleWhileOthersHoldTheKeyOpen) {
  const auto holder = OpenStoreAt(u"Key\\Sub");
  EXPECT_TRUE(holder->WriteString(u"value", u"text"));
  const auto store = OpenStore();
  EXPECT_TRUE(store->DeleteKey(At(u"Key")));
  EXPECT_FALSE(store->KeyExists(At(u"Key")));
  EXPECT_FALSE(holder->ValueExists(u"value"));
  EXPECT_EQ(holder->ReadString(u"value"), u"");
  EXPECT_TRUE(holder->GetValueNames().empty());
  EXPECT_FALSE(holder->WriteString(u"value", u"new"));
  EXPECT_FALSE(holder->KeyExists(u"Below"));
}

TEST_F(RegistryStoreContract, ADeletedKeyCanBeMadeAgain) {
  const auto walker = OpenStoreAt(u"Key\\Sub");
  EXPECT_TRUE(walker->OpenKey(At(u"Key\\Sub\\Leaf"), true));
  const auto other = OpenStore();
  EXPECT_TRUE(other->DeleteKey(At(u"Key")));
  EXPECT_FALSE(walker->OpenKey(At(u"Key\\Sub\\Leaf"), false));
  EXPECT_TRUE(walker->OpenKey(At(u"Key\\Sub\\Leaf"), true));
  EXPECT_TRUE(walker->WriteInteger(u"value", 7));
  EXPECT_TRUE(other->OpenKey(At(u"Key\\Sub\\Leaf"), false));
  EXPECT_EQ(other->ReadInteger(u"value"), 7);
}

TEST_F(RegistryStoreContract, DeletingNeedsANameAndAKey) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_FALSE(store->DeleteKey(u""));
  EXPECT_FALSE(store->DeleteKey(u"\\"));
  EXPECT_FALSE(store->DeleteKey(At(u"Missing")));
  EXPECT_FALSE(store->DeleteValue(u"missing"));
  EXPECT_TRUE(store->KeyExists(At(u"Key")));
}

TEST_F(RegistryStoreContract, DeletingTakesPathsAsOpeningDoes) {
  Create(u"Key\\Sub\\Leaf");
  Create(u"Key\\Other");
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->DeleteKey(u"sub"));
  EXPECT_EQ(store->GetKeyNames(), TNames{u"Other"});
}

TEST_F(RegistryStoreContract, LinksAreFollowedWhenKeysAreOpened) {
  const auto target = OpenStoreAt(u"Target\\Sub");
  EXPECT_TRUE(target->WriteString(u"value", u"text"));
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  const auto store = OpenStore();
  EXPECT_TRUE(store->OpenKey(At(u"Link\\Sub"), false));
  EXPECT_EQ(store->ReadString(u"value"), u"text");
  EXPECT_TRUE(store->OpenKey(At(u"Link"), false));
  EXPECT_EQ(store->GetKeyNames(), TNames{u"Sub"});
}

TEST_F(RegistryStoreContract, ALinkIsNeverDeletedNorFollowedByADeletion) {
  Create(u"Target");
  Create(u"Key\\A");
  Create(u"Key\\Z\\Zoo");
  m_subject->MakeLink(At(u"Key\\Z\\Link"), At(u"Target"));
  const auto store = OpenStore();
  EXPECT_FALSE(store->DeleteKey(At(u"Key\\Z\\Link")));
  EXPECT_FALSE(store->DeleteKey(At(u"Key")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\A")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Z\\Zoo")));
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Z\\Link")));
  EXPECT_TRUE(store->KeyExists(At(u"Target")));
}

// Only the key itself must not be a link: "CurrentControlSet" is one.
TEST_F(RegistryStoreContract, AKeyBelowALinkIsDeleted) {
  Create(u"Target\\Sub\\Leaf");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  const auto store = OpenStore();
  EXPECT_TRUE(store->DeleteKey(At(u"Link\\Sub")));
  EXPECT_FALSE(store->KeyExists(At(u"Target\\Sub")));
  EXPECT_TRUE(store->KeyExists(At(u"Target")));
}

TEST_F(RegistryStoreContract, OwnChangesShowAtOnceAfterAListing) {
  const auto store = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->WriteString(u"a", u"old"));
  EXPECT_TRUE(store->WriteString(u"b", u"text"));
  EXPECT_EQ(store->GetValueNames(), (TNames{u"a", u"b"}));
  EXPECT_TRUE(store->WriteString(u"a", u"new"));
  EXPECT_TRUE(store->DeleteValue(u"b"));
  EXPECT_EQ(store->ReadString(u"a"), u"new");
  EXPECT_FALSE(store->ValueExists(u"b"));
  EXPECT_EQ(store->GetValueNames(), TNames{u"a"});
}

TEST_F(RegistryStoreContract, EveryListingShowsWhatOthersChanged) {
  const auto store = OpenStoreAt(u"Key");
  const auto other = OpenStoreAt(u"Key");
  EXPECT_TRUE(store->GetValueNames().empty());
  EXPECT_TRUE(store->GetKeyNames().empty());
  EXPECT_FALSE(store->HasSubKeys());
  EXPECT_TRUE(other->WriteInteger(u"value", 1));
  Create(u"Key\\Sub");
  EXPECT_EQ(store->GetValueNames(), TNames{u"value"});
  EXPECT_TRUE(store->HasSubKeys());
  EXPECT_EQ(store->GetKeyNames(), TNames{u"Sub"});
  EXPECT_TRUE(other->DeleteKey(u"Sub"));
  EXPECT_FALSE(store->HasSubKeys());
}

TEST_F(RegistryStoreContract, ValuesAreReadInAnyOrderAfterAListing) {
  const auto store = OpenStoreAt(u"Key");
  for (int i = 0; i < 300; ++i)
    EXPECT_TRUE(store->WriteInteger(u"Value " + DecimalText(i), i));
  EXPECT_EQ(store->GetValueNames().size(), 300u);
  for (int i = 299; i >= 0; --i) {
    EXPECT_EQ(store->ReadInteger(u"vALUE " + DecimalText(i)), i);
    EXPECT_FALSE(store->ValueExists(u"Missing " + DecimalText(i)));
  }
}

TEST_F(RegistryStoreContract, AWalkMeetsEveryKeyAndValueOnce) {
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j)
      Put(u"Root\\" + DecimalText(i) + u"\\" + DecimalText(j),
          {u"at", kRegDword, {static_cast<std::uint8_t>(i * 5 + j), 0, 0, 0}});
  }
  const auto store = OpenStore(TRegistryAccess::Read);
  std::vector<std::int32_t> met;
  std::vector<Text> waiting = {At(u"Root")};
  while (!waiting.empty()) {
    const Text path = waiting.back();
    waiting.pop_back();
    ASSERT_TRUE(store->OpenKey(path, false));
    for (const Text& name : store->GetValueNames())
      met.push_back(store->ReadInteger(name));
    for (const Text& name : store->GetKeyNames())
      waiting.push_back(path + u"\\" + name);
    store->CloseKey();
  }
  std::sort(met.begin(), met.end());
  ASSERT_EQ(met.size(), 25u);
  for (std::size_t i = 0; i < met.size(); ++i)
    EXPECT_EQ(met[i], static_cast<std::int32_t>(i));
}

// ZwQueryKey, learn.microsoft.com: the name is that of the key the handle stands for.
TEST_F(RegistryStoreContract, TheRealPathBehindALinkIsThatOfItsTarget) {
  Create(u"Target\\Sub");
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  const auto store = OpenStore();
  ASSERT_TRUE(store->OpenKey(At(u"Target\\Sub"), false));
  const std::optional<Text> real = store->RealPath();
  ASSERT_TRUE(real.has_value());
  EXPECT_TRUE(UpperCase(*real).starts_with(u"\\REGISTRY\\USER\\")) << EncodeUtf8(*real);
  EXPECT_TRUE(UpperCase(*real).ends_with(UpperCase(At(u"Target\\Sub")))) << EncodeUtf8(*real);
  ASSERT_TRUE(store->OpenKey(At(u"Link\\Sub"), false));
  EXPECT_EQ(store->RealPath(), real);
}

TEST_F(RegistryStoreContract, TheRealPathOfARootIsThatOfTheKeysBelowIt) {
  Create(u"Key");
  const auto store = OpenStore();
  EXPECT_EQ(store->RealPath(), std::nullopt);
  ASSERT_TRUE(store->OpenKey(u"\\", false));
  const std::optional<Text> root = store->RealPath();
  ASSERT_TRUE(root.has_value());
  ASSERT_TRUE(store->OpenKey(At(u"Key"), false));
  const std::optional<Text> below = store->RealPath();
  ASSERT_TRUE(below.has_value());
  EXPECT_EQ(UpperCase(*below), UpperCase(*root + At(u"Key")));
}

TEST_F(RegistryStoreContract, WhetherAListingIsWholeIsKnown) {
  const auto store = OpenStore();
  EXPECT_TRUE(store->GetKeyNames().empty());
  EXPECT_FALSE(store->ListedWhole());
  ASSERT_TRUE(store->OpenKey(At(u"Key"), true));
  EXPECT_TRUE(store->WriteString(u"a", u"text"));
  EXPECT_EQ(store->GetValueNames(), TNames{u"a"});
  EXPECT_TRUE(store->ListedWhole());
  EXPECT_TRUE(store->GetKeyNames().empty());
  EXPECT_TRUE(store->ListedWhole());
  EXPECT_FALSE(store->HasSubKeys());
  EXPECT_TRUE(store->ListedWhole());
}

// Registry Element Size Limits, learn.microsoft.com: trees are at most 512 levels deep. Through a link to its
// own parent a path may be longer.
TEST_F(RegistryStoreContract, APathOfMoreNamesThanARegistryIsDeepIsNotOpened) {
  Create(u"Key");
  m_subject->MakeLink(At(u"Key\\Loop"), At(u"Key"));
  const auto store = OpenStore();
  Text path = At(u"Key");
  while (std::count(path.begin(), path.end(), u'\\') < 512)
    path += u"\\Loop";
  EXPECT_FALSE(store->OpenKey(path + u"\\Loop", false));
  EXPECT_FALSE(store->KeyExists(path + u"\\Loop"));
}

}  // namespace

}  // namespace corvalt
