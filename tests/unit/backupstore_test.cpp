#include "repair/backupstore.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory/memorysystem.h"
#include "repair/backupname.h"
#include "system/filestore.h"
#include "tests/support/keyat.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

constexpr TextView kFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\";
constexpr TextView kLegacyFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\";
constexpr TextView kKey = u"HKEY_CURRENT_USER\\Software\\Old";
constexpr TDateTime kNow = 46341.5;

bool Never() {
  return false;
}

// A store over an empty disk, at noon of 15 November 2026.
class TStoreRig {
 public:
  TStoreRig() {
    Vars.AppDataFolder = u"C:\\Users\\Ann\\AppData\\";
    Vars.SuiteBackupsFolder = kFolder;
    Vars.BackupsMax = 60;
    Vars.BackupsDelete = 1;
    Vars.Texts = NumberedTexts();
    System.Clock.Time = kNow;
  }

  BackupStore Store() {
    TSystem bundle = System.Bundle();
    return BackupStore(bundle, Vars);
  }

  void SetIndex(std::string_view content) {
    System.Disk.AddFile(Text(kFolder) + u"index.ini", content);
  }

  // A backup of each name, with a file of the same name.
  void AddBackups(const std::vector<std::string>& names) {
    std::string index;
    for (const std::string& name : names) {
      index += "[" + name + "]\r\nType=11001\r\n";
      AddFile(FromAscii(name));
    }
    SetIndex(index);
  }

  void AddFile(TextView name) {
    System.Disk.AddFile(Text(kFolder) + Text(name), "REGEDIT4\r\n");
  }

  std::string Index() {
    return System.Disk.Content(Text(kFolder) + u"index.ini").value_or("(none)");
  }

  bool HasFile(TextView name) {
    return System.Disk.Content(Text(kFolder) + Text(name)).has_value();
  }

  std::vector<std::string> Listed() {
    std::vector<std::string> names;
    for (const TBackup& backup : Store().ListBackups(kCleanerModuleId))
      names.push_back(EncodeUtf8(backup.Name));
    return names;
  }

  // Makes a backup of one value and answers the right that it gives.
  TDeletionRight BackUpOneValue() {
    System.Registry.Set(kKey, u"Path", u"C:\\gone.exe");
    BackupStore store = Store();
    const Text name = store.BeginBackup();
    store.AddValueToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path");
    return store.CommitBackup(name);
  }

  TMemorySystem System;
  TGlobalVars Vars;
};

using TNames = std::vector<std::string>;

// Notes each reading and each replacement of a file, and can make the second reading of a file fail.
class TNotingFiles : public TFileStore {
 public:
  TNotingFiles(TFileStore& files, TJournal& journal) : m_files(files), m_journal(journal) {
  }
  TSystemError ReadFile(TextView path, std::vector<std::uint8_t>& bytes) override {
    m_journal.Add("read file " + EncodeUtf8(path));
    return m_files.ReadFile(path, bytes);
  }
  TSystemError ReplaceFile(TextView path, std::span<const std::uint8_t> bytes) override {
    return m_files.ReplaceFile(path, bytes);
  }
  TSystemError MoveFile(TextView from, TextView to) override {
    return m_files.MoveFile(from, to);
  }
  TSystemError DeleteFile(TextView path) override {
    return m_files.DeleteFile(path);
  }
  TSystemError MakeFolders(TextView path) override {
    return m_files.MakeFolders(path);
  }
  TFileInfo Info(TextView path) override {
    return m_files.Info(path);
  }

 private:
  TFileStore& m_files;
  TJournal& m_journal;
};

// Refuses every lock.
class TNoLocks : public TInterprocess {
 public:
  std::unique_ptr<THeldLock> Lock(TextView) override {
    return nullptr;
  }
};

// Notes the name of each lock.
class TNotingLocks : public TInterprocess {
 public:
  std::unique_ptr<THeldLock> Lock(TextView name) override {
    Names.emplace_back(name);
    return std::make_unique<THeldLock>();
  }

  std::vector<Text> Names;
};

TSystem WithLocks(TSystem system, TInterprocess& locks) {
  return {system.Registry, system.Raw,   system.Probe,    system.Files, system.Machine,
          system.Locale,   system.Clock, system.TheShell, locks};
}

// The lock's name of the store in this folder.
Text LockNameOf(TextView folder) {
  TStoreRig rig;
  rig.Vars.SuiteBackupsFolder = folder;
  TNotingLocks locks;
  TSystem system = WithLocks(rig.System.Bundle(), locks);
  BackupStore(system, rig.Vars).ListBackups(kCleanerModuleId);
  return locks.Names.at(0);
}

}  // namespace

TEST(BackupName, IsTheTimeWithFifteenSignificantDigits) {
  EXPECT_EQ(BackupNameOf(46341.0 + 492.25 / 1440.0, u"."), u"46341.3418402778");
  EXPECT_EQ(BackupNameOf(46341.3418541667, u"."), u"46341.3418541667");
  EXPECT_EQ(BackupNameOf(46341.5, u"."), u"46341.5");
  EXPECT_EQ(BackupNameOf(46341, u"."), u"46341");
}

TEST(BackupName, BearsTheUsersDecimalSign) {
  EXPECT_EQ(BackupNameOf(46341.5, u","), u"46341,5");
  EXPECT_EQ(BackupNameOf(46341.5, u"\x066B"),
            u"46341\x066B"
            u"5");
}

TEST(BackupName, BearsAPointWhereTheUsersSignFitsNoFileOrIndex) {
  for (const TextView sign : {u"/", u"\\", u":", u"*", u"]", u"", u"7", u"e", u"\t"})
    EXPECT_EQ(BackupNameOf(46341.5, sign), u"46341.5") << EncodeUtf8(sign);
}

TEST(BackupName, IsReadWithPointCommaOrTheUsersSign) {
  EXPECT_EQ(TimeOfBackupName(u"46341.5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341,5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341'5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341", u"."), 46341);
  EXPECT_EQ(TimeOfBackupName(u"4.63415E+4", u","), 46341.5);
}

TEST(BackupName, ThatIsNoNumberSaysNoTime) {
  for (const TextView name :
       {u"", u"notes", u"46341'5", u"46341.5.1", u"1e999", u"inf", u"nan", u"0x10", u"5 "})
    EXPECT_EQ(TimeOfBackupName(name, u","), std::nullopt) << EncodeUtf8(name);
}

TEST(BackupName, OfNowIsReadBackAsTheSameMillisecond) {
  constexpr double kMillisecond = 1.0 / 86400000.0;
  for (int i = 0; i < 1000; ++i) {
    const TDateTime time = 46341.25 + i * 977 * kMillisecond;
    EXPECT_NEAR(TimeOfBackupName(BackupNameOf(time, u","), u",").value_or(0), time, kMillisecond / 10);
  }
}

TEST(BackupFileName, ThatWouldLeaveTheFolderIsNone) {
  for (const TextView name :
       {u"..", u".", u"", u"..\\x", u"a\\b", u"a/b", u"C:x", u"x:stream", u"x.", u"x ", u"*", u"?", u"a\tb"})
    EXPECT_FALSE(IsPlainFileName(name)) << EncodeUtf8(name);
  EXPECT_FALSE(IsPlainFileName(TextView(u"a\0b", 3)));
  EXPECT_TRUE(IsPlainFileName(u"46341,5"));
  EXPECT_TRUE(IsPlainFileName(u"..a"));
}

TEST(BackupFileName, OfTheIndexIsNoBackup) {
  EXPECT_FALSE(IsPlainFileName(u"Index.INI"));
}

TEST(MakingABackup, MakesTheFolderWithAllItsParents) {
  TStoreRig rig;
  rig.Store().BeginBackup();
  EXPECT_TRUE(rig.System.Disk.DirectoryExists(kFolder));
}

TEST(MakingABackup, NamesItByTheTimeInTheUsersNotation) {
  TStoreRig rig;
  rig.System.Locale.Decimal = u",";
  EXPECT_EQ(rig.Store().BeginBackup(), u"46341,5");
}

TEST(MakingABackup, WritesTheFileAndListsIt) {
  TStoreRig rig;
  rig.BackUpOneValue();
  EXPECT_EQ(rig.Index(), "[46341.5]\r\nType=11001\r\n");
  const std::string file = rig.System.Disk.Content(Text(kFolder) + u"46341.5").value_or("");
  EXPECT_EQ(file.substr(0, 8), "REGEDIT4");
  EXPECT_NE(file.find("[HKEY_CURRENT_USER\\Software\\Old]\r\n\"Path\"=\"C:\\\\gone.exe\""), std::string::npos)
      << file;
}

TEST(MakingABackup, OfNothingStillWritesTheHeaderAndTheEntry) {
  TStoreRig rig;
  BackupStore store = rig.Store();
  store.CommitBackup(store.BeginBackup());
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
  const std::string file = rig.System.Disk.Content(Text(kFolder) + u"46341.5").value_or("");
  EXPECT_EQ(file.substr(0, 8), "REGEDIT4");
  EXPECT_EQ(file.find('['), std::string::npos);
}

TEST(MakingABackup, KeepsWhatOtherModulesWroteIntoTheIndex) {
  TStoreRig rig;
  rig.SetIndex("; by hand\r\n[46000.25]\r\nType=29001\r\n29601=more.bin\r\n");
  rig.BackUpOneValue();
  EXPECT_EQ(rig.Index(),
            "; by hand\r\n[46000.25]\r\nType=29001\r\n29601=more.bin\r\n[46341.5]\r\nType=11001\r\n");
}

TEST(MakingABackup, InTheSameTickReplacesTheFirstFileAndKeepsOneSection) {
  TStoreRig rig;
  rig.BackUpOneValue();
  BackupStore second = rig.Store();
  const Text name = second.BeginBackup();
  EXPECT_EQ(name, u"46341.5");
  second.CommitBackup(name);
  EXPECT_EQ(rig.Index(), "[46341.5]\r\nType=11001\r\n");
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + name)->find('['), std::string::npos);
}

TEST(MakingABackup, TwiceWithOneStoreBeginsWithNothingExported) {
  TStoreRig rig;
  rig.System.Registry.AddKey(kKey);
  BackupStore store = rig.Store();
  store.BeginBackup();
  store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"));
  const TDeletionRight right = store.CommitBackup(store.BeginBackup());
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")));
}

TEST(MakingABackup, WritesThenVerifiesThenListsIt) {
  TStoreRig rig;
  TJournal journal;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  rig.System.KeepJournal(journal);
  TNotingFiles files(rig.System.Disk, journal);
  const TSystem plain = rig.System.Bundle();
  TSystem system = {plain.Registry, plain.Raw,      plain.Probe,       files, plain.Machine, plain.Locale,
                    plain.Clock,    plain.TheShell, plain.Interprocess};
  BackupStore store(system, rig.Vars);
  const Text name = store.BeginBackup();
  store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"));
  store.CommitBackup(name);
  const std::string folder = EncodeUtf8(kFolder);
  EXPECT_EQ(journal.Entries(),
            TNames({"replace file " + folder + "46341.5", "read file " + folder + "46341.5",
                    "read file " + folder + "index.ini", "replace file " + folder + "index.ini",
                    "read file " + folder + "index.ini"}));
}

TEST(TheRightToDelete, CoversExactlyWhatTheBackupHolds) {
  TStoreRig rig;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  rig.System.Registry.Set(kKey, u"Other", u"y");
  BackupStore store = rig.Store();
  const Text name = store.BeginBackup();
  store.AddValueToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path");
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_TRUE(right.CoversValue(KeyAt(u"HKEY_CURRENT_USER\\software\\\\OLD\\"), u"path"));
  EXPECT_FALSE(right.CoversValue(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Other"));
  EXPECT_FALSE(right.CoversValue(KeyAt(u"HKEY_LOCAL_MACHINE\\Software\\Old"), u"Path"));
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")));
}

TEST(TheRightToDelete, OfAKeyIsNeitherThatOfTheKeyAboveNorThatOfItsValues) {
  TStoreRig rig;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  BackupStore store = rig.Store();
  const Text name = store.BeginBackup();
  store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"));
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_TRUE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")));
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software")));
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old\\Below")));
  EXPECT_FALSE(right.CoversValue(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path"));
}

TEST(TheRightToDelete, LeavesOutWhatIsMissingOrUnreadable) {
  TStoreRig rig;
  rig.System.Registry.Deny(kKey);
  BackupStore store = rig.Store();
  const Text name = store.BeginBackup();
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Unreadable);
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Gone")), TExportResult::Missing);
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")));
  EXPECT_FALSE(right.CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Gone")));
}

TEST(TheRightToDelete, WithoutABackupExistsOnlyWhereTheSettingSaysFalse) {
  constexpr TextView kModules =
      u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";
  TMemorySystem system;
  TSystem bundle = system.Bundle();
  EXPECT_TRUE(BackupsAreOn(bundle));
  system.Registry.AddKey(kModules);
  EXPECT_TRUE(BackupsAreOn(bundle));
  system.Registry.SetInteger(kModules, u"RegistryCleaner", 1);
  EXPECT_TRUE(BackupsAreOn(bundle));
  system.Registry.SetRaw(kModules, {u"RegistryCleaner", kRegDword, {}});
  EXPECT_TRUE(BackupsAreOn(bundle));
  system.Registry.SetRaw(kModules, {u"RegistryCleaner", kRegDword, {0, 0}});
  EXPECT_TRUE(BackupsAreOn(bundle));
  system.Registry.Set(kModules, u"RegistryCleaner", u"0");
  EXPECT_TRUE(BackupsAreOn(bundle));
  EXPECT_FALSE(TDeletionRight::WithoutBackup(bundle));
  system.Registry.SetInteger(kModules, u"RegistryCleaner", 0);
  EXPECT_FALSE(BackupsAreOn(bundle));
  EXPECT_TRUE(TDeletionRight::WithoutBackup(bundle)->CoversKey(KeyAt(u"HKEY_CURRENT_USER\\Any")));
}

TEST(AFailedBackup, ThrowsWhenTheFolderCannotBeMade) {
  TStoreRig rig;
  rig.System.Disk.FailMakingFolders(kErrorAccessDenied);
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
}

TEST(AFailedBackup, IsNotListedWhenItsFileCannotBeWritten) {
  TStoreRig rig;
  rig.System.Disk.FailReplacing(kErrorDiskFull);
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  EXPECT_EQ(rig.Index(), "(none)");
}

TEST(AFailedBackup, IsNotListedWhenItsFileCannotBeReadBack) {
  TStoreRig rig;
  rig.System.Disk.FailReading(kErrorAccessDenied);
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  rig.System.Disk.FailReading(0);
  EXPECT_EQ(rig.Index(), "(none)");
}

TEST(AFailedBackup, IsNotListedWhenItsFileReadsBackOtherwise) {
  TStoreRig rig;
  rig.System.Disk.CorruptWrites(true);
  EXPECT_THROW(rig.BackUpOneValue(), TProgramException);
  EXPECT_EQ(rig.Index(), "(none)");
}

TEST(AFailedBackup, ThrowsWhenTheIndexCannotBeReadRatherThanReplaceIt) {
  TStoreRig rig;
  rig.SetIndex("[46000]\r\nType=29001\r\n");
  rig.System.Disk.MakeUnreadable(Text(kFolder) + u"index.ini");
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
  EXPECT_EQ(rig.Index(), "[46000]\r\nType=29001\r\n");
}

TEST(AFailedBackup, ThrowsWhenTheStoreCannotBeLocked) {
  TStoreRig rig;
  TNoLocks locks;
  TSystem system = WithLocks(rig.System.Bundle(), locks);
  BackupStore store(system, rig.Vars);
  EXPECT_THROW(store.BeginBackup(), TSystemException);
  EXPECT_THROW(store.CommitBackup(u"46341.5"), TSystemException);
  EXPECT_EQ(rig.Index(), "(none)");
}

TEST(TheStoresLock, IsOnePerFolderHoweverItIsSpelt) {
  EXPECT_EQ(LockNameOf(u"C:\\Portable\\Backups\\"), LockNameOf(u"c:\\portable\\BACKUPS\\"));
  EXPECT_NE(LockNameOf(u"C:\\Portable\\Backups\\"), LockNameOf(u"D:\\Portable\\Backups\\"));
}

TEST(TheStoresLock, HasANameOfLimitedLength) {
  const Text deep = Text(300, u'a') + u"\\Backups\\";
  EXPECT_LE(LockNameOf(u"C:\\Ann\\" + deep).size(), 250u);
  EXPECT_NE(LockNameOf(u"C:\\Ann\\" + deep), LockNameOf(u"C:\\Ann\\" + deep + u"More\\"));
}

TEST(ListingBackups, AnswersNameTimeAndSizeInTheOrderOfTheIndex) {
  TStoreRig rig;
  rig.AddBackups({"46300.25", "46341,5"});
  const std::vector<TBackup> backups = rig.Store().ListBackups(kCleanerModuleId);
  ASSERT_EQ(backups.size(), 2U);
  EXPECT_EQ(backups[0].Name, u"46300.25");
  EXPECT_EQ(backups[0].Created, 46300.25);
  EXPECT_EQ(backups[0].Size, 10);
  EXPECT_EQ(backups[1].Created, 46341.5);
}

TEST(ListingBackups, TakesTheTypeInAnyLetterCaseAndSkipsOtherModules) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=abc\r\n[2]\r\nType=ABC\r\n[3]\r\nType=11001\r\n[4]\r\n[5]\r\nOther=abc\r\n");
  TNames names;
  for (const TBackup& backup : rig.Store().ListBackups(u"aBc"))
    names.push_back(EncodeUtf8(backup.Name));
  EXPECT_EQ(names, TNames({"1", "2"}));
  EXPECT_EQ(rig.Listed(), TNames({"3"}));
}

TEST(ListingBackups, LeavesOutNamesThatAreNoNumber) {
  TStoreRig rig;
  rig.SetIndex("[notes]\r\nType=11001\r\n[46341.5]\r\nType=11001\r\n");
  EXPECT_EQ(rig.Listed(), TNames({"46341.5"}));
}

TEST(ListingBackups, LosesNoneByAChangeOfLocale) {
  TStoreRig rig;
  rig.System.Locale.Decimal = u",";
  rig.BackUpOneValue();
  rig.System.Locale.Decimal = u"\x066B";
  EXPECT_EQ(rig.Listed(), TNames({"46341,5"}));
}

TEST(ListingBackups, WithoutAnIndexAnswersNone) {
  TStoreRig rig;
  EXPECT_TRUE(rig.Listed().empty());
}

TEST(ListingBackups, CountsAMissingFileALinkAndAFolderAsNothing) {
  TStoreRig rig;
  rig.AddBackups({"1", "2"});
  rig.SetIndex("[1]\r\nType=11001\r\n[2]\r\nType=11001\r\n[3]\r\nType=11001\r\n");
  rig.System.Disk.MakeLink(Text(kFolder) + u"1");
  rig.System.Disk.Remove(Text(kFolder) + u"2");
  rig.System.Disk.AddFolder(Text(kFolder) + u"3");
  for (const TBackup& backup : rig.Store().ListBackups(kCleanerModuleId))
    EXPECT_EQ(backup.Size, 0) << EncodeUtf8(backup.Name);
}

TEST(ListingBackups, ThrowsWhenTheIndexCannotBeRead) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.FailReading(kErrorAccessDenied);
  EXPECT_THROW(rig.Listed(), TSystemException);
}

TEST(RemovingABackup, DeletesItsFileAndItsSection) {
  TStoreRig rig;
  rig.AddBackups({"1", "2"});
  rig.Store().RemoveBackup(u"1");
  EXPECT_FALSE(rig.HasFile(u"1"));
  EXPECT_TRUE(rig.HasFile(u"2"));
  EXPECT_EQ(rig.Index(), "[2]\r\nType=11001\r\n");
}

TEST(RemovingABackup, ThatIsGoneAlreadyIsNoError) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=11001\r\n");
  rig.Store().RemoveBackup(u"1");
  EXPECT_EQ(rig.Index(), "");
  rig.Store().RemoveBackup(u"1");
  TStoreRig empty;
  empty.Store().RemoveBackup(u"1");
  EXPECT_EQ(empty.Index(), "(none)");
}

TEST(RemovingABackup, ThatCannotBeDeletedKeepsItListed) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  EXPECT_THROW(rig.Store().RemoveBackup(u"1"), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(RemovingABackup, NeverTouchesAFileOutsideTheFolderOrTheIndex) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.AddFile(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious", "x");
  BackupStore store = rig.Store();
  for (const TextView name :
       {u"..\\precious", u"../precious", u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious",
        u"..", u"index.ini", u"nul"})
    store.RemoveBackup(name);
  EXPECT_TRUE(rig.System.Disk.Content(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious"));
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(ReadingABackup, AnswersMissingForALinkAndANameThatLeavesTheFolder) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.AddFile(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious", "x");
  rig.System.Disk.MakeLink(Text(kFolder) + u"1");
  std::vector<std::uint8_t> bytes;
  for (const TextView name : {u"..\\precious", u"1", u"index.ini", u"2"})
    EXPECT_EQ(rig.Store().ReadBackup(name, bytes).Code, kErrorFileNotFound) << EncodeUtf8(name);
}

TEST(TheFilePathOfABackup, IsTheFolderAndTheName) {
  TStoreRig rig;
  EXPECT_EQ(rig.Store().BackupFilePath(u"46341.5"), Text(kFolder) + u"46341.5");
  EXPECT_EQ(rig.Store().BackupFilePath(u"..\\46341.5"), u"");
}

TEST(MigratingOldBackups, MovesEverySectionAndFileAndDeletesTheOldIndex) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\nType=Old\r\n[2]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "first");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"2", "second");
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.Index(), "[1]\r\nType=11001\r\n[2]\r\nType=11001\r\n");
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"1"), "first");
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"2"), "second");
  EXPECT_TRUE(rig.System.Disk.AllBelow(kLegacyFolder).empty());
  EXPECT_TRUE(rig.System.Disk.DirectoryExists(kLegacyFolder));
}

TEST(MigratingOldBackups, WithoutAnOldIndexTouchesNothing) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "first");
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.Index(), "(none)");
  EXPECT_EQ(rig.System.Disk.Content(Text(kLegacyFolder) + u"1"), "first");
}

TEST(MigratingOldBackups, AddsSectionsWhoseFilesAreMissing) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\nType=11001\r\n");
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(MigratingOldBackups, KeepsTheFileOfTheSuiteWhereBothHaveOne) {
  TStoreRig rig;
  rig.AddFile(u"1");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "old");
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + u"1"), "REGEDIT4\r\n");
  EXPECT_EQ(rig.System.Disk.Content(Text(kLegacyFolder) + u"1"), "old");
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(MigratingOldBackups, MovesNoFileOutOfOrIntoAnotherFolder) {
  TStoreRig rig;
  rig.System.Disk.AddFile(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\precious", "x");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[..\\precious]\r\n[index.ini]\r\n[7]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"7", "x");
  rig.System.Disk.MakeLink(Text(kLegacyFolder) + u"7");
  rig.Store().MigrateLegacyBackups();
  EXPECT_TRUE(rig.System.Disk.Content(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\precious"));
  EXPECT_TRUE(rig.System.Disk.Content(Text(kLegacyFolder) + u"7"));
  EXPECT_FALSE(rig.HasFile(u"7"));
}

TEST(MigratingOldBackups, LeavesAFolderAloneThatIsALink) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "old");
  rig.System.Disk.MakeLink(kLegacyFolder);
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.Index(), "(none)");
  EXPECT_TRUE(rig.System.Disk.Content(Text(kLegacyFolder) + u"index.ini"));
  EXPECT_TRUE(rig.System.Disk.Content(Text(kLegacyFolder) + u"1"));
}

TEST(MigratingOldBackups, KeepsTheOldIndexWhenTheNewOneCannotBeWritten) {
  TStoreRig rig;
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\n");
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"1", "old");
  rig.System.Disk.FailReplacing(kErrorDiskFull);
  EXPECT_THROW(rig.Store().MigrateLegacyBackups(), TSystemException);
  EXPECT_TRUE(rig.System.Disk.Content(Text(kLegacyFolder) + u"index.ini"));
  EXPECT_TRUE(rig.System.Disk.Content(Text(kLegacyFolder) + u"1"));
}

TEST(MigratingOldBackups, ReadsTheApplicationDataFolderInPortableModeToo) {
  TStoreRig rig;
  rig.Vars.IsPortable = true;
  rig.Vars.SuiteBackupsFolder = u"C:\\Stick\\TessalySoft\\Tessaly Utilities\\Backups\\";
  rig.System.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", "[1]\r\n");
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.System.Disk.Content(u"C:\\Stick\\TessalySoft\\Tessaly Utilities\\Backups\\index.ini"),
            "[1]\r\nType=11001\r\n");
}

TEST(PruningByAge, KeepsNinetyDaysUnderEverySettingFromZeroToFive) {
  for (std::int32_t setting = 0; setting <= 5; ++setting) {
    TStoreRig rig;
    rig.Vars.BackupsDelete = setting;
    rig.AddBackups({"46251.5", "46251.4", "46341"});
    rig.Store().PruneBackups(Never);
    EXPECT_EQ(rig.Listed(), TNames({"46251.5", "46341"})) << setting;
    EXPECT_FALSE(rig.HasFile(u"46251.4"));
    EXPECT_TRUE(rig.HasFile(u"46251.5"));
  }
}

TEST(PruningByAge, KeepsEverythingUnderAnyOtherSetting) {
  for (const std::int32_t setting : {6, 7, -1, 1000}) {
    TStoreRig rig;
    rig.Vars.BackupsDelete = setting;
    rig.AddBackups({"1", "46341"});
    rig.SetIndex(rig.Index() + "[notes]\r\nType=11001\r\n");
    rig.Store().PruneBackups(Never);
    EXPECT_EQ(rig.Listed(), TNames({"1", "46341"})) << setting;
    EXPECT_NE(rig.Index().find("[notes]"), std::string::npos);
  }
}

TEST(PruningByAge, RemovesOtherModulesBackupsWithTheirFurtherFiles) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=29001\r\n29601=a\r\n29602=b\r\n29603=c\r\n29606=d\r\n29604=e\r\n");
  for (const TextView name : {u"1", u"a", u"b", u"c", u"d", u"e", u"nofile"})
    rig.AddFile(name);
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Index(), "");
  for (const TextView name : {u"1", u"a", u"b", u"c", u"d"})
    EXPECT_FALSE(rig.HasFile(name)) << EncodeUtf8(name);
  EXPECT_TRUE(rig.HasFile(u"e"));
  EXPECT_TRUE(rig.HasFile(u"nofile"));
}

TEST(PruningByAge, NeverDeletesAFurtherFileOutsideTheFolderALinkOrTheIndex) {
  TStoreRig rig;
  const Text precious = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious";
  rig.System.Disk.AddFile(precious, "x");
  rig.SetIndex("[1]\r\n29601=..\\precious\r\n29602=" + EncodeUtf8(precious) +
               "\r\n29603=index.ini\r\n29606=link\r\n[46341]\r\nType=11001\r\n");
  rig.AddFile(u"link");
  rig.System.Disk.MakeLink(Text(kFolder) + u"link");
  rig.Store().PruneBackups(Never);
  EXPECT_TRUE(rig.System.Disk.Content(precious));
  EXPECT_TRUE(rig.HasFile(u"link"));
  EXPECT_EQ(rig.Index(), "[46341]\r\nType=11001\r\n");
}

TEST(PruningByAge, TakesANameThatIsNoNumberForTheOldest) {
  TStoreRig rig;
  rig.SetIndex("[notes]\r\nType=11001\r\n[46341]\r\nType=11001\r\n");
  rig.AddFile(u"notes");
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Index(), "[46341]\r\nType=11001\r\n");
  EXPECT_FALSE(rig.HasFile(u"notes"));
}

TEST(PruningByAge, GoesOnWhenAFileCannotBeDeleted) {
  TStoreRig rig;
  rig.AddBackups({"1", "2"});
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  rig.Store().PruneBackups(Never);
  EXPECT_TRUE(rig.Listed().empty());
}

TEST(PruningByAge, StopsBetweenTwoBackups) {
  TStoreRig rig;
  rig.AddBackups({"1", "2", "3"});
  int asked = 0;
  rig.Store().PruneBackups([&asked] { return ++asked > 1; });
  EXPECT_EQ(rig.Listed(), TNames({"2", "3"}));
}

TEST(PruningByCount, RemovesTheOldestOfSixtyToMakeRoomForTheNext) {
  TStoreRig rig;
  TNames names;
  for (int i = 10; i < 70; ++i)
    names.push_back("463" + std::to_string(i));
  rig.AddBackups(names);
  rig.Store().PruneBackups(Never);
  names.erase(names.begin());
  EXPECT_EQ(rig.Listed(), names);
  EXPECT_FALSE(rig.HasFile(u"46310"));
  EXPECT_TRUE(rig.HasFile(u"46311"));
}

TEST(PruningByCount, LeavesFewerThanTheLimitAlone) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 3;
  rig.AddBackups({"46301", "46302"});
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Listed(), TNames({"46301", "46302"}));
}

TEST(PruningByCount, OrdersNamesAsTextsNotAsNumbers) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 3;
  rig.Vars.BackupsDelete = 6;
  rig.AddBackups({"9", "10", "46341"});
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Listed(), TNames({"9", "46341"}));
}

TEST(PruningByCount, CountsWhatWasErasedByAgeOnceMore) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 3;
  rig.AddBackups({"46339", "46340", "46341", "99"});
  // Four names, "99" is erased by age and comes first by name: the positions 3 and 2 are the two oldest
  // others.
  rig.Store().PruneBackups(Never);
  EXPECT_EQ(rig.Listed(), TNames({"46341"}));
}

TEST(PruningByCount, RemovesEverythingUnderALimitOfOneOrLess) {
  for (const std::int32_t limit : {1, 0, -5}) {
    TStoreRig rig;
    rig.Vars.BackupsMax = limit;
    rig.AddBackups({"46340", "46341"});
    rig.Store().PruneBackups(Never);
    EXPECT_TRUE(rig.Listed().empty()) << limit;
    TStoreRig empty;
    empty.Vars.BackupsMax = limit;
    empty.Store().PruneBackups(Never);
    EXPECT_EQ(empty.Index(), "(none)");
  }
}

TEST(PruningByCount, DeletesOnlyTheFileNamedAfterTheSection) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 1;
  rig.SetIndex("[46340]\r\nType=29001\r\n29601=more\r\n");
  rig.AddFile(u"46340");
  rig.AddFile(u"more");
  rig.Store().PruneBackups(Never);
  EXPECT_FALSE(rig.HasFile(u"46340"));
  EXPECT_TRUE(rig.HasFile(u"more"));
}

TEST(PruningByCount, GoesOnWhenAFileCannotBeDeleted) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 1;
  rig.AddBackups({"46340", "46341"});
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  rig.Store().PruneBackups(Never);
  EXPECT_TRUE(rig.Listed().empty());
}

TEST(PruningByCount, StopsBetweenTwoBackups) {
  TStoreRig rig;
  rig.Vars.BackupsMax = 1;
  rig.AddBackups({"46339", "46340", "46341"});
  int asked = 0;
  // Three questions belong to the rule of age.
  rig.Store().PruneBackups([&asked] { return ++asked > 4; });
  EXPECT_EQ(rig.Listed(), TNames({"46340", "46341"}));
}

}  // namespace corvalt
