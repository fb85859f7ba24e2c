// Keys whose names can be enumerated only in part, and counts that are none: neither is "empty" or "unused".

#include <gtest/gtest.h>

#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

constexpr TextView kMicrosoft = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
constexpr TextView kExplorer = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";

class PartListings : public ::testing::Test {
 protected:
  // Problems of a section before and after the enumeration of this key's names fails.
  void ExpectReportedOnlyIfListed(std::int32_t section, TextView key) {
    Rig.Run({section});
    EXPECT_EQ(Rig.Problems().size(), 1u);
    Registry.FailListing(key);
    Rig.Run({section});
    EXPECT_EQ(Rig.Problems().size(), 0u);
  }

  TScanRig Rig;
  TMemoryRegistry& Registry = Rig.System.Registry;
};

}  // namespace

TEST_F(PartListings, AVendorsKeyIsNotEmpty) {
  Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Vendor\\Below");
  ExpectReportedOnlyIfListed(3, u"HKEY_CURRENT_USER\\Software\\Vendor\\Below");
}

TEST_F(PartListings, AnExtensionIsNotEmpty) {
  Registry.AddKey(Text(kExplorer) + u"\\FileExts\\.abc");
  ExpectReportedOnlyIfListed(5, Text(kExplorer) + u"\\FileExts\\.abc");
}

TEST_F(PartListings, AnExtensionsListOfProgramsIsNotEmpty) {
  Registry.AddKey(Text(kExplorer) + u"\\FileExts\\.abc\\OpenWithList");
  ExpectReportedOnlyIfListed(5, Text(kExplorer) + u"\\FileExts\\.abc\\OpenWithList");
}

TEST_F(PartListings, AServerKeyIsNotEmpty) {
  Registry.AddKey(u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32");
  ExpectReportedOnlyIfListed(4, u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32");
}

TEST_F(PartListings, AnEntryOfTheUninstallListMayHaveAnUninstaller) {
  Registry.Set(Text(kMicrosoft) + u"\\Uninstall\\App", u"DisplayName", u"App");
  ExpectReportedOnlyIfListed(11, Text(kMicrosoft) + u"\\Uninstall\\App");
}

TEST_F(PartListings, AMenuFolderMayHaveFoldersBelowIt) {
  Registry.AddKey(Text(kExplorer) + u"\\MenuOrder\\Start Menu2\\Programs\\Gone");
  ExpectReportedOnlyIfListed(7, Text(kExplorer) + u"\\MenuOrder\\Start Menu2\\Programs\\Gone");
}

TEST_F(PartListings, ACountOfAnotherSizeIsNotZero) {
  Rig.System.Disk.AddFile(u"C:\\there.dll");
  Rig.System.Disk.AddFile(u"C:\\unused.dll");
  const Text key = Text(kMicrosoft) + u"\\SharedDLLs";
  Registry.SetRaw(key, {u"C:\\there.dll", kRegDword, {0, 0}});
  Registry.SetInteger(key, u"C:\\unused.dll", 0);
  Rig.Run({9});
  ASSERT_EQ(Rig.Problems().size(), 1u);
  EXPECT_EQ(Rig.Problems()[0].ValueName, u"C:\\unused.dll");
}

TEST_F(PartListings, AMissingFileWithACountOfAnotherSizeIsReported) {
  Registry.SetRaw(Text(kMicrosoft) + u"\\SharedDLLs", {u"C:\\gone.dll", kRegDword, {}});
  Rig.Run({9});
  ASSERT_EQ(Rig.Problems().size(), 1u);
  EXPECT_EQ(Rig.Problems()[0].ValueData, u"1");
}

}  // namespace corvalt
