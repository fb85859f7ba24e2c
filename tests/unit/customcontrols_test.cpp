// Custom Controls.

#include <gtest/gtest.h>

#include "tests/support/problemfields.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr std::int32_t kControls = 4;

void Set(TScanRig& rig, TextView key, TextView text, TextView name = {}) {
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\" + Text(key), name, text);
}

void AddKey(TScanRig& rig, TextView key) {
  rig.System.Registry.AddKey(u"HKEY_CLASSES_ROOT\\" + Text(key));
}

// What the section finds, as "KeyPath | ValueData | Description".
TStrings Found(TScanRig& rig) {
  rig.Run({kControls});
  TStrings lines;
  for (const ScanProblem& problem : rig.Problems()) {
    EXPECT_EQ(problem.RootKey, kHkeyClassesRoot);
    EXPECT_EQ(problem.Kind, TProblemKind::Key);
    EXPECT_EQ(problem.ImageIndex, -1);
    EXPECT_EQ(problem.ValueName, u"");
    lines.push_back(EncodeUtf8(problem.KeyPath + u" | " + problem.ValueData + u" | " + problem.Description));
  }
  return lines;
}

// Whether a class's server with this text passes.
bool ServerPasses(TScanRig& rig, TextView text) {
  Set(rig, u"CLSID\\{c}\\InprocServer32", text);
  return Found(rig).empty();
}

TStrings Refreshes(const TScanRig& rig) {
  TStrings refreshes;
  for (const std::string& update : rig.Dialog.Updates) {
    if (update.starts_with("bar") || (update.starts_with("item") && update != "item: "))
      refreshes.push_back(update);
  }
  return refreshes;
}

Text Numbered(TextView prefix, int number) {
  const Text digits = DecimalText(number);
  return Text(prefix) + Text(3 - digits.size(), u'0') + digits;
}

}  // namespace

// The file of a component

TEST(ComponentFile, AMissingFileOnADriveIsBroken) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\here.dll");
  EXPECT_TRUE(ServerPasses(rig, u"C:\\App\\here.dll"));
  for (const TextView text : {u"C:\\App\\gone.dll", u"C:\\App\\gone.exe", u"C:\\App\\gone.ocx",
                              u"C:\\App\\gone.ico", u"c:\\app\\GONE.Dll"}) {
    EXPECT_FALSE(ServerPasses(rig, text)) << EncodeUtf8(text);
  }
}

TEST(ComponentFile, AnyOtherExtensionIsAccepted) {
  TScanRig rig;
  for (const TextView text : {u"C:\\App\\gone.sys", u"C:\\App\\gone", u"C:\\App\\gone.tlb", u""})
    EXPECT_TRUE(ServerPasses(rig, Text(text) + u" ")) << EncodeUtf8(text);
}

TEST(ComponentFile, ATextWithoutADriveIsAccepted) {
  TScanRig rig;
  EXPECT_TRUE(ServerPasses(rig, u"x.dll"));
  EXPECT_TRUE(ServerPasses(rig, u"\\App\\x.dll"));
  EXPECT_TRUE(ServerPasses(rig, u"%Vendor%\\x.dll"));
}

TEST(ComponentFile, ANetworkPathIsAccepted) {
  TScanRig rig;
  EXPECT_TRUE(ServerPasses(rig, u"\\\\server\\share\\c:\\gone.dll"));
  EXPECT_TRUE(ServerPasses(rig, u"C:\\\\gone.dll"));
}

TEST(ComponentFile, AnArgumentAtTheStartIsAccepted) {
  TScanRig rig;
  EXPECT_TRUE(ServerPasses(rig, u"%1 C:\\gone.dll"));
  EXPECT_TRUE(ServerPasses(rig, u"\"%1\" C:\\gone.dll"));
  EXPECT_FALSE(ServerPasses(rig, u"ab%1 C:\\gone.dll"));
}

TEST(ComponentFile, KnownReferencesAreExpanded) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\here.dll");
  EXPECT_TRUE(ServerPasses(rig, u"%SystemRoot%\\system32\\here.dll"));
  EXPECT_FALSE(ServerPasses(rig, u"%SystemRoot%\\system32\\gone.dll"));
  EXPECT_FALSE(ServerPasses(rig, u"%TMP%\\gone.dll"));
}

TEST(ComponentFile, WhatStandsBeforeTheDriveAndAfterTheExtensionIsCutOff) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\My App\\here.exe");
  EXPECT_TRUE(ServerPasses(rig, u"\"C:\\My App\\here.exe\" /automation"));
  EXPECT_TRUE(ServerPasses(rig, u"run @C:\\My App\\here.exe,-12"));
  EXPECT_TRUE(ServerPasses(rig, u"C:\\My App\\here.exerest"));
  EXPECT_FALSE(ServerPasses(rig, u"\"C:\\My App\\gone.exe\" /automation"));
}

TEST(ComponentFile, ACommaIsPartOfTheName) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\a,b.dll");
  EXPECT_TRUE(ServerPasses(rig, u"C:\\a,b.dll"));
  rig.System.Disk.AddFile(u"C:\\c");
  EXPECT_FALSE(ServerPasses(rig, u"C:\\c,d.dll"));
}

TEST(ComponentFile, ASlashEndsTheName) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\tool");
  EXPECT_TRUE(ServerPasses(rig, u"C:\\tool /load:x.dll"));
}

TEST(ComponentFile, AnExeCountsBeforeADllWhereverItStands) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\a.dll");
  // Cut behind ".exe": "C:\App\a.dll x.exe" begins with an existing file.
  EXPECT_TRUE(ServerPasses(rig, u"C:\\App\\a.dll x.exe"));
  // "C:\App\gone.dll\x.exe" is there as a whole though the .dll alone is not.
  rig.System.Disk.AddFile(u"C:\\App\\gone.dll\\x.exe");
  EXPECT_TRUE(ServerPasses(rig, u"C:\\App\\gone.dll\\x.exe"));
  // Cut behind the .exe, not behind the .dll that exists.
  rig.System.Disk.AddFile(u"C:\\App\\b.dll");
  EXPECT_FALSE(ServerPasses(rig, u"C:\\App\\b.dll\\y.exe"));
}

TEST(ComponentFile, DllCountsBeforeOcxAndOcxBeforeIco) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\a.ocx");
  EXPECT_FALSE(ServerPasses(rig, u"C:\\App\\a.ocx\\b.dll"));
  rig.System.Disk.AddFile(u"C:\\App\\c.ico");
  EXPECT_FALSE(ServerPasses(rig, u"C:\\App\\c.ico\\b.ocx"));
}

TEST(ComponentFile, TheFirstOccurrenceOfTheExtensionCounts) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\a.dll");
  EXPECT_TRUE(ServerPasses(rig, u"C:\\App\\a.dll\\b.dll"));
}

TEST(ComponentFile, AColonBehindTheExtensionIsAccepted) {
  TScanRig rig;
  EXPECT_TRUE(ServerPasses(rig, u"x.dll,C:\\gone.dll"));
}

TEST(ComponentFile, OnlyTheFirstColonCounts) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\here.dll");
  // Cut from the letter before the first colon: no path at all.
  EXPECT_FALSE(ServerPasses(rig, u"file:C:\\here.dll"));
}

TEST(ComponentFile, AColonAtTheVeryFrontIsJudgedFromThere) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\here.dll");
  EXPECT_FALSE(ServerPasses(rig, u":\\here.dll"));
}

TEST(ComponentFile, ADriveThatIsNotFixedIsAccepted) {
  TScanRig rig;
  EXPECT_TRUE(ServerPasses(rig, u"E:\\gone.dll"));
}

// Classes: icons

TEST(ClassIcons, AnEmptyDefaultValueIsReportedThoughOtherValuesExist) {
  TScanRig rig;
  Set(rig, u"CLSID\\{c}\\DefaultIcon", u"x", u"Other");
  AddKey(rig, u"CLSID\\{c}\\DefaultIcon\\Sub");
  EXPECT_EQ(Found(rig), TStrings{"\\CLSID\\{c}\\DefaultIcon |  | 11044"});
}

TEST(ClassIcons, AMissingFileIsReportedOnTheIcon) {
  TScanRig rig;
  Set(rig, u"CLSID\\{c}\\DefaultIcon", u"C:\\gone.ico,0");
  EXPECT_EQ(Found(rig), TStrings{"\\CLSID\\{c}\\DefaultIcon | C:\\gone.ico,0 | 11046(C:\\gone.ico,0)"});
}

TEST(ClassIcons, DoNotMakeTheClassBroken) {
  TScanRig rig;
  Set(rig, u"CLSID\\{c}\\DefaultIcon", u"C:\\gone.ico");
  AddKey(rig, u"CLSID\\{d}\\DefaultIcon");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"{c}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{d}");
  EXPECT_EQ(Found(rig).size(), 2u);
}

// Classes: servers

TEST(Servers, AMissingFileIsReportedOnTheClass) {
  TScanRig rig;
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"C:\\WINDOWS\\system32\\x.dll");
  EXPECT_EQ(Found(rig), TStrings{"\\CLSID\\{1} | C:\\WINDOWS\\system32\\x.dll | "
                                 "11050(C:\\WINDOWS\\system32\\x.dll)"});
}

TEST(Servers, EachBrokenServerKeyIsReportedInTheFixedOrder) {
  TScanRig rig;
  Set(rig, u"CLSID\\{1}\\LocalServer32", u"C:\\d.exe");
  Set(rig, u"CLSID\\{1}\\LocalServer", u"C:\\c.exe");
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"C:\\b.dll");
  Set(rig, u"CLSID\\{1}\\InprocServer", u"C:\\a.dll");
  Set(rig, u"CLSID\\{1}\\DefaultIcon", u"C:\\e.ico");
  EXPECT_EQ(Found(rig), (TStrings{"\\CLSID\\{1}\\DefaultIcon | C:\\e.ico | 11046(C:\\e.ico)",
                                  "\\CLSID\\{1} | C:\\a.dll | 11050(C:\\a.dll)",
                                  "\\CLSID\\{1} | C:\\b.dll | 11050(C:\\b.dll)",
                                  "\\CLSID\\{1} | C:\\c.exe | 11051(C:\\c.exe)",
                                  "\\CLSID\\{1} | C:\\d.exe | 11051(C:\\d.exe)"}));
}

TEST(Servers, AKeyWithNothingOrOnlyAnEmptyDefaultIsReportedAsEmpty) {
  TScanRig rig;
  AddKey(rig, u"CLSID\\{1}\\InprocServer32");
  Set(rig, u"CLSID\\{2}\\LocalServer", u"");
  EXPECT_EQ(Found(rig), (TStrings{"\\CLSID\\{1} |  | 11044", "\\CLSID\\{2} |  | 11044"}));
}

TEST(Servers, ADefaultValueThatIsNoTextReadsEmpty) {
  TScanRig rig;
  rig.System.Registry.SetInteger(u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32", u"", 5);
  EXPECT_EQ(Found(rig), TStrings{"\\CLSID\\{1} |  | 11044"});
}

TEST(Servers, AnEmptyKeyWithAnotherValueOrASubKeyIsNot) {
  TScanRig rig;
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"");
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"Apartment", u"ThreadingModel");
  Set(rig, u"CLSID\\{2}\\InprocServer32", u"Apartment", u"ThreadingModel");
  AddKey(rig, u"CLSID\\{3}\\InprocServer32\\1.0");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Servers, AKeyThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"C:\\gone.dll");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Servers, BothKindsOfFaultMakeTheClassBroken) {
  TScanRig rig;
  Set(rig, u"CLSID\\{1}\\InprocServer32", u"C:\\gone.dll");
  AddKey(rig, u"CLSID\\{2}\\LocalServer32");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"{1}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{2}");
  EXPECT_EQ(Found(rig),
            (TStrings{"\\CLSID\\{1} | C:\\gone.dll | 11050(C:\\gone.dll)", "\\CLSID\\{2} |  | 11044",
                      "\\Interface\\{i}\\ProxyStubClsid | {1} | 11045({1})",
                      "\\Interface\\{i}\\ProxyStubClsid32 | {2} | 11045({2})"}));
}

// Type libraries

TEST(TypeLibraries, AHelpFolderThatIsAFolderIsAccepted) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\HELPDIR", u"C:\\Gone\\Help");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AHelpFolderThatNamesAMissingFileIsReportedWithoutData) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\HELPDIR", u"C:\\Gone\\x.dll");
  EXPECT_EQ(Found(rig), TStrings{"\\Typelib\\{t}\\1.0\\HELPDIR |  | 11053(C:\\Gone\\x.dll)"});
}

TEST(TypeLibraries, AHelpFolderWithFewerThanTwoValuesIsEmpty) {
  TScanRig rig;
  AddKey(rig, u"Typelib\\{1}\\1.0\\HELPDIR");
  Set(rig, u"Typelib\\{2}\\1.0\\HELPDIR", u"");
  Set(rig, u"Typelib\\{3}\\1.0\\HELPDIR", u"x", u"Named");
  EXPECT_EQ(Found(rig),
            (TStrings{"\\Typelib\\{1}\\1.0\\HELPDIR |  | 11044", "\\Typelib\\{2}\\1.0\\HELPDIR |  | 11044",
                      "\\Typelib\\{3}\\1.0\\HELPDIR |  | 11044"}));
}

TEST(TypeLibraries, AHelpFolderWithTwoValuesOrASubKeyIsNot) {
  TScanRig rig;
  Set(rig, u"Typelib\\{1}\\1.0\\HELPDIR", u"");
  Set(rig, u"Typelib\\{1}\\1.0\\HELPDIR", u"x", u"Named");
  AddKey(rig, u"Typelib\\{2}\\1.0\\HELPDIR\\Sub");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AHelpFolderDoesNotMakeTheLibraryBroken) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\HELPDIR", u"C:\\Gone\\x.dll");
  Set(rig, u"Typelib\\{u}\\1.0\\HELPDIR", u"");
  Set(rig, u"Interface\\{i}\\TypeLib", u"{t}");
  Set(rig, u"Interface\\{j}\\TypeLib", u"{u}");
  EXPECT_EQ(Found(rig).size(), 2u);
}

TEST(TypeLibraries, AMissingLibraryFileIsReportedOnTheWholeLibrary) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\409\\win32", u"C:\\gone.ocx");
  EXPECT_EQ(Found(rig), TStrings{"\\Typelib\\{t} | C:\\gone.ocx | 11055(C:\\gone.ocx)"});
}

TEST(TypeLibraries, EveryVersionAndLocaleIsChecked) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\0\\win32", u"C:\\a.dll");
  Set(rig, u"Typelib\\{t}\\1.0\\9\\win32", u"C:\\b.dll");
  Set(rig, u"Typelib\\{t}\\2.0\\0\\win32", u"C:\\c.dll");
  EXPECT_EQ(Found(rig), (TStrings{"\\Typelib\\{t} | C:\\a.dll | 11055(C:\\a.dll)",
                                  "\\Typelib\\{t} | C:\\b.dll | 11055(C:\\b.dll)",
                                  "\\Typelib\\{t} | C:\\c.dll | 11055(C:\\c.dll)"}));
}

TEST(TypeLibraries, OnlyWholeDecimalNamesAreLocales) {
  TScanRig rig;
  for (const TextView name : {u"FLAGS", u"HELPDIRS", u"40c", u"0x409", u"1.5", u"", u"1 ", u"2147483648"}) {
    if (!name.empty())
      Set(rig, u"Typelib\\{t}\\1.0\\" + Text(name) + u"\\win32", u"C:\\gone.dll");
  }
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, ASignAndEverySizeOf32BitsMakeALocale) {
  TScanRig rig;
  for (const TextView name : {u"+9", u"-1", u"0409", u"2147483647", u"-2147483648"})
    Set(rig, u"Typelib\\{t}\\1.0\\" + Text(name) + u"\\win32", u"C:\\gone.dll");
  EXPECT_EQ(Found(rig).size(), 5u);
}

TEST(TypeLibraries, AnEmptyWin32KeyIsReportedOnItself) {
  TScanRig rig;
  AddKey(rig, u"Typelib\\{1}\\1.0\\0\\win32");
  Set(rig, u"Typelib\\{2}\\1.0\\0\\win32", u"");
  Set(rig, u"Typelib\\{3}\\1.0\\0\\win32", u"x", u"Named");
  EXPECT_EQ(Found(rig),
            (TStrings{"\\Typelib\\{1}\\1.0\\0\\win32 |  | 11054(\\Typelib\\{1}\\1.0\\0\\win32)",
                      "\\Typelib\\{2}\\1.0\\0\\win32 |  | 11054(\\Typelib\\{2}\\1.0\\0\\win32)",
                      "\\Typelib\\{3}\\1.0\\0\\win32 |  | 11054(\\Typelib\\{3}\\1.0\\0\\win32)"}));
}

TEST(TypeLibraries, AWin32KeyWithTwoValuesOrASubKeyIsNotEmpty) {
  TScanRig rig;
  Set(rig, u"Typelib\\{1}\\1.0\\0\\win32", u"");
  Set(rig, u"Typelib\\{1}\\1.0\\0\\win32", u"x", u"Named");
  AddKey(rig, u"Typelib\\{2}\\1.0\\0\\win32\\Sub");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, ALocaleWithoutWin32KeyIsSkipped) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\0\\win64", u"C:\\gone.dll");
  AddKey(rig, u"Typelib\\{t}\\1.0\\9");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AVersionThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\0\\win32", u"C:\\gone.dll");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\Typelib\\{t}\\1.0");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, BothKindsOfFaultMakeTheLibraryBroken) {
  TScanRig rig;
  Set(rig, u"Typelib\\{t}\\1.0\\0\\win32", u"C:\\gone.dll");
  AddKey(rig, u"Typelib\\{u}\\1.0\\0\\win32");
  Set(rig, u"Interface\\{i}\\TypeLib", u"{t}");
  Set(rig, u"Interface\\{j}\\TypeLib", u"{u}");
  EXPECT_EQ(Found(rig),
            (TStrings{"\\Typelib\\{t} | C:\\gone.dll | 11055(C:\\gone.dll)",
                      "\\Typelib\\{u}\\1.0\\0\\win32 |  | 11054(\\Typelib\\{u}\\1.0\\0\\win32)",
                      "\\Interface\\{i} | {t} | 11052({t})", "\\Interface\\{j} | {u} | 11052({u})"}));
}

// Interfaces

TEST(Interfaces, ALinkToAMissingLibraryIsReportedOnTheInterface) {
  TScanRig rig;
  Set(rig, u"Interface\\{i}\\TypeLib", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings{"\\Interface\\{i} | {gone} | 11052({gone})"});
}

TEST(Interfaces, AMissingProxyClassIsReportedOnItsOwnKey) {
  TScanRig rig;
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{y}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"{x}");
  EXPECT_EQ(Found(rig), (TStrings{"\\Interface\\{i}\\ProxyStubClsid | {x} | 11045({x})",
                                  "\\Interface\\{i}\\ProxyStubClsid32 | {y} | 11045({y})"}));
}

TEST(Interfaces, ExistingOrEmptyLinksPass) {
  TScanRig rig;
  Set(rig, u"CLSID\\{C}", u"A class");
  Set(rig, u"Typelib\\{T}", u"A library");
  Set(rig, u"Interface\\{i}\\TypeLib", u"{t}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{c}");
  AddKey(rig, u"Interface\\{j}\\TypeLib");
  AddKey(rig, u"Interface\\{k}");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Interfaces, AReportedIdentifierIsBrokenByItsLetterCase) {
  TScanRig rig;
  Set(rig, u"CLSID\\{C}\\InprocServer32", u"C:\\gone.dll");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"{c}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{C}");
  EXPECT_EQ(Found(rig), (TStrings{"\\CLSID\\{C} | C:\\gone.dll | 11050(C:\\gone.dll)",
                                  "\\Interface\\{i}\\ProxyStubClsid32 | {C} | 11045({C})"}));
}

TEST(Interfaces, APartOfAReportedIdentifierIsBrokenToo) {
  TScanRig rig;
  Set(rig, u"CLSID\\{abcd}\\InprocServer32", u"C:\\gone.dll");
  Set(rig, u"Typelib\\bc", u"A library");
  Set(rig, u"Interface\\{i}\\TypeLib", u"bc");
  EXPECT_EQ(Found(rig), (TStrings{"\\CLSID\\{abcd} | C:\\gone.dll | 11050(C:\\gone.dll)",
                                  "\\Interface\\{i} | bc | 11052(bc)"}));
}

TEST(Interfaces, AllThreeLinksOfOneAreReported) {
  TScanRig rig;
  Set(rig, u"Interface\\{i}\\TypeLib", u"{t}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid", u"{x}");
  Set(rig, u"Interface\\{i}\\ProxyStubClsid32", u"{x}");
  EXPECT_EQ(Found(rig), (TStrings{"\\Interface\\{i} | {t} | 11052({t})",
                                  "\\Interface\\{i}\\ProxyStubClsid | {x} | 11045({x})",
                                  "\\Interface\\{i}\\ProxyStubClsid32 | {x} | 11045({x})"}));
}

// Progress

TEST(CustomControlsProgress, EachPassFillsItsThirdOfTheBar) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i) {
    AddKey(rig, u"CLSID\\" + Numbered(u"c", i));
    AddKey(rig, u"Typelib\\" + Numbered(u"t", i));
    AddKey(rig, u"Interface\\" + Numbered(u"i", i));
  }
  rig.Run({kControls});
  // Call 51: 51 x 33 / 60 is 28.05. Call 101 is the 41st library: 22.55 and 33. Call 151 is the 31st
  // interface: 17.05 and 66.
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: CLSID\\c050", "bar: 28", "item: Typelib\\t040", "bar: 56",
                                      "item: Interface\\i030", "bar: 83"}));
}

TEST(CustomControlsProgress, AHalfPercentGoesToTheEvenNumber) {
  TScanRig rig;
  // 51 x 33 / 66 is exactly 25.5, which goes to 26; 101 x 33 / 66 is 50.5, beyond the pass.
  for (int i = 0; i < 66; ++i)
    AddKey(rig, u"CLSID\\" + Numbered(u"c", i));
  rig.Run({kControls});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: CLSID\\c050", "bar: 26"}));
}

TEST(CustomControlsProgress, EndsAtNinetyNine) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    AddKey(rig, u"Interface\\" + Numbered(u"i", i));
  rig.Run({kControls});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: Interface\\i050", "bar: 99"}));
}

// A larger registry, its problems listed by hand

TEST(CustomControls, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\ole32.dll");
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  // Classes
  Set(rig, u"CLSID\\{00}\\InprocServer32", u"ole32.dll");
  Set(rig, u"CLSID\\{00}\\InprocServer32", u"Both", u"ThreadingModel");
  Set(rig, u"CLSID\\{01}\\InprocServer32", u"%SystemRoot%\\system32\\ole32.dll");
  Set(rig, u"CLSID\\{02}\\LocalServer32", u"\"C:\\Program Files\\App\\app.exe\" /automation");
  Set(rig, u"CLSID\\{02}\\DefaultIcon", u"C:\\Program Files\\App\\app.exe,1");
  Set(rig, u"CLSID\\{03}\\InprocServer", u"C:\\Gone\\a.dll");
  Set(rig, u"CLSID\\{03}\\InprocServer32", u"C:\\Gone\\b.dll");
  Set(rig, u"CLSID\\{04}\\LocalServer32", u"C:\\Gone\\c.exe -x");
  Set(rig, u"CLSID\\{04}\\DefaultIcon", u"");
  Set(rig, u"CLSID\\{05}\\InprocServer32", u"");
  Set(rig, u"CLSID\\{06}\\InprocServer32", u"C:\\Gone\\ignored.dll");
  Set(rig, u"CLSID\\{07}\\DefaultIcon", u"D:\\gone.ico");
  Set(rig, u"CLSID\\{08}\\DefaultIcon", u"C:\\Gone\\x.ICO,-5");
  // Type libraries
  Set(rig, u"Typelib\\{10}\\1.0\\0\\win32", u"%SystemRoot%\\system32\\ole32.dll\\2");
  Set(rig, u"Typelib\\{10}\\1.0\\HELPDIR", u"%SystemRoot%\\help");
  Set(rig, u"Typelib\\{11}\\1.0\\0\\win32", u"C:\\Gone\\lib.ocx\\3");
  Set(rig, u"Typelib\\{11}\\1.0\\FLAGS", u"0");
  Set(rig, u"Typelib\\{11}\\1.1\\409\\win32", u"", u"Named");
  Set(rig, u"Typelib\\{11}\\1.1\\HELPDIR", u"C:\\Gone\\help.exe");
  AddKey(rig, u"Typelib\\{12}\\1.0\\HELPDIR");
  // Interfaces
  Set(rig, u"Interface\\{20}\\TypeLib", u"{10}");
  Set(rig, u"Interface\\{20}\\ProxyStubClsid32", u"{00}");
  Set(rig, u"Interface\\{21}\\TypeLib", u"{11}");
  Set(rig, u"Interface\\{21}\\ProxyStubClsid", u"{03}");
  Set(rig, u"Interface\\{22}\\ProxyStubClsid32", u"{05}");
  Set(rig, u"Interface\\{23}\\ProxyStubClsid32", u"{06}");
  Set(rig, u"Interface\\{24}\\ProxyStubClsid32", u"{99}");
  Set(rig, u"Interface\\{25}\\TypeLib", u"{12}");
  Set(rig, u"Interface\\{25}\\ProxyStubClsid32", u"{08}");
  // An ignored class is not broken for those that link to it.
  rig.Reg.IgnoreList = {u"hkey_classes_root\\clsid\\{06}"};

  rig.Run({kControls});

  const std::string root = "80000000 | ";
  const std::string key = " | kind 1, image -1";
  EXPECT_EQ(
      AllFields(rig.Problems()),
      Usual({
          root + "\\CLSID\\{03} |  | C:\\Gone\\a.dll | 11050(C:\\Gone\\a.dll)" + key,
          root + "\\CLSID\\{03} |  | C:\\Gone\\b.dll | 11050(C:\\Gone\\b.dll)" + key,
          root + "\\CLSID\\{04}\\DefaultIcon |  |  | 11044" + key,
          root + "\\CLSID\\{04} |  | C:\\Gone\\c.exe -x | 11051(C:\\Gone\\c.exe -x)" + key,
          root + "\\CLSID\\{05} |  |  | 11044" + key,
          root + "\\CLSID\\{08}\\DefaultIcon |  | C:\\Gone\\x.ICO,-5 | 11046(C:\\Gone\\x.ICO,-5)" + key,
          root + "\\Typelib\\{11} |  | C:\\Gone\\lib.ocx\\3 | 11055(C:\\Gone\\lib.ocx\\3)" + key,
          root + "\\Typelib\\{11}\\1.1\\HELPDIR |  |  | 11053(C:\\Gone\\help.exe)" + key,
          root + "\\Typelib\\{11}\\1.1\\409\\win32 |  |  | 11054(\\Typelib\\{11}\\1.1\\409\\win32)" + key,
          root + "\\Typelib\\{12}\\1.0\\HELPDIR |  |  | 11044" + key,
          root + "\\Interface\\{21} |  | {11} | 11052({11})" + key,
          root + "\\Interface\\{21}\\ProxyStubClsid |  | {03} | 11045({03})" + key,
          root + "\\Interface\\{22}\\ProxyStubClsid32 |  | {05} | 11045({05})" + key,
          root + "\\Interface\\{24}\\ProxyStubClsid32 |  | {99} | 11045({99})" + key,
      }));
  EXPECT_EQ(AllFields(rig.Headers()), TStrings{HeaderFields("0", "Custom Controls", 6, 14)});
}

}  // namespace corvalt
