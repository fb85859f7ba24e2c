// A repair deletes exactly what it saved: what changes between the backup and the deletion stays.

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory/memorysecurity.h"
#include "tests/support/names.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

constexpr TextView kOld = u"HKEY_CURRENT_USER\\Software\\Old";
constexpr TextView kRecent = u"HKEY_CURRENT_USER\\Software\\Recent";
constexpr TextView kModules =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";
constexpr std::int32_t kMruImage = 17;
constexpr std::int32_t kStartMenuImage = 9;

class DeletedAsSaved : public testing::Test {
 protected:
  DeletedAsSaved() {
    Registry().Set(kOld, u"Path", u"C:\\gone.exe");
    Registry().Set(Text(kOld) + u"\\Below", u"Deep", u"x");
    m_section = m_rig.AddSection(u"Broken");
  }

  TMemoryRegistry& Registry() {
    return m_rig.System.Registry;
  }

  void AddKey(TextView keyPath, std::int32_t image = kNoImage) {
    m_rig.AddProblem(m_section, KeyProblem(kHkeyCurrentUser, keyPath, image));
  }
  void AddValue(TextView keyPath, TextView name, std::int32_t image = kNoImage) {
    m_rig.AddProblem(m_section, ValueProblem(kHkeyCurrentUser, keyPath, name, image));
  }

  // Repairs, with this change of the registry between the backup and the first deletion.
  void RepairAfter(const std::function<void()>& change) {
    m_rig.Repair([&change](const std::string& update, TWorkerThread&) {
      if (update == "section: " + Said(TextId::RepairingSection) + " Broken...")
        change();
    });
  }

  // Whether the change kept the key as it was changed, in the list and counted.
  bool StaysAfter(const std::function<void()>& change) {
    std::vector<std::string> changed;
    RepairAfter([&] {
      change();
      changed = Registry().Dump(kOld);
    });
    return Registry().Dump(kOld) == changed && m_rig.Unmarked() == TLines({"\\Software\\Old|"}) &&
           m_rig.Outcome.NotSaved.size() == 1 && m_rig.Outcome.Failed.empty();
  }

  TRepairRig m_rig;
  TResultsNode* m_section = nullptr;
};

}  // namespace

TEST_F(DeletedAsSaved, AKeyStaysWhenAValueWasAdded) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().Set(kOld, u"New", u"x"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenAValueWasAddedBelow) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().Set(Text(kOld) + u"\\Below", u"New", u"x"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenAnEmptyKeyWasAddedBelow) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().AddKey(Text(kOld) + u"\\Below\\New"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenAKeyWasAddedThatCannotBeRead) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().Deny(Text(kOld) + u"\\New"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenBytesBelowHaveChanged) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().Set(Text(kOld) + u"\\Below", u"Deep", u"y"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenTheTypeOfAValueHasChanged) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] { Registry().SetExpand(kOld, u"Path", u"C:\\gone.exe"); }));
}

TEST_F(DeletedAsSaved, AKeyStaysWhenAKeyBelowHasBecomeALink) {
  AddKey(u"\\Software\\Old");
  EXPECT_TRUE(StaysAfter([this] {
    Registry().RemoveKey(Text(kOld) + u"\\Below");
    Registry().MakeLink(Text(kOld) + u"\\Below", kRecent);
  }));
}

TEST_F(DeletedAsSaved, AKeyIsDeletedWhenSomethingOfItHasGone) {
  AddKey(u"\\Software\\Old");
  RepairAfter([this] { Registry().RemoveKey(Text(kOld) + u"\\Below"); });
  EXPECT_FALSE(Registry().HasKey(kOld));
  EXPECT_TRUE(m_rig.Unmarked().empty());
}

TEST_F(DeletedAsSaved, AKeyIsDeletedWhenOnlyItsTimeClassOrPermissionsHaveChanged) {
  AddKey(u"\\Software\\Old");
  RepairAfter([&] {
    Registry().SetLastWrite(kOld, 1);
    Registry().SetClass(kOld, u"Class");
    Registry().SetSecurity(kOld, SecurityBytes({.Access = {{u"S-1-5-18"}}, .IsProtected = true}));
  });
  EXPECT_FALSE(Registry().HasKey(kOld));
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 1U);
}

TEST_F(DeletedAsSaved, AValueStaysWhenItsBytesHaveChanged) {
  AddValue(u"\\Software\\Old", u"Path");
  RepairAfter([this] { Registry().Set(kOld, u"Path", u"C:\\here.exe"); });
  EXPECT_EQ(Registry().FindValue(kOld, u"Path")->Data, StringBytes(u"C:\\here.exe"));
  EXPECT_EQ(m_rig.Unmarked(), TLines({"\\Software\\Old|Path"}));
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(DeletedAsSaved, AValueStaysWhenItsTypeHasChanged) {
  AddValue(u"\\Software\\Old", u"Path");
  RepairAfter([this] { Registry().SetExpand(kOld, u"Path", u"C:\\gone.exe"); });
  EXPECT_TRUE(Registry().HasValue(kOld, u"Path"));
  EXPECT_EQ(m_rig.Outcome.NotSaved.size(), 1U);
}

TEST_F(DeletedAsSaved, AValueIsDeletedWhateverElseItsKeyGot) {
  AddValue(u"\\Software\\Old", u"Path");
  RepairAfter([this] { Registry().Set(kOld, u"New", u"x"); });
  EXPECT_FALSE(Registry().HasValue(kOld, u"Path"));
  EXPECT_TRUE(Registry().HasValue(kOld, u"New"));
}

TEST_F(DeletedAsSaved, AClassIsDeletedAfterItsOwnIconKey) {
  const Text classKey = u"HKEY_CURRENT_USER\\Class";
  Registry().Set(classKey, u"", u"A class");
  Registry().Set(classKey + u"\\DefaultIcon", u"", u"C:\\gone.ico");
  AddKey(u"\\Class\\DefaultIcon");
  AddKey(u"\\Class");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(classKey));
  EXPECT_TRUE(m_rig.Unmarked().empty());
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 2U);
}

TEST_F(DeletedAsSaved, AKeyThatTwoRowsSavedIsComparedWithWhatWasSavedLast) {
  AddKey(u"\\Software\\Old");
  AddKey(u"\\Software\\Old\\Below");
  int updates = 0;
  m_rig.Repair([this, &updates](const std::string& update, TWorkerThread&) {
    // The line is cleared when the backup begins and before each of the two exports.
    if (update == "item: " && ++updates == 3)
      Registry().Set(Text(kOld) + u"\\Below", u"Deep", u"y");
  });
  EXPECT_FALSE(Registry().HasKey(kOld));
  m_rig.RestoreTheBackup();
  EXPECT_EQ(Registry().FindValue(Text(kOld) + u"\\Below", u"Deep")->Data, StringBytes(u"y"));
}

TEST_F(DeletedAsSaved, TwoValuesOfOneMruListAreDeletedAndItsOrderWrittenTwice) {
  for (const TextView name : {u"a", u"b", u"c"})
    Registry().Set(kRecent, name, u"C:\\gone.txt");
  Registry().Set(kRecent, u"MRUList", u"cba");
  AddValue(u"\\Software\\Recent", u"a", kMruImage);
  AddValue(u"\\Software\\Recent", u"b", kMruImage);
  m_rig.Repair();
  EXPECT_EQ(Registry().FindValue(kRecent, u"MRUList")->Data, StringBytes(u"c"));
  EXPECT_TRUE(m_rig.Unmarked().empty());
}

TEST_F(DeletedAsSaved, AnMruListsKeyIsDeletedAfterItsOrderWasRewritten) {
  Registry().Set(kRecent, u"a", u"C:\\gone.txt");
  Registry().Set(kRecent, u"b", u"C:\\gone.txt");
  Registry().Set(kRecent, u"MRUList", u"ba");
  AddValue(u"\\Software\\Recent", u"a", kMruImage);
  AddKey(u"\\Software\\Recent");
  m_rig.Repair();
  EXPECT_FALSE(Registry().HasKey(kRecent));
  m_rig.RestoreTheBackup();
  EXPECT_EQ(Registry().FindValue(kRecent, u"MRUList")->Data, StringBytes(u"ba"));
}

TEST_F(DeletedAsSaved, AnMruOrderThatHasChangedIsNotRewritten) {
  Registry().Set(kRecent, u"a", u"C:\\gone.txt");
  Registry().Set(kRecent, u"b", u"C:\\here.txt");
  Registry().Set(kRecent, u"MRUList", u"ba");
  AddValue(u"\\Software\\Recent", u"a", kMruImage);
  RepairAfter([this] { Registry().Set(kRecent, u"MRUList", u"ab"); });
  EXPECT_FALSE(Registry().HasValue(kRecent, u"a"));
  EXPECT_EQ(Registry().FindValue(kRecent, u"MRUList")->Data, StringBytes(u"ab"));
}

TEST_F(DeletedAsSaved, AnEmptiedMenuKeyStaysWhenItGotAValue) {
  const Text programs = u"HKEY_CURRENT_USER\\Menu\\Start Menu2\\Programs";
  Registry().AddKey(programs + u"\\A\\B");
  AddKey(u"\\Menu\\Start Menu2\\Programs\\A\\B", kStartMenuImage);
  RepairAfter([&] { Registry().Set(programs + u"\\A", u"New", u"x"); });
  EXPECT_FALSE(Registry().HasKey(programs + u"\\A\\B"));
  EXPECT_TRUE(Registry().HasValue(programs + u"\\A", u"New"));
}

TEST_F(DeletedAsSaved, NoComparisonIsMadeWithoutABackup) {
  Registry().SetInteger(kModules, u"RegistryCleaner", 0);
  AddKey(u"\\Software\\Old");
  RepairAfter([this] { Registry().Set(Text(kOld) + u"\\New", u"New", u"x"); });
  EXPECT_FALSE(Registry().HasKey(kOld));
  EXPECT_EQ(m_rig.Outcome.Deleted.size(), 1U);
}

}  // namespace corvalt
