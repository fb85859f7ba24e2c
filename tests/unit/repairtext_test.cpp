// Repair and restore, as the registry before and after.

#include <gtest/gtest.h>

#include "tests/support/regtext.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

constexpr TextView kVendor = u"HKEY_CURRENT_USER\\Software\\Vendor";

constexpr std::string_view kBefore = R"([HKEY_CURRENT_USER\Software\Vendor]
"File"="C:\\gone.exe"
"Kept"="text"

[HKEY_CURRENT_USER\Software\Vendor\Kept]
@="default"

[HKEY_CURRENT_USER\Software\Vendor\Old]
"Count"=dword:00000003

[HKEY_CURRENT_USER\Software\Vendor\Old\Below]
"Bytes"=hex:01,02
)";

constexpr std::string_view kAfter = R"([HKEY_CURRENT_USER\Software\Vendor]
"Kept"="text"

[HKEY_CURRENT_USER\Software\Vendor\Kept]
@="default"
)";

// A value that comes back is the last of its key.
constexpr std::string_view kRestored = R"([HKEY_CURRENT_USER\Software\Vendor]
"Kept"="text"
"File"="C:\\gone.exe"

[HKEY_CURRENT_USER\Software\Vendor\Kept]
@="default"

[HKEY_CURRENT_USER\Software\Vendor\Old]
"Count"=dword:00000003

[HKEY_CURRENT_USER\Software\Vendor\Old\Below]
"Bytes"=hex:01,02
)";

}  // namespace

TEST(RepairText, AValueAndAKeyWithItsSubkeysGoAndComeBack) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, kBefore);
  TResultsNode* section = rig.AddSection(u"Files");
  rig.AddProblem(section, ValueProblem(kHkeyCurrentUser, u"\\Software\\Vendor", u"File"));
  rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\Software\\Vendor\\Old"));

  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kVendor), kAfter);

  rig.RestoreTheBackup();
  EXPECT_EQ(RegText(rig.System.Registry, kVendor), kRestored);
}

TEST(RepairText, WhatIsNotCheckedStays) {
  TRepairRig rig;
  LoadRegText(rig.System.Registry, kBefore);
  TResultsNode* section = rig.AddSection(u"Files");
  rig.Uncheck(rig.AddProblem(section, KeyProblem(kHkeyCurrentUser, u"\\Software\\Vendor\\Old")));

  rig.Repair();
  EXPECT_EQ(RegText(rig.System.Registry, kVendor), kBefore);
}

}  // namespace corvalt
