// corvaltc purge, over a system in memory.

#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/testconsole.h"

namespace corvalt {

namespace {

const Text kFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\";
const Text kSuite = u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities";
const Text kModule = kSuite + u"\\Corvalt";
// The section of another module of the suite, with files of its own.
const std::string kOther = "[46000]\r\nType=29001\r\n29601=more\r\n";
// What goes and what stays, as it is told first.
const std::string kNamed =
    EncodeUtf8(Says(TextId::SettingsThatGo, kModule) + u"\n" + Says(TextId::WhatStays, kFolder) + u"\n");
const std::string kTwoBackups = EncodeUtf8(Says(TextId::BackupsThatGo, u"2")) + "\n";

class ConsolePurge : public testing::Test {
 protected:
  ConsolePurge() {
    SetIndex("[46340]\r\nType=11001\r\n" + kOther + "[46341.5]\r\nType=11001\r\n");
    for (const TextView name :
         {u"46340", u"46340.log", u"46341.5", u"46000", u"46000.log", u"more", u"notes"})
      m_system.Disk.AddFile(kFolder + Text(name), "x");
    m_system.Registry.SetInteger(kModule + u"\\IgnoreList", u"entry", 1);
    m_system.Registry.Set(kSuite, u"Skin", u"blue");
  }

  void SetIndex(std::string_view content) {
    m_system.Disk.AddFile(kFolder + u"index.ini", content);
  }
  std::string Index() {
    return m_system.Disk.Content(kFolder + u"index.ini").value_or("(none)");
  }
  bool HasFile(TextView name) {
    return m_system.Disk.Content(kFolder + Text(name)).has_value();
  }
  bool HasSettings() {
    return m_system.Registry.HasValue(kModule + u"\\IgnoreList", u"entry");
  }
  void ExpectNothingIsRemoved() {
    for (const TextView name :
         {u"46340", u"46340.log", u"46341.5", u"46000", u"46000.log", u"more", u"notes"})
      EXPECT_TRUE(HasFile(name)) << EncodeUtf8(name);
    EXPECT_TRUE(HasSettings());
  }

  int Purge(std::vector<Text> options = {u"--yes"}) {
    options.insert(options.begin(), u"purge");
    return m_rig.Run(options);
  }

  TConsoleRig m_rig;
  TMemorySystem& m_system = m_rig.Scan.System;
};

}  // namespace

TEST_F(ConsolePurge, RemovesTheBackupsAndTheirLogsAndTheSettingsAndNamesThem) {
  EXPECT_EQ(Purge(), 0);
  for (const TextView name : {u"46340", u"46340.log", u"46341.5"})
    EXPECT_FALSE(HasFile(name)) << EncodeUtf8(name);
  EXPECT_FALSE(m_system.Registry.HasKey(kModule));
  EXPECT_EQ(m_rig.Told(), kTwoBackups + kNamed);
  EXPECT_EQ(m_rig.Console.Output, "");
}

TEST_F(ConsolePurge, LeavesOtherModulesBackupsAndTheSuitesSettings) {
  Purge();
  EXPECT_EQ(Index(), kOther);
  for (const TextView name : {u"46000", u"46000.log", u"more", u"notes"})
    EXPECT_TRUE(HasFile(name)) << EncodeUtf8(name);
  EXPECT_TRUE(m_system.Registry.HasValue(kSuite, u"Skin"));
  EXPECT_TRUE(m_system.Registry.HasKey(kSuite + u"\\Settings"));
}

TEST_F(ConsolePurge, WithoutYesSaysWhatWouldGoAndRemovesNothing) {
  const std::string before = Index();
  EXPECT_EQ(Purge({}), 1);
  EXPECT_EQ(Index(), before);
  ExpectNothingIsRemoved();
  EXPECT_EQ(m_rig.Told(), kTwoBackups + kNamed + EncodeUtf8(Says(TextId::NothingPurgedWithoutYes)) + "\n");
}

TEST_F(ConsolePurge, WithNothingToRemoveSucceeds) {
  TConsoleRig rig;
  EXPECT_EQ(rig.Run({u"purge", u"--yes"}), 0);
  EXPECT_EQ(rig.Run({u"purge", u"--yes"}), 0);
  EXPECT_FALSE(rig.Scan.System.Registry.HasKey(kModule));
}

TEST_F(ConsolePurge, KeepsWhatItDoesNotUnderstandInADamagedIndex) {
  const std::string damaged = "\x01garbage\r\n[unclosed\r\n" + kOther + "=\r\n[]\r\n";
  SetIndex(damaged + "[46340]\r\ntype=11001\r\n");
  EXPECT_EQ(Purge(), 0);
  EXPECT_EQ(Index(), damaged);
  EXPECT_FALSE(HasFile(u"46340"));
  // No section lists it: it may be anybody's.
  EXPECT_TRUE(HasFile(u"46341.5"));
}

TEST_F(ConsolePurge, TakesASectionOutWhoseNameCanBeNoFile) {
  m_system.Disk.AddFile(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious", "x");
  SetIndex("[..\\precious]\r\nType=11001\r\n" + kOther);
  EXPECT_EQ(Purge(), 0);
  EXPECT_EQ(Index(), kOther);
  EXPECT_TRUE(m_system.Disk.Content(u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\precious"));
}

TEST_F(ConsolePurge, RemovesNothingWhereTheIndexCannotBeRead) {
  m_system.Disk.MakeUnreadable(kFolder + u"index.ini");
  EXPECT_EQ(Purge(), 3);
  ExpectNothingIsRemoved();
  EXPECT_NE(m_rig.Told().find("System message 5."), std::string::npos) << m_rig.Told();
}

TEST_F(ConsolePurge, RemovesNothingWhileAnotherCopyWorksOnTheBackups) {
  m_system.Interprocess.LongestPatience = std::chrono::milliseconds(20);
  const auto held = m_system.Interprocess.HoldEveryLock();
  EXPECT_EQ(Purge(), 3);
  ExpectNothingIsRemoved();
  EXPECT_NE(m_rig.Told().find(EncodeUtf8(Says(TextId::BackupsInUse, Says(TextId::ProgramTitle)))),
            std::string::npos)
      << m_rig.Told();
}

TEST_F(ConsolePurge, KeepsABackupListedWhoseFileCannotBeDeletedAndRemovesTheOthers) {
  m_system.Disk.FailDeleting(kErrorAccessDenied, u"46340");
  EXPECT_EQ(Purge(), 1);
  EXPECT_EQ(Index(), "[46340]\r\nType=11001\r\n" + kOther);
  EXPECT_FALSE(HasFile(u"46341.5"));
  EXPECT_FALSE(m_system.Registry.HasKey(kModule));
  EXPECT_EQ(m_rig.Told(), kTwoBackups + kNamed +
                              EncodeUtf8(Says(TextId::BackupNotRemoved, u"46340", u"System message 5.")) +
                              "\n");
}

TEST_F(ConsolePurge, KeepsABackupListedUntilItsLogIsDeletedToo) {
  m_system.Disk.FailDeleting(kErrorAccessDenied, u"46340.log");
  EXPECT_EQ(Purge(), 1);
  EXPECT_NE(Index().find("[46340]"), std::string::npos);
  m_system.Disk.FailDeleting(0);
  EXPECT_EQ(Purge(), 0);
  EXPECT_FALSE(HasFile(u"46340.log"));
}

TEST_F(ConsolePurge, SaysThatSettingsAreLeft) {
  m_system.Registry.Deny(kModule + u"\\IgnoreList");
  EXPECT_EQ(Purge(), 1);
  EXPECT_FALSE(HasFile(u"46340"));
  EXPECT_NE(
      m_rig.Told().find(EncodeUtf8(Says(TextId::SettingsNotRemoved)) + "(HKEY_CURRENT_USER\\Software\\"),
      std::string::npos)
      << m_rig.Told();
}

TEST_F(ConsolePurge, RemovesTheBackupsOfOlderReleasesToo) {
  const Text legacy = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\";
  m_system.Disk.AddFile(legacy + u"index.ini", "[46300]\r\n");
  m_system.Disk.AddFile(legacy + u"46300", "x");
  EXPECT_EQ(Purge(), 0);
  EXPECT_TRUE(m_system.Disk.AllBelow(legacy).empty());
  EXPECT_FALSE(HasFile(u"46300"));
  EXPECT_EQ(Index(), kOther);
}

TEST_F(ConsolePurge, RefusesWrongArguments) {
  EXPECT_EQ(Purge({u"all"}), 2);
  EXPECT_EQ(Purge({u"--yes", u"--yes"}), 2);
  EXPECT_EQ(Purge({u"--quiet"}), 2);
  EXPECT_EQ(m_rig.Starts, 0);
  ExpectNothingIsRemoved();
}

}  // namespace corvalt
