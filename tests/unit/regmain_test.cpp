// The main window's work: its settings, what may be done when, the flows of scan and repair, and what comes
// of dialogs that are closed in the middle and of threads that fail.

#include "ui/regmain.h"
#include "core/settingskeys.h"

#include <gtest/gtest.h>

#include <future>
#include <span>
#include <stdexcept>

#include "scan/catalogue.h"
#include "tests/support/mainrig.h"
#include "tests/support/names.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

constexpr TextView kCatalogue = u"C:\\Program Files\\Tessaly\\data\\xdata.dat";
// The group of the three sections of files and folders.
constexpr std::int32_t kFilesGroup = 2;
constexpr TextView kSections =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Sections";
constexpr TextView kSettings =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Settings";
constexpr TextView kIgnored =
    u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\IgnoreList";

// The sections that are stored, by code.
std::vector<Text> CodesOf(std::span<const TSection> sections) {
  std::vector<Text> codes;
  for (const TSection& section : sections)
    codes.push_back(DecimalText(section.Code));
  return codes;
}

const std::vector<Text> kLeafCodes = CodesOf(SectionCatalogue());

TSectionsNode* SectionOf(TRegMain& main, std::int32_t code) {
  TSectionsTreeModel& tree = main.Sections();
  for (TSectionsNode* node = tree.FirstChild(tree.FirstRoot()); node != nullptr;
       node = tree.NextSibling(node)) {
    if (tree.Code(node) == code)
      return node;
    for (TSectionsNode* below = tree.FirstChild(node); below != nullptr; below = tree.NextSibling(below)) {
      if (tree.Code(below) == code)
        return below;
    }
  }
  return nullptr;
}

// The label of the window's summary.
Text SummaryLabel(const Text& found, const Text& selected) {
  return Says(TextId::Summary) + u" (" + found + u"," + selected + u")";
}

// What a dialog remembers of the counts that it was shown.
std::string Counts(const Text& found, const Text& selected, int problems) {
  return EncodeUtf8(found + u"," + selected) + ".|" + std::to_string(problems);
}

// A rig whose scan has found the given number of problems in one section.
class TScannedRig : public TMainRig {
 public:
  explicit TScannedRig(int problems) {
    BreakMany(problems);
    Main.Scan();
    Dialogs.clear();
    Summaries.clear();
  }
};

}  // namespace

// Settings

TEST(MainWindowSettings, TheFirstRunChecksEverySectionAndTheExitStoresIt) {
  TMainRig rig;
  rig.Main.LoadSections();
  EXPECT_EQ(rig.Main.Sections().CheckState(rig.Main.Sections().FirstRoot()), TCheckState::Checked);
  rig.Main.SaveSettings();
  for (const Text& code : kLeafCodes)
    EXPECT_EQ(rig.StoredSection(code), "true") << EncodeUtf8(code);
  EXPECT_EQ(rig.StoredSections().size(), kLeafCodes.size());
}

TEST(MainWindowSettings, GroupsAreNeverStored) {
  TMainRig rig;
  rig.Main.LoadSections();
  rig.Main.SaveSettings();
  EXPECT_EQ(rig.StoredSection(u"0"), "(none)");
  EXPECT_EQ(rig.StoredSection(DecimalText(kFilesGroup)), "(none)");
}

TEST(MainWindowSettings, AnUncheckedSectionStaysUncheckedOverTheNextStart) {
  TMainRig rig;
  rig.Main.LoadSections();
  rig.Main.Sections().Model().SetChecked(SectionOf(rig.Main, Section::FilesOfLocalMachine), false);
  rig.Main.SaveSettings();
  EXPECT_EQ(rig.StoredSection(DecimalText(Section::FilesOfLocalMachine)), "false");
  rig.Main.Sections().CheckOnly({Section::RegistryIntegrity});
  rig.Main.LoadSections();
  EXPECT_EQ(SectionOf(rig.Main, Section::FilesOfLocalMachine)->State, TCheckState::Unchecked);
  EXPECT_EQ(SectionOf(rig.Main, Section::FilesOfCurrentUser)->State, TCheckState::Checked);
  EXPECT_EQ(SectionOf(rig.Main, kFilesGroup)->State, TCheckState::Mixed);
  EXPECT_EQ(rig.Main.Sections().FirstRoot()->State, TCheckState::Mixed);
}

TEST(MainWindowSettings, WithEverySectionUncheckedTheNextStartChecksThemAll) {
  TMainRig rig;
  rig.Main.Sections().CheckOnly({});
  rig.Main.SaveSettings();
  rig.Main.LoadSections();
  EXPECT_EQ(rig.Main.Sections().FirstRoot()->State, TCheckState::Checked);
}

TEST(MainWindowSettings, TheExitStoresTheBackupSettings) {
  TMainRig rig;
  rig.Reg.BackupFolder = u"C:\\Backups\\";
  rig.Reg.BackupCount = 7;
  rig.Main.SaveSettings();
  const std::unique_ptr<RegistryStore> store = rig.System.Registry.CreateStore(TRegistryAccess::Read);
  ASSERT_TRUE(store->OpenKey(kCleanerSettingsKey, false));
  EXPECT_EQ(store->ReadString(u"regbackupfolder"), u"C:\\Backups\\");
  EXPECT_EQ(store->ReadInteger(u"regbackupcount"), 7);
}

TEST(MainWindowSettings, KeysThatCannotBeCreatedAreNoError) {
  TMainRig rig;
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\TessalySoft");
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\Software\\TessalySoft");
  rig.Main.LoadSections();
  rig.Main.SaveSettings();
  EXPECT_FALSE(rig.System.Registry.HasKey(kSections));
  EXPECT_FALSE(rig.System.Registry.HasKey(kSettings));
  EXPECT_EQ(rig.System.Calls, TLines());
}

// What may be done when

TEST(MainWindowActions, AnEmptyTreeCanBeScannedForAndBackupsRestored) {
  TMainRig rig;
  EXPECT_EQ(rig.Enabled(), "scan restore");
}

TEST(MainWindowActions, ATreeWithANodeCanBeRepairedAndExported) {
  TScannedRig rig(1);
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
}

TEST(MainWindowActions, AHeaderAloneIsANode) {
  TMainRig rig;
  rig.Main.Results().AddNode(nullptr);
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
}

TEST(MainWindowActions, RepairWaitsForTheMaintenanceToEnd) {
  TScannedRig rig(1);
  rig.Main.StartMaintenance();
  EXPECT_EQ(rig.Enabled(), "scan restore export");
  EXPECT_TRUE(rig.Main.AnyThreadRuns());
  EXPECT_FALSE(rig.Main.WorkerRuns());
  const int changes = rig.ActionsChanges;
  rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns(); });
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
  EXPECT_GT(rig.ActionsChanges, changes);
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowActions, ARepairAskedForDuringTheMaintenanceOpensNoDialog) {
  TScannedRig rig(1);
  rig.Main.StartMaintenance();
  rig.Main.Repair();
  EXPECT_TRUE(rig.Dialogs.empty());
  EXPECT_TRUE(rig.IsBroken(0));
  rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns(); });
}

TEST(MainWindowActions, TheScansDialogOffersItsRepairWhenTheMaintenanceHasEnded) {
  TMainRig rig;
  rig.Break(0);
  rig.Users = {[&rig](TDialogRecord& dialog) {
    EXPECT_FALSE(dialog.MayRepair);
    rig.WaitForTheEnd();
    EXPECT_TRUE(dialog.MayRepair);
    rig.Main.StartMaintenance();
    EXPECT_FALSE(dialog.MayRepair);
    rig.PumpUntil([&rig] { return !rig.Main.AnyThreadRuns(); });
    EXPECT_TRUE(dialog.MayRepair);
  }};
  rig.Main.Scan();
}

TEST(MainWindowHint, SaysHowToBeginUntilAScanHasFoundNothing) {
  TMainRig rig;
  rig.Vars.Texts = NumberedTexts();
  EXPECT_EQ(rig.Main.EmptyHint(), Says(TextId::HintScan));
  rig.Users = {[&rig](TDialogRecord&) {
    EXPECT_EQ(rig.Main.EmptyHint(), u"");
    rig.WaitForTheEnd();
  }};
  rig.Main.Scan();
  EXPECT_EQ(rig.Main.EmptyHint(), Says(TextId::NoProblemFound));
}

TEST(MainWindowHint, SaysHowToBeginAfterAScanThatWasStopped) {
  TMainRig rig;
  rig.Vars.Texts = NumberedTexts();
  rig.Users = {[](TDialogRecord&) {}};
  rig.Main.Scan();
  rig.PumpUntil([&rig] { return !rig.Main.WorkerRuns(); });
  EXPECT_EQ(rig.Main.EmptyHint(), Says(TextId::HintScan));
}

TEST(MainWindowHint, SaysHowToBeginAfterARepairOfEverything) {
  TMainRig rig;
  rig.Vars.Texts = NumberedTexts();
  rig.Break(0);
  rig.Main.Scan();
  rig.Main.Repair();
  EXPECT_EQ(rig.RowCount(), 0U);
  EXPECT_EQ(rig.Main.EmptyHint(), Says(TextId::HintScan));
}

TEST(MainWindowActions, ARepairOfAnEmptyTreeOpensNoDialog) {
  TMainRig rig;
  rig.Main.Repair();
  EXPECT_TRUE(rig.Dialogs.empty());
}

TEST(MainWindowActions, NothingMayBeDoneWhileAScanRuns) {
  TMainRig rig;
  rig.BreakMany(3);
  std::string enabled = "(not asked)";
  rig.Users.push_back([&](TDialogRecord&) {
    rig.PumpUntil([&] { return rig.RowCount() >= 1; });
    enabled = rig.Enabled();
    rig.WaitForTheEnd();
  });
  rig.Main.Scan();
  EXPECT_EQ(enabled, "");
}

TEST(MainWindowActions, NothingMayBeDoneWhileARepairRuns) {
  TScannedRig rig(3);
  std::string enabled = "(not asked)";
  rig.Users.push_back([&](TDialogRecord& dialog) {
    rig.PumpUntil([&] { return !dialog.Updates.empty(); });
    enabled = rig.Enabled();
    rig.WaitForTheEnd();
  });
  rig.Main.Repair();
  EXPECT_EQ(enabled, "");
}

// Scan

TEST(MainWindowScan, WithoutProblemsEndsWithTheTextsOfNone) {
  TMainRig rig;
  rig.Main.Scan();
  ASSERT_EQ(rig.Dialogs.size(), 1u);
  EXPECT_EQ(rig.Dialogs[0].Mode, TProgressMode::Scan);
  EXPECT_EQ(rig.Dialogs[0].Results,
            TLines({Counts(Says(TextId::NoProblemFound), Says(TextId::NoProblemSelected), 0)}));
  ASSERT_FALSE(rig.Summaries.empty());
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::NoProblemFound), Says(TextId::NoProblemSelected)));
  EXPECT_EQ(rig.Enabled(), "scan restore");
}

TEST(MainWindowScan, ShowsItsCountsInTheWindowAndInTheDialog) {
  TMainRig rig;
  rig.BreakMany(3);
  rig.Main.Scan();
  EXPECT_EQ(rig.Dialogs.at(0).Results,
            TLines({Counts(Says(TextId::ProblemsFound, u"3"), Says(TextId::ProblemsSelected, u"3"), 3)}));
  EXPECT_EQ(rig.Summaries.back().TotalText, Says(TextId::ProblemsFound, u"3"));
  EXPECT_EQ(rig.Summaries.back().SelectedText, Says(TextId::ProblemsSelected, u"3"));
  EXPECT_EQ(rig.Header(0)->Problem.ChildCount, 3u);
  EXPECT_EQ(rig.Header(0)->State, TCheckState::Checked);
  EXPECT_GT(rig.ResultsChanges, 0);
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
}

TEST(MainWindowScan, ShowsItsProgressInTheDialog) {
  TMainRig rig;
  rig.Main.Scan();
  const TLines& updates = rig.Dialogs.at(0).Updates;
  ASSERT_GE(updates.size(), 3u);
  EXPECT_EQ(updates[0], "item: ");
  EXPECT_TRUE(updates[1].starts_with("section: " + EncodeUtf8(Says(TextId::ScanningSection)) + " ") &&
              updates[1].ends_with("..."))
      << updates[1];
}

TEST(MainWindowScan, WithNoSectionTickedSaysSoAndKeepsTheResults) {
  TScannedRig rig(2);
  rig.Main.Rows().Select(rig.Row(0, 0));
  rig.Main.Sections().CheckOnly({});
  rig.Main.Scan();
  EXPECT_EQ(rig.System.Calls, TLines({InformationBox(Says(TextId::HintScan))}));
  EXPECT_TRUE(rig.Dialogs.empty());
  EXPECT_EQ(rig.RowCount(), 2u);
  EXPECT_EQ(rig.Main.Rows().Selected(), rig.Row(0, 0));
  rig.Main.Sections().CheckOnly({TMainRig::kSection});
  rig.Main.Scan();
  EXPECT_EQ(rig.Dialogs.size(), 1u);
}

TEST(MainWindowScan, BeginsWithAnEmptyTreeAndNoSelection) {
  TScannedRig rig(2);
  rig.Main.Rows().Select(rig.Row(0, 0));
  const int changes = rig.ResultsChanges;
  std::size_t nodes = 99;
  bool isSelected = true;
  int changesAtStart = 0;
  rig.Users.push_back([&](TDialogRecord&) {
    nodes = rig.Main.Results().Model().TotalCount();
    isSelected = rig.Main.Rows().Selected() != nullptr;
    changesAtStart = rig.ResultsChanges - changes;
    rig.WaitForTheEnd();
  });
  rig.Main.Scan();
  EXPECT_EQ(nodes, 0u);
  EXPECT_FALSE(isSelected);
  EXPECT_EQ(changesAtStart, 1);
  EXPECT_EQ(rig.RowCount(), 2u);
}

TEST(MainWindowScan, TellsTheTreeOfEveryRowThatComesOrGoes) {
  TMainRig rig;
  rig.BreakMany(3);
  int changes = 0;
  rig.Main.Results().OnRows = [&changes] { ++changes; };
  rig.Main.Scan();
  // A header and its rows.
  EXPECT_EQ(changes, 4);
  rig.Main.Sections().CheckOnly({Section::WindowsFonts});
  changes = 0;
  rig.Main.Scan();
  // A header that goes again.
  EXPECT_EQ(changes, 2);
}

TEST(MainWindowScan, MeasuresTheRowsAsTheWindowSays) {
  TMainRig rig;
  rig.Break(0);
  rig.Main.SetMeasure([](TextView) { return 5000; });
  rig.Main.Scan();
  EXPECT_GT(rig.Main.Results().ColumnWidth(), 5000);
}

TEST(MainWindowScan, TellsItsDialogOnceThatItHasEnded) {
  TMainRig rig;
  rig.Break(0);
  rig.Main.Scan();
  rig.Main.Repair();
  EXPECT_EQ(rig.Dialogs[0].Ends, std::vector<TRunEnd>({TRunEnd::Complete}));
  EXPECT_EQ(rig.Dialogs[1].Ends, std::vector<TRunEnd>({TRunEnd::Complete}));
}

TEST(MainWindowScan, ClosedInTheMiddleKeepsWhatItFound) {
  constexpr int kProblems = 200;
  TMainRig rig;
  rig.BreakMany(kProblems);
  rig.Users.push_back([&](TDialogRecord&) { rig.PumpUntil([&] { return rig.RowCount() >= 5; }); });
  rig.Main.Scan();
  // The thread waits for this one, which has stopped pumping: the dialog does not wait for it.
  EXPECT_TRUE(rig.Main.WorkerRuns());
  EXPECT_EQ(rig.Enabled(), "");
  rig.WaitForTheEnd();
  EXPECT_GE(rig.RowCount(), 5u);
  EXPECT_LT(rig.RowCount(), static_cast<std::size_t>(kProblems));
  EXPECT_EQ(rig.Header(0)->Problem.ChildCount, rig.RowCount());
  EXPECT_EQ(rig.Summaries.back().Total, rig.RowCount());
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowScan, ADialogThatIsGoneHearsNothingMore) {
  TMainRig rig;
  rig.BreakMany(200);
  rig.Users.push_back([&](TDialogRecord&) { rig.PumpUntil([&] { return rig.RowCount() >= 5; }); });
  rig.Main.Scan();
  ASSERT_FALSE(rig.Dialogs[0].IsThere);
  const std::size_t updates = rig.Dialogs[0].Updates.size();
  rig.WaitForTheEnd();
  rig.Main.UpdateSummary();
  EXPECT_EQ(rig.Dialogs[0].Updates.size(), updates);
  EXPECT_EQ(rig.Dialogs[0].Results, TLines());
}

TEST(MainWindowScan, ClosedAtItsVeryStartFindsNothing) {
  TMainRig rig;
  rig.BreakMany(20);
  rig.Users.push_back([](TDialogRecord&) {});
  rig.Main.Scan();
  EXPECT_TRUE(rig.Main.WorkerRuns());
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.RowCount(), 0u);
  EXPECT_EQ(rig.Dialogs[0].Updates, TLines());
  EXPECT_EQ(rig.Enabled(), "scan restore");
}

TEST(MainWindowScan, ASecondOneDoesNotStartBeforeTheFirstHasEnded) {
  TMainRig rig;
  rig.BreakMany(20);
  rig.Users.push_back([](TDialogRecord&) {});
  rig.Main.Scan();
  rig.Main.Scan();
  rig.Main.Repair();
  EXPECT_EQ(rig.Dialogs.size(), 1u);
  rig.WaitForTheEnd();
  rig.Main.Scan();
  EXPECT_EQ(rig.Dialogs.size(), 2u);
  EXPECT_EQ(rig.RowCount(), 20u);
}

TEST(MainWindowScan, ADialogThatThrowsIsForgottenAndStopsTheScan) {
  TMainRig rig;
  rig.BreakMany(200);
  rig.DialogThrows = true;
  rig.Users.push_back([&](TDialogRecord&) { rig.PumpUntil([&] { return rig.RowCount() >= 5; }); });
  EXPECT_THROW(rig.Main.Scan(), std::runtime_error);
  rig.WaitForTheEnd();
  EXPECT_LT(rig.RowCount(), 200u);
  EXPECT_EQ(rig.Dialogs[0].Results, TLines());
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
}

TEST(MainWindowScan, WhoseDialogCannotBeMadeLeavesAnEmptyTreeThatOffersNoRepair) {
  TScannedRig rig(2);
  rig.NoDialog = true;
  const int changes = rig.ActionsChanges;
  EXPECT_THROW(rig.Main.Scan(), std::runtime_error);
  EXPECT_GT(rig.ActionsChanges, changes);
  EXPECT_EQ(rig.RowCount(), 0u);
  EXPECT_EQ(rig.Enabled(), "scan restore");
  rig.NoDialog = false;
  rig.Main.Scan();
  EXPECT_EQ(rig.RowCount(), 2u);
}

TEST(MainWindowScan, ThatFailsSaysWhyAndLeavesEverythingUsable) {
  TMainRig rig;
  rig.Break(0);
  rig.System.Disk.AddFile(kCatalogue, "not a catalogue");
  rig.Main.Sections().CheckOnly({TMainRig::kSection, Section::AdwareAndSpyware});
  rig.Main.Scan();
  EXPECT_EQ(
      rig.System.Calls,
      TLines({FailureBox(Says(TextId::ScanFailed, Says(TextId::CatalogueUnreadable,
                                                       u"C:\\Program Files\\Tessaly\\\\data\\xdata.dat")))}));
  // What was found before the failure is there.
  EXPECT_EQ(rig.RowCount(), 1u);
  EXPECT_EQ(
      rig.Dialogs[0].Results,
      TLines({"failed: " + Counts(Says(TextId::OneProblemFound), Says(TextId::OneProblemSelected), 1)}));
  EXPECT_EQ(rig.Dialogs[0].Ends, std::vector<TRunEnd>({TRunEnd::Failed}));
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
  rig.Main.Sections().CheckOnly({TMainRig::kSection});
  rig.Main.Scan();
  EXPECT_EQ(rig.Dialogs[1].Results,
            TLines({Counts(Says(TextId::OneProblemFound), Says(TextId::OneProblemSelected), 1)}));
  EXPECT_EQ(rig.System.Calls.size(), 1u);
  EXPECT_EQ(rig.RowCount(), 1u);
}

TEST(MainWindowScan, ThatFailsAfterItsDialogHasGoneSaysWhyAllTheSame) {
  TMainRig rig;
  rig.Break(0);
  // The read waits until the dialog has been closed.
  std::promise<void> closed;
  std::shared_future<void> isClosed = closed.get_future().share();
  rig.System.Registry.OnRead = [isClosed] {
    isClosed.wait();
    throw std::runtime_error("no more");
  };
  rig.Users.push_back(
      [&](TDialogRecord& dialog) { rig.PumpUntil([&] { return dialog.Updates.size() == 3; }); });
  rig.Main.Scan();
  closed.set_value();
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.System.Calls, TLines({FailureBox(Says(TextId::ScanFailed, u"no more"))}));
  EXPECT_EQ(rig.Dialogs[0].Results, TLines());
  rig.System.Registry.OnRead = nullptr;
  rig.Main.Scan();
  EXPECT_EQ(rig.RowCount(), 1u);
}

// Repair

TEST(MainWindowRepair, DropsTheRepairedRowsAndRecounts) {
  TScannedRig rig(3);
  TTreeModel& model = rig.Main.Results().Model();
  model.SetChecked(rig.Row(0, 1), false);
  rig.Main.Rows().Checked(rig.Row(0, 1));
  rig.Main.Repair();
  EXPECT_FALSE(rig.IsBroken(0));
  EXPECT_TRUE(rig.IsBroken(1));
  EXPECT_FALSE(rig.IsBroken(2));
  ASSERT_EQ(rig.RowCount(), 1u);
  EXPECT_EQ(rig.Row(0, 0)->Problem.KeyPath, u"\\Software\\App\\1");
  EXPECT_EQ(rig.Header(0)->Problem.ChildCount, 1u);
  EXPECT_EQ(rig.Header(0)->State, TCheckState::Unchecked);
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::OneProblemFound), Says(TextId::NoProblemSelected)));
}

TEST(MainWindowRepair, OfEverythingLeavesAnEmptyTree) {
  TScannedRig rig(3);
  rig.Main.Repair();
  EXPECT_EQ(rig.Main.Results().Model().TotalCount(), 0u);
  EXPECT_EQ(rig.Enabled(), "scan restore");
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::NoProblemFound), Says(TextId::NoProblemSelected)));
}

TEST(MainWindowRepair, EndsWithItsFinalMessageAndNoCount) {
  TScannedRig rig(2);
  rig.Main.Results().Model().SetChecked(rig.Row(0, 0), false);
  rig.Main.Repair();
  ASSERT_EQ(rig.Dialogs.size(), 1u);
  EXPECT_EQ(rig.Dialogs[0].Mode, TProgressMode::Repair);
  // The summary first.
  EXPECT_EQ(rig.Dialogs[0].Results,
            TLines({Counts(Says(TextId::OneProblemFound), Says(TextId::NoProblemSelected), 1),
                    EncodeUtf8(Says(TextId::RepairFinalMessage)) + "|0"}));
}

TEST(MainWindowRepair, SaysHowManyEntriesItCouldNotSave) {
  TScannedRig rig(2);
  rig.System.Registry.Deny(FullKeyText(rig.Row(0, 0)->Problem));
  rig.Main.Repair();
  ASSERT_EQ(rig.Dialogs.size(), 1u);
  EXPECT_EQ(
      rig.Dialogs[0].Results.back(),
      EncodeUtf8(Says(TextId::RepairFinalMessage) + u"\r\n" + Says(TextId::EntriesNotSaved, u"1")) + "|0");
}

TEST(MainWindowRepair, SaysHowManyEntriesItCouldNotDelete) {
  TScannedRig rig(2);
  rig.System.Registry.LetUse(FullKeyText(rig.Row(0, 1)->Problem), TMemoryRights::Read);
  rig.Main.Repair();
  ASSERT_EQ(rig.Dialogs.size(), 1u);
  EXPECT_EQ(
      rig.Dialogs[0].Results.back(),
      EncodeUtf8(Says(TextId::RepairFinalMessage) + u"\r\n" + Says(TextId::EntriesNotDeleted, u"1")) + "|0");
}

TEST(MainWindowRepair, AsksNothing) {
  TScannedRig rig(2);
  rig.Main.Repair();
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowRepair, ForgetsTheSelectionAtItsStart) {
  TScannedRig rig(2);
  TResultsNode* kept = rig.Row(0, 0);
  rig.Main.Results().Model().SetChecked(kept, false);
  rig.Main.Rows().Select(kept);
  rig.Main.Repair();
  EXPECT_EQ(rig.Main.Rows().Selected(), nullptr);
  EXPECT_FALSE(kept->Problem.StateFlag1);
}

TEST(MainWindowRepair, ClosedInTheMiddleKeepsTheRowsThatItDidNotReach) {
  constexpr int kProblems = 100;
  TScannedRig rig(kProblems);
  rig.Users.push_back(
      [&](TDialogRecord&) { rig.PumpUntil([&] { return rig.Row(0, 4)->Problem.StateFlag2; }); });
  rig.Main.Repair();
  EXPECT_TRUE(rig.Main.WorkerRuns());
  EXPECT_EQ(rig.Enabled(), "");
  const std::size_t updates = rig.Dialogs[0].Updates.size();
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.Dialogs[0].Updates.size(), updates);
  EXPECT_EQ(rig.Dialogs[0].Results, TLines());
  // The thread may have been at the sixth already when it was told to end.
  EXPECT_LE(rig.RowCount(), static_cast<std::size_t>(kProblems - 5));
  EXPECT_GE(rig.RowCount(), static_cast<std::size_t>(kProblems - 6));
  EXPECT_EQ(rig.Header(0)->Problem.ChildCount, rig.RowCount());
  EXPECT_TRUE(rig.IsBroken(kProblems - 1));
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
  // The rest goes in a second repair.
  rig.Main.Repair();
  EXPECT_EQ(rig.RowCount(), 0u);
}

TEST(MainWindowRepair, ClosedInTheMiddleSaysHowManyEntriesItCouldNotSave) {
  TScannedRig rig(100);
  rig.System.Registry.Deny(FullKeyText(rig.Row(0, 0)->Problem));
  rig.System.Registry.Deny(FullKeyText(rig.Row(0, 1)->Problem));
  // Nothing can save what comes last, and the repair does not come to it.
  rig.System.Registry.Deny(FullKeyText(rig.Row(0, 99)->Problem));
  rig.Users.push_back(
      [&](TDialogRecord&) { rig.PumpUntil([&] { return rig.Row(0, 4)->Problem.StateFlag2; }); });
  rig.Main.Repair();
  EXPECT_EQ(rig.System.Calls, TLines());
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.System.Calls, TLines({InformationBox(Says(TextId::EntriesNotSaved, u"2"))}));
  EXPECT_EQ(rig.Dialogs[0].Results, TLines());
}

TEST(MainWindowRepair, ClosedInTheMiddleSaysNothingWhenItLeftNothing) {
  TScannedRig rig(100);
  rig.Users.push_back(
      [&](TDialogRecord&) { rig.PumpUntil([&] { return rig.Row(0, 4)->Problem.StateFlag2; }); });
  rig.Main.Repair();
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowRepair, ThatCannotBackUpDeletesNothingAndSaysWhy) {
  TScannedRig rig(2);
  rig.System.Disk.FailReplacing(112);
  rig.Main.Repair();
  ASSERT_EQ(rig.System.Calls.size(), 1u);
  EXPECT_TRUE(rig.System.Calls[0].starts_with(FailureBox(Says(TextId::RepairFailedBeforeDeletion) + u"(")))
      << rig.System.Calls[0];
  EXPECT_NE(rig.System.Calls[0].find("System message 112."), std::string::npos) << rig.System.Calls[0];
  EXPECT_TRUE(rig.IsBroken(0));
  EXPECT_EQ(rig.RowCount(), 2u);
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
  rig.System.Disk.FailReplacing(0);
  rig.Main.Repair();
  EXPECT_EQ(rig.RowCount(), 0u);
  EXPECT_EQ(rig.System.Calls.size(), 1u);
}

TEST(MainWindowRepair, IsDoneWithTheWindowWhenItSaysAFailure) {
  TScannedRig rig(2);
  rig.System.Disk.FailReplacing(112);
  std::string enabled;
  TLines results;
  rig.System.MessageBoxes.OnMessage = [&] {
    enabled = rig.Enabled();
    results = rig.Dialogs.back().Results;
  };
  rig.Main.Repair();
  EXPECT_EQ(enabled, "scan repair restore export");
  // The text of a repair that came to its end is not among them.
  EXPECT_EQ(results, TLines({"failed: " + Counts(Says(TextId::ProblemsFound, u"2"),
                                                 Says(TextId::ProblemsSelected, u"2"), 2)}));
}

// From the scan's dialog on

TEST(MainWindowRepair, FromTheScansDialogRunsInADialogOfItsOwnOnceTheFirstIsClosed) {
  TMainRig rig;
  rig.BreakMany(3);
  bool scanDialogIsThere = true;
  rig.Users.push_back([&](TDialogRecord& scan) {
    rig.WaitForTheEnd();
    scan.End = TProgressEnd::RepairWanted;
  });
  rig.Users.push_back([&](TDialogRecord&) {
    scanDialogIsThere = rig.Dialogs[0].IsThere;
    rig.WaitForTheEnd();
  });
  rig.Main.Scan();
  ASSERT_EQ(rig.Dialogs.size(), 2U);
  EXPECT_FALSE(scanDialogIsThere);
  EXPECT_EQ(rig.Dialogs[1].Mode, TProgressMode::Repair);
  // The scan's dialog gets no result of the repair.
  EXPECT_EQ(rig.Dialogs[0].Results,
            TLines({Counts(Says(TextId::ProblemsFound, u"3"), Says(TextId::ProblemsSelected, u"3"), 3)}));
  EXPECT_EQ(rig.Dialogs[1].Results,
            TLines({Counts(Says(TextId::NoProblemFound), Says(TextId::NoProblemSelected), 0),
                    EncodeUtf8(Says(TextId::RepairFinalMessage)) + "|0"}));
  EXPECT_EQ(rig.RowCount(), 0U);
  EXPECT_FALSE(rig.Main.AnyThreadRuns());
  EXPECT_EQ(rig.Enabled(), "scan restore");
}

TEST(MainWindowRepair, FromTheScansDialogClosedInTheMiddleReachesNeitherDialog) {
  TMainRig rig;
  rig.BreakMany(50);
  rig.Users.push_back([&](TDialogRecord& scan) {
    rig.WaitForTheEnd();
    scan.End = TProgressEnd::RepairWanted;
  });
  rig.Users.push_back(
      [&](TDialogRecord& repair) { rig.PumpUntil([&] { return repair.Updates.size() > 3; }); });
  rig.Main.Scan();
  EXPECT_TRUE(rig.Main.WorkerRuns());
  rig.WaitForTheEnd();
  EXPECT_EQ(rig.Dialogs[0].Results.size(), 1U);
  EXPECT_EQ(rig.Dialogs[1].Results, TLines());
  EXPECT_EQ(rig.RowCount(), 50U);
  EXPECT_EQ(rig.Enabled(), "scan repair restore export");
}

TEST(MainWindowRepair, FromADialogWhoseScanStillRunsDoesNotBegin) {
  TMainRig rig;
  rig.BreakMany(50);
  rig.Users.push_back([](TDialogRecord& scan) { scan.End = TProgressEnd::RepairWanted; });
  rig.Main.Scan();
  EXPECT_EQ(rig.Dialogs.size(), 1U);
  rig.WaitForTheEnd();
}

// Maintenance, and the end of the window

TEST(MainWindowMaintenance, ThatFailsSaysWhyAndLeavesEverythingUsable) {
  TScannedRig rig(1);
  rig.System.Disk.AddFile(rig.Vars.SuiteBackupsFolder + u"index.ini", "[1]\r\n");
  rig.System.Disk.FailReading(5);
  rig.Main.StartMaintenance();
  std::string enabled;
  rig.System.MessageBoxes.OnMessage = [&] { enabled = rig.Enabled(); };
  rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns() && !rig.System.Calls.empty(); });
  ASSERT_EQ(rig.System.Calls.size(), 1u);
  EXPECT_TRUE(rig.System.Calls[0].starts_with(FailureBox(Says(TextId::MaintenanceFailed) + u"(")))
      << rig.System.Calls[0];
  EXPECT_EQ(enabled, "scan repair restore export");
}

TEST(MainWindowFailure, OfTheWindowItselfIsSaidInTheSystemsWords) {
  TMainRig rig;
  rig.Main.ShowFailure(std::make_exception_ptr(TSystemException({8}, u"C:\\a")));
  EXPECT_EQ(rig.System.Calls, TLines({FailureBox(u"C:\\a: System message 8.")}));
}

TEST(MainWindowEnd, TerminatesAScanAndWaitsByPumping) {
  TMainRig rig;
  rig.BreakMany(200);
  rig.Users.push_back([&](TDialogRecord&) {
    rig.PumpUntil([&] { return rig.RowCount() >= 5; });
    rig.Main.TerminateThreads();
    rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns(); });
  });
  rig.Main.Scan();
  EXPECT_LT(rig.RowCount(), 200u);
}

TEST(MainWindowEnd, TerminatesARepairAndTheMaintenance) {
  TScannedRig rig(100);
  rig.Users.push_back([](TDialogRecord&) {});
  rig.Main.Repair();
  rig.Main.StartMaintenance();
  rig.Main.TerminateThreads();
  rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns(); });
  EXPECT_EQ(rig.RowCount(), 100u);
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowEnd, StopsTheMaintenanceBeforeItsNextBackup) {
  for (const bool isTerminated : {false, true}) {
    TMainRig rig;
    rig.Vars.BackupsMax = 60;
    rig.Vars.BackupsDelete = 1;
    const Text index = rig.Vars.SuiteBackupsFolder + u"index.ini";
    const std::string old = "[1]\r\nType=11001\r\n";
    rig.System.Disk.AddFile(index, old);
    // Keeps the thread from the index until it has been told.
    std::unique_ptr<THeldLock> lock = rig.System.Interprocess.HoldEveryLock();
    rig.Main.StartMaintenance();
    if (isTerminated)
      rig.Main.TerminateThreads();
    lock.reset();
    rig.PumpUntil([&] { return !rig.Main.AnyThreadRuns(); });
    EXPECT_EQ(rig.System.Disk.Content(index) == old, isTerminated);
  }
}

// Ignoring a row

TEST(MainWindowIgnore, AfterAYesTheNextScanReportsTheProblemNoMore) {
  TScannedRig rig(2);
  rig.Main.Rows().Select(rig.Row(0, 0));
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  rig.Main.Rows().Choose(kChoiceIgnore);
  EXPECT_EQ(rig.System.Calls, TLines({QuestionBox(Says(TextId::ConfirmIgnore))}));
  EXPECT_EQ(rig.Reg.IgnoreList, std::vector<Text>({u"HKEY_CURRENT_USER\\Software\\App\\0\\File"}));
  EXPECT_TRUE(rig.System.Registry.HasValue(kIgnored, u"HKEY_CURRENT_USER\\Software\\App\\0\\File"));
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::OneProblemFound), Says(TextId::OneProblemSelected)));
  rig.Main.Scan();
  ASSERT_EQ(rig.RowCount(), 1u);
  EXPECT_EQ(rig.Row(0, 0)->Problem.KeyPath, u"\\Software\\App\\1");
}

TEST(MainWindowIgnore, TheLastRowTakesItsHeaderAndTheRepairWithIt) {
  TScannedRig rig(1);
  rig.Main.Rows().Select(rig.Row(0, 0));
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  rig.Main.Rows().Choose(kChoiceIgnore);
  EXPECT_EQ(rig.Main.Results().Model().TotalCount(), 0u);
  EXPECT_EQ(rig.Enabled(), "scan restore");
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::NoProblemFound), Says(TextId::NoProblemSelected)));
}

TEST(MainWindowIgnore, AnyAnswerButYesChangesNothing) {
  for (const TAnswer answer : {TAnswer::No, TAnswer::Ok}) {
    TScannedRig rig(1);
    rig.Main.Rows().Select(rig.Row(0, 0));
    rig.System.MessageBoxes.Answers = {answer};
    rig.Main.Rows().Choose(kChoiceIgnore);
    EXPECT_EQ(rig.RowCount(), 1u);
    EXPECT_TRUE(rig.Reg.IgnoreList.empty());
    EXPECT_FALSE(rig.System.Registry.HasKey(kIgnored));
    EXPECT_EQ(rig.Main.Rows().Controls().Choice, 0);
  }
}

TEST(MainWindowIgnore, AnEntryThatIsSwitchedOffComesBackOn) {
  TScannedRig rig(1);
  rig.Reg.IgnoreList = {u";HKEY_CURRENT_USER\\SOFTWARE\\APP\\0\\file"};
  rig.Main.Rows().Select(rig.Row(0, 0));
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  rig.Main.Rows().Choose(kChoiceIgnore);
  EXPECT_EQ(rig.Reg.IgnoreList, std::vector<Text>({u"HKEY_CURRENT_USER\\Software\\App\\0\\File"}));
}

// Summary, report and registry editor

TEST(MainWindowSummary, FollowsTheCheckBoxes) {
  TScannedRig rig(2);
  rig.Main.Results().Model().SetChecked(rig.Row(0, 0), false);
  rig.Main.Rows().Checked(rig.Row(0, 0));
  EXPECT_EQ(rig.Summaries.back().Label,
            SummaryLabel(Says(TextId::ProblemsFound, u"2"), Says(TextId::OneProblemSelected)));
}

TEST(MainWindowReport, IsSavedAndSaysWhere) {
  TScannedRig rig(2);
  rig.Main.SaveReport(u"C:\\a & b.txt");
  EXPECT_EQ(rig.System.Calls, TLines({InformationBox(Says(TextId::ReportSaved) + u" C:\\a & b.txt")}));
  const std::optional<std::string> report = rig.System.Disk.Content(u"C:\\a & b.txt");
  ASSERT_TRUE(report);
  EXPECT_TRUE(report->starts_with("Report created on "));
  EXPECT_TRUE(report->ends_with("(Total 2 Problems):\r\n"));
}

TEST(MainWindowReport, ReplacesAFileThatIsThere) {
  TScannedRig rig(1);
  rig.System.Disk.AddFile(u"C:\\r.txt", "old");
  rig.Main.SaveReport(u"C:\\r.txt");
  EXPECT_TRUE(rig.System.Disk.Content(u"C:\\r.txt")->starts_with("Report created on "));
}

TEST(MainWindowReport, ThatCannotBeWrittenSaysTheSystemsReasonAndNothingElse) {
  TScannedRig rig(1);
  rig.System.Disk.FailReplacing(5);
  rig.Main.SaveReport(u"C:\\r.txt");
  EXPECT_EQ(rig.System.Calls, TLines({FailureBox(Says(TextId::ReportNotSaved, u"System message 5."))}));
  EXPECT_FALSE(rig.System.Disk.Content(u"C:\\r.txt"));
}

TEST(MainWindowRegistryEditor, IsNotOpenedWithoutASelectedProblem) {
  TScannedRig rig(1);
  rig.System.EditorWindows.TopLevelWindows[u"RegEdit_RegEdit"] = 10;
  rig.Main.OpenSelected();
  rig.Main.Rows().Select(rig.Header(0));
  rig.Main.OpenSelected();
  EXPECT_EQ(rig.System.Calls, TLines());
}

TEST(MainWindowRegistryEditor, OpensTheSelectedProblemAsTheWindowsVersionWantsIt) {
  TScannedRig rig(1);
  rig.Vars.WindowsVersionName = u"vista";
  rig.Main.Rows().Select(rig.Row(0, 0));
  rig.Main.OpenSelected();
  EXPECT_EQ(rig.System.Calls, TLines({"start RunAs regedit.exe"}));
}

}  // namespace corvalt
