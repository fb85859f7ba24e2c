#include "repair/ignorereg.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/settingskeys.h"
#include "platform/memory/memorysystem.h"
#include "ui/ignorelistmodel.h"

namespace corvalt {

namespace {

const Text kListKey = u"HKEY_CURRENT_USER" + Text(kIgnoreListKey);

class TIgnoreRig {
 public:
  void Add(TextView entry) {
    TSystem system = System.Bundle();
    AddIgnoreEntry(system, Reg, entry);
  }

  void Save(const TIgnoreListModel& model) {
    TSystem system = System.Bundle();
    model.Save(system, Reg);
  }

  std::vector<Text> Loaded() {
    TSystem system = System.Bundle();
    return LoadIgnoreList(system);
  }

  TMemorySystem System;
  TGlobalReg Reg;
};

using TEntries = std::vector<Text>;

}  // namespace

TEST(IgnoreEntry, OfAValueIsItsFullName) {
  ScanProblem problem;
  problem.RootKey = kHkeyCurrentUser;
  problem.KeyPath = u"\\Software\\Example\\Run";
  problem.ValueName = u"Updater";
  EXPECT_EQ(IgnoreEntryOf(problem), u"HKEY_CURRENT_USER\\Software\\Example\\Run\\Updater");
}

TEST(IgnoreEntry, OfAKeyEndsInABackslash) {
  ScanProblem problem;
  problem.RootKey = kHkeyLocalMachine;
  problem.KeyPath = u"\\Software\\Example\\Old";
  problem.Kind = TProblemKind::Key;
  EXPECT_EQ(IgnoreEntryOf(problem), u"HKEY_LOCAL_MACHINE\\Software\\Example\\Old\\");
}

TEST(AddingAnIgnoreEntry, AppendsAndStoresIt) {
  TIgnoreRig rig;
  rig.Add(u"HKEY_CURRENT_USER\\A\\");
  rig.Add(u"HKEY_CURRENT_USER\\B\\");
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"HKEY_CURRENT_USER\\A\\", u"HKEY_CURRENT_USER\\B\\"}));
  EXPECT_EQ(rig.Loaded(), rig.Reg.IgnoreList);
}

TEST(AddingAnIgnoreEntry, ThatDiffersInLetterCaseAlonePutsItInTheOldOnesPlace) {
  TIgnoreRig rig;
  rig.Reg.IgnoreList = {u"x", u"HKEY_CURRENT_USER\\A\\", u"y"};
  rig.Add(u"hkey_current_user\\a\\");
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"x", u"hkey_current_user\\a\\", u"y"}));
}

TEST(AddingAnIgnoreEntry, ThatIsSwitchedOffSwitchesItOnAndLeavesTheOldValueStored) {
  TIgnoreRig rig;
  rig.System.Registry.SetInteger(kListKey, u";Entry", 1);
  rig.Reg.IgnoreList = rig.Loaded();
  rig.Add(u"Entry");
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"Entry"}));
  EXPECT_EQ(rig.Loaded(), TEntries({u";Entry", u"Entry"}));
}

// The registry would refuse the name of an unnamed value's entry as it stands.
TEST(AddingAnIgnoreEntry, OfAnUnnamedValueStoresItsKey) {
  TIgnoreRig rig;
  const Text entry = u"HKEY_CURRENT_USER\\A\\" + Text(1, u'\0');
  rig.Add(entry);
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({entry}));
  EXPECT_EQ(rig.Loaded(), TEntries({u"HKEY_CURRENT_USER\\A\\"}));
}

TEST(AddingAnIgnoreEntry, ReplacesTheFirstOfSeveralMatchesOnly) {
  TIgnoreRig rig;
  rig.Reg.IgnoreList = {u";a", u"A"};
  rig.Add(u"a");
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"a", u"A"}));
}

TEST(AddingAnIgnoreEntry, ChangesTheListInMemoryAloneWhenTheKeyIsDenied) {
  TIgnoreRig rig;
  rig.System.Registry.Deny(kListKey);
  rig.Add(u"Entry");
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"Entry"}));
  EXPECT_FALSE(rig.System.Registry.HasValue(kListKey, u"Entry"));
}

TEST(IgnoreListManager, ShowsSwitchedOffEntriesUncheckedWithoutTheirMark) {
  TGlobalReg reg;
  reg.IgnoreList = {u"on", u";off", u";;twice"};
  const TIgnoreListModel model(reg);
  ASSERT_EQ(model.Rows().size(), 3U);
  EXPECT_EQ(model.Rows()[0].Caption, u"on");
  EXPECT_TRUE(model.Rows()[0].Checked);
  EXPECT_EQ(model.Rows()[1].Caption, u"off");
  EXPECT_FALSE(model.Rows()[1].Checked);
  EXPECT_EQ(model.Rows()[2].Caption, u";twice");
}

TEST(IgnoreListManager, CutsASwitchedOffEntryAtAThousandCharactersAndStoresItCut) {
  TIgnoreRig rig;
  rig.Reg.IgnoreList = {u";" + Text(1001, u'x'), Text(1001, u'y')};
  const TIgnoreListModel model(rig.Reg);
  EXPECT_EQ(model.Rows()[0].Caption, Text(1000, u'x'));
  EXPECT_EQ(model.Rows()[1].Caption, Text(1001, u'y'));
  rig.Save(model);
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u";" + Text(1000, u'x'), Text(1001, u'y')}));
  EXPECT_EQ(rig.Loaded(), rig.Reg.IgnoreList);
}

TEST(IgnoreListManager, StoresAnUncheckedRowAsSwitchedOff) {
  TIgnoreRig rig;
  rig.Add(u"a");
  rig.Add(u"b");
  TIgnoreListModel model(rig.Reg);
  model.SetChecked(0, false);
  rig.Save(model);
  // The new value stands behind those that were there before.
  EXPECT_EQ(rig.Loaded(), TEntries({u"b", u";a"}));
  EXPECT_EQ(rig.System.Registry.FindValue(kListKey, u";a")->Type, kRegDword);
  EXPECT_FALSE(TIgnoreListModel(rig.Reg).Rows()[0].Checked);
}

TEST(IgnoreListManager, SwitchesAnEntryOnAgain) {
  TIgnoreRig rig;
  rig.Reg.IgnoreList = {u";a"};
  TIgnoreListModel model(rig.Reg);
  model.SetChecked(0, true);
  rig.Save(model);
  EXPECT_EQ(rig.Loaded(), TEntries({u"a"}));
}

TEST(IgnoreListManager, RemovesARowWhenItIsSavedNotBefore) {
  TIgnoreRig rig;
  rig.Add(u"a");
  rig.Add(u"b");
  TIgnoreListModel model(rig.Reg);
  model.Remove(0);
  EXPECT_EQ(model.Rows().size(), 1U);
  EXPECT_EQ(rig.Loaded(), TEntries({u"a", u"b"}));
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"a", u"b"}));
  rig.Save(model);
  EXPECT_EQ(rig.Loaded(), TEntries({u"b"}));
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"b"}));
}

TEST(IgnoreListManager, DropsValuesOfOtherDataFromTheKeyWhenItSaves) {
  TIgnoreRig rig;
  rig.System.Registry.SetInteger(kListKey, u"by hand", 0);
  rig.System.Registry.SetInteger(kListKey, u"kept", 1);
  rig.Reg.IgnoreList = rig.Loaded();
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u"kept"}));
  rig.Save(TIgnoreListModel(rig.Reg));
  EXPECT_FALSE(rig.System.Registry.HasValue(kListKey, u"by hand"));
  EXPECT_TRUE(rig.System.Registry.HasValue(kListKey, u"kept"));
}

TEST(IgnoreListManager, DropsSubkeysAndValuesOfOtherTypesWhenItSaves) {
  TIgnoreRig rig;
  rig.Add(u"kept");
  rig.System.Registry.Set(kListKey, u"a text", u"1");
  rig.System.Registry.AddKey(kListKey + u"\\Below\\Deeper");
  rig.Save(TIgnoreListModel(rig.Reg));
  EXPECT_EQ(rig.System.Registry.Dump(kListKey).size(), 2U);
  EXPECT_EQ(rig.Loaded(), TEntries({u"kept"}));
}

// Whatever step a program is ended at, every entry is stored before it, and after it.
TEST(IgnoreListManager, WritesTheNewValuesBeforeItDeletesTheOldOnes) {
  TIgnoreRig rig;
  rig.Add(u"stays");
  rig.Add(u"switched off");
  rig.Add(u"removed");
  TIgnoreListModel model(rig.Reg);
  model.SetChecked(1, false);
  model.Remove(2);
  TJournal journal;
  rig.System.KeepJournal(journal);
  rig.Save(model);
  const auto at = [&journal](std::string_view part) {
    const auto& entries = journal.Entries();
    return std::find_if(entries.begin(), entries.end(),
                        [part](const std::string& entry) { return entry.find(part) != std::string::npos; }) -
           entries.begin();
  };
  EXPECT_LT(at(";switched off"), at("delete"));
  EXPECT_LT(at("delete"), static_cast<std::ptrdiff_t>(journal.Entries().size()));
  for (const std::string& entry : journal.Entries())
    EXPECT_EQ(entry.find("delete key"), std::string::npos) << entry;
  EXPECT_EQ(rig.Loaded(), TEntries({u"stays", u";switched off"}));
}

TEST(IgnoreListManager, KeepsTheOldValuesWhenANewOneCannotBeWritten) {
  TIgnoreRig rig;
  rig.Add(u"a");
  rig.Add(u"b");
  TIgnoreListModel model(rig.Reg);
  model.Remove(0);
  rig.Reg.IgnoreList.push_back(Text(20000, u'x'));
  TIgnoreListModel withOneTooLong(rig.Reg);
  withOneTooLong.Remove(0);
  rig.Save(withOneTooLong);
  EXPECT_EQ(rig.Loaded(), TEntries({u"a", u"b"}));
}

TEST(TheIgnoreList, IsStoredByOneProgramOfAUserAtATime) {
  TIgnoreRig rig;
  rig.Add(u"a");
  rig.Save(TIgnoreListModel(rig.Reg));
  ASSERT_EQ(rig.System.Interprocess.Names.size(), 2U);
  EXPECT_EQ(rig.System.Interprocess.Names[0], rig.System.Interprocess.Names[1]);
  EXPECT_TRUE(Contains(rig.System.Interprocess.Names[0], rig.System.Interprocess.User));
}

TEST(TheIgnoreList, IsStoredAlsoWhenAnotherProgramDoesNotGiveWay) {
  TIgnoreRig rig;
  rig.System.Interprocess.LongestPatience = std::chrono::milliseconds(1);
  const std::unique_ptr<THeldLock> others = rig.System.Interprocess.HoldEveryLock();
  rig.Add(u"a");
  EXPECT_EQ(rig.Loaded(), TEntries({u"a"}));
}

TEST(IgnoreListManager, KeepsWhatAnotherCopyOfTheProgramHasAddedMeanwhile) {
  TIgnoreRig rig;
  rig.Add(u"removed");
  rig.Add(u"switched off");
  rig.System.Registry.SetInteger(kListKey, u";REMOVED", 1);
  rig.System.Registry.SetInteger(kListKey, u";the other's", 1);
  TIgnoreListModel model(rig.Reg);
  model.SetChecked(1, false);
  model.Remove(0);
  rig.Save(model);
  EXPECT_EQ(rig.Reg.IgnoreList, TEntries({u";switched off", u";the other's"}));
  EXPECT_EQ(rig.Loaded(), TEntries({u";the other's", u";switched off"}));
}

TEST(IgnoreListManager, RemovesAnEntryWhoseStoredNameEndsAtANul) {
  TIgnoreRig rig;
  rig.Add(Text(u"HKEY_CURRENT_USER\\A\\") + Text(1, u'\0'));
  TIgnoreListModel model(rig.Reg);
  model.Remove(0);
  rig.Save(model);
  EXPECT_TRUE(rig.Reg.IgnoreList.empty());
  EXPECT_TRUE(rig.Loaded().empty());
}

TEST(IgnoreListManager, ChangesTheListInMemoryWhenTheKeyIsDenied) {
  TIgnoreRig rig;
  rig.System.Registry.SetInteger(kListKey, u"a", 1);
  rig.System.Registry.Deny(kListKey);
  rig.Reg.IgnoreList = {u"a"};
  TIgnoreListModel model(rig.Reg);
  model.Remove(0);
  rig.Save(model);
  EXPECT_TRUE(rig.Reg.IgnoreList.empty());
  EXPECT_TRUE(rig.System.Registry.HasValue(kListKey, u"a"));
}

}  // namespace corvalt
