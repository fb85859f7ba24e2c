#include "core/globalregs.h"

#include <gtest/gtest.h>

#include "core/datafiles.h"
#include "platform/memory/memorysystem.h"
#include "tests/support/datafile.h"

namespace corvalt {

namespace {

constexpr TextView kIgnoreList =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\IgnoreList";
constexpr TextView kSettings =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Settings";

using TTexts = std::vector<Text>;

class CleanerSettings : public testing::Test {
 protected:
  CleanerSettings() {
    Vars.ProgramFolder = u"C:\\Corvalt\\";
    Vars.AppDataFolder = u"C:\\AppData\\";
  }

  const TGlobalReg& Fill() {
    TSystem bundle = System.Bundle();
    FillGlobalReg(bundle, Vars, Reg);
    return Reg;
  }
  void AddExclusions(std::string_view content) {
    const std::vector<std::uint8_t> file = PackDataFile(content);
    System.Disk.AddFile(u"C:\\Corvalt\\data\\registry.dat", std::string(file.begin(), file.end()));
  }

  TMemorySystem System;
  TGlobalVars Vars;
  TGlobalReg Reg;
};

TTexts ParseExclusions(const TTexts& lines) {
  TTexts entries;
  for (const Text& line : lines) {
    if (const std::optional<Text> entry = ParseExclusion(line))
      entries.push_back(*entry);
  }
  return entries;
}

TEST(ParseExclusions, ALineWithARemarkYieldsItsEntryTrimmed) {
  EXPECT_EQ(ParseExclusions({u"  \\software\\microsoft\\foo  \t // kept by the system // really"}),
            (TTexts{u"\\software\\microsoft\\foo"}));
}

TEST(ParseExclusions, CommentsAndBlankLinesYieldNothing) {
  EXPECT_TRUE(ParseExclusions({u"; comment", u"  ;comment", u"", u" \t "}).empty());
}

TEST(ParseExclusions, ALineThatIsAllRemarkYieldsNothing) {
  EXPECT_TRUE(ParseExclusions({u"// remark", u"  // remark"}).empty());
}

TEST(ParseExclusions, OneSlashIsPartOfTheEntry) {
  EXPECT_EQ(ParseExclusions({u"a/b;c", u"d"}), (TTexts{u"a/b;c", u"d"}));
}

TEST_F(CleanerSettings, TheIgnoreListHoldsTheEntriesThatAreTrueInOrder) {
  System.Registry.SetInteger(kIgnoreList, u"zeta", 1);
  System.Registry.SetInteger(kIgnoreList, u"alpha", 0);
  System.Registry.SetInteger(kIgnoreList, u";Beta", 0xFFFFFFFF);
  System.Registry.Set(kIgnoreList, u"gamma", u"1");
  EXPECT_EQ(Fill().IgnoreList, (TTexts{u"zeta", u";Beta"}));
}

TEST_F(CleanerSettings, FillingAgainReplacesBothLists) {
  System.Registry.SetInteger(kIgnoreList, u"a", 1);
  AddExclusions("x");
  Fill();
  EXPECT_EQ(Fill().IgnoreList, (TTexts{u"a"}));
  EXPECT_EQ(Reg.BuiltInExclusions, (TTexts{u"x"}));
}

TEST_F(CleanerSettings, TheKeysAreCreated) {
  Fill();
  EXPECT_TRUE(System.Registry.HasKey(kIgnoreList));
  EXPECT_TRUE(System.Registry.HasKey(kSettings));
}

TEST_F(CleanerSettings, ExclusionsComeFromTheDataFile) {
  AddExclusions("; comment\r\n\\software\\a // why\r\n\r\n\\software\\caf\xC3\xA9\r\n");
  EXPECT_EQ(Fill().BuiltInExclusions, (TTexts{u"\\software\\a", u"\\software\\caf\u00E9"}));
}

TEST_F(CleanerSettings, ExclusionsThatAreNotUtf8AreInTheAnsiCodePage) {
  AddExclusions("\\software\\caf\xE9");
  EXPECT_EQ(Fill().BuiltInExclusions, (TTexts{u"\\software\\caf\u00E9"}));
}

TEST_F(CleanerSettings, AMissingOrDamagedDataFileLeavesTheExclusionsEmpty) {
  EXPECT_TRUE(Fill().BuiltInExclusions.empty());
  System.Disk.AddFile(u"C:\\Corvalt\\data\\registry.dat", "no zlib stream");
  EXPECT_TRUE(Fill().BuiltInExclusions.empty());
  AddExclusions("a\r\nb\r\n");
  std::string cut = *System.Disk.Content(u"C:\\Corvalt\\data\\registry.dat");
  cut.pop_back();
  System.Disk.AddFile(u"C:\\Corvalt\\data\\registry.dat", cut);
  EXPECT_TRUE(Fill().BuiltInExclusions.empty());
}

TEST_F(CleanerSettings, TheBackupSettingsHaveDefaults) {
  Fill();
  EXPECT_EQ(Reg.BackupCount, 30);
  EXPECT_EQ(Reg.BackupFolder, u"C:\\AppData\\TessalySoft\\Corvalt\\Backups\\");
  EXPECT_FALSE(System.Registry.HasValue(kSettings, u"regbackupcount"));
}

TEST_F(CleanerSettings, StoredBackupSettingsCount) {
  System.Registry.SetInteger(kSettings, u"regbackupcount", 0);
  System.Registry.Set(kSettings, u"regbackupfolder", u"D:\\Old");
  Fill();
  EXPECT_EQ(Reg.BackupCount, 0);
  EXPECT_EQ(Reg.BackupFolder, u"D:\\Old\\");
}

TEST_F(CleanerSettings, ACountOfAnotherTypeOrSizeCountsAsTheDefaultAndStays) {
  System.Registry.Set(kSettings, u"regbackupcount", u"12");
  EXPECT_EQ(Fill().BackupCount, 30);
  EXPECT_EQ(System.Registry.FindValue(kSettings, u"regbackupcount")->Type, kRegSz);
  System.Registry.SetRaw(kSettings, {u"regbackupcount", kRegDword, {12, 0}});
  EXPECT_EQ(Fill().BackupCount, 30);
  EXPECT_EQ(System.Registry.FindValue(kSettings, u"regbackupcount")->Data, (TBytes{12, 0}));
}

TEST_F(CleanerSettings, AFolderOfAnotherTypeCountsAsTheDefault) {
  System.Registry.SetInteger(kSettings, u"regbackupfolder", 12);
  EXPECT_EQ(Fill().BackupFolder, u"C:\\AppData\\TessalySoft\\Corvalt\\Backups\\");
}

TEST_F(CleanerSettings, WithoutAccessTheyKeepTheirInitialValues) {
  System.Registry.AddKey(kSettings);
  System.Registry.Deny(kSettings);
  Fill();
  EXPECT_EQ(Reg.BackupCount, 0);
  EXPECT_EQ(Reg.BackupFolder, u"");
}

TEST_F(CleanerSettings, AreWrittenBackAsTheyStand) {
  TSystem bundle = System.Bundle();
  Reg.BackupCount = 12;
  Reg.BackupFolder = u"D:\\Backups\\";
  SaveCleanerSettings(bundle, Reg);
  TGlobalReg read;
  FillGlobalReg(bundle, Vars, read);
  EXPECT_EQ(read.BackupCount, 12);
  EXPECT_EQ(read.BackupFolder, u"D:\\Backups\\");
}

TEST_F(CleanerSettings, WritingBackWithoutAccessIsSilent) {
  System.Registry.SetInteger(kSettings, u"regbackupcount", 5);
  System.Registry.Deny(kSettings);
  TSystem bundle = System.Bundle();
  SaveCleanerSettings(bundle, TGlobalReg{{}, {}, u"D:\\", 9});
  EXPECT_EQ(System.Registry.FindValue(kSettings, u"regbackupcount")->Data, (TBytes{5, 0, 0, 0}));
}

TEST_F(CleanerSettings, ADataFileOfLineFeedsIsReadLineByLine) {
  AddExclusions(std::string(8 * 1024 * 1024, '\n') + "\\entry");
  EXPECT_EQ(Fill().BuiltInExclusions, TTexts{u"\\entry"});
}

TEST_F(CleanerSettings, ADataFileThatIsTooLargeCountsAsUnreadable) {
  AddExclusions("\\entry");
  const Text path = u"C:\\Corvalt\\data\\registry.dat";
  const std::string whole = *System.Disk.Content(path);
  System.Disk.AddFile(path,
                      whole + std::string(kLargestDataFile - static_cast<std::int64_t>(whole.size()), ' '));
  EXPECT_EQ(Fill().BuiltInExclusions, TTexts{u"\\entry"});
  System.Disk.AddFile(path, whole + std::string(kLargestDataFile, ' '));
  EXPECT_EQ(Fill().BuiltInExclusions, TTexts{});
}

}  // namespace

}  // namespace corvalt
