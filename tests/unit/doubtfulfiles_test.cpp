// Files that can't be asked about, lie on other drives or for programs of the other bitness, and texts so
// long that looking for them takes time: what is not clearly missing exists, and is not asked about for
// nothing.

#include <gtest/gtest.h>

#include "core/cachedfileprobe.h"
#include "core/functions.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

class TCountingDisk : public TMemoryDisk {
 public:
  std::optional<Text> GetLongPathName(TextView path) override {
    ++LongPathQuestions;
    return TMemoryDisk::GetLongPathName(path);
  }

  int LongPathQuestions = 0;
};

class DoubtfulFiles : public ::testing::Test {
 protected:
  DoubtfulFiles() {
    Vars.WindowsFolder = u"C:\\Windows\\";
    Vars.SystemFolder = u"C:\\Windows\\system32\\";
    Vars.FixedDrives = u"C:\\;";
  }
  bool Exists(TextView command) {
    return Checks.CommandLineFileExists(command, true);
  }

  TCountingDisk Disk;
  TGlobalVars Vars;
  TPathChecks Checks{Disk, Vars};
};

// The text of as many units, this piece over and over behind the drive.
Text LongCommand(TextView piece, std::size_t size) {
  Text command = u"C:\\";
  while (command.size() < size)
    command.append(piece);
  return command;
}

}  // namespace

// GetFileAttributesW and System Error Codes, learn.microsoft.com.
TEST(SystemErrors, OnlyThoseOfMissingFilesAndImpossibleNamesMeanMissing) {
  for (const std::uint32_t missing : {2U, 3U, 123U, 161U, 206U, 267U})
    EXPECT_TRUE(MeansMissing(missing)) << missing;
  for (const std::uint32_t unknown : {5U, 15U, 21U, 32U, 53U, 65U, 1005U, 1117U, 1920U, 6000U})
    EXPECT_FALSE(MeansMissing(unknown)) << unknown;
}

TEST_F(DoubtfulFiles, WhatCanNotBeAskedAboutExistsHoweverOftenItIsAsked) {
  Disk.AddFolder(u"C:\\Denied\\Below");
  Disk.AddFolder(u"C:\\Open");
  for (const std::uint32_t error : {5U, 21U, 32U, 1920U}) {
    Disk.FailAsking(u"C:\\Denied", error);
    TCachedFileProbe cached(Disk);
    TPathChecks checks(cached, Vars);
    for (int i = 0; i < 10; ++i) {
      EXPECT_TRUE(checks.CommandLineFileExists(u"C:\\Denied\\a.exe", true)) << error << " " << i;
      EXPECT_TRUE(checks.FileOrFolderExists(u"C:\\Denied\\Below\\x", false)) << error << " " << i;
      EXPECT_TRUE(checks.DirectoryExists(u"C:\\Denied\\Gone")) << error << " " << i;
      EXPECT_FALSE(checks.CommandLineFileExists(u"C:\\Open\\a.exe", true)) << error << " " << i;
    }
  }
}

TEST_F(DoubtfulFiles, ANameThatCanNotExistIsMissingHoweverOftenItIsAsked) {
  Disk.FailAsking(u"C:\\Impossible", 123);
  TCachedFileProbe cached(Disk);
  TPathChecks checks(cached, Vars);
  for (int i = 0; i < 10; ++i)
    EXPECT_FALSE(checks.FileOrFolderExists(u"C:\\Impossible\\a", false));
}

TEST(Scan, DoesNotReportWhatItMayNotLookAt) {
  TScanRig rig;
  rig.System.Disk.FailAsking(u"C:\\Denied", 5);
  for (int i = 0; i < 10; ++i)
    rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"v" + DecimalText(i),
                            u"C:\\Denied\\" + DecimalText(i) + u".dll");
  rig.Run({22});
  EXPECT_TRUE(rig.Problems().empty());
}

TEST_F(DoubtfulFiles, APathOfThreeHundredUnitsIsLookedFor) {
  const Text folder = u"C:\\" + Text(150, u'a') + u"\\" + Text(150, u'b');
  Disk.AddFile(folder + u"\\there.exe");
  EXPECT_TRUE(Exists(folder + u"\\there.exe"));
  EXPECT_FALSE(Exists(folder + u"\\gone.exe"));
}

TEST_F(DoubtfulFiles, A32BitFileThatIsNamedBelowTheSystemFolderIsFound) {
  Disk.AddFile(u"C:\\Windows\\SysWOW64\\Sub\\old.tlb");
  EXPECT_FALSE(Exists(u"C:\\Windows\\System32\\Sub\\old.tlb"));
  Vars.SysWow64Folder = u"C:\\Windows\\SysWOW64\\";
  EXPECT_TRUE(Exists(u"C:\\Windows\\System32\\Sub\\old.tlb"));
  EXPECT_FALSE(Exists(u"C:\\Windows\\System32\\Sub\\gone.tlb"));
  EXPECT_FALSE(Exists(u"C:\\Windows\\System\\Sub\\old.tlb"));
}

TEST_F(DoubtfulFiles, AnotherDriveIsNotAskedForTheLongFormOfAName) {
  EXPECT_TRUE(Exists(u"E:\\PROGRA~1\\a.exe"));
  EXPECT_TRUE(Exists(u"\"E:\\PROGRA~1\\a.exe\""));
  EXPECT_EQ(Disk.LongPathQuestions, 0);
  EXPECT_FALSE(Exists(u"C:\\PROGRA~1\\a.exe"));
  EXPECT_GT(Disk.LongPathQuestions, 0);
}

TEST_F(DoubtfulFiles, ATextOfThousandsOfBlanksCostsAFewHundredQuestions) {
  Disk.AddFolder(u"C:\\abc abc");
  for (const TextView piece : {u"abc ", u"abc abc\\", u"a ", u"a \\"}) {
    const int before = Disk.Questions();
    EXPECT_FALSE(Exists(LongCommand(piece, 65536)));
    EXPECT_LT(Disk.Questions() - before, 600) << EncodeUtf8(piece);
  }
}

TEST_F(DoubtfulFiles, AFileBeforeManyArgumentsIsFound) {
  Disk.AddFile(u"C:\\abc abc\\tool one.exe");
  EXPECT_TRUE(Exists(u"C:\\abc abc\\tool one.exe" + LongCommand(u" x", 2000).substr(3)));
  EXPECT_TRUE(Exists(u"C:\\abc abc\\tool one" + LongCommand(u" x\\y", 2000).substr(3)));
  EXPECT_TRUE(Exists(u"C:\\gone\\..\\abc abc\\tool one" + LongCommand(u" x", 2000).substr(3)));
}

TEST_F(DoubtfulFiles, ALongSearchEndsWhenNobodyWaitsForIt) {
  bool stop = false;
  TPathChecks checks(Disk, Vars, [&stop] { return stop; });
  const Text command = LongCommand(u"abc ", 65536);
  EXPECT_FALSE(checks.CommandLineFileExists(command, true));
  stop = true;
  const int before = Disk.Questions();
  EXPECT_TRUE(checks.CommandLineFileExists(command, true));
  EXPECT_LT(Disk.Questions() - before, 10);
}

// Names with other letters are asked plainly when they are missing, so that every question counts.
TEST(Scan, LooksOnceForATextWithoutAParenthesis) {
  const auto questions = [](TextView data) {
    TScanRig rig;
    rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Exe", data);
    const int before = rig.System.Disk.Questions();
    rig.Run({22});
    EXPECT_EQ(rig.Problems().size(), 1u);
    return rig.System.Disk.Questions() - before;
  };
  EXPECT_LT(questions(u"C:\\g\u00F6n.exe"), 7);
  EXPECT_GE(questions(u"C:\\g\u00F6n.exe(1)"), 8);
}

}  // namespace corvalt
