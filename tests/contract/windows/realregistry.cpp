#include "tests/contract/windows/realregistry.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/windows/registrycalls.h"
#include "tests/contract/subject.h"

namespace corvalt {

namespace {

class TTestKey {
 public:
  TTestKey(TextView keyPath, REGSAM access) {
    const LSTATUS status =
        RegOpenKeyExW(RootHandle(kScratchRoot), Wide(Text(WithoutLeadingBackslash(keyPath))),
                      REG_OPTION_OPEN_LINK, access, &m_key);
    EXPECT_EQ(status, ERROR_SUCCESS);
  }
  ~TTestKey() {
    RegCloseKey(m_key);
  }
  TTestKey(const TTestKey&) = delete;
  TTestKey& operator=(const TTestKey&) = delete;

  HKEY Get() const {
    return m_key;
  }

 private:
  HKEY m_key = nullptr;
};

void SetAccessList(TextView keyPath, PACL accessList) {
  const TTestKey key(keyPath, WRITE_DAC);
  SECURITY_DESCRIPTOR descriptor = {};
  InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&descriptor, TRUE, accessList, FALSE);
  EXPECT_EQ(RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, &descriptor), ERROR_SUCCESS);
}

struct TKeyNameInformation {
  ULONG NameLength;
  WCHAR Name[1];
};

// The path of a key as the kernel writes it, which is what a link holds.
Text KernelPath(TextView keyPath) {
  using TQueryKey = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
  constexpr int kKeyNameInformation = 3;
  const TTestKey key(keyPath, KEY_READ);
  std::vector<std::uint8_t> buffer(65536);
  ULONG size = 0;
  const auto queryKey = FindRoutine<TQueryKey>(GetModuleHandleW(L"ntdll.dll"), "NtQueryKey");
  EXPECT_EQ(queryKey(key.Get(), kKeyNameInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &size),
            0);
  const auto* const information = reinterpret_cast<const TKeyNameInformation*>(buffer.data());
  return Text(FromWide(information->Name, information->NameLength / sizeof(wchar_t)));
}

}  // namespace

void DenyEverything(TextView keyPath) {
  ACL empty = {};
  ASSERT_TRUE(InitializeAcl(&empty, sizeof(empty), ACL_REVISION));
  SetAccessList(keyPath, &empty);
}

void AllowReading(TextView keyPath) {
  SID everyone = {SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
  std::uint64_t buffer[16] = {};
  auto* const list = reinterpret_cast<PACL>(buffer);
  ASSERT_TRUE(InitializeAcl(list, sizeof(buffer), ACL_REVISION));
  ASSERT_TRUE(AddAccessAllowedAce(list, ACL_REVISION, KEY_READ, &everyone));
  SetAccessList(keyPath, list);
}

void AllowEverything(TextView keyPath) {
  SetAccessList(keyPath, nullptr);
}

void CreateLink(TextView keyPath, TextView targetPath) {
  const Text target = KernelPath(targetPath);
  const Text path(WithoutLeadingBackslash(keyPath));
  HKEY link = nullptr;
  ASSERT_EQ(RegCreateKeyExW(RootHandle(kScratchRoot), Wide(path), 0, nullptr,
                            REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE, KEY_WRITE | KEY_CREATE_LINK,
                            nullptr, &link, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(RegSetValueExW(link, Wide(Text(kLinkValueName)), 0, REG_LINK,
                           reinterpret_cast<const BYTE*>(target.data()),
                           static_cast<DWORD>(target.size() * sizeof(char16_t))),
            ERROR_SUCCESS);
  RegCloseKey(link);
}

void DeleteLink(TextView keyPath) {
  using TDeleteKey = LONG(WINAPI*)(HANDLE);
  const TTestKey link(keyPath, DELETE);
  FindRoutine<TDeleteKey>(GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")(link.Get());
}

}  // namespace corvalt
