// Registry Integrity and Files and Folders.

#include <gtest/gtest.h>

#include "tests/support/problemfields.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kUserShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr TextView kShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

constexpr std::int32_t kIntegrity = 1;
constexpr std::int32_t kMachine = 21;
constexpr std::int32_t kUser = 22;
constexpr std::int32_t kUsers = 23;

Text Numbered(TextView prefix, int number) {
  const Text digits = DecimalText(number);
  return Text(prefix) + Text(3 - digits.size(), u'0') + digits;
}

// The key paths of what was found, in order.
TStrings KeysFound(TScanRig& rig) {
  TStrings keys;
  for (const ScanProblem& problem : rig.Problems())
    keys.push_back(EncodeUtf8(problem.KeyPath));
  return keys;
}

// Puts a missing file's path below a key.
void AddMissing(TScanRig& rig, TextView fullKey) {
  rig.System.Registry.Set(fullKey, u"v", u"C:\\gone");
}

// The walk of the section finds nothing below the key.
void ExpectSkipped(std::int32_t section, TextView fullKey) {
  TScanRig rig;
  AddMissing(rig, fullKey);
  AddMissing(rig, Text(fullKey) + u"\\Below\\It");
  rig.Run({section});
  EXPECT_EQ(rig.Lines(), TStrings()) << EncodeUtf8(fullKey);
}

void ExpectWalked(std::int32_t section, TextView fullKey) {
  TScanRig rig;
  AddMissing(rig, fullKey);
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
  rig.System.Registry.Set(kShellFolders, u"Fonts", u"C:\\Gone2");
  rig.System.Registry.Set(kUserShellFolders, u"Desktop", u"C:\\Gone1");
  rig.Run({kIntegrity});
  EXPECT_EQ(
      AllFields(rig.Problems()),
      Usual({"80000001 | \\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders | "
             "Desktop | C:\\Gone1 | 11068(Desktop|C:\\Gone1) | kind 2, image -1",
             "80000001 | \\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders | "
             "Fonts | C:\\Gone2 | 11068(Fonts|C:\\Gone2) | kind 2, image -1"}));
  EXPECT_EQ(AllFields(rig.Headers()), TStrings{HeaderFields("80000001", "Registry Integrity", 0, 2)});
}

TEST(ShellFolders, AKeyThatDoesNotOpenIsSkippedAndTheOtherStillChecked) {
  TScanRig rig;
  rig.System.Registry.Set(kUserShellFolders, u"Desktop", u"C:\\Gone1");
  rig.System.Registry.Deny(kUserShellFolders);
  rig.System.Registry.Set(kShellFolders, u"Fonts", u"C:\\Gone2");
  rig.Run({kIntegrity});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Fonts");
}

TEST(ShellFolders, AValueThatIsNoTextReadsEmptyAndPasses) {
  TScanRig rig;
  rig.System.Registry.SetInteger(kShellFolders, u"Number", 7);
  rig.System.Registry.SetRaw(kShellFolders, {u"Bytes", kRegBinary, StringBytes(u"C:\\Gone")});
  rig.Run({kIntegrity});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(ShellFolders, AnExpandableValueIsExpandedForTheCheckAndReportedAsItStands) {
  TScanRig rig;
  rig.System.Registry.SetExpand(kUserShellFolders, u"Present", u"%WINDIR%\\fonts");
  rig.System.Registry.SetExpand(kUserShellFolders, u"Lost", u"%WINDIR%\\Gone");
  rig.System.Registry.SetExpand(kUserShellFolders, u"Unknown", u"%USERPROFILE%\\Gone");
  rig.Run({kIntegrity});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Lost");
  EXPECT_EQ(rig.Problems()[0].ValueData, u"%WINDIR%\\Gone");
  EXPECT_EQ(rig.Problems()[0].Description, u"11068(Lost|%WINDIR%\\Gone)");
}

TEST(ShellFolders, TheKeysOfTheMachineAreNotRead) {
  TScanRig rig;
  rig.System.Registry.Set(
      u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", u"A",
      u"C:\\Gone");
  rig.Run({kIntegrity});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(ShellFolderCheck, BothKeysReportTheUpperHalfOfTheBar) {
  TScanRig rig;
  for (int i = 0; i < 80; ++i) {
    rig.System.Registry.Set(kUserShellFolders, Numbered(u"u", i), u"");
    rig.System.Registry.Set(kShellFolders, Numbered(u"s", i), u"");
  }
  rig.Run({kIntegrity});
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
    rig.System.Registry.Set(kUserShellFolders, Numbered(u"u", i), u"");
  rig.Run({kIntegrity});
  ASSERT_EQ(Refreshes(rig).size(), 2u);
  EXPECT_EQ(Refreshes(rig)[1], "bar: 92");
}

// Files and Folders: one value

TEST(FilesAndFolders, AMissingFileIsReportedAsItsValue) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Exe", u"C:\\Old\\app.exe");
  rig.Run({kUser});
  EXPECT_EQ(AllFields(rig.Problems()),
            Usual({"80000001 | \\Software\\Vendor | Exe | C:\\Old\\app.exe | 11042(Exe|C:\\Old\\app.exe) | "
                   "kind 2, image -1"}));
}

TEST(FilesAndFolders, AnExistingFileOrFolderIsNot) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Old\\app.exe");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Exe", u"C:\\Old\\app.exe");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Folder", u"c:\\OLD");
  rig.Run({kUser});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(FilesAndFolders, OnlyTextValuesAreExamined) {
  TScanRig rig;
  const Text key = u"HKEY_CURRENT_USER\\Software\\Vendor";
  const TBytes path = StringBytes(u"C:\\Gone");
  rig.System.Registry.SetRaw(key, {u"Integer", kRegDword, path});
  rig.System.Registry.SetInteger(key, u"Integer2", 0x5C3A43);
  rig.System.Registry.SetRaw(key, {u"Bytes", kRegBinary, path});
  rig.System.Registry.SetRaw(key, {u"None", 0, path});
  rig.System.Registry.SetRaw(key, {u"Multi", 7, path});
  rig.System.Registry.Set(key, u"Text", u"C:\\Gone");
  rig.System.Registry.SetExpand(key, u"Expandable", u"C:\\Gone");
  rig.Run({kUser});
  ASSERT_EQ(rig.Problems().size(), 2u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"Text");
  EXPECT_EQ(rig.Problems()[1].ValueName, u"Expandable");
}

TEST(FilesAndFolders, ValuesThatAreNoTextMoveNoProgress) {
  TScanRig rig;
  for (int i = 0; i < 100; ++i)
    rig.System.Registry.SetInteger(u"HKEY_CURRENT_USER\\Software\\Vendor", Numbered(u"n", i), 1);
  rig.Run({kUser});
  EXPECT_EQ(Refreshes(rig), TStrings());
}

TEST(FilesAndFolders, AnExpandableTextIsReportedUnexpanded) {
  TScanRig rig;
  rig.System.Registry.SetExpand(u"HKEY_CURRENT_USER\\Software\\Vendor", u"E", u"%windir%\\gone.exe");
  rig.Run({kUser});
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueData, u"%windir%\\gone.exe");
}

TEST(FilesAndFolders, TheUnnamedValueAndTheRootsOwnValuesAreExamined) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER", u"Top", u"C:\\Gone0");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Key", u"", u"C:\\Gone1");
  rig.Run({kUser});
  EXPECT_EQ(AllFields(rig.Problems()),
            Usual({"80000001 |  | Top | C:\\Gone0 | 11042(Top|C:\\Gone0) | kind 2, image -1",
                   "80000001 | \\Key |  | C:\\Gone1 | 11042(|C:\\Gone1) | kind 2, image -1"}));
}

TEST(FilesAndFolders, AKeyThatDoesNotOpenIsSkippedWithWhatIsBelowIt) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\A\\B");
  AddMissing(rig, u"HKEY_CURRENT_USER\\C");
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\A");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\C"});
}

TEST(FilesAndFolders, AKeysValuesComeBeforeItsSubKeysAndBothInTheirOrder) {
  TScanRig rig;
  for (const TextView name : {u"b", u"a"})
    rig.System.Registry.Set(u"HKEY_CURRENT_USER\\K", name, u"C:\\gone");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\z");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Y\\deep");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\x");
  rig.Run({kUser});
  TStrings found;
  for (const ScanProblem& problem : rig.Problems())
    found.push_back(EncodeUtf8(problem.KeyPath + u":" + problem.ValueName));
  EXPECT_EQ(found, (TStrings{"\\K:b", "\\K:a", "\\K\\x:v", "\\K\\Y\\deep:v", "\\K\\z:v"}));
}

TEST(FilesAndFolders, EachSectionWalksItsOwnRootAlone) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\A");
  AddMissing(rig, u"HKEY_LOCAL_MACHINE\\B");
  AddMissing(rig, u"HKEY_USERS\\C");
  rig.Run({kMachine});
  EXPECT_EQ(rig.Lines(), TStrings{"HKEY_LOCAL_MACHINE | \\B | v | C:\\gone | 11042(v|C:\\gone)"});
  rig.Run({kUser});
  EXPECT_EQ(rig.Lines(), TStrings{"HKEY_CURRENT_USER | \\A | v | C:\\gone | 11042(v|C:\\gone)"});
  rig.Run({kUsers});
  EXPECT_EQ(rig.Lines(), TStrings{"HKEY_USERS | \\C | v | C:\\gone | 11042(v|C:\\gone)"});
}

TEST(FilesAndFolders, TheUsersRootsOwnValuesAreNotExamined) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_USERS", u"Top", u"C:\\gone");
  rig.Run({kUsers});
  EXPECT_EQ(rig.Lines(), TStrings());
}

// Keys that are skipped

TEST(ExcludedKeys, KeysOfTheMachineThatOtherSectionsExamineAreSkipped) {
  const Text software = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\";
  ExpectSkipped(kMachine, software + u"CLASSES");
  for (const TextView key : {u"App Paths", u"fonts", u"SharedDLLs", u"Uninstall"})
    ExpectSkipped(kMachine, software + u"Microsoft\\Windows\\CurrentVersion\\" + Text(key));
  ExpectSkipped(kMachine, software + u"Microsoft\\Windows\\Help");
  ExpectSkipped(kMachine, software + u"Microsoft\\Windows\\Html Help");
  ExpectSkipped(kMachine, u"HKEY_LOCAL_MACHINE\\SYSTEM");
  ExpectSkipped(kMachine, u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services");
  ExpectSkipped(kMachine, u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers");
}

TEST(ExcludedKeys, KeysOfTheUserThatOtherSectionsExamineAreSkipped) {
  const Text explorer = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
  for (const TextView key : {u"FileExts", u"ComDlg32\\OpenSaveMRU", u"User Shell Folders", u"Shell Folders",
                             u"MenuOrder\\Start Menu2\\Programs"}) {
    ExpectSkipped(kUser, explorer + Text(key));
  }
  ExpectSkipped(kUser, u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, LetterCaseDoesNotCount) {
  ExpectSkipped(kMachine, u"HKEY_LOCAL_MACHINE\\software\\Classes");
  ExpectSkipped(kUser, u"HKEY_CURRENT_USER\\APPEVENTS\\schemes\\APPS");
}

TEST(ExcludedKeys, ANameThatOnlyBeginsLikeAnExcludedOneIsWalked) {
  ExpectWalked(kMachine, u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes2");
  ExpectWalked(kMachine, u"HKEY_LOCAL_MACHINE\\SYSTEM2");
  ExpectWalked(kUser, u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps.old");
  ExpectWalked(kUser, u"HKEY_CURRENT_USER\\AppEvents\\Schemes");
}

TEST(ExcludedKeys, ParentsOfExcludedKeysAreWalked) {
  ExpectWalked(kMachine, u"HKEY_LOCAL_MACHINE\\SOFTWARE");
  ExpectWalked(kUser, u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer");
}

TEST(ExcludedKeys, TheSamePathUnderTheOtherRootIsWalked) {
  ExpectWalked(kUser, u"HKEY_CURRENT_USER\\Software\\Classes");
  ExpectWalked(kMachine, u"HKEY_LOCAL_MACHINE\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, TheUsersOwnCopiesUnderTheUsersRootAreWalked) {
  ExpectWalked(kUsers,
               u"HKEY_USERS\\S-1\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders");
  ExpectWalked(kUsers, u"HKEY_USERS\\S-1\\AppEvents\\Schemes\\Apps");
}

TEST(ExcludedKeys, AShellFolderIsReportedByTheShellFolderCheckInstead) {
  TScanRig rig;
  rig.System.Registry.Set(kShellFolders, u"Fonts", u"C:\\Old\\app.exe");
  rig.Run({kUser});
  EXPECT_EQ(rig.Lines(), TStrings());
  rig.Run({kIntegrity});
  EXPECT_EQ(rig.Lines().size(), 1u);
}

// "System" and the 32-bit mirror

TEST(SystemKey, OnlyTheControlSetInUseIsWalkedBelowIt) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\Vendor\\System\\A");
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\Vendor\\System\\currentcontrolset\\B");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\Software\\Vendor\\System\\CurrentControlSet\\B"});
}

TEST(SystemKey, ItsOwnValuesAreExamined) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\SYSTEM");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\Software\\SYSTEM"});
}

TEST(SystemKey, WithoutThatSubKeyNothingBelowItIsWalked) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\Vendor\\System\\A");
  rig.Run({kUser});
  EXPECT_EQ(rig.Lines(), TStrings());
}

TEST(SystemKey, ALongerNameWithThatEndIsAnOrdinaryKey) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\MySystem\\A");
  AddMissing(rig, u"HKEY_CURRENT_USER\\Software\\System2\\A");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\Software\\MySystem\\A", "\\Software\\System2\\A"}));
}

TEST(SystemKey, AHiveOfThatNameUnderTheUsersRootFollowsTheRule) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_USERS\\System\\A");
  AddMissing(rig, u"HKEY_USERS\\System\\CurrentControlSet");
  rig.Run({kUsers});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\System\\CurrentControlSet"});
}

TEST(Mirror, EndsTheWalkOfItsSiblings) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Alpha");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Wow6432Node");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Zeta");
  AddMissing(rig, u"HKEY_CURRENT_USER\\L");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\K\\Alpha", "\\L"}));
}

TEST(Mirror, TheValuesOfItsParentAreExamined) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\K");
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\WOW6432NODE");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), TStrings{"\\K"});
}

TEST(Mirror, ALongerNameIsAnOrdinaryKey) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Wow6432Node2");
  AddMissing(rig, u"HKEY_CURRENT_USER\\K\\Zeta");
  rig.Run({kUser});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\K\\Wow6432Node2", "\\K\\Zeta"}));
}

TEST(Mirror, AHiveOfThatNameUnderTheUsersRootIsWalked) {
  TScanRig rig;
  AddMissing(rig, u"HKEY_USERS\\Wow6432Node");
  AddMissing(rig, u"HKEY_USERS\\Zeta");
  rig.Run({kUsers});
  EXPECT_EQ(KeysFound(rig), (TStrings{"\\Wow6432Node", "\\Zeta"}));
}

// Progress

TEST(FilesAndFoldersProgress, TheBarStaysAtZeroUnderTheUserAndTheMachine) {
  for (const auto& [section, key] :
       {std::pair(kUser, u"HKEY_CURRENT_USER\\Key"), std::pair(kMachine, u"HKEY_LOCAL_MACHINE\\Key")}) {
    TScanRig rig;
    for (int i = 0; i < 101; ++i)
      rig.System.Registry.Set(key, Numbered(u"v", i), u"");
    rig.Run({section});
    EXPECT_EQ(Refreshes(rig), (TStrings{"item: Key\\v050", "bar: 0", "item: Key\\v100", "bar: 0"}));
  }
}

TEST(FilesAndFoldersProgress, ALabelOfTheRootItselfBeginsWithABackslash) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    rig.System.Registry.Set(u"HKEY_CURRENT_USER", Numbered(u"v", i), u"");
  rig.Run({kUser});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: \\v050", "bar: 0"}));
}

TEST(FilesAndFoldersProgress, EachHiveUnderTheUsersRootMovesTheBarByItsShare) {
  TScanRig rig;
  for (const TextView hive : {u"A", u"B", u"C"}) {
    for (int i = 0; i < 60; ++i)
      rig.System.Registry.Set(Text(u"HKEY_USERS\\") + Text(hive) + u"\\Key", Numbered(u"v", i), u"");
  }
  rig.Run({kUsers});
  EXPECT_EQ(Refreshes(rig), (TStrings{"item: A\\Key\\v050", "bar: 33", "item: B\\Key\\v040", "bar: 67",
                                      "item: C\\Key\\v030", "bar: 100"}));
}

TEST(FilesAndFoldersProgress, AHalfPercentOfEightHivesGoesToTheEvenNumber) {
  TScanRig rig;
  for (int hive = 1; hive <= 8; ++hive) {
    for (int i = 0; i < 50; ++i)
      rig.System.Registry.Set(u"HKEY_USERS\\H" + DecimalText(hive), Numbered(u"v", i), u"");
  }
  rig.Run({kUsers});
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
  registry.Set(kUserShellFolders, u"Desktop", u"C:\\Ann\\Desktop");
  registry.Set(kUserShellFolders, u"Personal", u"C:\\Ann\\My Documents");
  registry.Set(kUserShellFolders, u"NetHood", u"\\\\server\\home\\NetHood");
  registry.SetInteger(kUserShellFolders, u"Count", 4);
  registry.Set(kUserShellFolders, u"", u"C:\\Nowhere");
  registry.Set(kShellFolders, u"Fonts", u"C:\\WINDOWS\\Fonts");
  registry.Set(kShellFolders, u"Recent", u"C:\\Ann\\Recent; C:\\Ann\\Desktop");
  registry.Set(kShellFolders, u"SendTo", u"D:\\SendTo");
  registry.Set(kShellFolders, u"Templates", u"C:\\Ann\\Desktop;C:\\Ann\\Templates");
  registry.Set(kShellFolders, u"Ignored", u"C:\\Keep\\Me");
  registry.Set(Text(kShellFolders) + u"\\Sub", u"Below", u"C:\\Gone");
  rig.Reg.IgnoreList = {u"shell folders\\ignored\\"};
  rig.Run({kIntegrity});
  const std::string user = "80000001 | \\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
  EXPECT_EQ(
      AllFields(rig.Problems()),
      Usual({user + "User Shell Folders | Cache | %TEMP%\\Cache | 11068(Cache|%TEMP%\\Cache) | kind 2, "
                    "image -1",
             user + "User Shell Folders | Personal | C:\\Ann\\My Documents | 11068(Personal|C:\\Ann\\My "
                    "Documents) | kind 2, image -1",
             user + "User Shell Folders |  | C:\\Nowhere | 11068(|C:\\Nowhere) | kind 2, image -1",
             user + "Shell Folders | Recent | C:\\Ann\\Recent; C:\\Ann\\Desktop | "
                    "11068(Recent|C:\\Ann\\Recent; C:\\Ann\\Desktop) | kind 2, image -1"}));
  EXPECT_EQ(AllFields(rig.Headers()), TStrings{HeaderFields("80000001", "Registry Integrity", 0, 4)});
}

TEST(FilesAndFolders, EveryProblemOfALargerRegistry) {
  TScanRig rig;
  TMemoryRegistry& registry = rig.System.Registry;
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\shell32.dll");
  rig.System.Disk.AddDrive(u"D:\\", 5);
  const Text machine = u"HKEY_LOCAL_MACHINE\\";
  registry.Set(machine + u"HARDWARE", u"Bios", u"C:\\bios.rom");
  registry.Set(machine + u"SOFTWARE\\Classes\\.txt", u"", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\App", u"Exe", u"C:\\Program Files\\App\\app.exe -x");
  registry.Set(machine + u"SOFTWARE\\App", u"Help", u"C:\\Program Files\\App\\app.chm");
  registry.Set(machine + u"SOFTWARE\\App", u"Icon", u"\"C:\\Program Files\\App\\app.exe\",3");
  registry.Set(machine + u"SOFTWARE\\App", u"Resource", u"@C:\\Windows\\system32\\shell32.dll\\21");
  registry.SetExpand(machine + u"SOFTWARE\\App", u"Log", u"%ProgramFiles%\\App\\app.log");
  registry.SetInteger(machine + u"SOFTWARE\\App", u"Runs", 3);
  registry.Set(machine + u"SOFTWARE\\App\\Setup", u"Source", u"D:\\setup.exe");
  registry.Set(machine + u"SOFTWARE\\App\\Setup", u"Target", u"C:\\Elsewhere");
  registry.Set(machine + u"SOFTWARE\\App\\System\\Sub", u"Not", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\App\\System\\CurrentControlSet", u"Yes", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\Microsoft\\Windows\\Help", u"a.hlp", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\Microsoft\\Windows\\Helper", u"b.hlp", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\Ignored", u"v", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\Wow6432Node\\App", u"Exe", u"C:\\Gone");
  registry.Set(machine + u"SOFTWARE\\Zeta", u"Exe", u"C:\\Gone");
  registry.Set(machine + u"SYSTEM\\CurrentControlSet", u"v", u"C:\\Gone");
  rig.Reg.BuiltInExclusions = {u"HKEY_LOCAL_MACHINE\\Software\\Ignored"};
  rig.Run({kMachine});
  EXPECT_EQ(
      AllFields(rig.Problems()),
      Usual(
          {"80000002 | \\HARDWARE | Bios | C:\\bios.rom | 11042(Bios|C:\\bios.rom) | kind 2, image -1",
           "80000002 | \\SOFTWARE\\App | Help | C:\\Program Files\\App\\app.chm | 11042(Help|C:\\Program "
           "Files\\App\\app.chm) | kind 2, image -1",
           "80000002 | \\SOFTWARE\\App | Log | %ProgramFiles%\\App\\app.log | "
           "11042(Log|%ProgramFiles%\\App\\app.log) | kind 2, image -1",
           "80000002 | \\SOFTWARE\\App\\Setup | Target | C:\\Elsewhere | 11042(Target|C:\\Elsewhere) | kind "
           "2, image -1",
           "80000002 | \\SOFTWARE\\App\\System\\CurrentControlSet | Yes | C:\\Gone | 11042(Yes|C:\\Gone) | "
           "kind 2, image -1",
           "80000002 | \\SOFTWARE\\Microsoft\\Windows\\Helper | b.hlp | C:\\Gone | 11042(b.hlp|C:\\Gone) | "
           "kind 2, image -1"}));
  EXPECT_EQ(AllFields(rig.Headers()),
            TStrings{HeaderFields("80000002", "HKEY_LOCAL_MACHINE - Files and Folders", 1, 6)});
}

}  // namespace corvalt
