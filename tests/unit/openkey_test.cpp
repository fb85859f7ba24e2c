#include "system/openkey.h"

#include <gtest/gtest.h>

#include "platform/memory/memoryregistry.h"

namespace corvalt {

namespace {

class OpenKey : public testing::Test {
 protected:
  OpenKey() {
    m_registry.Set(u"HKEY_CURRENT_USER\\Software\\Sub", u"Name", u"x");
    m_store = m_registry.CreateStore(TRegistryAccess::Full);
  }

  TMemoryRegistry m_registry;
  std::unique_ptr<RegistryStore> m_store;
};

}  // namespace

TEST_F(OpenKey, IsOpenForItsLifeAndNoLonger) {
  {
    const TOpenKey key(*m_store, u"\\Software\\Sub");
    EXPECT_TRUE(key);
    EXPECT_EQ(m_store->ReadString(u"Name"), u"x");
  }
  EXPECT_EQ(m_store->ReadString(u"Name"), u"");
  EXPECT_FALSE(m_store->ValueExists(u"Name"));
}

TEST_F(OpenKey, ThatIsMissingIsNotCreated) {
  EXPECT_FALSE(TOpenKey(*m_store, u"\\Software\\Other"));
  EXPECT_FALSE(m_registry.HasKey(u"HKEY_CURRENT_USER\\Software\\Other"));
}

TEST_F(OpenKey, ThatDoesNotOpenLeavesNoOtherOpen) {
  const TOpenKey outer(*m_store, u"\\Software\\Sub");
  const TOpenKey inner(*m_store, u"\\Software\\Other");
  EXPECT_TRUE(outer);
  EXPECT_FALSE(inner);
  EXPECT_FALSE(m_store->ValueExists(u"Name"));
}

TEST_F(OpenKey, IsCreatedWhereThatIsWanted) {
  EXPECT_TRUE(TOpenKey(*m_store, u"\\Software\\Made", true));
  EXPECT_TRUE(m_registry.HasKey(u"HKEY_CURRENT_USER\\Software\\Made"));
}

}  // namespace corvalt
