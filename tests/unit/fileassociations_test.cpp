// File Associations.

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

// The picture of this section's problems; most problems of handlers have none.
constexpr std::int32_t kPicture = 0;

Text Class(TextView rest) {
  return u"HKEY_CLASSES_ROOT\\" + Text(rest);
}

// Adds the keys of the text below HKEY_CLASSES_ROOT.
void LoadClasses(TScanRig& rig, std::string_view text) {
  LoadRegText(rig.System.Registry, text, "HKEY_CLASSES_ROOT");
}

// The same with an extension ".t" of a type "type", so that what the text has below "type" is checked.
void LoadWithType(TScanRig& rig, std::string_view text) {
  LoadClasses(rig, R"(
[\.t]
@="type"
[\type]
@="A type"
)");
  LoadClasses(rig, text);
}

// Every field of each problem of this section.
TStrings Found(TScanRig& rig, const std::vector<std::int32_t>& sections = {Section::FileAssociations}) {
  rig.Run(sections);
  return AllFields(rig.ProblemsOf(u"File Associations"));
}

// After Custom Controls, which lists the broken classes and type libraries.
TStrings FoundAfterCustomControls(TScanRig& rig) {
  return Found(rig, {Section::CustomControls, Section::FileAssociations});
}

// Whether an icon with this text is not reported; icons and the commands of verbs are judged alike.
bool IconPasses(TScanRig& rig, TextView text) {
  LoadWithType(rig, R"(
[\type\DefaultIcon]
)");
  rig.System.Registry.Set(Class(u"type\\DefaultIcon"), u"", text);
  return Found(rig).empty();
}

ScanProblem Pictured(TextView key, TextView data, TextView description) {
  ScanProblem problem = KeyProblem(kHkeyClassesRoot, key, u"", data, description);
  problem.ImageIndex = kPicture;
  return problem;
}

ScanProblem MissingType(TextView key, TextView type) {
  return Pictured(key, type, Says(TextId::MissingProgId, Class(type)));
}

ScanProblem Empty(TextView key) {
  return Pictured(key, u"", Says(TextId::EmptyKey));
}

ScanProblem BrokenClassLink(TextView key, TextView classId) {
  return Pictured(key, classId, Says(TextId::BrokenClassLink, classId));
}

ScanProblem MissingIcon(TextView key, TextView icon) {
  return Pictured(key, icon, Says(TextId::MissingIcon, icon));
}

// The target is the verb's command, or the class of its drop target.
ScanProblem BrokenVerb(TextView key, TextView verb, TextView target) {
  return Pictured(key, target, Says(TextId::BrokenVerb, verb, target));
}

ScanProblem VerbWithoutCommand(TextView key) {
  return Pictured(key, u"", Says(TextId::VerbWithoutCommand));
}

// A handler with its class identifier in its default value.
ScanProblem BrokenHandler(TextView key, TextView classId) {
  return KeyProblem(kHkeyClassesRoot, key, u"", classId, Says(TextId::BrokenClassLink, classId));
}

ScanProblem HandlerWithoutClass(TextView key) {
  return KeyProblem(kHkeyClassesRoot, key, u"", u"", Says(TextId::HandlerWithoutClass));
}

// Handlers whose name, in braces, is the class identifier: of a context menu, and of a property sheet.
ScanProblem BrokenBracedMenuHandler(TextView key, TextView classId) {
  return Pictured(key, u"", Says(TextId::BrokenClassLink, classId));
}

ScanProblem BrokenBracedSheetHandler(TextView key, TextView classId) {
  return KeyProblem(kHkeyClassesRoot, key, u"", u"", Says(TextId::BrokenClassLink, classId));
}

}  // namespace

// Extensions

TEST(FileExtensionsOfClasses, AMissingProgramIdentifierIsReportedOnTheExtension) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@="gone"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingType(u"\\.abc", u"gone")}));
}

TEST(FileExtensionsOfClasses, AnEmptyDefaultValueIsNeitherReportedNorFollowed) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@=""
[\.def]
"Content Type"="text/plain"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionThatHoldsNothingIsNotReported) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExistingIdentifierIsFoundWhateverItsLetterCase) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@="TXTFILE"
[\txtfile]
@="Text"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, APresentButEmptyCommandKeyIsReported) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\.t\shell\command]
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\.t\\shell\\command")}));
}

TEST(FileExtensionsOfClasses, ACommandKeyWithEmptySubKeysIsReportedToo) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\.t\Shell\Command\a\b]
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\.t\\shell\\command")}));
}

TEST(FileExtensionsOfClasses, AMissingOrUsedCommandKeyIsNot) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\.t\shell]
[\.u]
@="type"
[\.u\shell\command]
@="x"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionCanHaveBothFaults) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@="gone"
[\.abc\shell\command]
)");
  EXPECT_EQ(Found(rig), AllFields({MissingType(u"\\.abc", u"gone"), Empty(u"\\.abc\\shell\\command")}));
}

TEST(FileExtensionsOfClasses, ADeniedExtensionIsSkipped) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@="gone"
)");
  rig.System.Registry.Deny(Class(u".abc"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, ADeniedProgramIdentifierExists) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc]
@="type"
[\type]
)");
  rig.System.Registry.Deny(Class(u"type"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileExtensionsOfClasses, AnExtensionsOwnClassLinkIsNotChecked) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.abc\CLSID]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

// Other classes

TEST(ClassKeys, AnEmptyOneIsReported) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\thing\sub\sub]
)");
  EXPECT_EQ(Found(rig), AllFields({Empty(u"\\thing")}));
}

TEST(ClassKeys, AClassLinkToNothingIsReportedOnTheLink) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\thing\CLSID]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenClassLink(u"\\thing\\CLSID", u"{gone}")}));
}

TEST(ClassKeys, AClassLinkToAnExistingClassIsNot) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\thing\CLSID]
@="{c}"
[\CLSID\{C}]
@="A class"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AnEmptyClassLinkIsNot) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\thing\CLSID]
@=""
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AClassThatCustomControlsReportedIsBrokenForEveryLink) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{c}\InprocServer32]
@="C:\\gone.dll"
[\one\CLSID]
@="{c}"
[\two\CLSID]
@="{c}"
)");
  EXPECT_EQ(Found(rig), TStrings());
  EXPECT_EQ(FoundAfterCustomControls(rig),
            AllFields({BrokenClassLink(u"\\one\\CLSID", u"{c}"), BrokenClassLink(u"\\two\\CLSID", u"{c}")}));
}

TEST(ClassKeys, ReportedIdentifiersCompareWithTheirLetterCase) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{C}\InprocServer32]
@="C:\\gone.dll"
[\one\CLSID]
@="{c}"
)");
  EXPECT_EQ(FoundAfterCustomControls(rig), TStrings());
}

TEST(ClassKeys, APartOfAReportedIdentifierIsBrokenToo) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{abcd}\InprocServer32]
@="C:\\gone.dll"
[\CLSID\bc]
@="A class"
[\one\CLSID]
@="bc"
)");
  EXPECT_EQ(FoundAfterCustomControls(rig), AllFields({BrokenClassLink(u"\\one\\CLSID", u"bc")}));
}

TEST(ClassKeys, AReportedTypeLibraryIsInTheSameList) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\Typelib\{lib}\1.0\0\win32]
@="C:\\gone.dll"
[\CLSID\{lib}]
@="A class of the same name"
[\one\CLSID]
@="{lib}"
)");
  EXPECT_EQ(FoundAfterCustomControls(rig), AllFields({BrokenClassLink(u"\\one\\CLSID", u"{lib}")}));
}

TEST(ClassKeys, TheListOfAnEarlierScanIsForgotten) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\CLSID\{c}\InprocServer32]
@="C:\\gone.dll"
[\one\CLSID]
@="{c}"
)");
  EXPECT_EQ(FoundAfterCustomControls(rig), AllFields({BrokenClassLink(u"\\one\\CLSID", u"{c}")}));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ClassKeys, AreVisitedInTheOrderOfTheirUpperCasedNames) {
  // "_" stands between the upper-case and the lower-case letters.
  for (const TNameOrder order : {TNameOrder::Windows, TNameOrder::Wine}) {
    TScanRig rig(order);
    LoadClasses(rig, R"(
[\b]
[\_]
[\A]
[\c]
[\Z]
)");
    EXPECT_EQ(Found(rig),
              AllFields({Empty(u"\\A"), Empty(u"\\b"), Empty(u"\\c"), Empty(u"\\Z"), Empty(u"\\_")}));
  }
}

// Types: class link and icon

TEST(FileTypes, AClassLinkIsCheckedInBothPassesAndTheRestStillRuns) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\CLSID]
@="{gone}"
[\type\DefaultIcon]
@="C:\\gone.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenClassLink(u"\\type\\CLSID", u"{gone}"),
                                   BrokenClassLink(u"\\type\\CLSID", u"{gone}"),
                                   MissingIcon(u"\\type\\DefaultIcon", u"C:\\gone.ico")}));
}

TEST(FileTypes, AValidClassLinkDoesNotEndTheCheckOfTheType) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\CLSID\{c}]
@="A class"
[\type\CLSID]
@="{c}"
[\type\DefaultIcon]
@="C:\\gone.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\type\\DefaultIcon", u"C:\\gone.ico")}));
}

TEST(FileTypes, ATypeThatNoExtensionNamesIsNotChecked) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\type\DefaultIcon]
@="C:\\gone.ico"
[\type\Shell\open]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(FileTypes, ATypeNamedByTwoExtensionsIsCheckedTwice) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\.u]
@="TYPE"
[\type\DefaultIcon]
@="C:\\gone.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\type\\DefaultIcon", u"C:\\gone.ico"),
                                   MissingIcon(u"\\TYPE\\DefaultIcon", u"C:\\gone.ico")}));
}

TEST(FileTypes, AllFilesComeFirstThoughNoExtensionNamesThem) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\DefaultIcon]
@="C:\\gone.ico"
[\*\DefaultIcon]
@="C:\\gone.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\*\\DefaultIcon", u"C:\\gone.ico"),
                                   MissingIcon(u"\\type\\DefaultIcon", u"C:\\gone.ico")}));
}

TEST(FileTypes, AnExtensionWithAnEqualsSignNamesTheTypeAfterItsFirstOne) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\.a=b]
@="type"
[\type\DefaultIcon]
@="C:\\gone.ico"
[\b=type\DefaultIcon]
@="C:\\gone2.ico"
)");
  EXPECT_EQ(Found(rig), AllFields({MissingIcon(u"\\b=type\\DefaultIcon", u"C:\\gone2.ico")}));
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
  LoadWithType(rig, R"(
[\type\shell\Open\command]
@="C:\\gone.exe %1"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenVerb(u"\\type\\Shell\\Open", u"Open", u"C:\\gone.exe %1")}));
}

TEST(Verbs, AnEmptyCommandPasses) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shell\open\command]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, ADropTargetOfAMissingClassIsReportedOnTheVerb) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\Shell\open\DropTarget]
"CLSID"="{gone}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenVerb(u"\\type\\Shell\\open", u"open", u"{gone}")}));
}

TEST(Verbs, ADropTargetWithoutAClassPasses) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\Shell\open\DropTarget]
[\type\Shell\edit\DropTarget]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, ADropTargetDoesNotAskTheListOfBrokenClasses) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\CLSID\{c}\InprocServer32]
@="C:\\gone.dll"
[\type\Shell\open\DropTarget]
"CLSID"="{c}"
)");
  EXPECT_EQ(FoundAfterCustomControls(rig), TStrings());
}

TEST(Verbs, AVerbWithNeitherCommandNorDropTargetIsReported) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\Shell\open]
@="&Open"
)");
  EXPECT_EQ(Found(rig), AllFields({VerbWithoutCommand(u"\\type\\Shell\\open")}));
}

TEST(Verbs, ACommandKeyThatDoesNotOpenIsACommand) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\Shell\open\command]
@="C:\\gone.exe"
)");
  rig.System.Registry.Deny(Class(u"type\\Shell\\open\\command"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(Verbs, BothFaultsOfOneVerbAreReported) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\Shell\open\command]
@="C:\\gone.exe"
[\type\Shell\open\DropTarget]
"CLSID"="{gone}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenVerb(u"\\type\\Shell\\open", u"open", u"C:\\gone.exe"),
                                   BrokenVerb(u"\\type\\Shell\\open", u"open", u"{gone}")}));
}

// Handlers

TEST(ContextMenuHandlers, ANamedHandlersMissingClassIsReportedWithoutAnImage) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\ContextMenuHandlers\Zip]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), AllFields({BrokenHandler(u"\\type\\shellex\\ContextMenuHandlers\\Zip", u"{gone}")}));
}

TEST(ContextMenuHandlers, ANamedHandlerWithoutAClassIsReported) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\ContextMenuHandlers\Zip]
)");
  EXPECT_EQ(Found(rig), AllFields({HandlerWithoutClass(u"\\type\\shellex\\ContextMenuHandlers\\Zip")}));
}

TEST(ContextMenuHandlers, AHandlerThatDoesNotOpenIsSkipped) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\ContextMenuHandlers\Zip]
)");
  rig.System.Registry.Deny(Class(u"type\\shellex\\ContextMenuHandlers\\Zip"));
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ContextMenuHandlers, ABracedHandlersKeyPathLacksItsBackslashAndHasAnImage) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\ContextMenuHandlers\{gone}]
)");
  EXPECT_EQ(Found(rig),
            AllFields({BrokenBracedMenuHandler(u"\\type\\shellex\\ContextMenuHandlers{gone}", u"{gone}")}));
}

TEST(ContextMenuHandlers, ABracedHandlersValueIsNotRead) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\CLSID\{c}]
@="A class"
[\type\shellex\ContextMenuHandlers\{c}]
@="{gone}"
)");
  EXPECT_EQ(Found(rig), TStrings());
}

TEST(ContextMenuHandlers, ANameWithOneBraceIsNotBraced) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\ContextMenuHandlers\a}]
[\type\shellex\ContextMenuHandlers\{]
)");
  EXPECT_EQ(Found(rig), AllFields({HandlerWithoutClass(u"\\type\\shellex\\ContextMenuHandlers\\a}"),
                                   HandlerWithoutClass(u"\\type\\shellex\\ContextMenuHandlers\\{")}));
}

TEST(ContextMenuHandlers, ClassesThatCustomControlsReportedAreBroken) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\CLSID\{c}\InprocServer32]
@="C:\\gone.dll"
[\type\shellex\ContextMenuHandlers\Zip]
@="{c}"
[\type\shellex\ContextMenuHandlers\{c}]
)");
  EXPECT_EQ(Found(rig), TStrings());
  EXPECT_EQ(FoundAfterCustomControls(rig),
            AllFields({BrokenHandler(u"\\type\\shellex\\ContextMenuHandlers\\Zip", u"{c}"),
                       BrokenBracedMenuHandler(u"\\type\\shellex\\ContextMenuHandlers{c}", u"{c}")}));
}

TEST(PropertySheetHandlers, EveryProblemHasItsBackslashAndNoImage) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\type\shellex\PropertySheetHandlers\a]
@="{gone}"
[\type\shellex\PropertySheetHandlers\b]
[\type\shellex\PropertySheetHandlers\{gone}]
)");
  EXPECT_EQ(
      Found(rig),
      AllFields({BrokenHandler(u"\\type\\shellex\\PropertySheetHandlers\\a", u"{gone}"),
                 HandlerWithoutClass(u"\\type\\shellex\\PropertySheetHandlers\\b"),
                 BrokenBracedSheetHandler(u"\\type\\shellex\\PropertySheetHandlers\\{gone}", u"{gone}")}));
}

TEST(PropertySheetHandlers, AnExistingClassPasses) {
  TScanRig rig;
  LoadWithType(rig, R"(
[\CLSID\{c}]
@="A class"
[\type\shellex\PropertySheetHandlers\a]
@="{c}"
[\type\shellex\PropertySheetHandlers\{c}]
)");
  EXPECT_EQ(Found(rig), TStrings());
}

// Progress

TEST(FileAssociationsProgress, TheFirstPassFillsTheLowerHalfWithTheNamesOfTheClasses) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i)
    rig.System.Registry.Set(Class(NumberedName(u"k", i)), u"v", u"");
  rig.Run({Section::FileAssociations});
  // 51 x 50 / 60 is 42.5.
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("File Associations", {"item: k050", "bar: 42"}));
}

TEST(FileAssociationsProgress, TheSecondPassFillsTheUpperHalfWithTheTypes) {
  TScanRig rig;
  LoadClasses(rig, R"(
[\type]
@="A type"
)");
  for (int i = 0; i < 39; ++i)
    rig.System.Registry.Set(Class(NumberedName(u".e", i)), u"", u"type");
  rig.Run({Section::FileAssociations});
  // The first pass has 40 entries, the second as many with all files first: call 51 is its 11th,
  // 11 x 50 / 40 + 50 is 63.75.
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("File Associations", {"item: type", "bar: 64"}));
}

TEST(FileAssociationsProgress, AllFilesAreShownByTheirStar) {
  TScanRig rig;
  for (int i = 0; i < 50; ++i)
    rig.System.Registry.Set(Class(NumberedName(u"k", i)), u"v", u"");
  rig.Run({Section::FileAssociations});
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("File Associations", {"item: *", "bar: 100"}));
}

// A larger registry, its problems listed by hand

TEST(FileAssociations, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\notepad.exe");
  rig.System.Disk.AddFile(u"C:\\Program Files\\Zip\\zip.exe");
  LoadClasses(rig, R"(
[\CLSID\{BAD}\InprocServer32]
@="C:\\gone.dll"
[\CLSID\{GOOD}\InprocServer32]
@="shell.dll"
; All files
[\*\shellex\ContextMenuHandlers\{BAD}]
[\*\shellex\ContextMenuHandlers\Zip]
@="{GOOD}"
[\*\shellex\PropertySheetHandlers\{GOOD}]
[\*\shellex\PropertySheetHandlers\{NONE}]
; Text: two extensions
[\.log]
@="txtfile"
[\.txt]
@="txtfile"
[\.txt\shell\command]
[\txtfile\DefaultIcon]
@="%SystemRoot%\\gone.dll,-152"
[\txtfile\shell\open\command]
@="%SystemRoot%\\notepad.exe %1"
[\txtfile\shell\print\command]
@="C:\\Gone\\print.exe /p \"%1\""
[\txtfile\shell\edit]
; Archives
[\.zip]
@="zipfile"
[\zipfile\CLSID]
@="{BAD}"
[\zipfile\DefaultIcon]
@="C:\\Program Files\\Zip\\zip.exe,0"
[\zipfile\shell\open\DropTarget]
"CLSID"="{NONE}"
[\zipfile\shellex\ContextMenuHandlers\Old]
@="{BAD}"
[\zipfile\shellex\ContextMenuHandlers\New]
[\zipfile\shellex\PropertySheetHandlers\Page]
@="{NONE}"
; Others
[\.gone]
@="gonefile"
[\.none]
@=""
[\Empty.Class\CurVer]
[\Vendor.Control\CLSID]
@="{NONE}"
[\Vendor.Control.1\CLSID]
@="{GOOD}"
[\Vendor.Hidden\CLSID]
@="{NONE}"
)");
  rig.Reg.IgnoreList = {u"hkey_classes_root\\vendor.hidden"};

  const ScanProblem icon = MissingIcon(u"\\txtfile\\DefaultIcon", u"%SystemRoot%\\gone.dll,-152");
  const ScanProblem edit = VerbWithoutCommand(u"\\txtfile\\Shell\\edit");
  const ScanProblem print =
      BrokenVerb(u"\\txtfile\\Shell\\print", u"print", u"C:\\Gone\\print.exe /p \"%1\"");
  EXPECT_EQ(
      FoundAfterCustomControls(rig),
      AllFields({
          // The first pass, by name: "*", then ".gone", ".log", ".none", ".txt", ".zip", "CLSID" and the rest
          MissingType(u"\\.gone", u"gonefile"),
          Empty(u"\\.txt\\shell\\command"),
          Empty(u"\\Empty.Class"),
          BrokenClassLink(u"\\Vendor.Control\\CLSID", u"{NONE}"),
          BrokenClassLink(u"\\zipfile\\CLSID", u"{BAD}"),
          // The second pass: all files, ".log", ".txt", ".zip"
          BrokenBracedMenuHandler(u"\\*\\shellex\\ContextMenuHandlers{BAD}", u"{BAD}"),
          BrokenBracedSheetHandler(u"\\*\\shellex\\PropertySheetHandlers\\{NONE}", u"{NONE}"),
          icon,
          edit,
          print,
          icon,
          edit,
          print,
          BrokenClassLink(u"\\zipfile\\CLSID", u"{BAD}"),
          BrokenVerb(u"\\zipfile\\Shell\\open", u"open", u"{NONE}"),
          HandlerWithoutClass(u"\\zipfile\\shellex\\ContextMenuHandlers\\New"),
          BrokenHandler(u"\\zipfile\\shellex\\ContextMenuHandlers\\Old", u"{BAD}"),
          BrokenHandler(u"\\zipfile\\shellex\\PropertySheetHandlers\\Page", u"{NONE}"),
      }));
  ASSERT_EQ(rig.Headers().size(), 2u);
  EXPECT_EQ(FieldsOf(rig.Headers()[1]),
            FieldsOf(SectionHeader(u"File Associations", 8, kHkeyClassesRoot, 18)));
}

}  // namespace corvalt
