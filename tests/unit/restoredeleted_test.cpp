#include "repair/restoredeleted.h"

#include <gtest/gtest.h>

#include <deque>

#include "platform/memory/memorysystem.h"
#include "repair/backuporigin.h"
#include "tests/support/keyat.h"
#include "tests/support/names.h"
#include "tests/support/scanrig.h"
#include "ui/restoremodel.h"

namespace corvalt {

namespace {

constexpr TextView kFolder = u"C:\\Backups\\";
constexpr TextView kKey = u"HKEY_CURRENT_USER\\Software\\Old";
constexpr std::string_view kBackup =
    "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Old]\r\n\"Path\"=\"x\"\r\n";

using TLines = std::vector<std::string>;

class TRestoreRig {
 public:
  TRestoreRig() {
    Vars.SuiteBackupsFolder = kFolder;
    Vars.Texts = NumberedTexts();
  }

  // Lists a backup; its file holds the content.
  void AddBackup(std::string_view name, std::string_view content = kBackup) {
    m_index += "[" + std::string(name) + "]\r\nType=11001\r\n";
    System.Disk.AddFile(Text(kFolder) + u"index.ini", m_index);
    System.Disk.AddFile(Text(kFolder) + FromAscii(name), content);
  }

  TRestoreModel Filled() {
    TSystem system = System.Bundle();
    TRestoreModel model(system, Vars);
    model.Fill();
    return model;
  }

  TMemorySystem System;
  TGlobalVars Vars;

 private:
  std::string m_index;
};

// The caption of a backup's row.
Text RowOf(TextView dateAndTime) {
  return Says(TextId::BackupRowPrefix) + u" - " + Text(dateAndTime);
}

TLines NamesOf(const TRestoreModel& model) {
  TLines names;
  for (const TRestoreRow& row : model.Rows())
    names.push_back(EncodeUtf8(row.BackupName.Value()));
  return names;
}

}  // namespace

TEST(RestoreDialog, ShowsDateTimeAndSizeOfEachBackup) {
  TRestoreRig rig;
  rig.AddBackup("46341.5", std::string(2048, 'x'));
  rig.AddBackup("46340", "x");
  const TRestoreModel model = rig.Filled();
  ASSERT_EQ(model.Rows().size(), 2U);
  EXPECT_EQ(model.Rows()[0].Caption, RowOf(u"11/15/2026 12:00:00 PM"));
  EXPECT_EQ(model.Rows()[0].SizeText, u"2.00 KB");
  EXPECT_EQ(model.Rows()[0].BackupName.Value(), u"46341.5");
  EXPECT_EQ(model.Rows()[1].Caption, RowOf(u"11/14/2026 12:00:00 AM"));
  EXPECT_EQ(model.Rows()[1].SizeText, u"1 Byte");
}

TEST(RestoreDialog, SortsByNameNewestFirst) {
  TRestoreRig rig;
  for (const char* name : {"46339.5", "46341.25", "46340", "9"})
    rig.AddBackup(name);
  EXPECT_EQ(NamesOf(rig.Filled()), TLines({"9", "46341.25", "46340", "46339.5"}));
}

TEST(RestoreDialog, SkipsOtherModulesAndNamesThatAreNoNumber) {
  TRestoreRig rig;
  rig.System.Disk.AddFile(Text(kFolder) + u"index.ini",
                          "[1]\r\nType=29001\r\n[notes]\r\nType=11001\r\n[3]\r\n");
  EXPECT_TRUE(rig.Filled().Rows().empty());
  EXPECT_TRUE(rig.System.Calls.empty());
}

TEST(RestoreDialog, WithoutBackupsIsEmpty) {
  TRestoreRig rig;
  EXPECT_TRUE(rig.Filled().Rows().empty());
}

TEST(RestoreDialog, SaysWhyTheListCannotBeRead) {
  TRestoreRig rig;
  rig.AddBackup("1");
  rig.System.Disk.FailReading(kErrorAccessDenied);
  EXPECT_TRUE(rig.Filled().Rows().empty());
  EXPECT_EQ(
      rig.System.Calls,
      TLines({FailureBox(Says(TextId::BackupsNotListed, u"C:\\Backups\\index.ini: System message 5."))}));
}

TEST(RestoringABackup, AsksImportsAndReports) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  EXPECT_EQ(rig.System.Calls,
            TLines({QuestionBox(Says(TextId::ConfirmRestore, RowOf(u"11/15/2026 12:00:00 PM"))),
                    InformationBox(Says(TextId::RestoreDone, RowOf(u"11/15/2026 12:00:00 PM")))}));
  EXPECT_EQ(NamesOf(model), TLines({"46341.5"}));
  EXPECT_TRUE(rig.System.Disk.Content(u"C:\\Backups\\46341.5"));
}

TEST(RestoringABackup, ShowsEachAmpersandOfItsTextsOnce) {
  TRestoreRig rig;
  const std::string lines = Said(TextId::BackupRowPrefix) + "=Reg & co\n" + Said(TextId::ConfirmRestore) +
                            "=Restore & overwrite? %s\n" + Said(TextId::BackupMissing) + "=Gone & lost: %s\n";
  rig.Vars.Texts.Selected =
      TLanguageTable::FromFile(std::vector<std::uint8_t>(lines.begin(), lines.end()), rig.System.Locale);
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  EXPECT_EQ(model.Rows()[0].Caption, u"Reg & co - 11/15/2026 12:00:00 PM");
  rig.System.Disk.Remove(u"C:\\Backups\\46341.5");
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  model.View(0);
  const std::string gone = FailureBox(u"Gone & lost: Reg & co - 11/15/2026 12:00:00 PM");
  EXPECT_EQ(rig.System.Calls,
            TLines({QuestionBox(u"Restore & overwrite? Reg & co - 11/15/2026 12:00:00 PM"), gone, gone}));
}

TEST(RestoringABackup, WritesOverWhatIsThere) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  rig.System.Registry.SetInteger(kKey, u"Path", 7);
  TSystem system = rig.System.Bundle();
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"46341.5").End, TRestoreEnd::Restored);
  EXPECT_EQ(rig.System.Registry.FindValue(kKey, u"Path")->Type, kRegSz);
}

TEST(RestoringABackup, DoesNothingWhenTheAnswerIsNo) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.MessageBoxes.Answers = {TAnswer::No};
  model.Restore(0);
  EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  EXPECT_EQ(rig.System.Calls.size(), 1U);
}

TEST(RestoringABackup, SaysThatItsFileIsMissing) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.Remove(u"C:\\Backups\\46341.5");
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  EXPECT_EQ(rig.System.Calls.back(),
            FailureBox(Says(TextId::BackupMissing, RowOf(u"11/15/2026 12:00:00 PM"))));
}

TEST(RestoringABackup, SaysThatItsFileIsNoRegistryText) {
  TRestoreRig rig;
  rig.AddBackup("46341.5", "[HKEY_CURRENT_USER\\Software\\Old]\r\n\"Path\"=\"x\"\r\n");
  TRestoreModel model = rig.Filled();
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  EXPECT_EQ(rig.System.Calls.back(),
            FailureBox(Says(TextId::BackupDamaged, RowOf(u"11/15/2026 12:00:00 PM"))));
}

TEST(RestoringABackup, SaysWhyItsFileCannotBeRead) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailReading(kErrorAccessDenied);
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  EXPECT_EQ(
      rig.System.Calls.back(),
      FailureBox(Says(TextId::BackupUnreadable, RowOf(u"11/15/2026 12:00:00 PM"), u"System message 5.")));
}

TEST(RestoringABackup, ImportsAroundMalformedLinesAndCountsThem) {
  TRestoreRig rig;
  rig.AddBackup("46341.5", std::string(kBackup) + "\"broken\r\n\"b\"=\"y\"\r\nnonsense\r\n");
  TRestoreModel model = rig.Filled();
  rig.System.MessageBoxes.Answers = {TAnswer::Yes};
  model.Restore(0);
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"b"));
  EXPECT_EQ(
      rig.System.Calls.back(),
      FailureBox(Says(TextId::RestoreIncomplete, RowOf(u"11/15/2026 12:00:00 PM")) + u"\r\n" +
                 Says(TextId::LinesSkipped, u"2") + u"\r\n" + Says(TextId::SkippedLine, u"5", u"\"broken") +
                 u"\r\n" + Says(TextId::SkippedLine, u"7", u"nonsense")));
}

TEST(RestoringABackup, ListsTheFirstTwentySkippedLinesAndCountsTheOthers) {
  TRestoreRig rig;
  std::string content(kBackup);
  for (int i = 0; i < 23; ++i)
    content += "nonsense " + std::to_string(i) + "\r\n";
  rig.AddBackup("1", content);
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"1");
  const std::string told = EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale));
  EXPECT_TRUE(told.starts_with(Said(TextId::RestoreIncomplete, u"row") + "\r\n" +
                               Said(TextId::LinesSkipped, u"23") + "\r\n" +
                               Said(TextId::SkippedLine, u"5", u"nonsense 0") + "\r\n" +
                               Said(TextId::SkippedLine, u"6", u"nonsense 1") + "\r\n"))
      << told;
  EXPECT_TRUE(told.ends_with("\r\n" + Said(TextId::SkippedLine, u"24", u"nonsense 19") + "\r\n" +
                             Said(TextId::MoreSkippedLines, u"3")))
      << told;
}

TEST(RestoringABackup, CountsWhatTheRegistryRefused) {
  TRestoreRig rig;
  rig.AddBackup("46341.5",
                std::string(kBackup) + "\"broken\r\n[HKEY_CURRENT_USER\\Software\\Else]\r\n@=\"x\"\r\n");
  rig.System.Registry.Deny(kKey);
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"46341.5");
  EXPECT_EQ(outcome.End, TRestoreEnd::Incomplete);
  EXPECT_GT(outcome.Import.WritesFailed, 0U);
  const std::string told = EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale));
  EXPECT_EQ(told, Said(TextId::RestoreIncomplete, u"row") + "\r\n" + Said(TextId::LinesSkipped, u"1") +
                      "\r\n" + Said(TextId::SkippedLine, u"5", u"\"broken") + "\r\n" +
                      Said(TextId::EntriesNotWritten,
                           DecimalText(static_cast<std::int64_t>(outcome.Import.WritesFailed))));
}

TEST(RestoringABackup, WithNothingWrittenIsNotRestored) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  rig.System.Registry.Deny(kKey);
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"46341.5");
  EXPECT_EQ(outcome.End, TRestoreEnd::NotRestored);
  EXPECT_EQ(EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale)),
            Said(TextId::NothingRestored, u"row") + "\r\n" + Said(TextId::EntriesNotWritten, u"2"));
}

TEST(RestoringABackup, WithNothingInItIsRestored) {
  TRestoreRig rig;
  rig.AddBackup("1", "REGEDIT4\r\n");
  TSystem system = rig.System.Bundle();
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"1").End, TRestoreEnd::Restored);
}

TEST(RestoringABackup, ThatIsThereAlreadyIsRestored) {
  TRestoreRig rig;
  rig.AddBackup("1", "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\Old]\r\n");
  rig.System.Registry.AddKey(kKey);
  TSystem system = rig.System.Bundle();
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"1").End, TRestoreEnd::Restored);
}

TEST(RestoringABackup, NeverDeletes) {
  TRestoreRig rig;
  rig.AddBackup("1", std::string(kBackup) +
                         "\"Kept\"=-\r\n@=-\r\n[-HKEY_CURRENT_USER\\Software\\Other]\r\n\"a\"=\"b\"\r\n");
  rig.System.Registry.Set(kKey, u"Kept", u"x");
  rig.System.Registry.Set(kKey, u"", u"x");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Other", u"", u"x");
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"1");
  EXPECT_EQ(outcome.End, TRestoreEnd::Incomplete);
  EXPECT_EQ(outcome.Import.LinesSkipped, 4U);
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Kept"));
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u""));
  EXPECT_EQ(rig.System.Registry.Dump(u"HKEY_CURRENT_USER\\Software\\Other").size(), 2U);
}

TEST(RestoringABackup, StopsBetweenTwoEntriesAndSaysWhatWasWritten) {
  TRestoreRig rig;
  rig.AddBackup("1", std::string(kBackup) + "\"b\"=\"y\"\r\n");
  TSystem system = rig.System.Bundle();
  TRestoreGuide guide;
  guide.Stop = [asked = 0]() mutable { return ++asked > 2; };
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"1", guide);
  EXPECT_EQ(outcome.End, TRestoreEnd::Stopped);
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  EXPECT_FALSE(rig.System.Registry.HasValue(kKey, u"b"));
  EXPECT_EQ(EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale)),
            Said(TextId::RestoreStopped, u"1", u"1"));
}

namespace {

// A backup of the rig's key with a value "Path", as this program writes it.
std::string OwnBackup(TRestoreRig& rig) {
  rig.System.Registry.Set(kKey, u"Path", u"x");
  TSystem system = rig.System.Bundle();
  TIORegistry exporter(system.Raw, system.Locale);
  exporter.Clear(OriginHere(system));
  EXPECT_EQ(exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old")), TExportResult::Done);
  exporter.Finish();
  rig.System.Registry.RemoveKey(kKey);
  return {exporter.ExportedText().begin(), exporter.ExportedText().end()};
}

std::span<const std::uint8_t> AsBytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// What a restore through the dialog showed, the answers to its questions given.
TLines ShownByRestore(TRestoreRig& rig, std::deque<TAnswer> answers) {
  TRestoreModel model = rig.Filled();
  rig.System.MessageBoxes.Answers = std::move(answers);
  model.Restore(0);
  return rig.System.Calls;
}

// The file without its last line, and with another number in this line behind the header.
std::string WithField(std::string file, const std::string& field) {
  const std::size_t begin = file.find(field.substr(0, field.find('=')));
  file.replace(begin, file.find("\r\n", begin) - begin, field);
  return file.substr(0, file.rfind(";Corvalt end="));
}

constexpr TAnswer kYes = TAnswer::Yes;
const std::string kFirstQuestion =
    QuestionBox(Says(TextId::ConfirmRestore, RowOf(u"12/31/1899 12:00:00 AM")));

}  // namespace

TEST(RestoringABackup, MadeHereAsksOnlyOnce) {
  TRestoreRig rig;
  rig.AddBackup("1", OwnBackup(rig));
  EXPECT_EQ(
      ShownByRestore(rig, {kYes}),
      TLines({kFirstQuestion, InformationBox(Says(TextId::RestoreDone, RowOf(u"12/31/1899 12:00:00 AM")))}));
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
}

TEST(RestoringABackup, MadeOnAnotherComputerOrByAnotherUserAsksOnceMore) {
  for (const bool otherComputer : {true, false}) {
    TRestoreRig rig;
    rig.AddBackup("1", OwnBackup(rig));
    (otherComputer ? rig.System.Machine.Computer : rig.System.Machine.User) = u"OTHER";
    const TLines shown = ShownByRestore(rig, {kYes, kYes});
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_EQ(shown[1], QuestionBox(Says(TextId::BackupForeign, u"ANNS-PC", u"S-1-5-21-1000-2000-3000-1001") +
                                    u"\r\n" + Says(TextId::RestoreAnyway)));
    EXPECT_TRUE(shown[2].starts_with(InformationBox(Says(TextId::RestoreDone) + u"(")));
    EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  }
}

TEST(RestoringABackup, MadeElsewhereChangesNothingUnlessTheAnswerIsYes) {
  for (const TAnswer answer : {TAnswer::No, TAnswer::Ok}) {
    TRestoreRig rig;
    rig.AddBackup("1", OwnBackup(rig));
    rig.System.Machine.Computer = u"OTHER";
    EXPECT_EQ(ShownByRestore(rig, {kYes, answer}).size(), 2U);
    EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  }
}

TEST(RestoringABackup, ShowsThatItIsBusyAfterEachYes) {
  for (const auto& [answers, times] :
       {std::pair{std::deque{TAnswer::No}, 0}, {{kYes, TAnswer::No}, 1}, {{kYes, kYes}, 2}}) {
    TRestoreRig rig;
    rig.AddBackup("1", OwnBackup(rig));
    rig.System.Machine.Computer = u"OTHER";
    rig.System.MessageBoxes.Answers = answers;
    TSystem system = rig.System.Bundle();
    int busy = 0;
    TRestoreModel model(system, rig.Vars, [&busy] { ++busy; });
    model.Fill();
    model.Restore(0);
    EXPECT_EQ(busy, times);
  }
}

TEST(RestoringABackup, NamesOfComputersAndUsersCompareWithoutRegardToCase) {
  TRestoreRig rig;
  rig.AddBackup("1", OwnBackup(rig));
  rig.System.Machine.Computer = u"anns-pc";
  EXPECT_EQ(ShownByRestore(rig, {kYes}).size(), 2U);
}

TEST(RestoringABackup, WhoseEndIsMissingAsksAndIsRestoredInPart) {
  TRestoreRig rig;
  const std::string whole = OwnBackup(rig);
  rig.AddBackup("1", whole.substr(0, whole.rfind(";Corvalt end=")));
  const TLines shown = ShownByRestore(rig, {kYes, kYes});
  ASSERT_EQ(shown.size(), 3U);
  EXPECT_EQ(shown[1], QuestionBox(Says(TextId::BackupNotWhole) + u"\r\n" + Says(TextId::RestoreAnyway)));
  EXPECT_EQ(shown[2], FailureBox(Says(TextId::RestoreIncomplete, RowOf(u"12/31/1899 12:00:00 AM"))));
  EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
}

TEST(RestoringABackup, WhoseFileWasChangedAsksAndAnyAnswerButYesChangesNothing) {
  TRestoreRig rig;
  std::string changed = OwnBackup(rig);
  changed.insert(changed.rfind(";Corvalt end="), "[HKEY_CURRENT_USER\\Software\\Planted]\r\n");
  rig.AddBackup("1", changed);
  EXPECT_EQ(ShownByRestore(rig, {kYes, TAnswer::No}).size(), 2U);
  EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  EXPECT_FALSE(rig.System.Registry.HasKey(u"HKEY_CURRENT_USER\\Software\\Planted"));
}

TEST(RestoringABackup, OfACodePageAViewOrAFormThatIsNotHereChangesNothing) {
  for (const std::string field : {"codepage=4711", "view=128", "format=2"}) {
    TRestoreRig rig;
    const std::string text = WithField(OwnBackup(rig), field);
    rig.AddBackup("1", text + EndLine(AsBytes(text), {1, 1}));
    EXPECT_EQ(ShownByRestore(rig, {kYes, kYes, kYes}),
              TLines({kFirstQuestion,
                      FailureBox(Says(TextId::BackupNotSupported, RowOf(u"12/31/1899 12:00:00 AM")))}))
        << field;
    EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  }
}

TEST(RestoringABackup, WhoseCodePageOrFormIsDamagedAsksAndIsRestoredInPart) {
  for (const std::string field : {"codepage=125", "format=9"}) {
    TRestoreRig rig;
    const std::string whole = OwnBackup(rig);
    rig.AddBackup("1", WithField(whole, field) + whole.substr(whole.rfind(";Corvalt end=")));
    const TLines shown = ShownByRestore(rig, {kYes, kYes});
    ASSERT_EQ(shown.size(), 3U) << field;
    EXPECT_EQ(shown[1], QuestionBox(Says(TextId::BackupNotWhole) + u"\r\n" + Says(TextId::RestoreAnyway)));
    EXPECT_EQ(shown[2], FailureBox(Says(TextId::RestoreIncomplete, RowOf(u"12/31/1899 12:00:00 AM"))));
    EXPECT_TRUE(rig.System.Registry.HasValue(kKey, u"Path"));
  }
}

TEST(RestoringABackup, MadeInTheOtherViewGoesToThatView) {
  for (const bool hasBoth : {true, false}) {
    TRestoreRig rig;
    std::string file = OwnBackup(rig);
    file.replace(file.find("view=64"), 7, "view=32");
    const std::string text = file.substr(0, file.rfind(";Corvalt end="));
    rig.AddBackup("1", text + EndLine(AsBytes(text), {1, 1}));
    TMemoryRegistry other;
    other.View = TRegistryView::Bits32;
    rig.System.Registry.OtherView = hasBoth ? &other : nullptr;
    TSystem system = rig.System.Bundle();
    EXPECT_EQ(RestoreBackup(system, rig.Vars, u"1").End,
              hasBoth ? TRestoreEnd::Restored : TRestoreEnd::NotSupported);
    EXPECT_EQ(other.HasValue(kKey, u"Path"), hasBoth);
    EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
  }
}

TEST(RestoringABackup, SaysHowManyPermissionsAndTimesWereLostAndIsRestored) {
  TRestoreRig rig;
  rig.AddBackup("1", OwnBackup(rig));
  rig.System.Registry.SetsTimes = false;
  TSystem system = rig.System.Bundle();
  const TRestoreOutcome outcome = RestoreBackup(system, rig.Vars, u"1");
  EXPECT_EQ(outcome.End, TRestoreEnd::Restored);
  EXPECT_EQ(EncodeUtf8(DescribeRestore(outcome, u"row", rig.Vars, rig.System.Locale)),
            Said(TextId::RestoreDone, u"row") + "\r\n" + Said(TextId::AttributesNotWritten, u"1"));
}

TEST(RestoringABackup, IsReadInTheCodePageThatItWasMadeIn) {
  TRestoreRig rig;
  const Text russian = u"HKEY_CURRENT_USER\\Software\\\u0421\u043B\u043E\u0432\u043E";
  rig.System.Registry.Set(russian, u"\u0401", u"\u0436");
  rig.System.Locale.CodePage = 1251;
  rig.AddBackup("1", OwnBackup(rig));
  TSystem system = rig.System.Bundle();
  TIORegistry exporter(system.Raw, system.Locale);
  exporter.Clear(OriginHere(system));
  EXPECT_EQ(exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\Software\\\u0421\u043B\u043E\u0432\u043E")),
            TExportResult::Done);
  exporter.Finish();
  const std::string file(exporter.ExportedText().begin(), exporter.ExportedText().end());
  EXPECT_NE(file.find("\xD1\xEB\xEE\xE2\xEE"), std::string::npos);
  const TLines before = rig.System.Registry.Dump(u"HKEY_CURRENT_USER");
  rig.System.Registry.RemoveKey(russian);
  rig.System.Locale.CodePage = 1252;
  rig.AddBackup("2", file);
  EXPECT_EQ(RestoreBackup(system, rig.Vars, u"2").End, TRestoreEnd::Restored);
  EXPECT_EQ(rig.System.Registry.Dump(u"HKEY_CURRENT_USER"), before);
}

TEST(RestoringABackup, ReadsNothingThroughALinkOrOutsideTheFolder) {
  TRestoreRig rig;
  rig.AddBackup("1");
  rig.System.Disk.MakeLink(u"C:\\Backups\\1");
  rig.System.Disk.AddFile(u"C:\\other.reg", kBackup);
  TSystem system = rig.System.Bundle();
  for (const TextView name : {u"1", u"..\\other.reg", u"C:\\other.reg"})
    EXPECT_EQ(RestoreBackup(system, rig.Vars, name).End, TRestoreEnd::NoFile) << EncodeUtf8(name);
  EXPECT_FALSE(rig.System.Registry.HasKey(kKey));
}

TEST(RemovingARow, DeletesTheBackupAtOnceWithoutAsking) {
  TRestoreRig rig;
  rig.AddBackup("1");
  rig.AddBackup("2");
  TRestoreModel model = rig.Filled();
  EXPECT_TRUE(model.Remove(0));
  EXPECT_EQ(NamesOf(model), TLines({"1"}));
  EXPECT_EQ(NamesOf(rig.Filled()), TLines({"1"}));
  EXPECT_FALSE(rig.System.Disk.Content(u"C:\\Backups\\2"));
  EXPECT_TRUE(rig.System.Calls.empty());
}

TEST(RemovingARow, SaysAFoldersAmpersandOnceWhenTheFileCannotBeDeleted) {
  TRestoreRig rig;
  rig.Vars.SuiteBackupsFolder = u"C:\\A & B\\";
  rig.System.Disk.AddFile(u"C:\\A & B\\index.ini", "[1]\r\nType=11001\r\n");
  rig.System.Disk.AddFile(u"C:\\A & B\\1", kBackup);
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  EXPECT_FALSE(model.Remove(0));
  ASSERT_EQ(rig.System.Calls.size(), 1U);
  EXPECT_NE(rig.System.Calls[0].find("|C:\\A & B\\1: "), std::string::npos) << rig.System.Calls[0];
}

TEST(RemovingARow, KeepsItAndSaysWhyWhenTheFileCannotBeDeleted) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailDeleting(kErrorAccessDenied);
  EXPECT_FALSE(model.Remove(0));
  EXPECT_EQ(NamesOf(model), TLines({"46341.5"}));
  EXPECT_EQ(rig.System.Calls,
            TLines({FailureBox(Says(TextId::BackupNotRemoved, RowOf(u"11/15/2026 12:00:00 PM"),
                                    u"C:\\Backups\\46341.5: System message 5."))}));
}

TEST(RemovingARow, TellsOnlyTheFailureWhenTheFileIsGoneAndListsAnew) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailReplacing(kErrorDiskFull, u"index.ini");
  EXPECT_FALSE(model.Remove(0));
  EXPECT_EQ(rig.System.Calls, TLines({FailureBox(u"C:\\Backups\\index.ini: System message 112.")}));
  ASSERT_EQ(NamesOf(model), TLines({"46341.5"}));
  EXPECT_EQ(model.Rows()[0].SizeText, u"0 Byte");
  rig.System.Disk.FailReplacing(0);
  EXPECT_TRUE(model.Remove(0));
  EXPECT_TRUE(NamesOf(rig.Filled()).empty());
}

TEST(RemovingARow, KeepsItListedUntilItsLogIsGoneToo) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  rig.System.Disk.AddFile(u"C:\\Backups\\46341.5.log", "changes");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailDeleting(kErrorSharingViolation, u".log");
  EXPECT_FALSE(model.Remove(0));
  EXPECT_EQ(rig.System.Calls, TLines({FailureBox(u"C:\\Backups\\46341.5.log: System message 32.")}));
  EXPECT_EQ(NamesOf(model), TLines({"46341.5"}));
  rig.System.Disk.FailDeleting(0);
  EXPECT_TRUE(model.Remove(0));
  EXPECT_FALSE(rig.System.Disk.Content(u"C:\\Backups\\46341.5.log"));
}

TEST(RemovingARow, LeavesTheLogOfABackupThatStays) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  rig.System.Disk.AddFile(u"C:\\Backups\\46341.5.log", "changes");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.FailDeleting(kErrorSharingViolation, u"46341.5");
  EXPECT_FALSE(model.Remove(0));
  EXPECT_TRUE(rig.System.Disk.Content(u"C:\\Backups\\46341.5.log"));
}

TEST(ViewingABackup, ShowsTheFileUnderTheRowsText) {
  TRestoreRig rig;
  rig.AddBackup("46341.5", "REGEDIT4\n\n[x]\n");
  const std::optional<TBackupView> view = rig.Filled().View(0);
  ASSERT_TRUE(view);
  EXPECT_EQ(view->Caption, RowOf(u"11/15/2026 12:00:00 PM"));
  EXPECT_EQ(view->Content, u"REGEDIT4\r\n\r\n[x]\r\n");
}

TEST(ViewingABackup, SaysThatItsFileIsMissing) {
  TRestoreRig rig;
  rig.AddBackup("46341.5");
  TRestoreModel model = rig.Filled();
  rig.System.Disk.Remove(u"C:\\Backups\\46341.5");
  EXPECT_FALSE(model.View(0));
  EXPECT_EQ(rig.System.Calls,
            TLines({FailureBox(Says(TextId::BackupMissing, RowOf(u"11/15/2026 12:00:00 PM")))}));
}

}  // namespace corvalt
