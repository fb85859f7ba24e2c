// Registry Integrity and Files and Folders.

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kUserShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr TextView kShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// A folder that is reported as missing; the key is one of the two of the folders' places.
ScanProblem MissingFolder(TextView key, TextView name, TextView folder) {
  return ValueProblem(kHkeyCurrentUser,
                      u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\" + Text(key), name, folder,
                      Says(TextId::MissingShellFolder, name, folder));
}

ScanProblem MissingFile(TRootKey rootKey, TextView keyPath, TextView name, TextView data) {
  return ValueProblem(rootKey, keyPath, name, data, Says(TextId::MissingFileOfValue, name, data));
}

// The key paths of what was found, in order.
TStrings KeysFound(TScanRig& rig) {
  TStrings keys;
  for (const ScanProblem& problem : rig.Problems())
    keys.push_back(EncodeUtf8(problem.KeyPath));
  return keys;
}

// The walk of the section reports no value of the key and of those below it.
void ExpectSkipped(std::int32_t section, const std::string& fullKey) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[]
"v"="C:\\gone"
[\Below\It]
"v"="C:\\gone"
)",
              fullKey);
  rig.Run({section});
  EXPECT_EQ(rig.Lines(), TStrings()) << fullKey;
}

// Built without a .reg text: an import writes no value into HKEY_CURRENT_USER\Software\Classes, a link.
void ExpectWalked(std::int32_t section, TextView fullKey) {
  TScanRig rig;
  rig.System.Registry.Set(fullKey, u"v", u"C:\\gone");
  rig.Run({section});
  EXPECT_EQ(rig.Lines().size(), 1u) << EncodeUtf8(fullKey);
}

// The refreshes of the dialog: the item labels and the section bar, without the section's own lines.
TStrings Refreshes(const TScanRig& rig) {
  TStrings refreshes;
  for (const std::string& update : rig.Dialog.Updates) {
    if (update.starts_with("bar") || (update.starts_with("item") && update != "item: "))
      refreshes.push_back(update);
  }
  return refreshes;
}

}  // namespace

// Registry Integrity

TEST(ShellFolders, AMissingFolderOfEitherKeyIsReportedAsItsValue) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\Gone2"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders]
"Desktop"="C:\\Gone1"
)");
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({MissingFolder(u"User Shell Folders", u"Desktop", u"C:\\Gone1"),
                       MissingFolder(u"Shell Folders", u"Fonts", u"C:\\Gone2")}));
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Registry Integrity", 0, kHkeyCurrentUser, 2)}));
}

TEST(ShellFolders, AKeyThatDoesNotOpenIsSkippedAndTheOtherStillChecked) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders]
"Desktop"="C:\\Gone1"
)");
  rig.System.Registry.Deny(kUserShellFolders);
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\Gone2"
)");
  rig.Run({Section::RegistryIntegrity});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Fonts");
}

TEST(ShellFolders, AValueThatIsNoTextReadsEmptyAndPasses) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Number"=dword:00000007
)");
  rig.System.Registry.SetRaw(kShellFolders, {u"Bytes", kRegBinary, StringBytes(u"C:\\Gone")});
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(ShellFolders, AnExpandableValueIsExpandedForTheCheckAndReportedAsItStands) {
  TScanRig rig;
  rig.System.Registry.SetExpand(kUserShellFolders, u"Present", u"%WINDIR%\\fonts");
  rig.System.Registry.SetExpand(kUserShellFolders, u"Lost", u"%WINDIR%\\Gone");
  rig.System.Registry.SetExpand(kUserShellFolders, u"Unknown", u"%USERPROFILE%\\Gone");
  rig.Run({Section::RegistryIntegrity});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Lost");
  EXPECT_EQ(rig.Problems()[0].ValueData, u"%WINDIR%\\Gone");
  EXPECT_EQ(rig.Problems()[0].Description, Says(TextId::MissingShellFolder, u"Lost", u"%WINDIR%\\Gone"));
}

TEST(ShellFolders, TheKeysOfTheMachineAreNotRead) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"A"="C:\\Gone"
)");
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(ShellFolderCheck, BothKeysReportTheUpperHalfOfTheBar) {
  TScanRig rig;
  for (int i = 0; i < 80; ++i) {
    rig.System.Registry.Set(kUserShellFolders, NumberedName(u"u", i), u"");
    rig.System.Registry.Set(kShellFolders, NumberedName(u"s", i), u"");
  }
  rig.Run({Section::RegistryIntegrity});
  // Call 51: 51 x 50 / 80 + 50 is 81.875. Call 101 is the second key's 21st: 63.125. Call 151 its 71st:
  // 94.375.
  EXPECT_EQ(
      Refreshes(rig),
      (TStrings{
          "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders\\u050", "bar: 82",
          "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\s020", "bar: 63",
          "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\s070", "bar: 94"}));
}

TEST(ShellFolderCheck, AHalfPercentGoesToTheEvenNumber) {
  TScanRig rig;
  // 51 x 50 / 60 + 50 is exactly 92.5.
  for (int i = 0; i < 60; ++i)
    rig.System.Registry.Set(kUserShellFolders, NumberedName(u"u", i), u"");
  rig.Run({Section::RegistryIntegrity});
  ASSERT_EQ(Refreshes(rig).size(), 2u);
  EXPECT_EQ(Refreshes(rig)[1], "bar: 92");
}

// Files and Folders: one value

TEST(FilesAndFolders, AMissingFileIsReportedAsItsValue) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"Exe"="C:\\Old\\app.exe"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({MissingFile(kHkeyCurrentUser, u"\\Software\\Vendor", u"Exe", u"C:\\Old\\app.exe")}));
}

TEST(FilesAndFolders, AnExistingFileOrFolderIsNot) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Old\\app.exe");
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"Exe"="C:\\Old\\app.exe"
"Folder"="c:\\OLD"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(FilesAndFolders, OnlyTextValuesAreExamined) {
  TScanRig rig;
  const Text key = u"HKEY_CURRENT_USER\\Software\\Vendor";
  const TBytes path = StringBytes(u"C:\\Gone");
  rig.System.Registry.SetRaw(key, {u"Integer", kRegDword, path});
  rig.System.Registry.SetRaw(key, {u"Bytes", kRegBinary, path});
  rig.System.Registry.SetRaw(key, {u"None", kRegNone, path});
  rig.System.Registry.SetRaw(key, {u"Multi", kRegMultiSz, path});
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor]
"Integer2"=dword:005c3a43
"Text"="C:\\Gone"
)");
  rig.System.Registry.SetExpand(key, u"Expandable", u"C:\\Gone");
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Problems().size(), 2u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Text");
  EXPECT_EQ(rig.Problems()[1].ValueName, u"Expandable");
}

TEST(FilesAndFolders, ValuesThatAreNoTextMoveNoProgress) {
  TScanRig rig;
  for (int i = 0; i < 100; ++i)
    rig.System.Registry.SetInteger(u"HKEY_CURRENT_USER\\Software\\Vendor", NumberedName(u"n", i), 1);
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(Refreshes(rig), TStrings());
}

TEST(FilesAndFolders, AnExpandableTextIsReportedUnexpanded) {
  TScanRig rig;
  rig.System.Registry.SetExpand(u"HKEY_CURRENT_USER\\Software\\Vendor", u"E", u"%windir%\\gone.exe");
  rig.Run({Section::FilesOfCurrentUser});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueData, u"%windir%\\gone.exe");
}

TEST(FilesAndFolders, TheUnnamedValueAndTheRootsOwnValuesAreExamined) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER]
"Top"="C:\\Gone0"
[HKEY_CURRENT_USER\Key]
@="C:\\Gone1"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({MissingFile(kHkeyCurrentUser, u"", u"Top", u"C:\\Gone0"),
                       MissingFile(kHkeyCurrentUser, u"\\Key", u"", u"C:\\Gone1")}));
}

TEST(FilesAndFolders, AKeyThatDoesNotOpenIsSkippedWithWhatIsBelowIt) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\A\B]
"v"="C:\\gone"
[HKEY_CURRENT_USER\C]
"v"="C:\\gone"
)");
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\A");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\C"});
}

TEST(FilesAndFolders, AKeysValuesComeBeforeItsSubKeysAndBothInTheirOrder) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\K]
"b"="C:\\gone"
"a"="C:\\gone"
[HKEY_CURRENT_USER\K\z]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\Y\deep]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\x]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  TStrings found;
  for (const ScanProblem& problem : rig.Problems())
    found.push_back(EncodeUtf8(problem.KeyPath + u":" + problem.ValueName));
  EXPECT_EQ(found, (TStrings{"\\K:b", "\\K:a", "\\K\\x:v", "\\K\\Y\\deep:v", "\\K\\z:v"}));
}

TEST(FilesAndFolders, EachSectionWalksItsOwnRootAlone) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\A]
"v"="C:\\gone"
[HKEY_LOCAL_MACHINE\B]
"v"="C:\\gone"
[HKEY_USERS\C]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfLocalMachine});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({MissingFile(kHkeyLocalMachine, u"\\B", u"v", u"C:\\gone")}));
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({MissingFile(kHkeyCurrentUser, u"\\A", u"v", u"C:\\gone")}));
  rig.Run({Section::FilesOfUsers});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({MissingFile(kHkeyUsers, u"\\C", u"v", u"C:\\gone")}));
}

TEST(FilesAndFolders, TheUsersRootsOwnValuesAreNotExamined) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_USERS]
"Top"="C:\\gone"
)");
  rig.Run({Section::FilesOfUsers});
  EXPECT_EQ(rig.Lines(), TStrings());
}

// Keys that are skipped

TEST(ExcludedKeys, KeysOfTheMachineThatOtherSectionsExamineAreSkipped) {
  const std::string software = "HKEY_LOCAL_MACHINE\\SOFTWARE\\";
  ExpectSkipped(Section::FilesOfLocalMachine, software + "CLASSES");
  for (const char* key : {"App Paths", "fonts", "SharedDLLs", "Uninstall"})
    ExpectSkipped(Section::FilesOfLocalMachine, software + "Microsoft\\Windows\\CurrentVersion\\" + key);
  ExpectSkipped(Section::FilesOfLocalMachine, software + "Microsoft\\Windows\\Help");
  ExpectSkipped(Section::FilesOfLocalMachine, software + "Microsoft\\Windows\\Html Help");
  ExpectSkipped(Section::FilesOfLocalMachine, "HKEY_LOCAL_MACHINE\\SYSTEM");
  ExpectSkipped(Section::FilesOfLocalMachine, "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services");
  ExpectSkipped(Section::FilesOfLocalMachine,
                "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers");
}

TEST(ExcludedKeys, KeysOfTheUserThatOtherSectionsExamineAreSkipped) {
  const std::string explorer = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
  for (const char* key : {"FileExts", "ComDlg32\\OpenSaveMRU", "User Shell Folders", "Shell Folders",
                          "MenuOrder\\Start Menu2\\Programs"}) {
    ExpectSkipped(Section::FilesOfCurrentUser, explorer + key);
  }
  ExpectSkipped(Section::FilesOfCurrentUser, "HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, LetterCaseDoesNotCount) {
  ExpectSkipped(Section::FilesOfLocalMachine, "HKEY_LOCAL_MACHINE\\software\\Classes");
  ExpectSkipped(Section::FilesOfCurrentUser, "HKEY_CURRENT_USER\\APPEVENTS\\schemes\\APPS");
}

TEST(ExcludedKeys, ANameThatOnlyBeginsLikeAnExcludedOneIsWalked) {
  ExpectWalked(Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes2");
  ExpectWalked(Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE\\SYSTEM2");
  ExpectWalked(Section::FilesOfCurrentUser, u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps.old");
  ExpectWalked(Section::FilesOfCurrentUser, u"HKEY_CURRENT_USER\\AppEvents\\Schemes");
}

TEST(ExcludedKeys, ParentsOfExcludedKeysAreWalked) {
  ExpectWalked(Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE\\SOFTWARE");
  ExpectWalked(Section::FilesOfCurrentUser,
               u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer");
}

TEST(ExcludedKeys, TheSamePathUnderTheOtherRootIsWalked) {
  ExpectWalked(Section::FilesOfCurrentUser, u"HKEY_CURRENT_USER\\Software\\Classes");
  ExpectWalked(Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, TheUsersOwnCopiesUnderTheUsersRootAreWalked) {
  ExpectWalked(Section::FilesOfUsers,
               u"HKEY_USERS\\S-1\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders");
  ExpectWalked(Section::FilesOfUsers, u"HKEY_USERS\\S-1\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, AShellFolderIsReportedByTheShellFolderCheckInstead) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\Old\\app.exe"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Lines(), TStrings());
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(rig.Lines().size(), 1u);
}

// "System" and the 32-bit mirror

TEST(SystemKey, OnlyTheControlSetInUseIsWalkedBelowIt) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor\System\A]
"v"="C:\\gone"
[HKEY_CURRENT_USER\Software\Vendor\System\currentcontrolset\B]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\Software\\Vendor\\System\\CurrentControlSet\\B"});
}

TEST(SystemKey, ItsOwnValuesAreExamined) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\SYSTEM]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\Software\\SYSTEM"});
}

TEST(SystemKey, WithoutThatSubKeyNothingBelowItIsWalked) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\Vendor\System\A]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(SystemKey, ALongerNameWithThatEndIsAnOrdinaryKey) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\Software\MySystem\A]
"v"="C:\\gone"
[HKEY_CURRENT_USER\Software\System2\A]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\Software\\MySystem\\A", "\\Software\\System2\\A"}));
}

TEST(SystemKey, AHiveOfThatNameUnderTheUsersRootFollowsTheRule) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_USERS\System\A]
"v"="C:\\gone"
[HKEY_USERS\System\CurrentControlSet]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfUsers});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\System\\CurrentControlSet"});
}

TEST(Mirror, EndsTheWalkOfItsSiblings) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\K\Alpha]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\Wow6432Node]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\Zeta]
"v"="C:\\gone"
[HKEY_CURRENT_USER\L]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\K\\Alpha", "\\L"}));
}

TEST(Mirror, TheValuesOfItsParentAreExamined) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\K]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\WOW6432NODE]
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\K"});
}

TEST(Mirror, ALongerNameIsAnOrdinaryKey) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\K\Wow6432Node2]
"v"="C:\\gone"
[HKEY_CURRENT_USER\K\Zeta]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\K\\Wow6432Node2", "\\K\\Zeta"}));
}

TEST(Mirror, AHiveOfThatNameUnderTheUsersRootIsWalked) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_USERS\Wow6432Node]
"v"="C:\\gone"
[HKEY_USERS\Zeta]
"v"="C:\\gone"
)");
  rig.Run({Section::FilesOfUsers});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\Wow6432Node", "\\Zeta"}));
}

// Progress

TEST(FilesAndFoldersProgress, TheBarStaysAtZeroUnderTheUserAndTheMachine) {
  for (const auto& [section, key] : {std::pair(Section::FilesOfCurrentUser, u"HKEY_CURRENT_USER\\Key"),
                                     std::pair(Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE\\Key")}) {
    TScanRig rig;
    for (int i = 0; i < 101; ++i)
      rig.System.Registry.Set(key, NumberedName(u"v", i), u"");
    rig.Run({section});
    EXPECT_EQ(Refreshes(rig), (TStrings{"item: Key\\v050", "bar: 0", "item: Key\\v100", "bar: 0"}));
  }
}

TEST(FilesAndFoldersProgress, ALabelOfTheRootItselfBeginsWithABackslash) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    rig.System.Registry.Set(u"HKEY_CURRENT_USER", NumberedName(u"v", i), u"");
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: \\v050", "bar: 0"}));
}

TEST(FilesAndFoldersProgress, EachHiveUnderTheUsersRootMovesTheBarByItsShare) {
  TScanRig rig;
  for (const TextView hive : {u"A", u"B", u"C"}) {
    for (int i = 0; i < 60; ++i)
      rig.System.Registry.Set(Text(u"HKEY_USERS\\") + Text(hive) + u"\\Key", NumberedName(u"v", i), u"");
  }
  rig.Run({Section::FilesOfUsers});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: A\\Key\\v050", "bar: 33", "item: B\\Key\\v040", "bar: 67",
                                      "item: C\\Key\\v030", "bar: 100"}));
}

TEST(FilesAndFoldersProgress, AHalfPercentOfEightHivesGoesToTheEvenNumber) {
  TScanRig rig;
  for (int hive = 1; hive <= 8; ++hive) {
    for (int i = 0; i < 50; ++i)
      rig.System.Registry.Set(u"HKEY_USERS\\H" + DecimalText(hive), NumberedName(u"v", i), u"");
  }
  rig.Run({Section::FilesOfUsers});
  TStrings bars;
  for (const std::string& update : Refreshes(rig)) {
    if (update.starts_with("bar"))
      bars.push_back(update);
  }
  // The 51st call is the second hive's first, and so on: 25, 37.5, 50, 62.5, 75, 87.5 and 100.
  EXPECT_EQ(bars, (TStrings{"bar: 25", "bar: 38", "bar: 50", "bar: 62", "bar: 75", "bar: 88", "bar: 100"}));
}

// Larger registries, their problems listed by hand

TEST(ShellFolders, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  TMemoryRegistry& registry = rig.System.Registry;
  rig.System.Disk.AddFile(u"C:\\Ann\\Desktop\\readme.txt");
  registry.SetExpand(kUserShellFolders, u"AppData", u"%USERPROFILE%\\Application Data");
  registry.SetExpand(kUserShellFolders, u"Cache", u"%TEMP%\\Cache");
  LoadRegText(registry, R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders]
"Desktop"="C:\\Ann\\Desktop"
"Personal"="C:\\Ann\\My Documents"
"NetHood"="\\\\server\\home\\NetHood"
"Count"=dword:00000004
@="C:\\Nowhere"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\WINDOWS\\Fonts"
"Recent"="C:\\Ann\\Recent; C:\\Ann\\Desktop"
"SendTo"="D:\\SendTo"
"Templates"="C:\\Ann\\Desktop;C:\\Ann\\Templates"
"Ignored"="C:\\Keep\\Me"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders\Sub]
"Below"="C:\\Gone"
)");
  rig.Reg.IgnoreList = {u"shell folders\\ignored\\"};
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({MissingFolder(u"User Shell Folders", u"Cache", u"%TEMP%\\Cache"),
                       MissingFolder(u"User Shell Folders", u"Personal", u"C:\\Ann\\My Documents"),
                       MissingFolder(u"User Shell Folders", u"", u"C:\\Nowhere"),
                       MissingFolder(u"Shell Folders", u"Recent", u"C:\\Ann\\Recent; C:\\Ann\\Desktop")}));
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Registry Integrity", 0, kHkeyCurrentUser, 4)}));
}

TEST(FilesAndFolders, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  TMemoryRegistry& registry = rig.System.Registry;
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\shell32.dll");
  rig.System.Disk.AddDrive(u"D:\\", 5);
  LoadRegText(registry, R"(
[HKEY_LOCAL_MACHINE\HARDWARE]
"Bios"="C:\\bios.rom"
[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\.txt]
@="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\App]
"Exe"="C:\\Program Files\\App\\app.exe -x"
"Help"="C:\\Program Files\\App\\app.chm"
"Icon"="\"C:\\Program Files\\App\\app.exe\",3"
"Resource"="@C:\\Windows\\system32\\shell32.dll\\21"
"Runs"=dword:00000003
[HKEY_LOCAL_MACHINE\SOFTWARE\App\Setup]
"Source"="D:\\setup.exe"
"Target"="C:\\Elsewhere"
[HKEY_LOCAL_MACHINE\SOFTWARE\App\System\Sub]
"Not"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\App\System\CurrentControlSet]
"Yes"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Help]
"a.hlp"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Helper]
"b.hlp"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Ignored]
"v"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Wow6432Node\App]
"Exe"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Zeta]
"Exe"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet]
"v"="C:\\Gone"
)");
  registry.SetExpand(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\App", u"Log", u"%ProgramFiles%\\App\\app.log");
  rig.Reg.BuiltInExclusions = {u"HKEY_LOCAL_MACHINE\\Software\\Ignored"};
  rig.Run({Section::FilesOfLocalMachine});
  EXPECT_EQ(
      AllFields(rig.Problems()),
      AllFields(
          {MissingFile(kHkeyLocalMachine, u"\\HARDWARE", u"Bios", u"C:\\bios.rom"),
           MissingFile(kHkeyLocalMachine, u"\\SOFTWARE\\App", u"Help", u"C:\\Program Files\\App\\app.chm"),
           MissingFile(kHkeyLocalMachine, u"\\SOFTWARE\\App", u"Log", u"%ProgramFiles%\\App\\app.log"),
           MissingFile(kHkeyLocalMachine, u"\\SOFTWARE\\App\\Setup", u"Target", u"C:\\Elsewhere"),
           MissingFile(kHkeyLocalMachine, u"\\SOFTWARE\\App\\System\\CurrentControlSet", u"Yes", u"C:\\Gone"),
           MissingFile(kHkeyLocalMachine, u"\\SOFTWARE\\Microsoft\\Windows\\Helper", u"b.hlp",
                       u"C:\\Gone")}));
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_LOCAL_MACHINE - Files and Folders", 1, kHkeyLocalMachine, 6)}));
}

}  // namespace corvalt
