#include "repair/backupstore.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory/memorysystem.h"
#include "repair/backupname.h"
#include "system/filestore.h"
#include "tests/support/storerig.h"

namespace corvalt {

namespace {

// Notes each reading of a file in an open folder.
class TNotingFolder : public TOpenFolder {
 public:
  TNotingFolder(std::unique_ptr<TOpenFolder> folder, TJournal& journal)
      : m_folder(std::move(folder)), m_journal(journal) {
  }
  TFileInfo Info(TextView name) override {
    return m_folder->Info(name);
  }
  TSystemError ReadFile(TextView name, std::vector<std::uint8_t>& bytes) override {
    m_journal.Add("read " + EncodeUtf8(name));
    return m_folder->ReadFile(name, bytes);
  }
  TSystemError ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) override {
    m_journal.Add("replace " + EncodeUtf8(name));
    return m_folder->ReplaceFile(name, bytes);
  }
  TSystemError DeleteFile(TextView name) override {
    return m_folder->DeleteFile(name);
  }
  TSystemError GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) override {
    return m_folder->GrowFile(name, file);
  }
  TSystemError HoldFile(TextView name, std::unique_ptr<THeldFile>& file) override {
    return m_folder->HoldFile(name, file);
  }
  std::optional<TFolderIdentity> Identity() override {
    return m_folder->Identity();
  }

 private:
  std::unique_ptr<TOpenFolder> m_folder;
  TJournal& m_journal;
};

class TNotingDisk : public TMemoryDisk {
 public:
  explicit TNotingDisk(TJournal& journal) : m_journal(journal) {
  }
  TSystemError OpenFolder(TextView path, std::unique_ptr<TOpenFolder>& folder) override {
    std::unique_ptr<TOpenFolder> opened;
    const TSystemError error = TMemoryDisk::OpenFolder(path, opened);
    if (!error.Failed())
      folder = std::make_unique<TNotingFolder>(std::move(opened), m_journal);
    return error;
  }

 private:
  TJournal& m_journal;
};

// Refuses every lock.
class TNoLocks : public TInterprocess {
 public:
  TLockAnswer Lock(const TLockWish&, const std::function<bool()>&) override {
    return {};
  }
  bool ProcessRuns(std::uint32_t) override {
    return false;
  }
};

TSystem WithLocks(TSystem system, TInterprocess& locks) {
  return {system.Registry, system.Raw,           system.Probe, system.Files,
          system.Machine,  system.Locale,        system.Clock, system.MessageBoxes,
          system.Programs, system.EditorWindows, locks};
}

// The wish for the lock of the store in this folder.
Text LockNameOf(TextView folder, bool portable = false) {
  TStoreRig rig;
  rig.Vars.SuiteBackupsFolder = folder;
  rig.Vars.IsPortable = portable;
  rig.Store().RemoveBackup(Named(u"1"));
  return rig.System.Interprocess.Names.at(0);
}

}  // namespace

TEST(BackupName, IsTheTimeWithFifteenSignificantDigits) {
  EXPECT_EQ(NameAt(46341.0 + 492.25 / 1440.0, u"."), u"46341.3418402778");
  EXPECT_EQ(NameAt(46341.3418541667, u"."), u"46341.3418541667");
  EXPECT_EQ(NameAt(46341.5, u"."), u"46341.5");
  EXPECT_EQ(NameAt(46341, u"."), u"46341");
}

TEST(BackupName, BearsTheUsersDecimalSign) {
  EXPECT_EQ(NameAt(46341.5, u","), u"46341,5");
  EXPECT_EQ(NameAt(46341.5, u"\x066B"),
            u"46341\x066B"
            u"5");
}

TEST(BackupName, BearsAPointWhereTheUsersSignFitsNoFileOrIndex) {
  for (const TextView sign : {u"/", u"\\", u":", u"*", u"]", u"", u"7", u"e", u"\t"})
    EXPECT_EQ(NameAt(46341.5, sign), u"46341.5") << EncodeUtf8(sign);
}

TEST(BackupName, IsReadWithPointCommaOrTheUsersSign) {
  EXPECT_EQ(TimeOfBackupName(u"46341.5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341,5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341'5", u"'"), 46341.5);
  EXPECT_EQ(TimeOfBackupName(u"46341", u"."), 46341);
  EXPECT_EQ(TimeOfBackupName(u"4.63415E+4", u","), 46341.5);
}

TEST(BackupName, ThatIsNoNumberSaysNoTime) {
  for (const TextView name : {u"", u"notes", u"46341'5", u"46341.5.1", u"1e999", u"1e-999", u"inf", u"nan",
                              u"0x10", u"5 ", u"+", u"++5"})
    EXPECT_EQ(TimeOfBackupName(name, u","), std::nullopt) << EncodeUtf8(name);
}

TEST(BackupName, OfNowIsReadBackAsTheSameMillisecond) {
  constexpr double kMillisecond = 1.0 / 86400000.0;
  for (int i = 0; i < 1000; ++i) {
    const TDateTime time = 46341.25 + i * 977 * kMillisecond;
    EXPECT_NEAR(TimeOfBackupName(NameAt(time, u","), u",").value_or(0), time, kMillisecond / 10);
  }
}

TEST(BackupName, ThatWouldLeaveTheFolderIsNone) {
  for (const TextView name :
       {u"..", u".", u"", u"..\\x", u"a\\b", u"a/b", u"C:x", u"x:stream", u"x.", u"x ", u"*", u"?", u"a\tb"})
    EXPECT_FALSE(TBackupName::FromText(name)) << EncodeUtf8(name);
  EXPECT_FALSE(TBackupName::FromText(TextView(u"a\0b", 3)));
  EXPECT_EQ(Named(u"46341,5").Value(), u"46341,5");
  EXPECT_EQ(Named(u"..a").Value(), u"..a");
}

TEST(BackupName, OfTheIndexIsNone) {
  EXPECT_FALSE(TBackupName::FromText(u"Index.INI"));
}

TEST(BackupName, ThatFitsNoSectionIsNone) {
  EXPECT_FALSE(TBackupName::FromText(u"46341]5"));
}

TEST(MakingABackup, MakesTheFolderWithAllItsParents) {
  TStoreRig rig;
  static_cast<void>(rig.Store().BeginBackup());
  EXPECT_TRUE(rig.System.Disk.DirectoryExists(kFolder));
}

TEST(MakingABackup, NamesItByTheTimeInTheUsersNotation) {
  TStoreRig rig;
  rig.System.Locale.Decimal = u",";
  EXPECT_EQ(rig.Store().BeginBackup().Value(), u"46341,5");
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
  static_cast<void>(store.CommitBackup(store.BeginBackup()));
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
  const TBackupName name = second.BeginBackup();
  EXPECT_EQ(name.Value(), u"46341.5");
  static_cast<void>(second.CommitBackup(name));
  EXPECT_EQ(rig.Index(), "[46341.5]\r\nType=11001\r\n");
  EXPECT_EQ(rig.System.Disk.Content(Text(kFolder) + name.Value())->find('['), std::string::npos);
}

TEST(MakingABackup, TwiceWithOneStoreBeginsWithNothingExported) {
  TStoreRig rig;
  rig.System.Registry.AddKey(kKey);
  BackupStore store = rig.Store();
  static_cast<void>(store.BeginBackup());
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Done);
  const TDeletionRight right = store.CommitBackup(store.BeginBackup());
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), nullptr);
}

TEST(MakingABackup, ListsItThenWritesAndVerifiesItAndLooksWhetherItIsListed) {
  TStoreRig rig;
  TJournal journal;
  TNotingDisk disk(journal);
  rig.System.Registry.Set(kKey, u"Path", u"x");
  const TSystem plain = rig.System.Bundle();
  TSystem system = {plain.Registry,
                    plain.Raw,
                    disk,
                    disk,
                    plain.Machine,
                    plain.Locale,
                    plain.Clock,
                    plain.MessageBoxes,
                    plain.Programs,
                    plain.EditorWindows,
                    plain.Interprocess};
  BackupStore store(system, rig.Vars);
  const TBackupName name = store.BeginBackup();
  EXPECT_EQ(journal.Entries(), TNames({"read index.ini", "replace index.ini"}));
  journal.Clear();
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Done);
  EXPECT_EQ(journal.Entries(), TNames());
  EXPECT_NE(store.CommitBackup(name).PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), nullptr);
  EXPECT_EQ(journal.Entries(), TNames({"replace 46341.5", "read 46341.5", "read index.ini"}));
}

TEST(TheRightToDelete, CoversExactlyWhatTheBackupHolds) {
  TStoreRig rig;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  rig.System.Registry.Set(kKey, u"Other", u"y");
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  EXPECT_EQ(store.AddValueToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path"), TExportResult::Done);
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_NE(right.PlaceOfValue(KeyAt(u"HKEY_CURRENT_USER\\software\\\\OLD\\"), u"path"), nullptr);
  EXPECT_EQ(right.PlaceOfValue(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Other"), nullptr);
  EXPECT_EQ(right.PlaceOfValue(KeyAt(u"HKEY_LOCAL_MACHINE\\Software\\Old"), u"Path"), nullptr);
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), nullptr);
}

TEST(TheRightToDelete, OfAKeyIsNeitherThatOfTheKeyAboveNorThatOfItsValues) {
  TStoreRig rig;
  rig.System.Registry.Set(kKey, u"Path", u"x");
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Done);
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_NE(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), nullptr);
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software")), nullptr);
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old\\Below")), nullptr);
  EXPECT_EQ(right.PlaceOfValue(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path"), nullptr);
}

TEST(TheRightToDelete, LeavesOutWhatIsMissingOrUnreadable) {
  TStoreRig rig;
  rig.System.Registry.Deny(kKey);
  BackupStore store = rig.Store();
  const TBackupName name = store.BeginBackup();
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Unreadable);
  EXPECT_EQ(store.AddKeyToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Gone")), TExportResult::Missing);
  const TDeletionRight right = store.CommitBackup(name);
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), nullptr);
  EXPECT_EQ(right.PlaceOfKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Gone")), nullptr);
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
  EXPECT_TRUE(TDeletionRight::WithoutBackup(bundle)->IsWithoutBackup());
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
  rig.System.Disk.FailReading(kErrorAccessDenied, u"46341.5");
  EXPECT_THROW(rig.BackUpOneValue(), TSystemException);
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
  EXPECT_THROW(store.RemoveBackup(Named(u"46341.5")), TSystemException);
  EXPECT_EQ(rig.Index(), "(none)");
}

TEST(TheStoresLock, IsOnePerFolderHoweverItIsSpelt) {
  EXPECT_EQ(LockNameOf(u"C:\\Portable\\Backups\\"), LockNameOf(u"c:\\portable\\BACKUPS\\"));
  EXPECT_NE(LockNameOf(u"C:\\Portable\\Backups\\"), LockNameOf(u"D:\\Portable\\Backups\\"));
}

// A mutex of the whole machine has a name of at most 260 units, the user's identifier in it (CreateMutex,
// learn.microsoft.com).
TEST(TheStoresLock, HasANameOfLimitedLength) {
  const Text deep = Text(300, u'a') + u"\\Backups\\";
  EXPECT_LE(LockNameOf(u"C:\\Ann\\" + deep).size(), 220u);
  EXPECT_NE(LockNameOf(u"C:\\Ann\\" + deep), LockNameOf(u"C:\\Ann\\" + deep + u"More\\"));
}

TEST(ListingBackups, AnswersNameTimeAndSizeInTheOrderOfTheIndex) {
  TStoreRig rig;
  rig.AddBackups({"46300.25", "46341,5"});
  const std::vector<TBackup> backups = rig.Store().ListBackups(kCleanerModuleId);
  ASSERT_EQ(backups.size(), 2U);
  EXPECT_EQ(backups[0].Name.Value(), u"46300.25");
  EXPECT_EQ(backups[0].Created, 46300.25);
  EXPECT_EQ(backups[0].Size, 10);
  EXPECT_EQ(backups[1].Created, 46341.5);
}

TEST(ListingBackups, TakesTheTypeInAnyLetterCaseAndSkipsOtherModules) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=abc\r\n[2]\r\nType=ABC\r\n[3]\r\nType=11001\r\n[4]\r\n[5]\r\nOther=abc\r\n");
  TNames names;
  for (const TBackup& backup : rig.Store().ListBackups(u"aBc"))
    names.push_back(EncodeUtf8(backup.Name.Value()));
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
    EXPECT_EQ(backup.Size, 0) << EncodeUtf8(backup.Name.Value());
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
  rig.Store().RemoveBackup(Named(u"1"));
  EXPECT_FALSE(rig.HasFile(u"1"));
  EXPECT_TRUE(rig.HasFile(u"2"));
  EXPECT_EQ(rig.Index(), "[2]\r\nType=11001\r\n");
}

TEST(RemovingABackup, ThatIsGoneAlreadyIsNoError) {
  TStoreRig rig;
  rig.SetIndex("[1]\r\nType=11001\r\n");
  rig.Store().RemoveBackup(Named(u"1"));
  EXPECT_EQ(rig.Index(), "");
  rig.Store().RemoveBackup(Named(u"1"));
  TStoreRig empty;
  empty.Store().RemoveBackup(Named(u"1"));
  EXPECT_EQ(empty.Index(), "(none)");
}

TEST(RemovingABackup, ThatCannotBeDeletedKeepsItListed) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  EXPECT_THROW(rig.Store().RemoveBackup(Named(u"1")), TSystemException);
  EXPECT_EQ(rig.Listed(), TNames({"1"}));
}

TEST(ReadingABackup, FindsNoFileWhereALinkStandsOrNothing) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.MakeLink(Text(kFolder) + u"1");
  std::vector<std::uint8_t> bytes;
  for (const TextView name : {u"1", u"2", u"nul"})
    EXPECT_EQ(rig.Store().ReadBackup(Named(name), bytes).Code, kErrorFileNotFound) << EncodeUtf8(name);
}

// "Reparse Point Tags", learn.microsoft.com: only a name surrogate stands for another file.
TEST(ReadingABackup, TakesADeduplicatedFileForAFileLikeAnyOther) {
  TStoreRig rig;
  rig.AddBackups({"1"});
  rig.System.Disk.MakeLink(Text(kFolder) + u"1", false);
  std::vector<std::uint8_t> bytes;
  EXPECT_FALSE(rig.Store().ReadBackup(Named(u"1"), bytes).Failed());
  EXPECT_EQ(bytes.size(), 10U);
  EXPECT_EQ(rig.Store().ListBackups(kCleanerModuleId).at(0).Size, 10);
}

TEST(TheFilePathOfABackup, IsTheFolderAndTheName) {
  TStoreRig rig;
  EXPECT_EQ(rig.Store().BackupFilePath(Named(u"46341.5")), Text(kFolder) + u"46341.5");
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

// A junction (page "Hard Links and Junctions", learn.microsoft.com) can stand anywhere in a path.
TEST(MigratingOldBackups, LeavesTheSuitesIndexWhereAJunctionLeadsToIt) {
  TStoreRig rig;
  rig.AddBackups({"46341"});
  const std::string index = rig.Index();
  const Text suite = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities";
  rig.System.Disk.AddFolder(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt");
  rig.System.Disk.MakeJunction(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt", suite);
  rig.Store().MigrateLegacyBackups();
  EXPECT_EQ(rig.Index(), index);
  EXPECT_TRUE(rig.HasFile(u"46341"));
}

}  // namespace corvalt
