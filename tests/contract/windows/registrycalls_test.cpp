#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/windows/windowsrawregistry.h"
#include "platform/windows/windowsregistrystore.h"
#include "tests/contract/registrycontract.h"

namespace corvalt {

namespace {

Text SystemNameOf(const Text& path) {
  TRegistryCalls calls;
  TRegistryKey key;
  EXPECT_EQ(calls.Open(RootHandle(kScratchRoot), path.substr(1), KEY_READ, false, key), ERROR_SUCCESS);
  return calls.SystemName(key.Get());
}

// Does nothing where a key is.
void TryToPlantLink(const Text& path, const Text& target) {
  HKEY link = nullptr;
  if (RegCreateKeyExW(RootHandle(kScratchRoot), Wide(path) + 1, 0, nullptr,
                      REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE, KEY_WRITE | KEY_CREATE_LINK, nullptr,
                      &link, nullptr) != ERROR_SUCCESS)
    return;
  RegSetValueExW(link, Wide(Text(kLinkValueName)), 0, REG_LINK, reinterpret_cast<const BYTE*>(target.data()),
                 static_cast<DWORD>(target.size() * sizeof(char16_t)));
  RegCloseKey(link);
}

void TryToDelete(const Text& path) {
  TRegistryCalls calls;
  TRegistryKey key;
  if (calls.Open(RootHandle(kScratchRoot), path.substr(1), DELETE, true, key) == ERROR_SUCCESS)
    calls.DeleteKey(key.Get());
}

class RegistryCalls : public TRegistryContract {
 protected:
  static constexpr std::uint64_t kBranches = 12;
  static constexpr std::uint64_t kLeaves = 9;
  static constexpr std::uint64_t kValues = 5;
  static constexpr std::uint64_t kKeys = 1 + kBranches + kBranches * kLeaves;

  // A tree of kKeys keys with kValues values each.
  void BuildTree() {
    PutValues(u"Tree");
    for (std::uint64_t i = 0; i < kBranches; ++i) {
      const Text branch = u"Tree\\Branch " + Number(i);
      PutValues(branch);
      for (std::uint64_t j = 0; j < kLeaves; ++j)
        PutValues(branch + u"\\Leaf " + Number(j));
    }
  }

  // Reads everything depth first, as the scanners do, and returns the number of values met.
  std::uint64_t Walk(RegistryStore& store, const Text& path) {
    if (!store.OpenKey(path, false))
      return 0;
    std::uint64_t met = 0;
    for (const Text& name : store.GetValueNames()) {
      if (store.GetDataType(name) == TDataType::String && store.ReadString(name) == u"data of " + name)
        ++met;
    }
    const std::vector<Text> subKeys = store.GetKeyNames();
    store.CloseKey();
    for (const Text& name : subKeys)
      met += Walk(store, path + u"\\" + name);
    return met;
  }

  std::uint64_t Export(TRawRegistry& raw, const Text& path) {
    TRawKey key;
    EXPECT_EQ(raw.ReadKey(kScratchRoot, path, key), TRawResult::Done);
    std::uint64_t met = key.Values.size();
    for (const Text& name : key.SubKeys)
      met += Export(raw, path + u"\\" + name);
    return met;
  }

  static Text Number(std::uint64_t number) {
    return DecimalText(static_cast<std::int64_t>(number));
  }

 private:
  void PutValues(const Text& key) {
    const auto store = OpenStoreAt(key);
    for (std::uint64_t i = 0; i < kValues; ++i) {
      const Text name = u"Value " + Number(i);
      EXPECT_TRUE(store->WriteString(name, u"data of " + name));
    }
  }
};

TEST_F(RegistryCalls, AWalkCostsOneCallAValueAndAtMostFiveAKey) {
  BuildTree();
  TWindowsRegistryStore store(TRegistryAccess::Read);
  store.SetRootKey(kScratchRoot);
  EXPECT_EQ(Walk(store, At(u"Tree")), kKeys * kValues);
  EXPECT_LE(store.SystemCalls(), kKeys * kValues + 5 * kKeys);
}

TEST_F(RegistryCalls, AnExportCostsOneCallAValueAndAtMostFiveAKey) {
  BuildTree();
  TWindowsRawRegistry raw;
  EXPECT_EQ(Export(raw, At(u"Tree")), kKeys * kValues);
  EXPECT_LE(raw.SystemCalls(), kKeys * kValues + 5 * kKeys);
}

TEST_F(RegistryCalls, AnImportCostsOneCallAValueAndAtMostThreeAKey) {
  TWindowsRawRegistry raw;
  for (std::uint64_t i = 0; i < 50; ++i) {
    const Text path = At(u"Import\\Key " + Number(i));
    ASSERT_EQ(raw.CreateKey(kScratchRoot, path), TRawResult::Done);
    for (std::uint64_t j = 0; j < kValues; ++j)
      ASSERT_EQ(raw.WriteValue(kScratchRoot, path, {Number(j), kRegSz, UnitBytes(Text(u"x\0", 2))}),
                TRawResult::Done);
  }
  EXPECT_LE(raw.SystemCalls(), std::uint64_t{50} * kValues + std::uint64_t{3} * 50);
}

TEST_F(RegistryCalls, AnImportIntoANewKeyCostsOneCallAValueAndTwoAKey) {
  TWindowsRawRegistry raw;
  ASSERT_EQ(raw.CreateKey(kScratchRoot, At(u"Import")), TRawResult::Done);
  const std::uint64_t before = raw.SystemCalls();
  for (std::uint64_t i = 0; i < 50; ++i) {
    const Text path = At(u"Import\\Key " + Number(i));
    ASSERT_EQ(raw.CreateKey(kScratchRoot, path), TRawResult::Done);
    for (std::uint64_t j = 0; j < kValues; ++j)
      ASSERT_EQ(raw.WriteValue(kScratchRoot, path, {Number(j), kRegDword, {1, 0, 0, 0}}), TRawResult::Done);
  }
  EXPECT_LE(raw.SystemCalls() - before, std::uint64_t{50} * kValues + std::uint64_t{2} * 50);
}

// A link made by somebody else in a key that was just created is still a link.
TEST_F(RegistryCalls, ALinkInANewKeyIsNotFollowed) {
  TWindowsRawRegistry raw;
  ASSERT_EQ(raw.CreateKey(kScratchRoot, At(u"Target")), TRawResult::Done);
  ASSERT_EQ(raw.CreateKey(kScratchRoot, At(u"New")), TRawResult::Done);
  m_subject->MakeLink(At(u"New\\Link"), At(u"Target"));
  EXPECT_EQ(raw.WriteValue(kScratchRoot, At(u"New\\Link"), {u"a", kRegDword, {1, 0, 0, 0}}),
            TRawResult::Link);
  TRawValue value;
  EXPECT_EQ(raw.ReadValue(kScratchRoot, At(u"Target"), u"a", value), TRawResult::Missing);
}

// A link that comes between the look for a key and its creation: RegCreateKeyEx (learn.microsoft.com) opens a
// key that exists, and would open the link's target.
TEST_F(RegistryCalls, ALinkThatComesWhileAKeyIsCreatedIsNotFollowed) {
  constexpr int kRounds = 300;
  Create(u"Target");
  std::atomic<bool> ends = false;
  std::thread other([&] {
    const Text target = SystemNameOf(At(u"Target"));
    while (!ends) {
      TryToPlantLink(At(u"Link"), target);
      TryToDelete(At(u"Link"));
    }
  });
  TWindowsRawRegistry raw;
  for (int i = 0; i < kRounds; ++i) {
    static_cast<void>(raw.WriteValue(kScratchRoot, At(u"Link"), {u"a", kRegDword, {1, 0, 0, 0}}));
    raw.ReleaseKeys();
  }
  ends = true;
  other.join();
  TRawValue value;
  EXPECT_EQ(raw.ReadValue(kScratchRoot, At(u"Target"), u"a", value), TRawResult::Missing);
}

TEST_F(RegistryCalls, LongNamesAndLargeDataCostNoSecondCall) {
  const auto writer = OpenStoreAt(u"Key");
  for (int i = 0; i < 20; ++i)
    EXPECT_TRUE(writer->WriteString(DecimalText(i) + Text(5000, u'n'), Text(20000, u'd')));
  TWindowsRegistryStore store(TRegistryAccess::Read);
  store.SetRootKey(kScratchRoot);
  ASSERT_TRUE(store.OpenKey(At(u"Key"), false));
  const std::uint64_t before = store.SystemCalls();
  for (const Text& name : store.GetValueNames())
    EXPECT_EQ(store.ReadString(name).size(), 20000u);
  EXPECT_LE(store.SystemCalls() - before, 21u);
}

// Handles are small multiples of four; Wine's GetProcessHandleCount counts none.
int OpenHandles() {
  constexpr std::uintptr_t kLargestLookedAt = std::uintptr_t{4} * 20000;
  int count = 0;
  for (std::uintptr_t value = 4; value <= kLargestLookedAt; value += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags))
      ++count;
  }
  return count;
}

TEST_F(RegistryCalls, AMillionOperationsLeakNoHandle) {
  constexpr std::uint64_t kOperations = 1000000;
  BuildTree();
  {
    TWindowsRegistryStore warmUp(TRegistryAccess::Read);
    warmUp.SetRootKey(kScratchRoot);
    Walk(warmUp, At(u"Tree"));
  }
  const int before = OpenHandles();
  EXPECT_GT(before, 0);
  {
    TWindowsRegistryStore store(TRegistryAccess::Full);
    TWindowsRawRegistry raw;
    store.SetRootKey(kScratchRoot);
    for (std::uint64_t round = 0; store.SystemCalls() + raw.SystemCalls() < kOperations; ++round) {
      const Text made = At(u"Made\\Key\\" + Number(round % 10));
      ASSERT_EQ(Walk(store, At(u"Tree")), kKeys * kValues);
      ASSERT_EQ(Export(raw, At(u"Tree")), kKeys * kValues);
      ASSERT_TRUE(store.OpenKey(made, true));
      ASSERT_FALSE(store.OpenKey(At(u"Missing"), false));
      ASSERT_EQ(raw.WriteValue(kScratchRoot, made, {u"value", kRegBinary, {1}}), TRawResult::Done);
      ASSERT_TRUE(store.DeleteKey(At(u"Made")));
    }
  }
  EXPECT_EQ(OpenHandles(), before);
}

}  // namespace

}  // namespace corvalt
