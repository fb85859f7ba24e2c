// What the tests of the registry share: a scratch key, short ways to build below it.
#pragma once

#include <gtest/gtest.h>

#include "platform/memory/memoryregistry.h"
#include "tests/contract/subject.h"

namespace corvalt {

class TRegistryContract : public ::testing::Test {
 protected:
  // A path below the scratch key.
  Text At(TextView name) {
    return m_subject->ScratchKey() + u"\\" + Text(name);
  }

  std::unique_ptr<RegistryStore> OpenStore(TRegistryAccess access = TRegistryAccess::Full) {
    std::unique_ptr<RegistryStore> store = m_system.Registry.CreateStore(access);
    store->SetRootKey(kScratchRoot);
    return store;
  }

  // A store with this key open, created where it is missing.
  std::unique_ptr<RegistryStore> OpenStoreAt(TextView name) {
    std::unique_ptr<RegistryStore> store = OpenStore();
    EXPECT_TRUE(store->OpenKey(At(name), true));
    return store;
  }

  void Create(TextView name) {
    EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, At(name)), TRawResult::Done);
    m_system.Raw.ReleaseKeys();
  }
  void Put(TextView name, const TRawValue& value) {
    EXPECT_EQ(m_system.Raw.WriteValue(kScratchRoot, At(name), value), TRawResult::Done);
    m_system.Raw.ReleaseKeys();
  }

  const std::unique_ptr<TSubject> m_subject = MakeSubject();
  TSystem m_system = m_subject->System();
};

}  // namespace corvalt
