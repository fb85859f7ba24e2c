// Links to classes: a class of either bitness counts, and only classes that were reported count as broken.

#include <gtest/gtest.h>

#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr std::int32_t kCustomControls = 4;
constexpr std::int32_t kFileAssociations = 6;
constexpr TextView kClass = u"{0A}";

class LinksToClasses : public ::testing::Test {
 protected:
  void Set(TextView key, TextView value, TextView name = {}) {
    Registry.Set(Text(u"HKEY_CLASSES_ROOT\\") + Text(key), name, value);
  }
  void LinkFromEverywhere() {
    Set(u".ext", u"App");
    Set(u"App\\CLSID", kClass);
    Set(u"App\\Shell\\open\\DropTarget", kClass, u"CLSID");
    Set(u"App\\shellex\\ContextMenuHandlers\\Named", kClass);
    Set(Text(u"App\\shellex\\PropertySheetHandlers\\") + Text(kClass), u"x");
    Set(u"Interface\\{1}\\ProxyStubClsid", kClass);
    Set(u"Interface\\{1}\\ProxyStubClsid32", kClass);
  }
  TStrings Keys() {
    TStrings keys;
    for (const ScanProblem& problem : Rig.Problems())
      keys.push_back(EncodeUtf8(problem.KeyPath));
    return keys;
  }

  TScanRig Rig;
  TMemoryRegistry& Registry = Rig.System.Registry;
};

}  // namespace

TEST_F(LinksToClasses, AClassThatOnly32BitProgramsSeeIsThere) {
  LinkFromEverywhere();
  Set(u"Wow6432Node\\CLSID\\{0A}", u"A component");
  Rig.Run({kCustomControls, kFileAssociations});
  EXPECT_EQ(Keys(), TStrings{});
}

TEST_F(LinksToClasses, AClassInNeitherViewIsMissing) {
  LinkFromEverywhere();
  Rig.Run({kCustomControls, kFileAssociations});
  EXPECT_EQ(Keys(), (TStrings{"\\Interface\\{1}\\ProxyStubClsid", "\\Interface\\{1}\\ProxyStubClsid32",
                              "\\App\\CLSID", "\\App\\CLSID", "\\App\\Shell\\open",
                              "\\App\\shellex\\ContextMenuHandlers\\Named",
                              "\\App\\shellex\\PropertySheetHandlers\\{0A}"}));
}

TEST_F(LinksToClasses, AClassThatWasReportedIsBrokenThoughTheOtherViewHasIt) {
  Set(u"App\\CLSID", kClass);
  Set(u"CLSID\\{0A}\\InprocServer32", u"C:\\gone.dll");
  Set(u"Wow6432Node\\CLSID\\{0A}", u"A component");
  Rig.Run({kCustomControls, kFileAssociations});
  EXPECT_EQ(Keys(), (TStrings{"\\CLSID\\{0A}", "\\App\\CLSID"}));
}

TEST_F(LinksToClasses, ATypeLibraryOfTheOtherViewDoesNotCount) {
  Set(u"Interface\\{1}\\TypeLib", u"{0B}");
  Set(u"Wow6432Node\\TypeLib\\{0B}\\1.0", u"A library");
  Rig.Run({kCustomControls});
  EXPECT_EQ(Keys(), TStrings{"\\Interface\\{1}"});
}

TEST_F(LinksToClasses, AnIgnoredClassDoesNotCondemnWhatLinksToIt) {
  LinkFromEverywhere();
  Set(u"CLSID\\{0A}\\InprocServer32", u"C:\\gone.dll");
  Set(u"Interface\\{1}\\TypeLib", u"{0B}");
  Set(u"TypeLib\\{0B}\\1.0\\0\\win32", u"C:\\gone.tlb.dll");
  Rig.Reg.IgnoreList = {u"\\clsid\\{0a}\\", u"\\typelib\\{0b}\\"};
  Rig.Run({kCustomControls, kFileAssociations});
  EXPECT_EQ(Keys(), TStrings{});
}

TEST_F(LinksToClasses, AnExcludedClassDoesNotCondemnWhatLinksToIt) {
  LinkFromEverywhere();
  Set(u"CLSID\\{0A}\\InprocServer32", u"C:\\gone.dll");
  Rig.Reg.BuiltInExclusions = {u"HKEY_CLASSES_ROOT\\CLSID\\{0A}"};
  Rig.Run({kCustomControls, kFileAssociations});
  EXPECT_EQ(Keys(), TStrings{});
}

}  // namespace corvalt
