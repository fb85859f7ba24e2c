#include <algorithm>
#include <random>

#include "tests/contract/registrycontract.h"

namespace corvalt {

namespace {

class RawRegistryContract : public TRegistryContract {
 protected:
  TRawResult Write(TextView key, const TRawValue& value) {
    return m_system.Raw.WriteValue(kScratchRoot, At(key), value);
  }
  TRawResult Read(TextView key, TextView name, TRawValue& value) {
    return m_system.Raw.ReadValue(kScratchRoot, At(key), name, value);
  }
  TRawResult ReadAll(TextView key, TRawKey& raw) {
    return m_system.Raw.ReadKey(kScratchRoot, At(key), raw);
  }
  void ExpectKept(const TRawValue& value) {
    ASSERT_EQ(Write(u"Key", value), TRawResult::Done);
    TRawValue read;
    ASSERT_EQ(Read(u"Key", value.Name, read), TRawResult::Done);
    EXPECT_TRUE(read == value) << EncodeUtf8(value.Name) << " type " << value.Type << " size "
                               << value.Data.size() << " read as " << read.Data.size();
  }
};

TEST_F(RawRegistryContract, EveryTypeKeepsItsBytes) {
  const TBytes datas[] = {
      {},
      {0},
      {0x41},
      {0, 0},
      {0x41, 0},
      {0x41, 0, 0},
      {0x41, 0, 0x42},
      {0x41, 0, 0, 0},
      {0, 0, 0, 0},
      {1, 2, 3, 4, 5},
      UnitBytes(u"no terminator"),
      UnitBytes(Text(u"one\0two\0\0\0", 10)),
      UnitBytes(Text(u"\0\0\0text", 7)),
      UnitBytes(Text{0xD800, u'x', 0xDC00}),
      TBytes(300, 0xFF),
  };
  for (const std::uint32_t type :
       {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 0xFFFFu, 0x80000001u}) {
    for (std::size_t i = 0; i < std::size(datas); ++i)
      ExpectKept(
          {u"Value " + DecimalText(type) + u" " + DecimalText(static_cast<std::int64_t>(i)), type, datas[i]});
  }
}

TEST_F(RawRegistryContract, AStringWithoutTerminatorKeepsNoneWhateverWasWrittenBefore) {
  ExpectKept({u"value", kRegSz, UnitBytes(Text(u"longer text\0", 12))});
  ExpectKept({u"value", kRegSz, UnitBytes(u"text")});
  ExpectKept({u"value", kRegMultiSz, UnitBytes(u"text")});
  ExpectKept({u"value", kRegExpandSz, {0x25}});
}

TEST_F(RawRegistryContract, NamesAreKeptUnchanged) {
  const Text names[] = {u"",
                        u"@",
                        u"with \"quotes\" and \\ and ]=[",
                        u"line\r\nbreak",
                        u"\u65E5\u672C",
                        {0xD800},
                        {0xDFFF, 0xD800},
                        Text(16383, u'n')};
  for (const Text& name : names)
    ExpectKept({name, kRegBinary, {1}});
  TRawKey key;
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  EXPECT_EQ(key.Values.size(), std::size(names));
}

TEST_F(RawRegistryContract, RandomValuesComeBackByteForByte) {
  std::mt19937 random(20240607);
  const auto upTo = [&random](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  std::vector<TRawValue> written;
  for (int i = 0; i < 500; ++i) {
    TRawValue value;
    value.Name = DecimalText(i) + u" ";
    for (std::uint32_t units = upTo(20); units > 0; --units)
      value.Name.push_back(static_cast<char16_t>(1 + upTo(0xFFFF)));
    value.Type = upTo(14);
    for (std::uint32_t bytes = upTo(40); bytes > 0; --bytes)
      value.Data.push_back(static_cast<std::uint8_t>(upTo(3) == 0 ? 0 : upTo(256)));
    ASSERT_EQ(Write(u"Key", value), TRawResult::Done);
    written.push_back(std::move(value));
  }
  TRawKey key;
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  ASSERT_EQ(key.Values.size(), written.size());
  for (const TRawValue& value : written)
    EXPECT_NE(std::find(key.Values.begin(), key.Values.end(), value), key.Values.end());
}

TEST_F(RawRegistryContract, SeveralMebibytesAreKept) {
  TBytes large(5000000);
  for (std::size_t i = 0; i < large.size(); ++i)
    large[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  ExpectKept({u"large", kRegBinary, large});
  ExpectKept({u"small", kRegDword, {1, 0, 0, 0}});
  TRawKey key;
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  ASSERT_EQ(key.Values.size(), 2u);
  EXPECT_TRUE(key.Values[0].Data == large);
  EXPECT_EQ(key.Values[1].Data.size(), 4u);
}

TEST_F(RawRegistryContract, AKeyTellsItsValuesAndItsDirectSubKeys) {
  Create(u"Key\\B\\Below");
  Create(u"Key\\a");
  EXPECT_EQ(Write(u"Key", {u"value", kRegSz, UnitBytes(u"x")}), TRawResult::Done);
  TRawKey key;
  key.SubKeys = {u"left over"};
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, (std::vector<Text>{u"a", u"B"}));
  EXPECT_EQ(key.Values, (std::vector<TRawValue>{{u"value", kRegSz, UnitBytes(u"x")}}));
  ASSERT_EQ(ReadAll(u"Key\\a", key), TRawResult::Done);
  EXPECT_TRUE(key.SubKeys.empty());
  EXPECT_TRUE(key.Values.empty());
}

TEST_F(RawRegistryContract, WhatIsMissingIsSaidAndLeavesTheOutputs) {
  Create(u"Key");
  TRawValue value = {u"before", kRegDword, {1}};
  TRawKey key = {{value}, {u"before"}};
  EXPECT_EQ(Read(u"Key", u"missing", value), TRawResult::Missing);
  EXPECT_EQ(Read(u"Missing", u"missing", value), TRawResult::Missing);
  EXPECT_EQ(ReadAll(u"Missing", key), TRawResult::Missing);
  EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, At(u"Missing")), TRawResult::Missing);
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Key"), u"missing"), TRawResult::Missing);
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Missing"), u"missing"), TRawResult::Missing);
  EXPECT_EQ(value.Name, u"before");
  EXPECT_EQ(key.SubKeys, std::vector<Text>{u"before"});
  EXPECT_EQ(key.Values.size(), 1u);
}

TEST_F(RawRegistryContract, AKeyWithoutAccessIsDenied) {
  Create(u"Key\\Denied");
  m_subject->Deny(At(u"Key\\Denied"));
  TRawKey key;
  TRawValue value;
  EXPECT_EQ(ReadAll(u"Key\\Denied", key), TRawResult::Denied);
  EXPECT_EQ(Read(u"Key\\Denied", u"value", value), TRawResult::Denied);
  EXPECT_EQ(Write(u"Key\\Denied", {u"value", kRegSz, {}}), TRawResult::Denied);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Key\\Denied")), TRawResult::Denied);
  EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, At(u"Key")), TRawResult::Denied);
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, std::vector<Text>{u"Denied"});
}

// RegCreateKeyEx (learn.microsoft.com) opens a key that exists with the access that was asked for.
TEST_F(RawRegistryContract, AKeyThatMayOnlyBeReadExistsForItsCreation) {
  Put(u"Key", {u"v", kRegSz, {}});
  m_subject->LetOnlyRead(At(u"Key"));
  bool isNew = true;
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Key"), {}, isNew), TRawResult::Done);
  EXPECT_FALSE(isNew);
  EXPECT_EQ(Write(u"Key", {u"v", kRegBinary, {1}}), TRawResult::Denied);
  TRawValue value;
  EXPECT_EQ(Read(u"Key", u"v", value), TRawResult::Done);
  EXPECT_EQ(value.Type, kRegSz);
}

TEST_F(RawRegistryContract, ALinkIsSaidAndNeverFollowed) {
  Create(u"Target\\Sub");
  EXPECT_EQ(Write(u"Target", {u"value", kRegSz, {}}), TRawResult::Done);
  Create(u"Key\\A");
  m_subject->MakeLink(At(u"Key\\Link"), At(u"Target"));
  TRawKey key;
  TRawValue value;
  EXPECT_EQ(ReadAll(u"Key\\Link", key), TRawResult::Link);
  EXPECT_EQ(Read(u"Key\\Link", u"value", value), TRawResult::Link);
  EXPECT_EQ(Read(u"Key\\Link", u"value", value), TRawResult::Link);
  EXPECT_EQ(Write(u"Key\\Link", {u"new", kRegSz, {}}), TRawResult::Link);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Key\\Link")), TRawResult::Link);
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Key\\Link"), u"value"), TRawResult::Link);
  EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, At(u"Key\\Link")), TRawResult::Link);
  EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, At(u"Key")), TRawResult::Link);
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, (std::vector<Text>{u"A", u"Link"}));
  ASSERT_EQ(ReadAll(u"Target", key), TRawResult::Done);
  EXPECT_EQ(key.Values.size(), 1u);
  EXPECT_EQ(key.SubKeys, std::vector<Text>{u"Sub"});
}

TEST_F(RawRegistryContract, ALinkInThePathAboveTheKeyIsFollowed) {
  EXPECT_EQ(Write(u"Target\\Sub", {u"value", kRegSz, {}}), TRawResult::Done);
  m_subject->MakeLink(At(u"Link"), At(u"Target"));
  TRawKey key;
  ASSERT_EQ(ReadAll(u"Link\\Sub", key), TRawResult::Done);
  EXPECT_EQ(key.Values.size(), 1u);
  EXPECT_EQ(Write(u"Link\\New", {u"value", kRegSz, {}}), TRawResult::Done);
  EXPECT_EQ(ReadAll(u"Target\\New", key), TRawResult::Done);
}

TEST_F(RawRegistryContract, CreatingMakesTheParentsAndIsDoneWhenTheKeyExists) {
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"A\\B\\C")), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"A\\B\\C")), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"a\\b")), TRawResult::Done);
  TRawKey key;
  ASSERT_EQ(ReadAll(u"A\\B", key), TRawResult::Done);
  EXPECT_EQ(key.SubKeys, std::vector<Text>{u"C"});
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(Text(256, u'k'))), TRawResult::Failed);
  EXPECT_EQ(Write(u"Key", {Text(16384, u'v'), kRegSz, {}}), TRawResult::Failed);
}

TEST_F(RawRegistryContract, WhatIsDeletedIsGone) {
  EXPECT_EQ(Write(u"Key\\Sub\\Leaf", {u"value", kRegSz, {}}), TRawResult::Done);
  EXPECT_EQ(Write(u"Key", {u"A", kRegSz, {}}), TRawResult::Done);
  EXPECT_EQ(Write(u"Key", {u"B", kRegSz, {}}), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, At(u"Key\\Sub")), TRawResult::Done);
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Key"), u"a"), TRawResult::Done);
  TRawKey key;
  ASSERT_EQ(ReadAll(u"Key", key), TRawResult::Done);
  EXPECT_TRUE(key.SubKeys.empty());
  ASSERT_EQ(key.Values.size(), 1u);
  EXPECT_EQ(key.Values[0].Name, u"B");
}

TEST_F(RawRegistryContract, ChangesOfAStoreShowAtOnce) {
  EXPECT_EQ(Write(u"Key\\Sub", {u"value", kRegDword, {1, 0, 0, 0}}), TRawResult::Done);
  const auto store = OpenStore();
  EXPECT_TRUE(store->DeleteKey(At(u"Key")));
  TRawValue value;
  EXPECT_EQ(Read(u"Key\\Sub", u"value", value), TRawResult::Missing);
  EXPECT_EQ(Write(u"Key\\Sub", {u"value", kRegDword, {2, 0, 0, 0}}), TRawResult::Done);
  EXPECT_TRUE(store->DeleteKey(At(u"Key")));
  EXPECT_EQ(Write(u"Key\\Sub", {u"value", kRegDword, {3, 0, 0, 0}}), TRawResult::Done);
  EXPECT_TRUE(store->OpenKey(At(u"Key\\Sub"), false));
  EXPECT_EQ(store->ReadInteger(u"value"), 3);
  EXPECT_TRUE(store->DeleteKey(At(u"Key")));
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(u"Key\\Sub")), TRawResult::Done);
  EXPECT_TRUE(store->KeyExists(At(u"Key\\Sub")));
}

TEST_F(RawRegistryContract, ANameOfOneNulIsTheDefaultValue) {
  const Text nul(1, u'\0');
  EXPECT_EQ(Write(u"Key", {nul, kRegDword, {1, 0, 0, 0}}), TRawResult::Done);
  TRawValue value;
  EXPECT_EQ(Read(u"Key", u"", value), TRawResult::Done);
  EXPECT_EQ(Read(u"Key", nul, value), TRawResult::Done);
  EXPECT_EQ(value.Name, u"");
  EXPECT_EQ(m_system.Raw.DeleteValue(kScratchRoot, At(u"Key"), nul), TRawResult::Done);
  EXPECT_EQ(Read(u"Key", u"", value), TRawResult::Missing);
}

TEST_F(RawRegistryContract, APathThatNamesNoKeyFails) {
  TRawKey key;
  EXPECT_EQ(m_system.Raw.ReadKey(kScratchRoot, u"\\" + At(u"Key"), key), TRawResult::Failed);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, u"\\" + At(u"Key")), TRawResult::Failed);
}

TEST_F(RawRegistryContract, TheRootItselfIsNeverDeleted) {
  EXPECT_EQ(m_system.Raw.DeleteKey(kHkeyDynData, u"\\"), TRawResult::Failed);
}

}  // namespace

}  // namespace corvalt
