// Custom Controls.

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

// Adds the keys of the text below HKEY_CLASSES_ROOT.
void LoadClasses(TScanRig& rig, std::string_view text) {
  LoadRegText(rig.System.Registry, text, "HKEY_CLASSES_ROOT");
}

void AddKey(TScanRig& rig, TextView key) {
  rig.System.Registry.AddKey(u"HKEY_CLASSES_ROOT\\" + Text(key));
}

// Every field of each problem that the section finds.
TStrings Found(TScanRig& rig) {
  rig.Run({Section::CustomControls});
  return AllFields(rig.Problems());
}

// Whether a class is not reported when its server is this text.
bool ServerPasses(TScanRig& rig, TextView text) {
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\CLSID\\{c}\\InprocServer32", u"", text);
  return Found(rig).empty();
}

// The problem of a key whose description names the bad data.
ScanProblem Bad(TextView key, TextView data, TextId description) {
  return KeyProblem(kHkeyClassesRoot, key, u"", data, Says(description, data));
}

ScanProblem MissingIcon(TextView key, TextView file) {
  return Bad(key, file, TextId::MissingIcon);
}

ScanProblem MissingServer(TextView key, TextView file) {
  return Bad(key, file, TextId::MissingInProcessServer);
}

ScanProblem MissingLocalServer(TextView key, TextView file) {
  return Bad(key, file, TextId::MissingLocalServer);
}

ScanProblem MissingLibrary(TextView key, TextView file) {
  return Bad(key, file, TextId::MissingTypeLibraryFile);
}

ScanProblem BrokenClassLink(TextView key, TextView classId) {
  return Bad(key, classId, TextId::BrokenClassLink);
}

ScanProblem BrokenLibraryLink(TextView key, TextView libraryId) {
  return Bad(key, libraryId, TextId::BrokenTypeLibraryLink);
}

ScanProblem Empty(TextView key) {
  return KeyProblem(kHkeyClassesRoot, key, u"", u"", Says(TextId::EmptyKey));
}

// These two have no data.
ScanProblem InvalidHelpFolder(TextView key, TextView folder) {
  return KeyProblem(kHkeyClassesRoot, key, u"", u"", Says(TextId::InvalidTypeLibraryHelpFolder, folder));
}

ScanProblem EmptyLibrary(TextView key) {
  return KeyProblem(kHkeyClassesRoot, key, u"", u"", Says(TextId::EmptyTypeLibraryKey, key));
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
  // "C:\App\gone.dll\x.exe" is there as a whole though "C:\App\gone.dll" is no file.
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
  LoadClasses(rig, R"(
[\CLSID\{c}\DefaultIcon]
"Other"="x"
[\CLSID\{c}\DefaultIcon\Sub]
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\CLSID\\{c}\\DefaultIcon")}));
}

TEST(ClassIcons, AMissingFileIsReportedOnTheIcon) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{c}\DefaultIcon]
@="C:\\gone.ico,0"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\CLSID\\{c}\\DefaultIcon", u"C:\\gone.ico,0")}));
}

TEST(ClassIcons, DoNotMakeTheClassBroken) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{c}\DefaultIcon]
@="C:\\gone.ico"
[\CLSID\{d}\DefaultIcon]
[\Interface\{i}\ProxyStubClsid]
@="{c}"
[\Interface\{i}\ProxyStubClsid32]
@="{d}"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\CLSID\\{c}\\DefaultIcon", u"C:\\gone.ico"),
                                   Empty(u"\\CLSID\\{d}\\DefaultIcon")}));
}

// Classes: servers

TEST(Servers, AMissingFileIsReportedOnTheClass) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
@="C:\\WINDOWS\\system32\\x.dll"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingServer(u"\\CLSID\\{1}", u"C:\\WINDOWS\\system32\\x.dll")}));
}

TEST(Servers, EachBrokenServerKeyIsReportedInTheFixedOrder) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\LocalServer32]
@="C:\\d.exe"
[\CLSID\{1}\LocalServer]
@="C:\\c.exe"
[\CLSID\{1}\InprocServer32]
@="C:\\b.dll"
[\CLSID\{1}\InprocServer]
@="C:\\a.dll"
[\CLSID\{1}\DefaultIcon]
@="C:\\e.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\CLSID\\{1}\\DefaultIcon", u"C:\\e.ico"),
                                   MissingServer(u"\\CLSID\\{1}", u"C:\\a.dll"),
                                   MissingServer(u"\\CLSID\\{1}", u"C:\\b.dll"),
                                   MissingLocalServer(u"\\CLSID\\{1}", u"C:\\c.exe"),
                                   MissingLocalServer(u"\\CLSID\\{1}", u"C:\\d.exe")}));
}

TEST(Servers, AKeyWithNothingOrOnlyAnEmptyDefaultIsReportedAsEmpty) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
[\CLSID\{2}\LocalServer]
@=""
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\CLSID\\{1}"), Empty(u"\\CLSID\\{2}")}));
}

TEST(Servers, ADefaultValueThatIsNoTextReadsEmpty) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
@=dword:00000005
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\CLSID\\{1}")}));
}

TEST(Servers, AnEmptyKeyWithAnotherValueOrASubKeyIsNot) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
@=""
"ThreadingModel"="Apartment"
[\CLSID\{2}\InprocServer32]
"ThreadingModel"="Apartment"
[\CLSID\{3}\InprocServer32\1.0]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Servers, AKeyThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
@="C:\\gone.dll"
)");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Servers, BothKindsOfFaultMakeTheClassBroken) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{1}\InprocServer32]
@="C:\\gone.dll"
[\CLSID\{2}\LocalServer32]
[\Interface\{i}\ProxyStubClsid]
@="{1}"
[\Interface\{i}\ProxyStubClsid32]
@="{2}"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingServer(u"\\CLSID\\{1}", u"C:\\gone.dll"), Empty(u"\\CLSID\\{2}"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid", u"{1}"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid32", u"{2}")}));
}

// Type libraries

TEST(TypeLibraries, AHelpFolderThatIsAFolderIsAccepted) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\HELPDIR]
@="C:\\Gone\\Help"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AHelpFolderThatNamesAMissingFileIsReportedWithoutData) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\HELPDIR]
@="C:\\Gone\\x.dll"
)");
  EXPECT_EQ(Found(rig), AllFields({InvalidHelpFolder(u"\\Typelib\\{t}\\1.0\\HELPDIR", u"C:\\Gone\\x.dll")}));
}

TEST(TypeLibraries, AHelpFolderWithFewerThanTwoValuesIsEmpty) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{1}\1.0\HELPDIR]
[\Typelib\{2}\1.0\HELPDIR]
@=""
[\Typelib\{3}\1.0\HELPDIR]
"Named"="x"
)");
  EXPECT_EQ(Found(rig),
            AllFields({Empty(u"\\Typelib\\{1}\\1.0\\HELPDIR"), Empty(u"\\Typelib\\{2}\\1.0\\HELPDIR"),
                       Empty(u"\\Typelib\\{3}\\1.0\\HELPDIR")}));
}

TEST(TypeLibraries, AHelpFolderWithTwoValuesOrASubKeyIsNot) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{1}\1.0\HELPDIR]
@=""
"Named"="x"
[\Typelib\{2}\1.0\HELPDIR\Sub]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AHelpFolderDoesNotMakeTheLibraryBroken) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\HELPDIR]
@="C:\\Gone\\x.dll"
[\Typelib\{u}\1.0\HELPDIR]
@=""
[\Interface\{i}\TypeLib]
@="{t}"
[\Interface\{j}\TypeLib]
@="{u}"
)");
  EXPECT_EQ(Found(rig), AllFields({InvalidHelpFolder(u"\\Typelib\\{t}\\1.0\\HELPDIR", u"C:\\Gone\\x.dll"),
                                   Empty(u"\\Typelib\\{u}\\1.0\\HELPDIR")}));
}

TEST(TypeLibraries, AMissingLibraryFileIsReportedOnTheWholeLibrary) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\409\win32]
@="C:\\gone.ocx"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingLibrary(u"\\Typelib\\{t}", u"C:\\gone.ocx")}));
}

TEST(TypeLibraries, EveryVersionAndLocaleIsChecked) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\0\win32]
@="C:\\a.dll"
[\Typelib\{t}\1.0\9\win32]
@="C:\\b.dll"
[\Typelib\{t}\2.0\0\win32]
@="C:\\c.dll"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingLibrary(u"\\Typelib\\{t}", u"C:\\a.dll"),
                                   MissingLibrary(u"\\Typelib\\{t}", u"C:\\b.dll"),
                                   MissingLibrary(u"\\Typelib\\{t}", u"C:\\c.dll")}));
}

TEST(TypeLibraries, OnlyWholeDecimalNamesAreLocales) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\FLAGS\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\HELPDIRS\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\40c\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\0x409\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\1.5\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\1 \win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\2147483648\win32]
@="C:\\gone.dll"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, ASignAndEverySizeOf32BitsMakeALocale) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\+9\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\-1\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\0409\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\2147483647\win32]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\-2147483648\win32]
@="C:\\gone.dll"
)");
  EXPECT_EQ(Found(rig).size(), 5u);
}

TEST(TypeLibraries, AnEmptyWin32KeyIsReportedOnItself) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{1}\1.0\0\win32]
[\Typelib\{2}\1.0\0\win32]
@=""
[\Typelib\{3}\1.0\0\win32]
"Named"="x"
)");
  EXPECT_EQ(Found(rig), AllFields({EmptyLibrary(u"\\Typelib\\{1}\\1.0\\0\\win32"),
                                   EmptyLibrary(u"\\Typelib\\{2}\\1.0\\0\\win32"),
                                   EmptyLibrary(u"\\Typelib\\{3}\\1.0\\0\\win32")}));
}

TEST(TypeLibraries, AWin32KeyWithTwoValuesOrASubKeyIsNotEmpty) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{1}\1.0\0\win32]
@=""
"Named"="x"
[\Typelib\{2}\1.0\0\win32\Sub]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, ALocaleWithoutWin32KeyIsSkipped) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\0\win64]
@="C:\\gone.dll"
[\Typelib\{t}\1.0\9]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, AVersionThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\0\win32]
@="C:\\gone.dll"
)");
  rig.System.Registry.Deny(u"HKEY_CLASSES_ROOT\\Typelib\\{t}\\1.0");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(TypeLibraries, BothKindsOfFaultMakeTheLibraryBroken) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{t}\1.0\0\win32]
@="C:\\gone.dll"
[\Typelib\{u}\1.0\0\win32]
[\Interface\{i}\TypeLib]
@="{t}"
[\Interface\{j}\TypeLib]
@="{u}"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingLibrary(u"\\Typelib\\{t}", u"C:\\gone.dll"),
                                   EmptyLibrary(u"\\Typelib\\{u}\\1.0\\0\\win32"),
                                   BrokenLibraryLink(u"\\Interface\\{i}", u"{t}"),
                                   BrokenLibraryLink(u"\\Interface\\{j}", u"{u}")}));
}

// Interfaces

TEST(Interfaces, ALinkToAMissingLibraryIsReportedOnTheInterface) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Interface\{i}\TypeLib]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenLibraryLink(u"\\Interface\\{i}", u"{gone}")}));
}

TEST(Interfaces, AMissingProxyClassIsReportedOnItsOwnKey) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Interface\{i}\ProxyStubClsid32]
@="{y}"
[\Interface\{i}\ProxyStubClsid]
@="{x}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid", u"{x}"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid32", u"{y}")}));
}

TEST(Interfaces, ExistingOrEmptyLinksPass) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{C}]
@="A class"
[\Typelib\{T}]
@="A library"
[\Interface\{i}\TypeLib]
@="{t}"
[\Interface\{i}\ProxyStubClsid]
@=""
[\Interface\{i}\ProxyStubClsid32]
@="{c}"
[\Interface\{j}\TypeLib]
[\Interface\{k}]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Interfaces, AReportedIdentifierIsBrokenByItsLetterCase) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{C}\InprocServer32]
@="C:\\gone.dll"
[\Interface\{i}\ProxyStubClsid]
@="{c}"
[\Interface\{i}\ProxyStubClsid32]
@="{C}"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingServer(u"\\CLSID\\{C}", u"C:\\gone.dll"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid32", u"{C}")}));
}

TEST(Interfaces, APartOfAReportedIdentifierIsBrokenToo) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{abcd}\InprocServer32]
@="C:\\gone.dll"
[\Typelib\bc]
@="A library"
[\Interface\{i}\TypeLib]
@="bc"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingServer(u"\\CLSID\\{abcd}", u"C:\\gone.dll"),
                                   BrokenLibraryLink(u"\\Interface\\{i}", u"bc")}));
}

TEST(Interfaces, AllThreeLinksOfOneAreReported) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Interface\{i}\TypeLib]
@="{t}"
[\Interface\{i}\ProxyStubClsid]
@="{x}"
[\Interface\{i}\ProxyStubClsid32]
@="{x}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenLibraryLink(u"\\Interface\\{i}", u"{t}"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid", u"{x}"),
                                   BrokenClassLink(u"\\Interface\\{i}\\ProxyStubClsid32", u"{x}")}));
}

// Progress

TEST(CustomControlsProgress, EachPassFillsItsThirdOfTheBar) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i) {
    AddKey(rig, u"CLSID\\" + NumberedName(u"c", i));
    AddKey(rig, u"Typelib\\" + NumberedName(u"t", i));
    AddKey(rig, u"Interface\\" + NumberedName(u"i", i));
  }
  rig.Run({Section::CustomControls});
  // Call 51: 51 x 33 / 60 is 28.05. Call 101 is the 41st library: 22.55 and 33. Call 151 is the 31st
  // interface: 17.05 and 66.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Custom Controls", {"item: CLSID\\c050", "bar: 28", "item: Typelib\\t040", "bar: 56",
                                          "item: Interface\\i030", "bar: 83"}));
}

TEST(CustomControlsProgress, AHalfPercentGoesToTheEvenNumber) {
  TScanRig rig;
  // 51 x 33 / 66 is exactly 25.5, which goes to 26; 101 x 33 / 66 is 50.5, beyond the pass.
  for (int i = 0; i < 66; ++i)
    AddKey(rig, u"CLSID\\" + NumberedName(u"c", i));
  rig.Run({Section::CustomControls});
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Custom Controls", {"item: CLSID\\c050", "bar: 26"}));
}

TEST(CustomControlsProgress, EndsAtNinetyNine) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    AddKey(rig, u"Interface\\" + NumberedName(u"i", i));
  rig.Run({Section::CustomControls});
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Custom Controls", {"item: Interface\\i050", "bar: 99"}));
}

// A larger registry, its problems listed by hand

TEST(CustomControls, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\ole32.dll");
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  LoadClasses(rig, R"(
; Classes
[\CLSID\{00}\InprocServer32]
@="ole32.dll"
"ThreadingModel"="Both"
[\CLSID\{01}\InprocServer32]
@="%SystemRoot%\\system32\\ole32.dll"
[\CLSID\{02}\LocalServer32]
@="\"C:\\Program Files\\App\\app.exe\" /automation"
[\CLSID\{02}\DefaultIcon]
@="C:\\Program Files\\App\\app.exe,1"
[\CLSID\{03}\InprocServer]
@="C:\\Gone\\a.dll"
[\CLSID\{03}\InprocServer32]
@="C:\\Gone\\b.dll"
[\CLSID\{04}\LocalServer32]
@="C:\\Gone\\c.exe -x"
[\CLSID\{04}\DefaultIcon]
@=""
[\CLSID\{05}\InprocServer32]
@=""
[\CLSID\{06}\InprocServer32]
@="C:\\Gone\\ignored.dll"
[\CLSID\{07}\DefaultIcon]
@="D:\\gone.ico"
[\CLSID\{08}\DefaultIcon]
@="C:\\Gone\\x.ICO,-5"
; Type libraries
[\Typelib\{10}\1.0\0\win32]
@="%SystemRoot%\\system32\\ole32.dll\\2"
[\Typelib\{10}\1.0\HELPDIR]
@="%SystemRoot%\\help"
[\Typelib\{11}\1.0\0\win32]
@="C:\\Gone\\lib.ocx\\3"
[\Typelib\{11}\1.0\FLAGS]
@="0"
[\Typelib\{11}\1.1\409\win32]
"Named"=""
[\Typelib\{11}\1.1\HELPDIR]
@="C:\\Gone\\help.exe"
[\Typelib\{12}\1.0\HELPDIR]
; Interfaces
[\Interface\{20}\TypeLib]
@="{10}"
[\Interface\{20}\ProxyStubClsid32]
@="{00}"
[\Interface\{21}\TypeLib]
@="{11}"
[\Interface\{21}\ProxyStubClsid]
@="{03}"
[\Interface\{22}\ProxyStubClsid32]
@="{05}"
[\Interface\{23}\ProxyStubClsid32]
@="{06}"
[\Interface\{24}\ProxyStubClsid32]
@="{99}"
[\Interface\{25}\TypeLib]
@="{12}"
[\Interface\{25}\ProxyStubClsid32]
@="{08}"
)");
  // An ignored class is not broken for those that link to it.
  rig.Reg.IgnoreList = {u"hkey_classes_root\\clsid\\{06}"};

  rig.Run({Section::CustomControls});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({
                MissingServer(u"\\CLSID\\{03}", u"C:\\Gone\\a.dll"),
                MissingServer(u"\\CLSID\\{03}", u"C:\\Gone\\b.dll"),
                Empty(u"\\CLSID\\{04}\\DefaultIcon"),
                MissingLocalServer(u"\\CLSID\\{04}", u"C:\\Gone\\c.exe -x"),
                Empty(u"\\CLSID\\{05}"),
                MissingIcon(u"\\CLSID\\{08}\\DefaultIcon", u"C:\\Gone\\x.ICO,-5"),
                MissingLibrary(u"\\Typelib\\{11}", u"C:\\Gone\\lib.ocx\\3"),
                InvalidHelpFolder(u"\\Typelib\\{11}\\1.1\\HELPDIR", u"C:\\Gone\\help.exe"),
                EmptyLibrary(u"\\Typelib\\{11}\\1.1\\409\\win32"),
                Empty(u"\\Typelib\\{12}\\1.0\\HELPDIR"),
                BrokenLibraryLink(u"\\Interface\\{21}", u"{11}"),
                BrokenClassLink(u"\\Interface\\{21}\\ProxyStubClsid", u"{03}"),
                BrokenClassLink(u"\\Interface\\{22}\\ProxyStubClsid32", u"{05}"),
                BrokenClassLink(u"\\Interface\\{24}\\ProxyStubClsid32", u"{99}"),
            }));
  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Custom Controls", 6, kNoRootKey, 14)}));
}

}  // namespace corvalt
