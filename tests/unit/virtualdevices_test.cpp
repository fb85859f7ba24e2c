#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kVxd = u"\\SYSTEM\\CurrentControlSet\\Services\\VxD";
constexpr TextView kDrivers = u"\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers";

Text Full(TextView key) {
  return u"HKEY_LOCAL_MACHINE" + Text(key);
}

ScanProblem Missing(TextView key, TextView name, TextView data) {
  return ValueProblem(kHkeyLocalMachine, key, name, data, Says(TextId::MissingFileOfValue, name, data));
}

void RegisterManyDrivers(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\here.vxd");
  rig.System.Registry.Set(Full(kDrivers), u"VDD", u"C:\\Old\\vdd.dll");
  rig.System.Registry.Set(Full(kDrivers), u"Here", u"C:\\Windows\\system32\\here.vxd");
  rig.System.Registry.SetRaw(Full(kDrivers), {u"List", kRegMultiSz, StringBytes(u"C:\\Old\\list.dll")});
  rig.System.Registry.Set(Full(kVxd) + u"\\_NDIS", u"StaticVxD", u"C:\\Old\\ndis.vxd");
  rig.System.Registry.Set(Full(kVxd) + u"\\JAVASUP", u"StaticVxD", u"javasup.vxd");
  rig.System.Registry.SetExpand(Full(kVxd) + u"\\VTD", u"StaticVxD", u"%windir%\\gone.vxd");
  rig.System.Registry.SetInteger(Full(kVxd) + u"\\VTD", u"Start", 0);
}

}  // namespace

TEST(VirtualDevices, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyDrivers(rig);

  rig.Run({Section::VirtualDevices});

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Virtual Devices", 20, kHkeyLocalMachine, 3)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(Text(kVxd) + u"\\VTD", u"StaticVxD", u"%windir%\\gone.vxd"),
                       Missing(Text(kVxd) + u"\\_NDIS", u"StaticVxD", u"C:\\Old\\ndis.vxd"),
                       Missing(kDrivers, u"VDD", u"C:\\Old\\vdd.dll")}));
}

TEST(VirtualDevices, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyDrivers(rig);

  rig.Run({Section::VirtualDevices});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(Text(kVxd) + u"\\_NDIS", u"StaticVxD", u"C:\\Old\\ndis.vxd"),
                       Missing(Text(kVxd) + u"\\VTD", u"StaticVxD", u"%windir%\\gone.vxd"),
                       Missing(kDrivers, u"VDD", u"C:\\Old\\vdd.dll")}));
}

TEST(VirtualDevices, NeitherKeyLeavesNoHeader) {
  TScanRig rig;

  rig.Run({Section::VirtualDevices});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(VirtualDevices, EachKeyMayBeMissing) {
  TScanRig rig;
  rig.System.Registry.Set(Full(kDrivers), u"VDD", u"C:\\Old\\vdd.dll");

  rig.Run({Section::VirtualDevices});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kDrivers, u"VDD", u"C:\\Old\\vdd.dll")}));
}

TEST(VirtualDevices, BelowAKeyNamedSystemOnlyTheControlSetInUseIsWalked) {
  TScanRig rig;
  rig.System.Registry.Set(Full(kVxd) + u"\\SYSTEM\\Other", u"", u"C:\\Old\\other.vxd");
  rig.System.Registry.Set(Full(kVxd) + u"\\SYSTEM\\CurrentControlSet", u"", u"C:\\Old\\set.vxd");

  rig.Run({Section::VirtualDevices});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(Text(kVxd) + u"\\SYSTEM\\CurrentControlSet", u"", u"C:\\Old\\set.vxd")}));
}

TEST(VirtualDevices, TheBarShowsZeroAndThenFifty) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i) {
    rig.System.Registry.Set(Full(kVxd), NumberedName(u"v", i), u"");
    rig.System.Registry.Set(Full(kDrivers), NumberedName(u"v", i), u"");
  }

  rig.Run({Section::VirtualDevices});

  // The 101st call is that of the second key's 41st value.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Virtual Devices",
                      {"item: SYSTEM\\CurrentControlSet\\Services\\VxD\\v050", "bar: 0",
                       "item: SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers\\v040", "bar: 50"}));
}

TEST(VirtualDevices, CancellingTheFirstWalkSkipsTheSecondAndEndsTheSection) {
  TScanRig rig;
  rig.System.Registry.Set(Full(kVxd), u"One", u"C:\\Old\\one.vxd");
  rig.System.Registry.Set(Full(kVxd), u"Two", u"C:\\Old\\two.vxd");
  rig.System.Registry.Set(Full(kDrivers), u"VDD", u"C:\\Old\\vdd.dll");

  rig.RunAndCancel({Section::VirtualDevices}, 3);

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Virtual Devices", 20, kHkeyLocalMachine, 1)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kVxd, u"One", u"C:\\Old\\one.vxd")}));

  const int reads = rig.Reads();
  rig.System.Registry.RemoveKey(Full(kDrivers));
  rig.RunAndCancel({Section::VirtualDevices}, 3);
  EXPECT_EQ(rig.Reads(), reads);
}

TEST(VirtualDevices, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RegisterManyDrivers(rig);
  ExpectConsistentWhereverCancelled(rig, Section::VirtualDevices);
}

}  // namespace corvalt
