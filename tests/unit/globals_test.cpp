#include "core/globals.h"

#include <gtest/gtest.h>

#include "core/datafiles.h"
#include "core/settingskeys.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

constexpr TextView kUserShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr TextView kCommonShellFolders =
    u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr TextView kSuite = u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities";
constexpr TextView kSettings = u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings";

// A machine with nothing but C:\Windows, filled by each test.
class Environment : public testing::Test {
 protected:
  Environment() {
    System.Machine.Program = u"C:\\Suite\\Corvalt\\corvalt.exe";
    System.Disk.AddFolder(u"C:\\Windows\\system32");
    System.Disk.SetEnvironmentVariable(u"windir", u"C:\\Windows");
  }

  const TGlobalVars& Fill() {
    TSystem bundle = System.Bundle();
    FillGlobalVars(bundle, Vars);
    return Vars;
  }
  TSystem BundleWith(TMemoryDisk& disk) {
    return {System.Registry,
            System.Raw,
            disk,
            disk,
            System.Machine,
            System.Locale,
            System.Clock,
            System.MessageBoxes,
            System.Programs,
            System.EditorWindows,
            System.Interprocess};
  }
  std::int32_t StoredInteger(TextView name) {
    const auto store = System.Registry.CreateStore(TRegistryAccess::Read);
    store->OpenKey(kSuiteSettingsKey, false);
    return store->ReadInteger(name);
  }

  TMemorySystem System;
  TGlobalVars Vars;
};

TEST(WindowsVersionName, KnowsTheVersionsByNumberAndPlatform) {
  EXPECT_EQ(WindowsVersionNameOf({3, 51, false}), u"nt3.51");
  EXPECT_EQ(WindowsVersionNameOf({3, 10, false}), u"nt3.51");
  EXPECT_EQ(WindowsVersionNameOf({4, 0, true}), u"95");
  EXPECT_EQ(WindowsVersionNameOf({4, 0, false}), u"nt4.0");
  EXPECT_EQ(WindowsVersionNameOf({4, 10, true}), u"98");
  EXPECT_EQ(WindowsVersionNameOf({4, 90, true}), u"me");
  EXPECT_EQ(WindowsVersionNameOf({5, 0, false}), u"2000");
  EXPECT_EQ(WindowsVersionNameOf({5, 1, false}), u"xp");
  EXPECT_EQ(WindowsVersionNameOf({6, 0, false}), u"vista");
  EXPECT_EQ(WindowsVersionNameOf({6, 1, false}), u"vista");
  EXPECT_EQ(WindowsVersionNameOf({6, 3, false}), u"vista");
}

TEST(WindowsVersionName, HasGaps) {
  EXPECT_EQ(WindowsVersionNameOf({5, 2, false}), u"");
  EXPECT_EQ(WindowsVersionNameOf({4, 3, false}), u"");
  EXPECT_EQ(WindowsVersionNameOf({10, 0, false}), u"");
  EXPECT_EQ(WindowsVersionNameOf({2, 0, false}), u"");
}

TEST_F(Environment, OnWindows98EmptyVariablesHaveDefaults) {
  System.Machine.Version = {4, 10, true};
  System.Machine.SystemDirectory = u"C:\\Windows\\system";
  Fill();
  EXPECT_EQ(Vars.WindowsVersionName, u"98");
  EXPECT_EQ(Vars.WindowsMajorVersion, 4);
  EXPECT_EQ(Vars.WindowsFolder, u"C:\\Windows\\");
  EXPECT_EQ(Vars.SystemFolder, u"C:\\Windows\\system\\");
  EXPECT_EQ(Vars.AppDataFolder, u"C:\\Windows\\Application Data\\");
  EXPECT_EQ(Vars.ProgramFilesFolder, u"C:\\program files\\");
  EXPECT_EQ(Vars.CommonFilesFolder, u"C:\\program files\\Common Files\\");
  EXPECT_EQ(Vars.AllUsersFolder, u"C:\\Windows\\All Users\\");
  EXPECT_EQ(Vars.UserProfileFolder, u"C:\\Windows\\");
  EXPECT_EQ(Vars.TempFolder, u"\\");
  EXPECT_EQ(Vars.StartupFolder, u"C:\\Windows\\Start Menu\\Programs\\Startup\\");
  EXPECT_EQ(Vars.CommonStartMenuFolder, u"C:\\Windows\\All Users\\Start Menu\\");
  EXPECT_EQ(Vars.SuiteBackupsFolder,
            u"C:\\Windows\\Application Data\\TessalySoft\\Tessaly Utilities\\Backups\\");
}

TEST_F(Environment, OnWindowsMeTooButOnNoOther) {
  System.Machine.Version = {4, 90, true};
  EXPECT_EQ(Fill().AppDataFolder, u"C:\\Windows\\Application Data\\");
  System.Machine.Version = {4, 0, true};
  EXPECT_EQ(Fill().AppDataFolder, u"\\");
}

TEST_F(Environment, OnWindows98ASetVariableWins) {
  System.Machine.Version = {4, 10, true};
  System.Disk.SetEnvironmentVariable(u"ProgramFiles", u"D:\\Programs");
  EXPECT_EQ(Fill().ProgramFilesFolder, u"D:\\Programs\\");
}

TEST_F(Environment, OnVersion61TheVariablesCountAlone) {
  System.AddUsualFolders();
  System.Machine.Version = {6, 1, false};
  Fill();
  EXPECT_EQ(Vars.WindowsVersionName, u"vista");
  EXPECT_EQ(Vars.WindowsMajorVersion, 6);
  EXPECT_EQ(Vars.AppDataFolder, u"C:\\Users\\Ann\\AppData\\");
  EXPECT_EQ(Vars.ProgramFilesFolder, u"C:\\Program Files\\");
  EXPECT_EQ(Vars.CommonFilesFolder, u"C:\\Program Files\\Common Files\\");
  EXPECT_EQ(Vars.TempFolder, u"C:\\Users\\Ann\\Temp\\");
  EXPECT_EQ(Vars.AllUsersFolder, u"C:\\Users\\All\\");
  EXPECT_EQ(Vars.UserProfileFolder, u"C:\\Users\\Ann\\");
  EXPECT_EQ(Vars.SystemFolder, u"C:\\Windows\\system32\\");
  EXPECT_EQ(Vars.ProgramFolder, u"C:\\Suite\\Corvalt\\");
}

TEST_F(Environment, OnVersion61AnEmptyVariableLeavesTheFolderASeparator) {
  System.Machine.Version = {6, 1, false};
  EXPECT_EQ(Fill().AppDataFolder, u"\\");
  EXPECT_EQ(Vars.AllUsersFolder, u"\\");
  EXPECT_EQ(Vars.CommonProgramsFolder, u"\\Start Menu\\Programs\\");
}

TEST_F(Environment, ASystemFolderThatDoesNotFitIsEmpty) {
  System.Machine.SystemDirectory = Text(261, u'x');
  EXPECT_EQ(Fill().SystemFolder, u"\\");
  System.Machine.SystemDirectory = Text(260, u'x');
  EXPECT_EQ(Fill().SystemFolder, Text(260, u'x') + u"\\");
}

TEST_F(Environment, ShellFoldersComeFromTheRegistryOfTheUserAndOfAllUsers) {
  System.Registry.Set(kUserShellFolders, u"Startup", u"C:\\u\\startup");
  System.Registry.Set(kUserShellFolders, u"Start Menu", u"C:\\u\\menu\\");
  System.Registry.Set(kUserShellFolders, u"Programs", u"C:\\u\\programs");
  System.Registry.Set(kCommonShellFolders, u"Common Startup", u"C:\\a\\startup");
  System.Registry.Set(kCommonShellFolders, u"Common Start Menu", u"C:\\a\\menu");
  System.Registry.Set(kCommonShellFolders, u"Common Programs", u"C:\\a\\programs");
  Fill();
  EXPECT_EQ(Vars.StartupFolder, u"C:\\u\\startup\\");
  EXPECT_EQ(Vars.StartMenuFolder, u"C:\\u\\menu\\");
  EXPECT_EQ(Vars.ProgramsFolder, u"C:\\u\\programs\\");
  EXPECT_EQ(Vars.CommonStartupFolder, u"C:\\a\\startup\\");
  EXPECT_EQ(Vars.CommonStartMenuFolder, u"C:\\a\\menu\\");
  EXPECT_EQ(Vars.CommonProgramsFolder, u"C:\\a\\programs\\");
}

TEST_F(Environment, ShellFoldersOfTheOtherRootDoNotCount) {
  System.Registry.Set(kUserShellFolders, u"Common Startup", u"C:\\wrong");
  System.Registry.Set(kCommonShellFolders, u"Startup", u"C:\\wrong");
  System.AddUsualFolders();
  EXPECT_EQ(Fill().StartupFolder, u"C:\\Users\\Ann\\Start Menu\\Programs\\Startup\\");
  EXPECT_EQ(Vars.CommonStartupFolder, u"C:\\Users\\All\\Start Menu\\Programs\\Startup\\");
}

TEST_F(Environment, EmptyShellFoldersHaveDefaultsOnEveryVersion) {
  System.AddUsualFolders();
  System.Machine.Version = {6, 1, false};
  System.Registry.Set(kUserShellFolders, u"Startup", u"");
  Fill();
  EXPECT_EQ(Vars.StartupFolder, u"C:\\Users\\Ann\\Start Menu\\Programs\\Startup\\");
  EXPECT_EQ(Vars.StartMenuFolder, u"C:\\Users\\Ann\\Start Menu\\");
  EXPECT_EQ(Vars.ProgramsFolder, u"C:\\Users\\Ann\\Start Menu\\Programs\\");
  EXPECT_EQ(Vars.CommonStartMenuFolder, u"C:\\Users\\All\\Start Menu\\");
}

TEST_F(Environment, AllFoldersAreMadeLong) {
  System.Disk.AddFolder(u"C:\\Documents and Settings\\Ann\\Local Settings");
  System.Disk.SetShortName(u"C:\\Documents and Settings", u"DOCUME~1");
  System.Disk.SetShortName(u"C:\\Documents and Settings\\Ann\\Local Settings", u"LOCALS~1");
  System.Disk.SetEnvironmentVariable(u"TEMP", u"C:\\DOCUME~1\\Ann\\LOCALS~1");
  System.Disk.SetEnvironmentVariable(u"APPDATA", u"C:\\DOCUME~1\\gone");
  System.Registry.Set(kUserShellFolders, u"Programs", u"C:\\DOCUME~1\\Ann");
  Fill();
  EXPECT_EQ(Vars.TempFolder, u"C:\\Documents and Settings\\Ann\\Local Settings\\");
  EXPECT_EQ(Vars.ProgramsFolder, u"C:\\Documents and Settings\\Ann\\");
  EXPECT_EQ(Vars.AppDataFolder, u"C:\\DOCUME~1\\gone\\");
}

// Of 32-bit programs the system folder itself is that one.
TEST_F(Environment, A64BitProgramKnowsTheSystemFolderOf32BitOnes) {
  EXPECT_EQ(Fill().SysWow64Folder, sizeof(void*) == 8 ? u"C:\\Windows\\SysWOW64\\" : u"");
}

TEST_F(Environment, SearchFoldersArePathThenTheSystemsOwn) {
  System.Disk.SetEnvironmentVariable(u"ProgramFiles", u"C:\\Program Files");
  System.Disk.SetEnvironmentVariable(u"Path", u"C:\\Tools\\;;C:\\a b;D:\\x;");
  EXPECT_EQ(Fill().SearchFolders,
            (std::vector<Text>{u"C:\\Tools\\", u"C:\\a b", u"D:\\x", u"C:\\Windows\\",
                               u"C:\\Windows\\system32\\", u"C:\\Program Files\\Internet Explorer"}));
}

TEST_F(Environment, WithoutPathTheSystemsOwnFoldersRemain) {
  EXPECT_EQ(Fill().SearchFolders.size(), 3u);
}

TEST_F(Environment, FixedDrivesAreThoseOfTypeThree) {
  System.Disk.AddDrive(u"A:\\", 2);
  System.Disk.AddDrive(u"d:\\", kDriveFixed);
  System.Disk.AddDrive(u"E:\\", 5);
  System.Disk.AddDrive(u"N:\\", 4);
  EXPECT_EQ(Fill().FixedDrives, u"C:\\;D:\\;");
}

// A disk with more drives than there are letters for.
class TManyDrives : public TMemoryDisk {
 public:
  explicit TManyDrives(std::size_t length) : m_length(length) {
  }
  std::size_t GetLogicalDriveStrings(std::size_t bufferLength, Text& roots) override {
    m_offered = bufferLength;
    if (m_length <= bufferLength)
      roots = Text(u"C:\\\0", 4);
    return m_length;
  }
  std::size_t Offered() const {
    return m_offered;
  }

 private:
  std::size_t m_length;
  std::size_t m_offered = 0;
};

TEST_F(Environment, ADriveListOf129CharactersFits) {
  TManyDrives disk(129);
  TSystem bundle = BundleWith(disk);
  FillGlobalVars(bundle, Vars);
  EXPECT_EQ(disk.Offered(), 129u);
  EXPECT_EQ(Vars.FixedDrives, u"C:\\;");
}

TEST_F(Environment, ALongerDriveListRaisesTheSystemsMessage14) {
  TManyDrives disk(130);
  TSystem bundle = BundleWith(disk);
  try {
    FillGlobalVars(bundle, Vars);
    FAIL() << "nothing raised";
  } catch (const TSystemException& error) {
    EXPECT_EQ(error.Error().Code, 14u);
  }
  // The drives come before the language and the settings.
  EXPECT_FALSE(System.Registry.HasKey(kSuite));
}

TEST_F(Environment, TheLanguageIsLoadedFromBesideTheProgram) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\languages\\english.lng", "10001=File");
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\languages\\german.lng", "10001=Datei");
  System.Registry.Set(kSuite, u"Language", u"german.lng");
  Fill();
  EXPECT_EQ(Vars.LanguageName, u"german.lng");
  EXPECT_EQ(LanguageText(Vars.Texts, TextId::MenuFile), u"Datei");
}

TEST_F(Environment, TheLanguageIsWrittenBeforeTheSuitesSettings) {
  TJournal journal;
  System.KeepJournal(journal);
  Fill();
  const auto position = [&](std::string_view part) {
    std::size_t i = 0;
    while (i < journal.Entries().size() && journal.Entries()[i].find(part) == std::string::npos)
      ++i;
    return i;
  };
  EXPECT_LT(position("Language"), position("BackupsMax"));
  EXPECT_LT(position("BackupsMax"), position("BackupsDelete"));
  EXPECT_LT(position("BackupsDelete"), journal.Entries().size());
}

TEST_F(Environment, TheSkinIsReadAndNeverWritten) {
  EXPECT_EQ(Fill().SkinPath, u"");
  EXPECT_FALSE(System.Registry.HasValue(kSuite, u"Skin"));
  System.Registry.Set(kSuite, u"Skin", u"C:\\Suite\\blue.skn");
  EXPECT_EQ(Fill().SkinPath, u"C:\\Suite\\blue.skn");
}

TEST_F(Environment, MissingLimitsAreWrittenWithTheirDefaults) {
  Fill();
  EXPECT_EQ(Vars.BackupsMax, 60);
  EXPECT_EQ(Vars.BackupsDelete, 1);
  EXPECT_EQ(StoredInteger(u"BackupsMax"), 60);
  EXPECT_EQ(StoredInteger(u"BackupsDelete"), 1);
}

TEST_F(Environment, StoredLimitsCountAndStay) {
  System.Registry.SetInteger(kSettings, u"BackupsMax", 0);
  System.Registry.SetInteger(kSettings, u"BackupsDelete", 0xFFFFFFFF);
  Fill();
  EXPECT_EQ(Vars.BackupsMax, 0);
  EXPECT_EQ(Vars.BackupsDelete, -1);
  EXPECT_EQ(StoredInteger(u"BackupsMax"), 0);
}

// As text "200" they would read 0, and the next start would remove every backup.
TEST_F(Environment, LimitsOfAnotherTypeOrSizeCountAsTheirDefaultsAndStay) {
  const std::vector<TRawValue> wrong = {{u"", kRegSz, StringBytes(u"200")},
                                        {u"", kRegDword, {0, 0}},
                                        {u"", kRegDword, {}},
                                        {u"", kRegDword, {9, 0, 0, 0, 0}},
                                        {u"", kRegBinary, {9, 0, 0, 0}},
                                        {u"", kRegDwordBigEndian, {0, 0, 0, 9}}};
  for (const TRawValue& value : wrong) {
    for (const TextView name : {u"BackupsMax", u"BackupsDelete"})
      System.Registry.SetRaw(kSettings, {Text(name), value.Type, value.Data});
    Fill();
    EXPECT_EQ(Vars.BackupsMax, 60) << value.Type;
    EXPECT_EQ(Vars.BackupsDelete, 1) << value.Type;
    EXPECT_EQ(System.Registry.FindValue(kSettings, u"BackupsMax")->Data, value.Data);
    EXPECT_EQ(System.Registry.FindValue(kSettings, u"BackupsMax")->Type, value.Type);
  }
}

TEST_F(Environment, LimitsThatCannotBeStoredCountWithTheirDefaults) {
  System.Registry.AddKey(kSettings);
  System.Registry.Deny(kSettings);
  Fill();
  EXPECT_EQ(Vars.BackupsMax, 60);
  EXPECT_EQ(Vars.BackupsDelete, 1);
}

TEST_F(Environment, WithoutASettingsFileTheProgramIsNotPortable) {
  System.AddUsualFolders();
  Fill();
  EXPECT_FALSE(Vars.IsPortable);
  EXPECT_EQ(Vars.SuiteDataFolder, u"C:\\Users\\Ann\\AppData\\TessalySoft\\");
  EXPECT_EQ(Vars.SuiteBackupsFolder, u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\");
}

TEST_F(Environment, PortableModeMovesTheFolders) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\r\nType=1\r\nDataPath=D:\\Data\r\n");
  Fill();
  EXPECT_TRUE(Vars.IsPortable);
  EXPECT_EQ(Vars.SuiteDataFolder, u"D:\\Data\\TessalySoft\\");
  EXPECT_EQ(Vars.SuiteBackupsFolder, u"D:\\Data\\TessalySoft\\Tessaly Utilities\\Backups\\");
}

TEST_F(Environment, PortableModeLeavesTheSettingsInTheRegistry) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\nType=1\nBackupsMax=5\n");
  System.Registry.SetInteger(kSettings, u"BackupsMax", 7);
  Fill();
  EXPECT_TRUE(Vars.IsPortable);
  EXPECT_EQ(Vars.BackupsMax, 7);
  EXPECT_EQ(StoredInteger(u"BackupsDelete"), 1);
}

TEST_F(Environment, ThePortableDataPathIsBesideTheProgramFolderByDefault) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[portable]\r\ntype=1\r\n");
  EXPECT_EQ(Fill().SuiteDataFolder, u"C:\\Suite\\data\\common\\Administrator\\TessalySoft\\");
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\nType=1\nDataPath=\n");
  EXPECT_EQ(Fill().SuiteDataFolder, u"C:\\Suite\\data\\common\\Administrator\\TessalySoft\\");
}

TEST_F(Environment, AProgramAtTheRootHasItsDataThere) {
  System.Machine.Program = u"C:\\corvalt.exe";
  System.Disk.AddFile(u"C:\\settings.ini", "[Portable]\nType=1\n");
  EXPECT_EQ(Fill().SuiteDataFolder, u"C:\\data\\common\\Administrator\\TessalySoft\\");
}

TEST_F(Environment, ARelativePortableDataPathLiesInTheProgramFolder) {
  const auto backups = [this](std::string_view dataPath) {
    System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini",
                        "[Portable]\nType=1\nDataPath=" + std::string(dataPath));
    return Fill().SuiteDataFolder;
  };
  EXPECT_EQ(backups("data"), u"C:\\Suite\\Corvalt\\data\\TessalySoft\\");
  EXPECT_EQ(backups("..\\data\\"), u"C:\\Suite\\Corvalt\\..\\data\\TessalySoft\\");
  EXPECT_EQ(backups("\\data"), u"C:\\data\\TessalySoft\\");
  EXPECT_EQ(backups("/data"), u"C:\\data\\TessalySoft\\");
  EXPECT_EQ(backups("D:/data"), u"D:\\data\\TessalySoft\\");
  EXPECT_EQ(backups("//server/share"), u"\\\\server\\share\\TessalySoft\\");
  EXPECT_EQ(backups("\\\\server\\share"), u"\\\\server\\share\\TessalySoft\\");
}

TEST_F(Environment, APortableDataPathThatNamesADeviceCountsAsAbsent) {
  for (const std::string dataPath :
       {"nul", "D:\\data\\com1", "\\\\.\\PhysicalDrive0", "//./PhysicalDrive0", "aux.txt\\data", "D:data"}) {
    System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\nType=1\nDataPath=" + dataPath);
    EXPECT_EQ(Fill().SuiteDataFolder, u"C:\\Suite\\data\\common\\Administrator\\TessalySoft\\") << dataPath;
  }
}

TEST_F(Environment, ALanguageThatIsNoFileOfItsFolderCountsAsMissing) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\languages\\german.lng", "10001=Datei");
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\evil.lng", "10001=x");
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\languages\\sub\\evil.lng", "10001=x");
  for (const TextView name : {u"..\\evil.lng", u"../evil.lng", u"sub\\evil.lng", u".\\german.lng", u"nul",
                              u"con.lng", u"C:\\Suite\\Corvalt\\evil.lng", u"german.lng:x", u".."}) {
    System.Registry.Set(kSuite, u"Language", name);
    EXPECT_EQ(Fill().LanguageName, u"english.lng") << EncodeUtf8(name);
  }
  System.Registry.Set(kSuite, u"Language", u"german.lng");
  EXPECT_EQ(Fill().LanguageName, u"german.lng");
}

TEST_F(Environment, ThePortableTypeIsAnIntegerOtherThanZero) {
  const auto isPortable = [this](std::string_view type) {
    System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\r\nType=" + std::string(type));
    return Fill().IsPortable;
  };
  EXPECT_TRUE(isPortable("1"));
  EXPECT_TRUE(isPortable("-1"));
  EXPECT_TRUE(isPortable(" \"1\" "));
  EXPECT_FALSE(isPortable("0"));
  EXPECT_FALSE(isPortable(""));
  EXPECT_FALSE(isPortable("true"));
}

TEST_F(Environment, ADamagedOrUnreadableSettingsFileMeansNotPortable) {
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "Type=1\n[Portable\nType=1");
  EXPECT_FALSE(Fill().IsPortable);
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", "[Portable]\nType=1");
  System.Disk.MakeUnreadable(u"C:\\Suite\\Corvalt\\settings.ini");
  EXPECT_FALSE(Fill().IsPortable);
}

TEST_F(Environment, ASettingsFileThatIsTooLargeMeansNotPortable) {
  const std::string settings = "[Portable]\nType=1\n;";
  const auto room = static_cast<std::size_t>(kLargestDataFile) - settings.size();
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", settings + std::string(room, 'x'));
  EXPECT_TRUE(Fill().IsPortable);
  System.Disk.AddFile(u"C:\\Suite\\Corvalt\\settings.ini", settings + std::string(room + 1, 'x'));
  EXPECT_FALSE(Fill().IsPortable);
}

TEST_F(Environment, FillingAgainAnswersTheSame) {
  System.AddUsualFolders();
  Fill();
  const std::vector<Text> searchFolders = Vars.SearchFolders;
  Fill();
  EXPECT_EQ(Vars.SearchFolders, searchFolders);
  EXPECT_EQ(Vars.FixedDrives, u"C:\\;");
}

}  // namespace

}  // namespace corvalt
