// What the progress dialog says at its beginning and at its end.

#include "ui/progresstexts.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/names.h"
#include "tests/support/scanrig.h"

namespace corvalt {

TEST(ProgressTexts, TheCaptionSaysWhatRuns) {
  const TLanguageTexts texts = NumberedTexts();
  EXPECT_EQ(ProgressCaption(TProgressMode::Scan, texts), Says(TextId::ScanningSection) + u" ...");
  EXPECT_EQ(ProgressCaption(TProgressMode::Repair, texts), Says(TextId::RepairingSection) + u" ...");
}

TEST(ProgressTexts, AScanThatFindsNothingShowsTheMessageAlone) {
  const TProgressOutcome outcome = ProgressOutcome(
      TProgressMode::Scan, TRunEnd::Complete,
      Says(TextId::NoProblemFound) + u"," + Says(TextId::NoProblemSelected) + u".", 0, NumberedTexts());
  EXPECT_EQ(outcome.SectionLine, Says(TextId::ScanComplete));
  EXPECT_EQ(outcome.Message, Says(TextId::NoProblemFound) + u"," + Says(TextId::NoProblemSelected) + u".");
  EXPECT_FALSE(outcome.OffersRepair);
}

TEST(ProgressTexts, AScanThatFindsOneProblemInvitesToRepairAfterABlankLine) {
  const TProgressOutcome outcome = ProgressOutcome(
      TProgressMode::Scan, TRunEnd::Complete,
      Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) + u".", 1, NumberedTexts());
  EXPECT_EQ(outcome.SectionLine, Says(TextId::ScanComplete));
  EXPECT_EQ(outcome.Message, Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) +
                                 u".\r\n\r\n" + Says(TextId::InviteRepair));
  EXPECT_TRUE(outcome.OffersRepair);
}

TEST(ProgressTexts, ARepairIsNeverFollowedByAnother) {
  for (const std::size_t left : {0u, 3u}) {
    const TProgressOutcome outcome = ProgressOutcome(TProgressMode::Repair, TRunEnd::Complete,
                                                     Says(TextId::RepairFinalMessage), left, NumberedTexts());
    EXPECT_EQ(outcome.SectionLine, Says(TextId::RepairComplete));
    EXPECT_EQ(outcome.Message, Says(TextId::RepairFinalMessage));
    EXPECT_FALSE(outcome.OffersRepair);
  }
}

TEST(ProgressTexts, ARunThatFailedIsNotSaidToBeComplete) {
  const TLanguageTexts texts = NumberedTexts();
  const TProgressOutcome scan = ProgressOutcome(
      TProgressMode::Scan, TRunEnd::Failed,
      Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) + u".", 1, texts);
  EXPECT_EQ(scan.SectionLine, Says(TextId::TitleError));
  EXPECT_TRUE(scan.OffersRepair);
  const TProgressOutcome repair = ProgressOutcome(
      TProgressMode::Repair, TRunEnd::Failed,
      Says(TextId::OneProblemFound) + u"," + Says(TextId::OneProblemSelected) + u".", 1, texts);
  EXPECT_EQ(repair.SectionLine, Says(TextId::TitleError));
  EXPECT_FALSE(repair.OffersRepair);
}

TEST(ProgressTexts, TheModesHaveTheNumbersOfTheDialog) {
  EXPECT_EQ(static_cast<int>(TProgressMode::Scan), 1);
  EXPECT_EQ(static_cast<int>(TProgressMode::Repair), 2);
}

TEST(ProgressTexts, TheSectionLinesAreTheFourEndsAndEverySectionOnce) {
  const std::vector<Text> lines = SectionLines(NumberedTexts());
  ASSERT_EQ(lines.size(), 26U);
  EXPECT_EQ(lines[0], Says(TextId::ScanComplete));
  EXPECT_EQ(lines[1], Says(TextId::TitleError));
  EXPECT_EQ(lines[2], Says(TextId::RepairComplete));
  EXPECT_EQ(lines[3], Says(TextId::TitleError));
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const Text& line) {
    return line == Says(TextId::ScanningSection) + u" Windows Fonts...";
  }));
}

TEST(ProgressTexts, TheOutcomesAreTheInvitationWithLargeCountsAndTheRepairsEnd) {
  const std::vector<Text> messages = OutcomeMessages(NumberedTexts());
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[0], Says(TextId::ProblemsFound, u"1000000") + u"," +
                             Says(TextId::ProblemsSelected, u"1000000") + u".\r\n\r\n" +
                             Says(TextId::InviteRepair));
  EXPECT_EQ(messages[1], Says(TextId::RepairFinalMessage) + u"\r\n" +
                             Says(TextId::EntriesNotSaved, u"1000000") + u"\r\n" +
                             Says(TextId::EntriesNotDeleted, u"1000000"));
}

TEST(ProgressTexts, ARepairThatLeftNothingHasNothingBelowItsMessage) {
  EXPECT_EQ(RepairMessage(TCleaningOutcome(), NumberedTexts()), Says(TextId::RepairFinalMessage));
}

TEST(ProgressTexts, ARepairSaysHowManyEntriesItDidNotSaveOrDelete) {
  TCleaningOutcome outcome;
  outcome.NotSaved.assign(2, nullptr);
  EXPECT_EQ(RepairMessage(outcome, NumberedTexts()),
            Says(TextId::RepairFinalMessage) + u"\r\n" + Says(TextId::EntriesNotSaved, u"2"));
  outcome.Failed.assign(3, nullptr);
  EXPECT_EQ(RepairMessage(outcome, NumberedTexts()), Says(TextId::RepairFinalMessage) + u"\r\n" +
                                                         Says(TextId::EntriesNotSaved, u"2") + u"\r\n" +
                                                         Says(TextId::EntriesNotDeleted, u"3"));
}

}  // namespace corvalt
