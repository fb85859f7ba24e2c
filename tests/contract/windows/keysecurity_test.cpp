#include "platform/windows/keysecurity.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysecurity.h"
#include "system/securitydescriptor.h"
#include "tests/contract/registrycontract.h"

namespace corvalt {

namespace {

// The privileges of this program with their states, as the system has them.
std::vector<std::uint8_t> Privileges() {
  HANDLE opened = nullptr;
  EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened));
  const TOwnedObject token(opened);
  DWORD size = 0;
  GetTokenInformation(token.Get(), TokenPrivileges, nullptr, 0, &size);
  std::vector<std::uint8_t> privileges(size);
  EXPECT_TRUE(GetTokenInformation(token.Get(), TokenPrivileges, privileges.data(), size, &size));
  return privileges;
}

using KeySecurity = TRegistryContract;

}  // namespace

// Making another user the owner needs a privilege (SetKernelObjectSecurity, learn.microsoft.com), which is on
// during that call only.
TEST_F(KeySecurity, OfAnotherOwnerLeavesThePrivilegesAsTheyWere) {
  Create(u"Key");
  const std::vector<std::uint8_t> before = Privileges();
  TMemorySecurity security;
  security.Owner = u"S-1-5-32-544";
  security.Access = {{u"S-1-1-0"}};
  const TBytes wanted = SecurityBytes(security);
  TAttributesLost lost;
  ASSERT_EQ(m_system.Raw.WriteAttributes(kScratchRoot, At(u"Key"), {std::nullopt, wanted}, lost),
            TRawResult::Done);
  TKeyAttributes read;
  ASSERT_EQ(m_system.Raw.ReadAttributes(kScratchRoot, At(u"Key"), read), TRawResult::Done);
  EXPECT_EQ(lost.Security, !HasSecurity(read.Security, wanted));
  EXPECT_EQ(Privileges(), before);
}

}  // namespace corvalt
