// A repair and a restore of keys that carry more than values: odd letter case, class names, permissions of
// their own, volatile subkeys, old times. The double lets a program set all of it, as Windows does for one
// with the rights ("NtSetInformationKey", "SetKernelObjectSecurity", "RegCreateKeyEx", learn.microsoft.com).

#include <gtest/gtest.h>

#include "platform/memory/memorysecurity.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

constexpr TextView kVendor = u"HKEY_CURRENT_USER\\Software\\VenDor";
constexpr TextView kMachineClass = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\clsid\\{a}";
constexpr TextView kUserClass = u"HKEY_CURRENT_USER\\Software\\Classes\\clsid\\{b}";
constexpr std::uint64_t kOldTime = 0x01C0000000000000;

// The key's own access list, protected from what it would inherit.
TBytes OwnSecurity(TextView owner) {
  TMemorySecurity security;
  security.Owner = owner;
  security.Access = {{u"S-1-5-18"}, {u"S-1-5-32-545"}};
  security.IsProtected = true;
  return SecurityBytes(security);
}

class OddKeys : public testing::Test {
 protected:
  OddKeys() {
    BuildTree(Text(kVendor) + u"\\oLd");
    BuildTree(Text(kMachineClass));
    BuildTree(Text(kUserClass));
    TResultsNode* section = m_rig.AddSection(u"Broken");
    m_rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\SOFTWARE\\Vendor\\OLD"));
    m_rig.AddProblem(section, KeyProblem(kHkeyClassesRoot, u"\\CLSID\\{A}"));
    m_rig.AddProblem(section, KeyProblem(kHkeyClassesRoot, u"\\CLSID\\{B}"));
  }

  void BuildTree(const Text& top) {
    TMemoryRegistry& registry = m_rig.System.Registry;
    const Text classic = top + u"\\InProcServer32";
    const Text guarded = classic + u"\\guArded";
    const Text fleeting = top + u"\\FLEETING";
    registry.Set(classic, u"ThreadingMODEL", u"Both");
    registry.Set(guarded, u"", u"x");
    registry.Set(fleeting + u"\\Below", u"state", u"1");
    registry.SetClass(top, u"Outer \u0416");
    registry.SetClass(guarded, u"Inner");
    registry.MakeVolatile(fleeting);
    registry.MakeVolatile(fleeting + u"\\Below");
    registry.SetSecurity(top, OwnSecurity(u"S-1-5-32-544"));
    registry.SetSecurity(guarded, OwnSecurity(u"S-1-5-21-1-2-3-1001"));
    std::uint64_t time = kOldTime;
    for (const Text& key : {guarded, classic, fleeting + u"\\Below", fleeting, top})
      registry.SetLastWrite(key, time++);
  }

  std::vector<std::string> Dump() const {
    std::vector<std::string> lines;
    for (const Text& key : {Text(kVendor) + u"\\oLd", Text(kMachineClass), Text(kUserClass)}) {
      for (std::string& line : m_rig.System.Registry.Dump(key, TDumpDetail::Attributes))
        lines.push_back(std::move(line));
    }
    return lines;
  }

  TRepairRig m_rig;
};

}  // namespace

TEST_F(OddKeys, ComeBackWithoutAnyDifference) {
  const std::vector<std::string> before = Dump();
  ASSERT_EQ(before.size(), 39U);
  m_rig.Repair();
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 3U);
  EXPECT_TRUE(Dump().empty());
  EXPECT_EQ(m_rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_EQ(Dump(), before);
}

// "RegCreateKeyEx", learn.microsoft.com: what is created in a volatile key must be volatile
// (ERROR_CHILD_MUST_BE_VOLATILE), and so must the parents that are missing there.
TEST(FleetingKeys, ComeBackBelowAVolatileKeyAlsoWithoutTheirParents) {
  for (const bool tellsVolatility : {true, false}) {
    TRepairRig rig;
    TMemoryRegistry& registry = rig.System.Registry;
    registry.TellsVolatility = tellsVolatility;
    const Text session = u"HKEY_CURRENT_USER\\Session";
    const Text broken = session + u"\\1\\Apps\\Broken";
    registry.Set(broken, u"file", u"C:\\gone");
    for (const TextView below : {u"", u"\\1", u"\\1\\Apps", u"\\1\\Apps\\Broken"})
      registry.MakeVolatile(session + Text(below));
    const std::vector<std::string> before = registry.Dump(broken);
    rig.AddProblem(rig.AddSection(u"Broken"), KeyProblem(kHkeyCurrentUser, u"\\Session\\1\\Apps\\Broken"));
    rig.Repair();
    ASSERT_EQ(rig.Outcome.Deleted.size(), 1U);
    registry.RemoveKey(session + u"\\1");
    EXPECT_EQ(rig.RestoreTheBackup(), TRestoreEnd::Restored) << tellsVolatility;
    EXPECT_EQ(registry.Dump(broken), before) << tellsVolatility;
    for (const TextView below : {u"\\1", u"\\1\\Apps", u"\\1\\Apps\\Broken"}) {
      const TMemoryKey* key = registry.KeyAt(session + Text(below));
      EXPECT_TRUE(key != nullptr && key->IsVolatile) << EncodeUtf8(below) << tellsVolatility;
    }
  }
}

// As a user without the rights gets them back: owners of others and times stay as the system gave them.
TEST_F(OddKeys, ComeBackWithTheirValuesWhereTheSystemLetsAProgramSetNothing) {
  TMemoryRegistry& registry = m_rig.System.Registry;
  const auto values = [&registry] {
    std::vector<std::string> lines = registry.Dump(kVendor);
    for (const TextView key : {kMachineClass, kUserClass}) {
      for (std::string& line : registry.Dump(key))
        lines.push_back(std::move(line));
    }
    return lines;
  };
  registry.TellsVolatility = false;
  registry.SetsTimes = false;
  registry.SetsOwners = false;
  const std::vector<std::string> before = values();
  m_rig.Repair();
  EXPECT_EQ(m_rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_EQ(values(), before);
}

}  // namespace corvalt
