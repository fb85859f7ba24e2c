#include "system/changelog.h"

#include <gtest/gtest.h>

#include "platform/memory/memoryrawregistry.h"

namespace corvalt {

namespace {

class TKeptChanges : public TChangeLog {
 public:
  void Changed(const TRegistryChange& change) override {
    Changes.push_back(change);
  }
  std::vector<TRegistryChange> Changes;
};

class ChangeLog : public ::testing::Test {
 protected:
  TRegistryChange Change(TChangeKind kind, TextView keyPath, TextView valueName = {},
                         TRawResult result = TRawResult::Done) {
    return {kind, kHkeyCurrentUser, Text(keyPath), Text(valueName), result};
  }
  void ExpectChanges(const std::vector<TRegistryChange>& expected) {
    ASSERT_EQ(m_log.Changes.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_TRUE(m_log.Changes[i] == expected[i]) << i << " " << EncodeUtf8(m_log.Changes[i].KeyPath);
  }

  TMemoryRegistry m_registry;
  TMemoryRawRegistry m_plainRaw{m_registry};
  TKeptChanges m_log;
  TLoggedRawRegistry m_raw{m_plainRaw, m_log};
  TLoggedRegistry m_logged{m_registry, m_log};
};

TEST_F(ChangeLog, TellsEveryChangeOfAStoreWithItsWholePath) {
  const auto store = m_logged.CreateStore(TRegistryAccess::Full);
  EXPECT_TRUE(store->OpenKey(u"\\Software\\Key", true));
  EXPECT_TRUE(store->OpenKey(u"Sub", true));
  EXPECT_TRUE(store->WriteString(u"Text", u"x"));
  EXPECT_TRUE(store->WriteInteger(u"Number", 1));
  EXPECT_TRUE(store->WriteBool(u"Flag", true));
  EXPECT_TRUE(store->DeleteValue(u"Text"));
  EXPECT_TRUE(store->DeleteKey(u"\\Software\\Key"));
  ExpectChanges({Change(TChangeKind::KeyCreated, u"\\Software\\Key"),
                 Change(TChangeKind::KeyCreated, u"\\Software\\Key\\Sub"),
                 Change(TChangeKind::ValueWritten, u"\\Software\\Key\\Sub", u"Text"),
                 Change(TChangeKind::ValueWritten, u"\\Software\\Key\\Sub", u"Number"),
                 Change(TChangeKind::ValueWritten, u"\\Software\\Key\\Sub", u"Flag"),
                 Change(TChangeKind::ValueDeleted, u"\\Software\\Key\\Sub", u"Text"),
                 Change(TChangeKind::KeyDeleted, u"\\Software\\Key")});
}

TEST_F(ChangeLog, TellsWhatFailed) {
  m_registry.Deny(u"HKEY_CURRENT_USER\\Denied");
  const auto store = m_logged.CreateStore(TRegistryAccess::Full);
  EXPECT_FALSE(store->DeleteKey(u"\\Denied"));
  EXPECT_EQ(m_raw.DeleteValue(kHkeyCurrentUser, u"\\Denied", u"v"), TRawResult::Denied);
  ExpectChanges({Change(TChangeKind::KeyDeleted, u"\\Denied", {}, TRawResult::Failed),
                 Change(TChangeKind::ValueDeleted, u"\\Denied", u"v", TRawResult::Denied)});
}

TEST_F(ChangeLog, TellsThatAttributesWereSetOnlyInPart) {
  m_registry.AddKey(u"HKEY_CURRENT_USER\\Key");
  m_registry.SetsTimes = false;
  TAttributesLost lost;
  EXPECT_EQ(m_raw.WriteAttributes(kHkeyCurrentUser, u"\\Key", {std::uint64_t{5}, {}}, lost),
            TRawResult::Done);
  EXPECT_TRUE(lost.LastWrite);
  ExpectChanges({Change(TChangeKind::AttributesWritten, u"\\Key", {}, TRawResult::InPart)});
}

TEST_F(ChangeLog, TellsNothingOfWhatOnlyReads) {
  m_registry.Set(u"HKEY_CURRENT_USER\\Key", u"v", u"x");
  const auto store = m_logged.CreateStore(TRegistryAccess::Full);
  EXPECT_TRUE(store->OpenKey(u"\\Key", true));
  EXPECT_EQ(store->ReadString(u"v"), u"x");
  store->CloseKey();
  TRawKey key;
  TRawValue value;
  EXPECT_EQ(m_raw.ReadKey(kHkeyCurrentUser, u"\\Key", key), TRawResult::Done);
  EXPECT_EQ(m_raw.ReadValue(kHkeyCurrentUser, u"\\Key", u"v", value), TRawResult::Done);
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Key"), TRawResult::Done);
  ExpectChanges({});
}

TEST_F(ChangeLog, TellsEveryChangeOfTheRawRegistry) {
  EXPECT_EQ(m_raw.CreateKey(kHkeyCurrentUser, u"\\Key"), TRawResult::Done);
  EXPECT_EQ(m_raw.WriteValue(kHkeyCurrentUser, u"\\Key", {u"v", kRegSz, {}}), TRawResult::Done);
  TAttributesLost lost;
  EXPECT_EQ(m_raw.WriteAttributes(kHkeyCurrentUser, u"\\Key", {std::uint64_t{5}, {}}, lost),
            TRawResult::Done);
  EXPECT_EQ(m_raw.DeleteValueAt({kHkeyCurrentUser, u"\\Key"}, u"v", [](const TRawValue&) { return true; }),
            TRawResult::Done);
  EXPECT_EQ(m_raw.DeleteKeyAt({kHkeyCurrentUser, u"\\Key"}, [](TextView, const TRawKey&) { return false; }),
            TRawResult::Refused);
  EXPECT_EQ(m_raw.DeleteKey(kHkeyCurrentUser, u"\\Key"), TRawResult::Done);
  ExpectChanges({Change(TChangeKind::KeyCreated, u"\\Key"), Change(TChangeKind::ValueWritten, u"\\Key", u"v"),
                 Change(TChangeKind::AttributesWritten, u"\\Key"),
                 Change(TChangeKind::ValueDeleted, u"\\Key", u"v"),
                 Change(TChangeKind::KeyDeleted, u"\\Key", {}, TRawResult::Refused),
                 Change(TChangeKind::KeyDeleted, u"\\Key")});
}

TEST_F(ChangeLog, TellsTheChangesOfAnotherViewToo) {
  TMemoryRegistry other;
  m_registry.OtherView = &other;
  const auto view = m_raw.OpenView(TRegistryView::Bits32);
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->CreateKey(kHkeyCurrentUser, u"\\Key"), TRawResult::Done);
  ExpectChanges({Change(TChangeKind::KeyCreated, u"\\Key")});
  EXPECT_TRUE(other.HasKey(u"HKEY_CURRENT_USER\\Key"));
}

}  // namespace

}  // namespace corvalt
