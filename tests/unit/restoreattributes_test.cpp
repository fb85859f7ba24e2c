// What a key has besides its values, through an export and an import.
#include <gtest/gtest.h>

#include <algorithm>

#include "formats/ioregistry.h"
#include "platform/memory/memorysecurity.h"
#include "platform/memory/memorysystem.h"
#include "system/securitydescriptor.h"
#include "tests/support/keyat.h"

namespace corvalt {

namespace {

constexpr TextView kRoot = u"HKEY_CURRENT_USER";
constexpr TextView kKey = u"HKEY_CURRENT_USER\\K";
constexpr TextView kUserClass = u"HKEY_CURRENT_USER\\Software\\Classes\\Thing";
constexpr TextView kMachineClass = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Thing";
constexpr std::uint64_t kOldTime = 0x01C0000000000000;

TBytes OwnSecurity() {
  TMemorySecurity security;
  security.Access = {{u"S-1-5-18"}};
  security.IsProtected = true;
  return SecurityBytes(security);
}

class RestoredAttributes : public ::testing::Test {
 protected:
  RestoredAttributes() {
    TBackupOrigin origin;
    origin.CodePage = 1252;
    m_exporter.Clear(origin);
  }

  std::vector<std::string> Dump(TextView fullPath = kKey) const {
    return m_system.Registry.Dump(fullPath, TDumpDetail::Attributes);
  }
  std::string Exported() const {
    return {m_exporter.ExportedText().begin(), m_exporter.ExportedText().end()};
  }
  void Export(TextView fullPath) {
    EXPECT_EQ(m_exporter.ExportKey(KeyAt(fullPath)), TExportResult::Done);
  }
  TImportResult Import() {
    m_exporter.Finish();
    EXPECT_TRUE(m_exporter.HoldsWhatWasExported(m_exporter.ExportedText()));
    const TImportResult result = m_exporter.Import(m_exporter.ExportedText());
    EXPECT_TRUE(result.EverythingWritten());
    return result;
  }

  // Every attribute on a key and one below it.
  void BuildKey() {
    TMemoryRegistry& registry = m_system.Registry;
    registry.Set(Text(kKey) + u"\\Sub", u"a", u"x");
    registry.SetClass(Text(kKey) + u"\\Sub", u"Inner");
    registry.SetClass(kKey, u"Outer \u0416");
    registry.SetSecurity(kKey, OwnSecurity());
    registry.SetLastWrite(Text(kKey) + u"\\Sub", kOldTime + 1);
    registry.SetLastWrite(kKey, kOldTime);
  }

  // A list of the key's own, which the keys below have inherited.
  void BuildKeyThatHandsDown() {
    TMemoryRegistry& registry = m_system.Registry;
    registry.AddKey(kKey);
    registry.SetSecurity(
        kKey, SecurityBytes({.Access = {{u"S-1-5-18", 0xF003F, kAceContainerInherit}}, .IsProtected = true}));
    registry.Set(Text(kKey) + u"\\Sub\\Deeper", u"a", u"x");
    registry.AddKey(Text(kKey) + u"\\Other");
  }

  TMemorySystem m_system;
  TIORegistry m_exporter{m_system.Raw, m_system.Locale};
};

}  // namespace

TEST_F(RestoredAttributes, ComeBackWithTheirKeys) {
  BuildKey();
  const std::vector<std::string> before = Dump();
  Export(u"HKEY_CURRENT_USER\\K");
  m_system.Registry.RemoveKey(kKey);
  EXPECT_EQ(Import().AttributesLost, 0U);
  EXPECT_EQ(Dump(), before) << Exported();
}

// A list that is set on a key is not handed down to the keys that are there (RegSetKeySecurity,
// learn.microsoft.com), so the keys below come back with what they inherit only if that was saved.
TEST_F(RestoredAttributes, InheritedFromAKeyWithItsOwnComeBack) {
  BuildKeyThatHandsDown();
  const std::vector<std::string> before = Dump();
  Export(kKey);
  m_system.Registry.RemoveKey(kKey);
  EXPECT_EQ(Import().AttributesLost, 0U);
  EXPECT_EQ(Dump(), before) << Exported();
}

TEST_F(RestoredAttributes, InheritedFromAKeyWithItsOwnComeBackAlsoWhenTheSubkeyWasSavedBefore) {
  BuildKeyThatHandsDown();
  const std::vector<std::string> before = Dump();
  Export(Text(kKey) + u"\\Sub");
  Export(kKey);
  m_system.Registry.RemoveKey(kKey);
  EXPECT_EQ(Import().AttributesLost, 0U);
  EXPECT_EQ(Dump(), before) << Exported();
}

// "Owner of a New Object", learn.microsoft.com: a key that a restore creates belongs to whoever restores.
TEST_F(RestoredAttributes, OfAnotherOwnerComeBack) {
  TMemoryRegistry& registry = m_system.Registry;
  registry.AddKey(u"HKEY_CURRENT_USER\\Parent");
  registry.SetSecurity(
      u"HKEY_CURRENT_USER\\Parent",
      SecurityBytes({.Access = {{u"S-1-3-0", 0xF003F, kAceContainerInherit | kAceInheritOnly},
                                {u"S-1-5-32-545", 0x20019, kAceContainerInherit}}}));
  registry.Hives().CreateAs({SidBytes(u"S-1-5-18"), SidBytes(u"S-1-5-18")});
  registry.Set(u"HKEY_CURRENT_USER\\Parent\\Systems\\Sub", u"a", u"x");
  registry.Hives().CreateAs({SidBytes(u"S-1-5-21-1-2-3-1001"), SidBytes(u"S-1-5-21-1-2-3-513")});
  registry.Set(u"HKEY_CURRENT_USER\\Parent\\Own", u"a", u"x");
  const std::vector<std::string> before = Dump(u"HKEY_CURRENT_USER\\Parent");
  for (const TextView name : {u"Own", u"Systems"}) {
    Export(u"HKEY_CURRENT_USER\\Parent\\" + Text(name));
    // What a new key of this user gets anyway is not written.
    EXPECT_EQ(Exported().find("security=") != std::string::npos, name == u"Systems");
    registry.RemoveKey(u"HKEY_CURRENT_USER\\Parent\\" + Text(name));
  }
  EXPECT_EQ(Import().AttributesLost, 0U);
  std::vector<std::string> after = Dump(u"HKEY_CURRENT_USER\\Parent");
  ASSERT_EQ(after.size(), before.size());
  // But for the parent's own line, which holds its time.
  EXPECT_TRUE(std::equal(after.begin() + 2, after.end(), before.begin() + 2)) << Exported();
}

TEST_F(RestoredAttributes, OfAVolatileKeyComeBack) {
  m_system.Registry.AddKey(Text(kKey) + u"\\Volatile");
  m_system.Registry.MakeVolatile(Text(kKey) + u"\\Volatile");
  Export(u"HKEY_CURRENT_USER\\K\\Volatile");
  m_system.Registry.RemoveKey(Text(kKey) + u"\\Volatile");
  EXPECT_EQ(Import().AttributesLost, 0U);
  EXPECT_TRUE(m_system.Registry.KeyAt(Text(kKey) + u"\\Volatile")->IsVolatile);
}

// ERROR_CHILD_MUST_BE_VOLATILE: "RegCreateKeyEx", learn.microsoft.com.
TEST_F(RestoredAttributes, AKeyBelowAVolatileOneIsCreatedVolatileAlsoWhenNothingTellsSo) {
  m_system.Registry.TellsVolatility = false;
  m_system.Registry.AddKey(Text(kKey) + u"\\Sub");
  m_system.Registry.MakeVolatile(kKey);
  Export(u"HKEY_CURRENT_USER\\K\\Sub");
  EXPECT_EQ(Exported().find("volatile"), std::string::npos);
  m_system.Registry.RemoveKey(Text(kKey) + u"\\Sub");
  EXPECT_TRUE(Import().EverythingWritten());
  ASSERT_TRUE(m_system.Registry.HasKey(Text(kKey) + u"\\Sub"));
  EXPECT_TRUE(m_system.Registry.KeyAt(Text(kKey) + u"\\Sub")->IsVolatile);
}

TEST_F(RestoredAttributes, OfALastingKeyThatCouldOnlyComeBackVolatileAreCounted) {
  m_system.Registry.Set(Text(kKey) + u"\\Sub", u"a", u"x");
  Export(Text(kKey) + u"\\Sub");
  m_system.Registry.RemoveKey(Text(kKey) + u"\\Sub");
  m_system.Registry.MakeVolatile(kKey);
  EXPECT_EQ(Import().AttributesLost, 1U);
  EXPECT_TRUE(m_system.Registry.HasValue(Text(kKey) + u"\\Sub", u"a"));
  // A system that does not tell which keys are volatile did not tell it at the export either.
  m_system.Registry.TellsVolatility = false;
  m_system.Registry.RemoveKey(Text(kKey) + u"\\Sub");
  EXPECT_EQ(m_exporter.Import(m_exporter.ExportedText()).AttributesLost, 0U);
}

TEST_F(RestoredAttributes, OfAKeyThatIsThereAreLeftAsTheyAre) {
  BuildKey();
  Export(u"HKEY_CURRENT_USER\\K");
  m_system.Registry.SetClass(kKey, u"Newer");
  m_system.Registry.SetSecurity(kKey, DefaultSecurity());
  m_system.Registry.SetLastWrite(kKey, kOldTime + 7);
  EXPECT_TRUE(Import().EverythingWritten());
  EXPECT_EQ(m_system.Registry.KeyAt(kKey)->ClassName, u"Newer");
  EXPECT_EQ(m_system.Registry.KeyAt(kKey)->Security, DefaultSecurity());
  EXPECT_EQ(m_system.Registry.KeyAt(kKey)->LastWrite, kOldTime + 7);
}

TEST_F(RestoredAttributes, ComeBackAlsoWhenASubkeyWasSavedBeforeItsKey) {
  BuildKey();
  const std::vector<std::string> before = Dump();
  Export(u"HKEY_CURRENT_USER\\K\\Sub");
  Export(u"HKEY_CURRENT_USER\\K");
  m_system.Registry.RemoveKey(kKey);
  const TImportResult result = Import();
  EXPECT_EQ(result.AttributesLost, 0U);
  EXPECT_EQ(result.KeysWritten, 2U);
  EXPECT_EQ(Dump(), before);
}

TEST_F(RestoredAttributes, ComeBackAlsoWhenAValueWasSavedBeforeItsKey) {
  BuildKey();
  const std::vector<std::string> before = Dump();
  EXPECT_EQ(m_exporter.ExportValue(KeyAt(u"HKEY_CURRENT_USER\\K\\Sub"), u"a"), TExportResult::Done);
  Export(u"HKEY_CURRENT_USER\\K");
  m_system.Registry.RemoveKey(kKey);
  EXPECT_EQ(Import().AttributesLost, 0U);
  EXPECT_EQ(Dump(), before);
}

// Permissions that forbid changes would keep a second import from writing what is missing.
TEST_F(RestoredAttributes, AreNotSetOnAKeyThatAStopLeftIncomplete) {
  TMemoryRegistry& registry = m_system.Registry;
  registry.Set(Text(kKey) + u"\\Half", u"a", u"x");
  registry.Set(Text(kKey) + u"\\Half", u"b", u"y");
  registry.AddKey(Text(kKey) + u"\\Done");
  for (const TextView name : {u"\\Half", u"\\Done"})
    registry.SetSecurity(Text(kKey) + Text(name), OwnSecurity());
  Export(kKey);
  m_exporter.Finish();
  const TBytes file = m_exporter.ExportedText();
  registry.RemoveKey(kKey);
  // K, Done, Half and its first value.
  const TImportResult result = m_exporter.Import(file, {true, [left = 4]() mutable { return left-- == 0; }});
  EXPECT_TRUE(result.Stopped);
  EXPECT_EQ(registry.KeyAt(Text(kKey) + u"\\Done")->Security, OwnSecurity());
  EXPECT_NE(registry.KeyAt(Text(kKey) + u"\\Half")->Security, OwnSecurity());
  // The permissions and the time of Half, and the time of K, which a second import changes.
  EXPECT_EQ(result.AttributesLost, 3U);
  EXPECT_TRUE(m_exporter.Import(file).EverythingWritten());
  EXPECT_TRUE(registry.HasValue(Text(kKey) + u"\\Half", u"b"));
}

TEST_F(RestoredAttributes, ThatCantBeGivenBackAreCounted) {
  BuildKey();
  Export(u"HKEY_CURRENT_USER\\K");
  m_system.Registry.RemoveKey(kKey);
  m_system.Registry.SetsTimes = false;
  const TImportResult result = Import();
  EXPECT_EQ(result.AttributesLost, 2U);
  EXPECT_TRUE(m_system.Registry.HasValue(Text(kKey) + u"\\Sub", u"a"));
}

TEST_F(RestoredAttributes, WhatIsInheritedIsNotWritten) {
  m_system.Registry.AddKey(kKey);
  Export(u"HKEY_CURRENT_USER\\K");
  EXPECT_EQ(Exported().find("security="), std::string::npos);
  EXPECT_NE(Exported().find(";Corvalt time="), std::string::npos);
}

TEST_F(RestoredAttributes, StandInBackupsOnly) {
  BuildKey();
  m_exporter.Clear();
  Export(u"HKEY_CURRENT_USER\\K");
  EXPECT_EQ(Exported().find(";Corvalt"), std::string::npos);
}

TEST_F(RestoredAttributes, NamesComeBackAsTheyWereStored) {
  m_system.Registry.Set(u"HKEY_CURRENT_USER\\clsId\\Sub", u"naMe", u"x");
  const std::vector<std::string> before = m_system.Registry.Dump(kRoot);
  Export(u"HKEY_CURRENT_USER\\CLSID");
  m_system.Registry.RemoveKey(u"HKEY_CURRENT_USER\\clsId");
  EXPECT_TRUE(Import().EverythingWritten());
  EXPECT_EQ(m_system.Registry.Dump(kRoot), before);
  EXPECT_NE(Exported().find("[HKEY_CURRENT_USER\\clsId\\Sub]"), std::string::npos);
  EXPECT_EQ(m_system.Registry.KeyAt(u"HKEY_CURRENT_USER\\CLSID")->Name, u"clsId");
}

// "Merged View of HKEY_CLASSES_ROOT", learn.microsoft.com.
TEST_F(RestoredAttributes, AClassComesFromAndReturnsToItsHive) {
  for (const bool isUsers : {true, false}) {
    const TextView own = isUsers ? kUserClass : kMachineClass;
    m_system.Registry.Set(own, u"a", u"own");
    m_exporter.Clear(TBackupOrigin());
    Export(u"HKEY_CLASSES_ROOT\\Thing");
    EXPECT_NE(Exported().find(isUsers ? "\r\n;Corvalt hive=HKEY_CURRENT_USER\r\n"
                                      : "\r\n;Corvalt hive=HKEY_LOCAL_MACHINE\r\n"),
              std::string::npos);
    EXPECT_NE(Exported().find("\r\n[HKEY_CLASSES_ROOT\\Thing]\r\n"), std::string::npos);
    m_system.Registry.RemoveKey(own);
    EXPECT_TRUE(Import().EverythingWritten());
    EXPECT_TRUE(m_system.Registry.HasValue(own, u"a"));
    m_system.Registry.RemoveKey(own);
    EXPECT_FALSE(m_system.Registry.HasKey(u"HKEY_CLASSES_ROOT\\Thing"));
  }
}

TEST_F(RestoredAttributes, OnlyTheHiveThatHoldsTheClassIsExported) {
  m_system.Registry.Set(kUserClass, u"user", u"x");
  m_system.Registry.Set(kMachineClass, u"machine", u"x");
  Export(u"HKEY_CLASSES_ROOT\\Thing");
  EXPECT_NE(Exported().find("\"user\""), std::string::npos);
  EXPECT_EQ(Exported().find("\"machine\""), std::string::npos);
  ASSERT_EQ(m_exporter.Exported().size(), 1U);
  EXPECT_EQ(m_exporter.Exported()[0].Place, (TKeyPlace{kHkeyCurrentUser, u"\\Software\\Classes\\Thing"}));
}

TEST_F(RestoredAttributes, AValueReturnsToTheHiveThatHeldIt) {
  m_system.Registry.AddKey(kUserClass);
  m_system.Registry.Set(kMachineClass, u"machine", u"x");
  EXPECT_EQ(m_exporter.ExportValue(KeyAt(u"HKEY_CLASSES_ROOT\\Thing"), u"MACHINE"), TExportResult::Done);
  m_system.Registry.RemoveKey(kMachineClass);
  EXPECT_TRUE(Import().EverythingWritten());
  EXPECT_TRUE(m_system.Registry.HasValue(kMachineClass, u"machine"));
  EXPECT_FALSE(m_system.Registry.HasValue(kUserClass, u"machine"));
}

TEST_F(RestoredAttributes, ALinkAboveTheKeyKeepsItsSpelling) {
  m_system.Registry.Set(u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Services\\Thing", u"a", u"x");
  m_system.Registry.MakeLink(u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet",
                             u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001");
  Export(u"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\services\\thing");
  EXPECT_NE(Exported().find("[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Thing]"),
            std::string::npos)
      << Exported();
  m_system.Registry.RemoveKey(u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Services\\Thing");
  EXPECT_TRUE(Import().EverythingWritten());
  EXPECT_TRUE(
      m_system.Registry.HasValue(u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Services\\Thing", u"a"));
}

}  // namespace corvalt
