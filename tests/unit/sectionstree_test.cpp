#include "ui/sectionstree.h"
#include "core/settingskeys.h"
#include "scan/catalogue.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kSections =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Sections";

void Describe(TSectionsTreeModel& tree, TSectionsNode* node, const std::string& indent, TStrings& lines) {
  for (; node != nullptr; node = tree.NextSibling(node)) {
    lines.push_back(indent + std::to_string(node->NodeCode) + " " + std::to_string(node->ImageIndex) + " " +
                    EncodeUtf8(node->Caption));
    Describe(tree, tree.FirstChild(node), indent + "  ", lines);
  }
}

TSectionsNode* Below(TSectionsTreeModel& tree, TSectionsNode* node, std::int32_t code) {
  for (; node != nullptr; node = tree.NextSibling(node)) {
    if (node->NodeCode == code)
      return node;
    if (TSectionsNode* found = Below(tree, tree.FirstChild(node), code))
      return found;
  }
  return nullptr;
}

TSectionsNode* Node(TSectionsTreeModel& tree, std::int32_t code) {
  return Below(tree, tree.FirstRoot(), code);
}

TCheckState StateOf(TSectionsTreeModel& tree, std::int32_t code) {
  return tree.CheckState(Node(tree, code));
}

std::vector<std::int32_t> AllCodes() {
  std::vector<std::int32_t> codes;
  for (const TSection& section : SectionCatalogue())
    codes.push_back(section.Code);
  return codes;
}

const std::vector<std::int32_t> kAll = AllCodes();

// The codes of the ticked leaves.
std::vector<std::int32_t> Ticked(TSectionsTreeModel& tree) {
  std::vector<std::int32_t> codes;
  for (const std::int32_t code : kAll) {
    if (StateOf(tree, code) == TCheckState::Checked)
      codes.push_back(code);
  }
  return codes;
}

// A tree that was loaded from these settings.
struct TLoadedTree {
  explicit TLoadedTree(const std::vector<std::pair<Text, std::uint32_t>>& values) {
    for (const auto& [name, value] : values)
      System.Registry.SetInteger(kSections, name, value);
    Load();
  }
  void Load() {
    TSystem system = System.Bundle();
    Tree.LoadChecks(system);
  }
  void Save() {
    TSystem system = System.Bundle();
    Tree.SaveChecks(system);
  }

  TMemorySystem System;
  TSectionsTreeModel Tree;
};

}  // namespace

TEST(SectionsTree, HasItsNodesInTheirPlacesWithTheirImagesAndCaptions) {
  TSectionsTreeModel tree;
  TStrings lines;
  Describe(tree, tree.FirstRoot(), "", lines);
  ASSERT_EQ(lines.size(), kAll.size() + 2);
  lines.resize(24);
  EXPECT_EQ(lines, (TStrings{"0 23 My Computer",
                             "  1 0 Registry Integrity",
                             "  2 1 Files and Folders",
                             "    21 2 HKEY_LOCAL_MACHINE",
                             "    22 3 HKEY_CURRENT_USER",
                             "    23 4 HKEY_USERS",
                             "  100 22 Adware and Spyware",
                             "  3 5 Obsolete Software",
                             "  4 6 Custom Controls",
                             "  5 7 File Extensions",
                             "  6 8 File Associations",
                             "  7 9 Start Menu",
                             "  8 10 Startup Programs",
                             "  9 11 Shared Programs",
                             "  10 12 Software Locations",
                             "  11 13 Add/Remove Programs",
                             "  12 14 Windows Fonts",
                             "  13 15 Help and Resources",
                             "  14 16 Sounds and Appevents",
                             "  15 17 MRU and History Lists",
                             "  16 18 Device Drivers",
                             "  17 19 Windows Services",
                             "  18 20 Virtual Devices",
                             "  19 25 ARP Cache"}));
}

TEST(SectionsTree, IsFullyExpandedAndAnswersItsCodes) {
  TSectionsTreeModel tree;
  EXPECT_TRUE(Node(tree, 0)->Expanded);
  EXPECT_TRUE(Node(tree, 2)->Expanded);
  EXPECT_EQ(tree.Code(Node(tree, 100)), 100);
}

TEST(SectionsTree, WithoutSettingsEverythingIsTicked) {
  TLoadedTree loaded({});
  EXPECT_EQ(Ticked(loaded.Tree), kAll);
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Checked);
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Checked);
  EXPECT_FALSE(loaded.System.Registry.HasKey(kSections));
}

TEST(SectionsTree, WithEverySettingOffEverythingIsTickedToo) {
  TLoadedTree loaded({{u"1", 0}, {u"21", 0}, {u"100", 0}});
  EXPECT_EQ(Ticked(loaded.Tree), kAll);
}

TEST(SectionsTree, TicksWhatTheSettingsSayAndNothingElse) {
  TLoadedTree loaded({{u"1", 1}, {u"21", 1}, {u"22", 0}, {u"100", 7}});
  EXPECT_EQ(Ticked(loaded.Tree), (std::vector<std::int32_t>{1, 21, 100}));
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Mixed);
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Mixed);
}

TEST(SectionsTree, WhenLoadedAGroupThatIsTickedInPartDoesNotTickTheOneAboveIt) {
  TLoadedTree loaded({{u"21", 1}, {u"22", 0}, {u"23", 0}});
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Mixed);
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Unchecked);
}

TEST(SectionsTree, ACodeIsNotFoundInsideALongerOne) {
  TLoadedTree loaded({{u"100", 1}, {u"21", 1}});
  EXPECT_EQ(Ticked(loaded.Tree), (std::vector<std::int32_t>{21, 100}));
}

TEST(SectionsTree, AForeignSettingThatIsOnUnticksTheRest) {
  TLoadedTree loaded({{u"Other", 1}});
  EXPECT_TRUE(Ticked(loaded.Tree).empty());
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Unchecked);
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Unchecked);
}

TEST(SectionsTree, TheGroupsFollowTheirChildrenWhateverTheSettingsSay) {
  TLoadedTree loaded({{u"0", 1}, {u"2", 1}, {u"5", 1}});
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Unchecked);
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Mixed);
  EXPECT_EQ(Ticked(loaded.Tree), std::vector<std::int32_t>{5});
}

TEST(SectionsTree, AllThreeFilesAndFoldersTickTheirGroup) {
  TLoadedTree loaded({{u"21", 1}, {u"22", 1}, {u"23", 1}});
  EXPECT_EQ(StateOf(loaded.Tree, 2), TCheckState::Checked);
  EXPECT_EQ(StateOf(loaded.Tree, 0), TCheckState::Mixed);
}

TEST(SectionsTree, ASettingThatIsNoIntegerIsOff) {
  TLoadedTree loaded({{u"5", 1}});
  loaded.System.Registry.Set(kSections, u"6", u"1");
  loaded.Load();
  EXPECT_EQ(Ticked(loaded.Tree), std::vector<std::int32_t>{5});
}

TEST(SectionsTree, LoadingAgainForgetsTheTicksBefore) {
  TLoadedTree loaded({{u"5", 1}});
  loaded.System.Registry.SetInteger(kSections, u"5", 0);
  loaded.System.Registry.SetInteger(kSections, u"6", 1);
  loaded.Load();
  EXPECT_EQ(Ticked(loaded.Tree), std::vector<std::int32_t>{6});
}

TEST(SectionsTree, SavesABooleanForEverySectionAndNoneForTheGroups) {
  TLoadedTree loaded({});
  loaded.Tree.CheckOnly({1, 22, 100});
  loaded.Save();
  TStrings stored;
  TSystem system = loaded.System.Bundle();
  const auto registry = system.Registry.CreateStore(TRegistryAccess::Read);
  ASSERT_TRUE(registry->OpenKey(kSectionsKey, false));
  for (const Text& name : registry->GetValueNames()) {
    EXPECT_EQ(registry->GetDataType(name), TDataType::Integer);
    stored.push_back(EncodeUtf8(name) + "=" + std::to_string(registry->ReadInteger(name)));
  }
  TStrings expected;
  for (const std::int32_t code : kAll)
    expected.push_back(std::to_string(code) + (code == 1 || code == 22 || code == 100 ? "=1" : "=0"));
  EXPECT_EQ(stored, expected);
}

TEST(SectionsTree, WhatWasSavedIsLoadedAgain) {
  TLoadedTree loaded({});
  loaded.Tree.CheckOnly({3, 21, 19});
  loaded.Save();
  loaded.Tree.CheckOnly({});
  loaded.Load();
  EXPECT_EQ(Ticked(loaded.Tree), (std::vector<std::int32_t>{21, 3, 19}));
}

TEST(SectionsTree, NothingTickedIsLoadedAsEverythingTicked) {
  TLoadedTree loaded({});
  loaded.Tree.CheckOnly({});
  loaded.Save();
  loaded.Load();
  EXPECT_EQ(Ticked(loaded.Tree), kAll);
}

TEST(SectionsTree, ASettingsKeyThatCanNotBeOpenedIsNoError) {
  TLoadedTree loaded({{u"5", 1}});
  loaded.System.Registry.Deny(kSections);
  loaded.Load();
  EXPECT_EQ(Ticked(loaded.Tree), kAll);
  loaded.Save();
  EXPECT_FALSE(loaded.System.Registry.HasValue(kSections, u"1"));
}

TEST(SectionsTree, TickingAGroupTicksItsSectionsAndUntickingOneMixesItsGroups) {
  TSectionsTreeModel tree;
  tree.Model().SetChecked(Node(tree, 0), false);
  EXPECT_TRUE(Ticked(tree).empty());
  tree.Model().SetChecked(Node(tree, 2), true);
  EXPECT_EQ(Ticked(tree), (std::vector<std::int32_t>{21, 22, 23}));
  EXPECT_EQ(StateOf(tree, 0), TCheckState::Mixed);
  tree.Model().SetChecked(Node(tree, 22), false);
  EXPECT_EQ(StateOf(tree, 2), TCheckState::Mixed);
  EXPECT_EQ(Ticked(tree), (std::vector<std::int32_t>{21, 23}));
}

TEST(SectionsTree, CheckOnlyPassesOverUnknownCodes) {
  TSectionsTreeModel tree;
  tree.CheckOnly({5, 2, 0, 77});
  EXPECT_EQ(Ticked(tree), std::vector<std::int32_t>{5});
}

}  // namespace corvalt
