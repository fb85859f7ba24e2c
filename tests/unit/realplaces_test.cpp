// Where a repair deletes: at the real place that was saved, whatever names lead to it. The double shows
// HKEY_CLASSES_ROOT as the user's classes over the machine's ("Merged View of HKEY_CLASSES_ROOT",
// learn.microsoft.com).

#include <gtest/gtest.h>

#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

const Text kUserClass = u"HKEY_CURRENT_USER\\Software\\Classes\\CLSID\\{A}";
const Text kMachineClass = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\{A}";
constexpr TextView kControlSet = u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001\\Services\\Gone";
constexpr TextView kModules =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";

class RealPlaces : public testing::Test {
 protected:
  RealPlaces() : m_section(m_rig.AddSection(u"Broken")) {
    // The user's classes are a link in the user's hive.
    Registry().AddKey(u"HKEY_CURRENT_USER\\Software\\Classes");
    TMemoryHives& hives = Registry().Hives();
    hives.Find(hives.Root(kHkeyCurrentUser), {u"Software", u"Classes"}, false).Key->LinkTarget =
        hives.Root(kHkeyClassesRoot).Key;
  }

  TMemoryRegistry& Registry() {
    return m_rig.System.Registry;
  }

  void AddKey(TRootKey rootKey, TextView keyPath) {
    m_rig.AddProblem(m_section, KeyProblem(rootKey, keyPath));
  }
  void AddValue(TRootKey rootKey, TextView keyPath, TextView name) {
    m_rig.AddProblem(m_section, ValueProblem(rootKey, keyPath, name));
  }

  void AddClassInBothHives() {
    Registry().Set(kUserClass, u"", u"the user's");
    Registry().Set(kMachineClass, u"", u"the machine's");
    Registry().Set(kMachineClass + u"\\InprocServer32", u"", u"C:\\gone.dll");
    // Once for each broken server key.
    AddKey(kHkeyClassesRoot, u"\\CLSID\\{A}");
    AddKey(kHkeyClassesRoot, u"\\CLSID\\{A}");
  }

  void RepairAfter(const std::function<void()>& change) {
    m_rig.Repair([&change](const std::string& update, TWorkerThread&) {
      if (update == "section: 11036 Broken...")
        change();
    });
  }

  TRepairRig m_rig;
  TResultsNode* m_section;
};

}  // namespace

TEST_F(RealPlaces, AClassReportedTwiceLosesTheUsersCopyAlone) {
  AddClassInBothHives();
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(kUserClass));
  EXPECT_TRUE(Registry().HasKey(kMachineClass + u"\\InprocServer32"));
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 2U);
  EXPECT_TRUE(m_rig.Unmarked().empty());
}

TEST_F(RealPlaces, OnlyTheHiveOfTheClassIsSaved) {
  AddClassInBothHives();
  m_rig.Repair();
  const std::string text = m_rig.BackupText();
  EXPECT_NE(text.find("[HKEY_CLASSES_ROOT\\CLSID\\{A}]"), std::string::npos) << text;
  EXPECT_NE(text.find("the user's"), std::string::npos);
  EXPECT_EQ(text.find("the machine's"), std::string::npos);
  EXPECT_EQ(text.find("InprocServer32"), std::string::npos);
}

TEST_F(RealPlaces, WithoutABackupAClassReportedTwiceLosesTheUsersCopyAlone) {
  Registry().SetInteger(kModules, u"RegistryCleaner", 0);
  AddClassInBothHives();
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(kUserClass));
  EXPECT_TRUE(Registry().HasKey(kMachineClass + u"\\InprocServer32"));
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 2U);
}

TEST_F(RealPlaces, AValueOfTheClassesIsDeletedInTheHiveThatHoldsIt) {
  Registry().Set(kUserClass, u"Both", u"user");
  Registry().Set(kMachineClass, u"Both", u"machine");
  Registry().Set(kMachineClass, u"Machine", u"machine");
  AddValue(kHkeyClassesRoot, u"\\CLSID\\{A}", u"Both");
  AddValue(kHkeyClassesRoot, u"\\CLSID\\{A}", u"Machine");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasValue(kUserClass, u"Both"));
  EXPECT_TRUE(Registry().HasValue(kMachineClass, u"Both"));
  EXPECT_FALSE(Registry().HasValue(kMachineClass, u"Machine"));
  EXPECT_TRUE(m_rig.Unmarked().empty());
}

TEST_F(RealPlaces, AClassThatMovedToTheMachineSinceItWasSavedStays) {
  AddClassInBothHives();
  std::vector<std::string> before;
  RepairAfter([&] {
    Registry().RemoveKey(kUserClass);
    before = Registry().Dump(kMachineClass);
  });
  EXPECT_EQ(Registry().Dump(kMachineClass), before);
  // What was saved is gone.
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 2U);
}

TEST_F(RealPlaces, AServiceBelowCurrentControlSetIsDeletedAndRestored) {
  Registry().Set(kControlSet, u"ImagePath", u"C:\\gone.sys");
  Registry().MakeLink(u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet",
                      u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001");
  const std::vector<std::string> before = Registry().Dump(u"HKEY_LOCAL_MACHINE");
  AddKey(kHkeyLocalMachine, u"\\SYSTEM\\CurrentControlSet\\Services\\Gone");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(kControlSet));
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 1U);
  m_rig.RestoreTheBackup();
  EXPECT_EQ(Registry().Dump(u"HKEY_LOCAL_MACHINE"), before);
}

TEST_F(RealPlaces, AValueBelowTheLinkedClassesOfTheUserIsDeletedAndRestored) {
  const Text key = u"HKEY_CURRENT_USER\\Software\\Classes\\.gone";
  Registry().Set(key, u"Old", u"x");
  const std::vector<std::string> before = Registry().Dump(key);
  AddValue(kHkeyCurrentUser, u"\\Software\\Classes\\.gone", u"Old");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasValue(key, u"Old"));
  m_rig.RestoreTheBackup();
  EXPECT_EQ(Registry().Dump(key), before);
}

TEST_F(RealPlaces, AKeyBelowTheLinkedClassesOfTheUserIsDeletedAndRestored) {
  const Text key = u"HKEY_CURRENT_USER\\Software\\Classes\\.gone";
  Registry().Set(key, u"Old", u"x");
  const std::vector<std::string> before = Registry().Dump(key);
  AddKey(kHkeyCurrentUser, u"\\Software\\Classes\\.gone");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(key));
  EXPECT_TRUE(m_rig.Unmarked().empty());
  EXPECT_EQ(m_rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_EQ(Registry().Dump(key), before);
}

TEST_F(RealPlaces, AClassOfTheUserDirectlyBelowTheRootIsDeletedAndRestored) {
  const Text key = u"HKEY_CURRENT_USER\\Software\\Classes\\Thing";
  Registry().Set(key, u"", u"x");
  const std::vector<std::string> before = Registry().Dump(key);
  AddKey(kHkeyClassesRoot, u"\\Thing");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(key));
  EXPECT_EQ(m_rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_EQ(Registry().Dump(key), before);
}

// The walk of a whole root reports them with an empty key path.
TEST_F(RealPlaces, AValueOfARootKeyIsDeletedAndRestored) {
  Registry().Set(u"HKEY_CURRENT_USER", u"OlD", u"C:\\gone.exe");
  const std::vector<std::string> before = Registry().Dump(u"HKEY_CURRENT_USER");
  AddValue(kHkeyCurrentUser, u"", u"Old");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasValue(u"HKEY_CURRENT_USER", u"Old"));
  EXPECT_TRUE(m_rig.Unmarked().empty());
  EXPECT_NE(m_rig.BackupText().find("[HKEY_CURRENT_USER]\r\n\"OlD\"="), std::string::npos);
  EXPECT_EQ(m_rig.RestoreTheBackup(), TRestoreEnd::Restored);
  EXPECT_EQ(Registry().Dump(u"HKEY_CURRENT_USER"), before);
}

TEST_F(RealPlaces, AValueOfARootKeyThatChangedSinceItWasSavedStays) {
  Registry().Set(u"HKEY_CURRENT_USER", u"Old", u"C:\\gone.exe");
  AddValue(kHkeyCurrentUser, u"", u"Old");
  RepairAfter([&] { Registry().Set(u"HKEY_CURRENT_USER", u"Old", u"C:\\other.exe"); });
  EXPECT_TRUE(Registry().HasValue(u"HKEY_CURRENT_USER", u"Old"));
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(RealPlaces, WithoutABackupAValueOfARootKeyIsDeleted) {
  Registry().SetInteger(kModules, u"RegistryCleaner", 0);
  Registry().Set(u"HKEY_CURRENT_USER", u"Old", u"C:\\gone.exe");
  AddValue(kHkeyCurrentUser, u"", u"Old");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasValue(u"HKEY_CURRENT_USER", u"Old"));
}

// The merged root is two keys.
TEST_F(RealPlaces, AValueOfTheMergedRootIsNotSavedAndStays) {
  Registry().Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes", u"Old", u"x");
  AddValue(kHkeyClassesRoot, u"", u"Old");
  m_rig.Repair();
  EXPECT_TRUE(Registry().HasValue(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes", u"Old"));
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(RealPlaces, AKeyWhosePathLeadsElsewhereSinceItWasSavedIsDeletedWhereItWas) {
  const Text other = u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet002\\Services\\Gone";
  const Text current = u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet";
  Registry().Set(kControlSet, u"ImagePath", u"C:\\gone.sys");
  Registry().Set(other, u"ImagePath", u"C:\\gone.sys");
  Registry().MakeLink(current, u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet001");
  AddKey(kHkeyLocalMachine, u"\\SYSTEM\\CurrentControlSet\\Services\\Gone");
  RepairAfter([&] {
    Registry().RemoveKey(current);
    Registry().MakeLink(current, u"HKEY_LOCAL_MACHINE\\SYSTEM\\ControlSet002");
  });
  EXPECT_TRUE(Registry().HasKey(other));
}

TEST_F(RealPlaces, AKeyWhoseParentHasBecomeALinkStays) {
  const Text parent = u"HKEY_CURRENT_USER\\Software\\Vendor";
  const Text other = u"HKEY_CURRENT_USER\\Software\\Precious";
  Registry().Set(parent + u"\\Old", u"Path", u"x");
  Registry().Set(other + u"\\Old", u"Path", u"x");
  AddKey(kHkeyCurrentUser, u"\\Software\\Vendor\\Old");
  RepairAfter([&] {
    Registry().RemoveKey(parent);
    Registry().MakeLink(parent, other);
  });
  EXPECT_TRUE(Registry().HasKey(other + u"\\Old"));
  EXPECT_EQ(m_rig.Unmarked(), TLines({"\\Software\\Vendor\\Old|"}));
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(RealPlaces, AKeyWhoseParentTakesNoSubkeysIsNotSavedAndStays) {
  const Text parent = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Guarded";
  Registry().Set(parent + u"\\Old", u"Path", u"x");
  Registry().LetUse(parent, TMemoryRights::NoSubKeys);
  AddKey(kHkeyLocalMachine, u"\\SOFTWARE\\Guarded\\Old");
  m_rig.Repair();
  EXPECT_TRUE(Registry().HasKey(parent + u"\\Old"));
  EXPECT_EQ(m_rig.BackupText().find("Guarded"), std::string::npos);
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(RealPlaces, AValueIsDeletedThoughItsKeyTakesNoSubkeys) {
  const Text key = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Guarded";
  Registry().Set(key, u"Old", u"x");
  Registry().LetUse(key, TMemoryRights::NoSubKeys);
  AddValue(kHkeyLocalMachine, u"\\SOFTWARE\\Guarded", u"Old");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasValue(key, u"Old"));
}

TEST_F(RealPlaces, OneKeyUnderTwoNamesIsDeletedOnceAndBothRowsAreMarked) {
  Registry().Set(kUserClass, u"", u"the user's");
  AddKey(kHkeyClassesRoot, u"\\CLSID\\{A}");
  AddKey(kHkeyCurrentUser, u"\\Software\\Classes\\CLSID\\{A}");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(kUserClass));
  EXPECT_TRUE(m_rig.Unmarked().empty());
}

TEST_F(RealPlaces, NamesStandInTheBackupAsTheyAreStored) {
  Registry().Set(u"HKEY_CURRENT_USER\\Software\\MiXed\\OlD", u"PaTh", u"x");
  AddKey(kHkeyCurrentUser, u"\\SOFTWARE\\mixed\\old");
  AddValue(kHkeyCurrentUser, u"\\SOFTWARE\\mixed\\old", u"PATH");
  m_rig.Repair();
  const std::string text = m_rig.BackupText();
  EXPECT_NE(text.find("[HKEY_CURRENT_USER\\Software\\MiXed\\OlD]"), std::string::npos) << text;
  EXPECT_NE(text.find("\"PaTh\"=\"x\""), std::string::npos) << text;
  EXPECT_EQ(text.find("mixed"), std::string::npos);
  // The rows keep the scanner's spelling.
  EXPECT_EQ(m_rig.Problems().at(0).KeyPath, u"\\SOFTWARE\\mixed\\old");
  EXPECT_EQ(m_rig.Problems().at(1).ValueName, u"PATH");
}

}  // namespace corvalt
