// File Associations.

#include <gtest/gtest.h>

#include "tests/support/problemfields.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr std::int32_t kAssociations = 6;
constexpr std::int32_t kControls = 4;

Text Class(TextView rest) {
  return u"HKEY_CLASSES_ROOT\\" + Text(rest);
}

void Set(TScanRig& rig, TextView key, TextView text) {
  rig.System.Registry.Set(Class(key), u"", text);
}

void AddKey(TScanRig& rig, TextView key) {
  rig.System.Registry.AddKey(Class(key));
}

// An extension ".t" of a type "type" that exists, so that what the test puts below "type" is checked.
void AddType(TScanRig& rig) {
  Set(rig, u".t", u"type");
  Set(rig, u"type", u"A type");
}

// A class that Custom Controls reports as broken because its server is missing.
void AddBrokenClass(TScanRig& rig, TextView classId) {
  Set(rig, u"CLSID\\" + Text(classId) + u"\\InprocServer32", u"C:\\gone.dll");
}

// What the section finds, every field, as "KeyPath | ValueName | ValueData | Description | image".
TStrings Found(TScanRig& rig, const std::vector<std::int32_t>& sections = {kAssociations}) {
  rig.Run(sections);
  TStrings lines;
  for (const ScanProblem& problem : rig.ProblemsOf(u"File Associations")) {
    EXPECT_EQ(problem.RootKey, kHkeyClassesRoot);
    EXPECT_EQ(problem.Kind, TProblemKind::Key);
    lines.push_back(EncodeUtf8(problem.KeyPath + u" | " + problem.ValueName + u" | " + problem.ValueData +
                               u" | " + problem.Description + u" | " + DecimalText(problem.ImageIndex)));
  }
  return lines;
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

// Whether an icon with this text passes; icons and verbs' commands are judged alike.
bool IconPasses(TScanRig& rig, TextView text) {
  AddType(rig);
  Set(rig, u"type\\DefaultIcon", text);
  return Found(rig).empty();
}

}  // namespace

// Extensions

TEST(FileExtensionsOfClasses, AMissingProgramIdentifierIsReportedOnTheExtension) {
  TScanRig rig;
  Set(rig, u".abc", u"gone");
  EXPECT_EQ(Found(rig), TStrings{"\\.abc |  | gone | 11043(HKEY_CLASSES_ROOT\\gone) | 0"});
}

TEST(FileExtensionsOfClasses, AnEmptyDefaultValueIsNeitherReportedNorFollowed) {
  TScanRig rig;
  Set(rig, u".abc", u"");
  rig.System.Registry.Set(Class(u".def"), u"Content Type", u"text/plain");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionThatHoldsNothingIsNotReported) {
  TScanRig rig;
  AddKey(rig, u".abc");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExistingIdentifierIsFoundWhateverItsLetterCase) {
  TScanRig rig;
  Set(rig, u".abc", u"TXTFILE");
  Set(rig, u"txtfile", u"Text");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, APresentButEmptyCommandKeyIsReported) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u".t\\shell\\command");
  EXPECT_EQ(Found(rig), TStrings{"\\.t\\shell\\command |  |  | 11044 | 0"});
}

TEST(FileExtensionsOfClasses, ACommandKeyWithEmptySubKeysIsReportedToo) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u".t\\Shell\\Command\\a\\b");
  EXPECT_EQ(Found(rig), TStrings{"\\.t\\shell\\command |  |  | 11044 | 0"});
}

TEST(FileExtensionsOfClasses, AMissingOrUsedCommandKeyIsNot) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u".t\\shell");
  Set(rig, u".u", u"type");
  Set(rig, u".u\\shell\\command", u"x");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionCanHaveBothFaults) {
  TScanRig rig;
  Set(rig, u".abc", u"gone");
  AddKey(rig, u".abc\\shell\\command");
  EXPECT_EQ(Found(rig), (TStrings{"\\.abc |  | gone | 11043(HKEY_CLASSES_ROOT\\gone) | 0",
                                  "\\.abc\\shell\\command |  |  | 11044 | 0"}));
}

TEST(FileExtensionsOfClasses, ADeniedExtensionIsSkipped) {
  TScanRig rig;
  Set(rig, u".abc", u"gone");
  rig.System.Registry.Deny(Class(u".abc"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, ADeniedProgramIdentifierExists) {
  TScanRig rig;
  Set(rig, u".abc", u"type");
  AddKey(rig, u"type");
  rig.System.Registry.Deny(Class(u"type"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionsOwnClassLinkIsNotChecked) {
  TScanRig rig;
  AddKey(rig, u".abc\\CLSID");
  Set(rig, u".abc\\CLSID", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings());
}

// Other classes

TEST(ClassKeys, AnEmptyOneIsReported) {
  TScanRig rig;
  AddKey(rig, u"thing\\sub\\sub");
  EXPECT_EQ(Found(rig), TStrings{"\\thing |  |  | 11044 | 0"});
}

TEST(ClassKeys, AClassLinkToNothingIsReportedOnTheLink) {
  TScanRig rig;
  Set(rig, u"thing\\CLSID", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings{"\\thing\\CLSID |  | {gone} | 11045({gone}) | 0"});
}

TEST(ClassKeys, AClassLinkToAnExistingClassIsNot) {
  TScanRig rig;
  Set(rig, u"thing\\CLSID", u"{c}");
  Set(rig, u"CLSID\\{C}", u"A class");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AnEmptyClassLinkIsNot) {
  TScanRig rig;
  Set(rig, u"thing\\CLSID", u"");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AClassThatCustomControlsReportedIsBrokenForEveryLink) {
  TScanRig rig;
  AddBrokenClass(rig, u"{c}");
  Set(rig, u"one\\CLSID", u"{c}");
  Set(rig, u"two\\CLSID", u"{c}");
  EXPECT_EQ(Found(rig), TStrings());
  EXPECT_EQ(Found(rig, {kControls, kAssociations}),
            (TStrings{"\\one\\CLSID |  | {c} | 11045({c}) | 0", "\\two\\CLSID |  | {c} | 11045({c}) | 0"}));
}

TEST(ClassKeys, ReportedIdentifiersCompareWithTheirLetterCase) {
  TScanRig rig;
  AddBrokenClass(rig, u"{C}");
  Set(rig, u"one\\CLSID", u"{c}");
  EXPECT_EQ(Found(rig, {kControls, kAssociations}), TStrings());
}

TEST(ClassKeys, APartOfAReportedIdentifierIsBrokenToo) {
  TScanRig rig;
  AddBrokenClass(rig, u"{abcd}");
  Set(rig, u"CLSID\\bc", u"A class");
  Set(rig, u"one\\CLSID", u"bc");
  EXPECT_EQ(Found(rig, {kControls, kAssociations}), TStrings{"\\one\\CLSID |  | bc | 11045(bc) | 0"});
}

TEST(ClassKeys, AReportedTypeLibraryIsInTheSameList) {
  TScanRig rig;
  Set(rig, u"Typelib\\{lib}\\1.0\\0\\win32", u"C:\\gone.dll");
  Set(rig, u"CLSID\\{lib}", u"A class of the same name");
  Set(rig, u"one\\CLSID", u"{lib}");
  EXPECT_EQ(Found(rig, {kControls, kAssociations}), TStrings{"\\one\\CLSID |  | {lib} | 11045({lib}) | 0"});
}

TEST(ClassKeys, TheListOfAnEarlierScanIsForgotten) {
  TScanRig rig;
  AddBrokenClass(rig, u"{c}");
  Set(rig, u"one\\CLSID", u"{c}");
  EXPECT_EQ(Found(rig, {kControls, kAssociations}).size(), 1u);
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AreVisitedInTheOrderOfTheirUpperCasedNames) {
  // "_" stands between the upper-case and the lower-case letters.
  for (const TNameOrder order : {TNameOrder::Windows, TNameOrder::Wine}) {
    TScanRig rig(order);
    for (const TextView name : {u"b", u"_", u"A", u"c", u"Z"})
      AddKey(rig, name);
    rig.Run({kAssociations});
    TStrings keys;
    for (const ScanProblem& problem : rig.Problems())
      keys.push_back(EncodeUtf8(problem.KeyPath));
    EXPECT_EQ(keys, (TStrings{"\\A", "\\b", "\\c", "\\Z", "\\_"}));
  }
}

// Types: class link and icon

TEST(FileTypes, AClassLinkIsCheckedInBothPassesAndTheRestStillRuns) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\CLSID", u"{gone}");
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  EXPECT_EQ(Found(rig), (TStrings{"\\type\\CLSID |  | {gone} | 11045({gone}) | 0",
                                  "\\type\\CLSID |  | {gone} | 11045({gone}) | 0",
                                  "\\type\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0"}));
}

TEST(FileTypes, AValidClassLinkDoesNotEndTheCheckOfTheType) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"CLSID\\{c}", u"A class");
  Set(rig, u"type\\CLSID", u"{c}");
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  EXPECT_EQ(Found(rig), TStrings{"\\type\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0"});
}

TEST(FileTypes, ATypeThatNoExtensionNamesIsNotChecked) {
  TScanRig rig;
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  AddKey(rig, u"type\\Shell\\open");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileTypes, ATypeNamedByTwoExtensionsIsCheckedTwice) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u".u", u"TYPE");
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  EXPECT_EQ(Found(rig), (TStrings{"\\type\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0",
                                  "\\TYPE\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0"}));
}

TEST(FileTypes, AllFilesComeFirstThoughNoExtensionNamesThem) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  Set(rig, u"*\\DefaultIcon", u"C:\\gone.ico");
  EXPECT_EQ(Found(rig), (TStrings{"\\*\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0",
                                  "\\type\\DefaultIcon |  | C:\\gone.ico | 11046(C:\\gone.ico) | 0"}));
}

TEST(FileTypes, AnExtensionWithAnEqualsSignNamesTheTypeAfterItsFirstOne) {
  TScanRig rig;
  Set(rig, u".a=b", u"type");
  Set(rig, u"type\\DefaultIcon", u"C:\\gone.ico");
  Set(rig, u"b=type\\DefaultIcon", u"C:\\gone2.ico");
  EXPECT_EQ(Found(rig), TStrings{"\\b=type\\DefaultIcon |  | C:\\gone2.ico | 11046(C:\\gone2.ico) | 0"});
}

TEST(FileTypes, AnEmptyIconIsNotReported) {
  TScanRig rig;
  EXPECT_TRUE(IconPasses(rig, u""));
}

TEST(ShellTargets, ANetworkPathIsNotChecked) {
  TScanRig rig;
  EXPECT_TRUE(IconPasses(rig, u"\\\\server\\share\\gone.exe"));
  EXPECT_TRUE(IconPasses(rig, u"C:\\gone.exe \\\\server"));
}

TEST(ShellTargets, AnArgumentAtTheStartIsNotChecked) {
  TScanRig rig;
  EXPECT_TRUE(IconPasses(rig, u"%1"));
  EXPECT_TRUE(IconPasses(rig, u"\"%1\" %*"));
  EXPECT_TRUE(IconPasses(rig, u"x%1"));
  EXPECT_FALSE(IconPasses(rig, u"xy%1"));
}

TEST(ShellTargets, ACommaEndsTheFile) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\App\\file.dll");
  rig.System.Disk.AddFile(u"C:\\Windows\\rundll32.exe");
  EXPECT_TRUE(IconPasses(rig, u"C:\\App\\file.dll,3"));
  EXPECT_TRUE(IconPasses(rig, u"rundll32.exe x.dll,Entry"));
  EXPECT_FALSE(IconPasses(rig, u"C:\\App\\gone.dll,3"));
  EXPECT_FALSE(IconPasses(rig, u"gonedll32.exe x.dll,Entry"));
}

TEST(ShellTargets, ABareNameIsLookedForOnTheSearchPath) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\notepad.exe");
  EXPECT_TRUE(IconPasses(rig, u"notepad %1"));
  EXPECT_FALSE(IconPasses(rig, u"nopad %1"));
}

TEST(ShellTargets, KnownReferencesAreExpandedAndOthersStay) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\explorer.exe");
  EXPECT_TRUE(IconPasses(rig, u"%SystemRoot%\\explorer.exe /e"));
  EXPECT_FALSE(IconPasses(rig, u"%SystemRoot%\\gone.exe"));
  EXPECT_FALSE(IconPasses(rig, u"%Vendor%\\gone.exe"));
}

TEST(ShellTargets, TheQuotedFileIsTheOneThatCounts) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  EXPECT_TRUE(IconPasses(rig, u"\"C:\\Program Files\\App\\app.exe\" \"%1\""));
  EXPECT_FALSE(IconPasses(rig, u"\"C:\\Program Files\\App\\gone.exe\" \"%1\""));
}

// Verbs

TEST(Verbs, ABrokenCommandIsReportedOnTheVerb) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\shell\\Open\\command", u"C:\\gone.exe %1");
  EXPECT_EQ(Found(rig),
            TStrings{"\\type\\Shell\\Open |  | C:\\gone.exe %1 | 11047(Open|C:\\gone.exe %1) | 0"});
}

TEST(Verbs, AnEmptyCommandPasses) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\shell\\open\\command");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, ADropTargetOfAMissingClassIsReportedOnTheVerb) {
  TScanRig rig;
  AddType(rig);
  rig.System.Registry.Set(Class(u"type\\Shell\\open\\DropTarget"), u"CLSID", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings{"\\type\\Shell\\open |  | {gone} | 11047(open|{gone}) | 0"});
}

TEST(Verbs, ADropTargetWithoutAClassPasses) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\Shell\\open\\DropTarget");
  rig.System.Registry.Set(Class(u"type\\Shell\\edit\\DropTarget"), u"", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, ADropTargetDoesNotAskTheListOfBrokenClasses) {
  TScanRig rig;
  AddType(rig);
  AddBrokenClass(rig, u"{c}");
  rig.System.Registry.Set(Class(u"type\\Shell\\open\\DropTarget"), u"CLSID", u"{c}");
  EXPECT_EQ(Found(rig, {kControls, kAssociations}), TStrings());
}

TEST(Verbs, AVerbWithNeitherCommandNorDropTargetIsReported) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\Shell\\open", u"&Open");
  EXPECT_EQ(Found(rig), TStrings{"\\type\\Shell\\open |  |  | 11048 | 0"});
}

TEST(Verbs, ACommandKeyThatDoesNotOpenIsACommand) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\Shell\\open\\command", u"C:\\gone.exe");
  rig.System.Registry.Deny(Class(u"type\\Shell\\open\\command"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, BothFaultsOfOneVerbAreReported) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\Shell\\open\\command", u"C:\\gone.exe");
  rig.System.Registry.Set(Class(u"type\\Shell\\open\\DropTarget"), u"CLSID", u"{gone}");
  EXPECT_EQ(Found(rig), (TStrings{"\\type\\Shell\\open |  | C:\\gone.exe | 11047(open|C:\\gone.exe) | 0",
                                  "\\type\\Shell\\open |  | {gone} | 11047(open|{gone}) | 0"}));
}

// Handlers

TEST(ContextMenuHandlers, ANamedHandlersMissingClassIsReportedWithoutAnImage) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\shellex\\ContextMenuHandlers\\Zip", u"{gone}");
  EXPECT_EQ(Found(rig),
            TStrings{"\\type\\shellex\\ContextMenuHandlers\\Zip |  | {gone} | 11045({gone}) | -1"});
}

TEST(ContextMenuHandlers, ANamedHandlerWithoutAClassIsReported) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\Zip");
  EXPECT_EQ(Found(rig), TStrings{"\\type\\shellex\\ContextMenuHandlers\\Zip |  |  | 11049 | -1"});
}

TEST(ContextMenuHandlers, AHandlerThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\Zip");
  rig.System.Registry.Deny(Class(u"type\\shellex\\ContextMenuHandlers\\Zip"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ContextMenuHandlers, ABracedHandlersKeyPathLacksItsBackslashAndHasAnImage) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\{gone}");
  EXPECT_EQ(Found(rig), TStrings{"\\type\\shellex\\ContextMenuHandlers{gone} |  |  | 11045({gone}) | 0"});
}

TEST(ContextMenuHandlers, ABracedHandlersValueIsNotRead) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"CLSID\\{c}", u"A class");
  Set(rig, u"type\\shellex\\ContextMenuHandlers\\{c}", u"{gone}");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ContextMenuHandlers, ANameWithOneBraceIsNotBraced) {
  TScanRig rig;
  AddType(rig);
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\a}");
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\{");
  EXPECT_EQ(Found(rig), (TStrings{"\\type\\shellex\\ContextMenuHandlers\\a} |  |  | 11049 | -1",
                                  "\\type\\shellex\\ContextMenuHandlers\\{ |  |  | 11049 | -1"}));
}

TEST(ContextMenuHandlers, ClassesThatCustomControlsReportedAreBroken) {
  TScanRig rig;
  AddType(rig);
  AddBrokenClass(rig, u"{c}");
  Set(rig, u"type\\shellex\\ContextMenuHandlers\\Zip", u"{c}");
  AddKey(rig, u"type\\shellex\\ContextMenuHandlers\\{c}");
  EXPECT_EQ(Found(rig), TStrings());
  EXPECT_EQ(Found(rig, {kControls, kAssociations}),
            (TStrings{"\\type\\shellex\\ContextMenuHandlers\\Zip |  | {c} | 11045({c}) | -1",
                      "\\type\\shellex\\ContextMenuHandlers{c} |  |  | 11045({c}) | 0"}));
}

TEST(PropertySheetHandlers, EveryProblemHasItsBackslashAndNoImage) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"type\\shellex\\PropertySheetHandlers\\a", u"{gone}");
  AddKey(rig, u"type\\shellex\\PropertySheetHandlers\\b");
  AddKey(rig, u"type\\shellex\\PropertySheetHandlers\\{gone}");
  EXPECT_EQ(Found(rig),
            (TStrings{"\\type\\shellex\\PropertySheetHandlers\\a |  | {gone} | 11045({gone}) | -1",
                      "\\type\\shellex\\PropertySheetHandlers\\b |  |  | 11049 | -1",
                      "\\type\\shellex\\PropertySheetHandlers\\{gone} |  |  | 11045({gone}) | -1"}));
}

TEST(PropertySheetHandlers, AnExistingClassPasses) {
  TScanRig rig;
  AddType(rig);
  Set(rig, u"CLSID\\{c}", u"A class");
  Set(rig, u"type\\shellex\\PropertySheetHandlers\\a", u"{c}");
  AddKey(rig, u"type\\shellex\\PropertySheetHandlers\\{c}");
  EXPECT_EQ(Found(rig), TStrings());
}

// Progress

TEST(FileAssociationsProgress, TheFirstPassFillsTheLowerHalfWithTheNamesOfTheClasses) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i)
    rig.System.Registry.Set(Class(Numbered(u"k", i)), u"v", u"");
  rig.Run({kAssociations});
  // 51 x 50 / 60 is 42.5.
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: k050", "bar: 42"}));
}

TEST(FileAssociationsProgress, TheSecondPassFillsTheUpperHalfWithTheTypes) {
  TScanRig rig;
  for (int i = 0; i < 39; ++i)
    Set(rig, Numbered(u".e", i), u"type");
  Set(rig, u"type", u"A type");
  rig.Run({kAssociations});
  // The first pass has 40 entries, the second as many with all files first: call 51 is its 11th,
  // 11 x 50 / 40 + 50 is 63.75.
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: type", "bar: 64"}));
}

TEST(FileAssociationsProgress, AllFilesAreShownByTheirStar) {
  TScanRig rig;
  for (int i = 0; i < 50; ++i)
    rig.System.Registry.Set(Class(Numbered(u"k", i)), u"v", u"");
  rig.Run({kAssociations});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: *", "bar: 100"}));
}

// A larger registry, its problems listed by hand

TEST(FileAssociations, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\notepad.exe");
  rig.System.Disk.AddFile(u"C:\\Program Files\\Zip\\zip.exe");
  AddBrokenClass(rig, u"{BAD}");
  Set(rig, u"CLSID\\{GOOD}\\InprocServer32", u"shell.dll");
  // All files
  AddKey(rig, u"*\\shellex\\ContextMenuHandlers\\{BAD}");
  Set(rig, u"*\\shellex\\ContextMenuHandlers\\Zip", u"{GOOD}");
  AddKey(rig, u"*\\shellex\\PropertySheetHandlers\\{GOOD}");
  AddKey(rig, u"*\\shellex\\PropertySheetHandlers\\{NONE}");
  // Text: two extensions
  Set(rig, u".log", u"txtfile");
  Set(rig, u".txt", u"txtfile");
  AddKey(rig, u".txt\\shell\\command");
  Set(rig, u"txtfile\\DefaultIcon", u"%SystemRoot%\\gone.dll,-152");
  Set(rig, u"txtfile\\shell\\open\\command", u"%SystemRoot%\\notepad.exe %1");
  Set(rig, u"txtfile\\shell\\print\\command", u"C:\\Gone\\print.exe /p \"%1\"");
  AddKey(rig, u"txtfile\\shell\\edit");
  // Archives
  Set(rig, u".zip", u"zipfile");
  Set(rig, u"zipfile\\CLSID", u"{BAD}");
  Set(rig, u"zipfile\\DefaultIcon", u"C:\\Program Files\\Zip\\zip.exe,0");
  rig.System.Registry.Set(Class(u"zipfile\\shell\\open\\DropTarget"), u"CLSID", u"{NONE}");
  Set(rig, u"zipfile\\shellex\\ContextMenuHandlers\\Old", u"{BAD}");
  AddKey(rig, u"zipfile\\shellex\\ContextMenuHandlers\\New");
  Set(rig, u"zipfile\\shellex\\PropertySheetHandlers\\Page", u"{NONE}");
  // Others
  Set(rig, u".gone", u"gonefile");
  Set(rig, u".none", u"");
  AddKey(rig, u"Empty.Class\\CurVer");
  Set(rig, u"Vendor.Control\\CLSID", u"{NONE}");
  Set(rig, u"Vendor.Control.1\\CLSID", u"{GOOD}");
  Set(rig, u"Vendor.Hidden\\CLSID", u"{NONE}");
  rig.Reg.IgnoreList = {u"hkey_classes_root\\vendor.hidden"};

  rig.Run({kControls, kAssociations});

  const std::string root = "80000000 | ";
  const std::string key = " | kind 1, image 0";
  const std::string bare = " | kind 1, image -1";
  const std::string icon =
      "\\txtfile\\DefaultIcon |  | %SystemRoot%\\gone.dll,-152 | "
      "11046(%SystemRoot%\\gone.dll,-152)";
  const std::string edit = "\\txtfile\\Shell\\edit |  |  | 11048";
  const std::string print =
      "\\txtfile\\Shell\\print |  | C:\\Gone\\print.exe /p \"%1\" | "
      "11047(print|C:\\Gone\\print.exe /p \"%1\")";
  EXPECT_EQ(
      AllFields(rig.ProblemsOf(u"File Associations")),
      Usual({
          // The first pass, by name: "*", then ".gone", ".log", ".none", ".txt", ".zip", "CLSID" and the rest
          root + "\\.gone |  | gonefile | 11043(HKEY_CLASSES_ROOT\\gonefile)" + key,
          root + "\\.txt\\shell\\command |  |  | 11044" + key,
          root + "\\Empty.Class |  |  | 11044" + key,
          root + "\\Vendor.Control\\CLSID |  | {NONE} | 11045({NONE})" + key,
          root + "\\zipfile\\CLSID |  | {BAD} | 11045({BAD})" + key,
          // The second pass: all files, ".log", ".txt", ".zip"
          root + "\\*\\shellex\\ContextMenuHandlers{BAD} |  |  | 11045({BAD})" + key,
          root + "\\*\\shellex\\PropertySheetHandlers\\{NONE} |  |  | 11045({NONE})" + bare,
          root + icon + key,
          root + edit + key,
          root + print + key,
          root + icon + key,
          root + edit + key,
          root + print + key,
          root + "\\zipfile\\CLSID |  | {BAD} | 11045({BAD})" + key,
          root + "\\zipfile\\Shell\\open |  | {NONE} | 11047(open|{NONE})" + key,
          root + "\\zipfile\\shellex\\ContextMenuHandlers\\New |  |  | 11049" + bare,
          root + "\\zipfile\\shellex\\ContextMenuHandlers\\Old |  | {BAD} | 11045({BAD})" + bare,
          root + "\\zipfile\\shellex\\PropertySheetHandlers\\Page |  | {NONE} | 11045({NONE})" + bare,
      }));
  ASSERT_EQ(rig.Headers().size(), 2u);
  EXPECT_EQ(FieldsOf(rig.Headers()[1]), HeaderFields("80000000", "File Associations", 8, 18));
}

}  // namespace corvalt
