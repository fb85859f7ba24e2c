#include <gtest/gtest.h>

#include "platform/memory/memorysecurity.h"
#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

constexpr TextView kSystem = u"S-1-5-18";
constexpr std::uint32_t kLowLabel = 0x1000;     // SECURITY_MANDATORY_LOW_RID (winnt.h)
constexpr std::uint32_t kMediumLabel = 0x2000;  // SECURITY_MANDATORY_MEDIUM_RID

const TBytes kNewOwner = SidBytes(TMemorySecurity().Owner);

TMemorySecurity Inherited() {
  return {.Access = {{Text(kSystem), 1, kAceInherited}}};
}

TBytes Parent() {
  return SecurityBytes({.Access = {{Text(kSystem), 1, kAceContainerInherit}}});
}

TEST(SecurityDescriptor, IsTakenApart) {
  const TBytes bytes = SecurityBytes(
      {.Owner = u"S-1-5-32-544", .Group = Text(kSystem), .Access = {{Text(kSystem)}}, .Label = kLowLabel});
  const auto parts = ParseSecurity(bytes);
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->Owner.size(), 16u);
  EXPECT_EQ(parts->Group.size(), 12u);
  EXPECT_EQ(parts->AccessList.size(), 8u + 20u);
  EXPECT_EQ(parts->Label.size(), 20u);
}

TEST(SecurityDescriptor, EveryCutIsRefused) {
  const TBytes bytes = SecurityBytes({.Access = {{Text(kSystem)}}, .Label = kLowLabel});
  for (std::size_t size = 0; size < bytes.size(); ++size)
    EXPECT_FALSE(ParseSecurity(std::span(bytes).first(size))) << size;
}

TEST(SecurityDescriptor, NoByteMakesItReadBeyondItsEnd) {
  const TBytes bytes = SecurityBytes({.Access = {{Text(kSystem)}, {u"S-1-5-32-545"}}, .Label = kLowLabel});
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    for (const unsigned value : {0x00U, 0x01U, 0x7FU, 0x80U, 0xFFU}) {
      TBytes damaged = bytes;
      damaged[i] = static_cast<std::uint8_t>(value);
      HasOwnSecurity(damaged, bytes, kNewOwner);
      HasSecurity(damaged, bytes);
    }
  }
}

TEST(SecurityDescriptor, WhatIsInheritedIsNotItsOwn) {
  EXPECT_FALSE(HasOwnSecurity(SecurityBytes(Inherited()), Parent(), kNewOwner));
}

TEST(SecurityDescriptor, AProtectedListIsItsOwn) {
  TMemorySecurity security = Inherited();
  security.IsProtected = true;
  EXPECT_TRUE(HasOwnSecurity(SecurityBytes(security), Parent(), kNewOwner));
}

TEST(SecurityDescriptor, AnEntryThatIsNotInheritedIsItsOwn) {
  TMemorySecurity security = Inherited();
  security.Access.push_back({Text(kSystem)});
  EXPECT_TRUE(HasOwnSecurity(SecurityBytes(security), Parent(), kNewOwner));
}

// "Owner of a New Object", learn.microsoft.com: it is the creator's, whoever owns the parent.
TEST(SecurityDescriptor, AnotherOwnerThanANewKeysIsItsOwn) {
  TMemorySecurity security = Inherited();
  security.Owner = kSystem;
  const TBytes systems = SecurityBytes(security);
  EXPECT_TRUE(HasOwnSecurity(systems, systems, kNewOwner));
  // Nobody tells whose a new key would be.
  EXPECT_TRUE(HasOwnSecurity(systems, Parent(), {}));
  EXPECT_FALSE(HasOwnSecurity(systems, systems, {}));
  EXPECT_FALSE(HasOwnSecurity(SecurityBytes(Inherited()), systems, kNewOwner));
  EXPECT_TRUE(HasOwnSecurity(SecurityBytes(security), Parent(), kNewOwner));
}

TEST(SecurityDescriptor, AnotherLabelThanTheParentsIsItsOwn) {
  TMemorySecurity security = Inherited();
  security.Label = kLowLabel;
  EXPECT_TRUE(HasOwnSecurity(SecurityBytes(security), Parent(), kNewOwner));
}

TEST(SecurityDescriptor, TheParentsByteForByteIsNotItsOwn) {
  const TBytes own = SecurityBytes({.Access = {{Text(kSystem)}}, .IsProtected = true});
  EXPECT_FALSE(HasOwnSecurity(own, own, kNewOwner));
}

TEST(SecurityDescriptor, NoneIsNotItsOwn) {
  EXPECT_FALSE(HasOwnSecurity({}, Parent(), kNewOwner));
}

TEST(SecurityDescriptor, EveryWantedPartIsCompared) {
  const TMemorySecurity wanted = {.Access = {{Text(kSystem)}}, .Label = kLowLabel};
  const TBytes bytes = SecurityBytes(wanted);
  EXPECT_TRUE(HasSecurity(bytes, bytes));
  TMemorySecurity other = wanted;
  other.Owner = kSystem;
  EXPECT_FALSE(HasSecurity(SecurityBytes(other), bytes));
  other = wanted;
  other.Group = u"S-1-5-32-545";
  EXPECT_FALSE(HasSecurity(SecurityBytes(other), bytes));
  other = wanted;
  other.IsProtected = true;
  EXPECT_FALSE(HasSecurity(SecurityBytes(other), bytes));
  other = wanted;
  other.Access[0].Mask = 1;
  EXPECT_FALSE(HasSecurity(SecurityBytes(other), bytes));
  other = wanted;
  other.Label = kMediumLabel;
  EXPECT_FALSE(HasSecurity(SecurityBytes(other), bytes));
}

}  // namespace

}  // namespace corvalt
