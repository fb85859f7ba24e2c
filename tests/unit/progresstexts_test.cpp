// What the progress dialog says at its beginning and at its end.

#include "ui/progresstexts.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/scanrig.h"

namespace corvalt {

TEST(ProgressTexts, TheCaptionSaysWhatRuns) {
  const TLanguageTexts texts = NumberedTexts();
  EXPECT_EQ(ProgressCaption(TProgressMode::Scan, texts), u"11035 ...");
  EXPECT_EQ(ProgressCaption(TProgressMode::Repair, texts), u"11036 ...");
}

TEST(ProgressTexts, AScanThatFindsNothingShowsTheMessageAlone) {
  const TProgressOutcome outcome =
      ProgressOutcome(TProgressMode::Scan, TRunEnd::Complete, u"11016,11017.", 0, NumberedTexts());
  EXPECT_EQ(outcome.SectionLine, u"11031");
  EXPECT_EQ(outcome.Message, u"11016,11017.");
  EXPECT_FALSE(outcome.OffersRepair);
}

TEST(ProgressTexts, AScanThatFindsOneProblemInvitesToRepairAfterABlankLine) {
  const TProgressOutcome outcome =
      ProgressOutcome(TProgressMode::Scan, TRunEnd::Complete, u"11012,11014.", 1, NumberedTexts());
  EXPECT_EQ(outcome.SectionLine, u"11031");
  EXPECT_EQ(outcome.Message, u"11012,11014.\r\n\r\n11033");
  EXPECT_TRUE(outcome.OffersRepair);
}

TEST(ProgressTexts, ARepairIsNeverFollowedByAnother) {
  for (const std::size_t left : {0u, 3u}) {
    const TProgressOutcome outcome =
        ProgressOutcome(TProgressMode::Repair, TRunEnd::Complete, u"11008", left, NumberedTexts());
    EXPECT_EQ(outcome.SectionLine, u"11034");
    EXPECT_EQ(outcome.Message, u"11008");
    EXPECT_FALSE(outcome.OffersRepair);
  }
}

TEST(ProgressTexts, ARunThatFailedIsNotSaidToBeComplete) {
  const TLanguageTexts texts = NumberedTexts();
  const TProgressOutcome scan =
      ProgressOutcome(TProgressMode::Scan, TRunEnd::Failed, u"11012,11014.", 1, texts);
  EXPECT_EQ(scan.SectionLine, u"40001");
  EXPECT_TRUE(scan.OffersRepair);
  const TProgressOutcome repair =
      ProgressOutcome(TProgressMode::Repair, TRunEnd::Failed, u"11012,11014.", 1, texts);
  EXPECT_EQ(repair.SectionLine, u"40001");
  EXPECT_FALSE(repair.OffersRepair);
}

TEST(ProgressTexts, TheModesHaveTheNumbersOfTheDialog) {
  EXPECT_EQ(static_cast<int>(TProgressMode::Scan), 1);
  EXPECT_EQ(static_cast<int>(TProgressMode::Repair), 2);
}

TEST(ProgressTexts, TheSectionLinesAreTheFourEndsAndEverySectionOnce) {
  const std::vector<Text> lines = SectionLines(NumberedTexts());
  ASSERT_EQ(lines.size(), 26U);
  EXPECT_EQ(lines[0], u"11031");
  EXPECT_EQ(lines[1], u"40001");
  EXPECT_EQ(lines[2], u"11034");
  EXPECT_EQ(lines[3], u"40001");
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                          [](const Text& line) { return line == u"11035 Windows Fonts..."; }));
}

TEST(ProgressTexts, TheOutcomesAreTheInvitationWithLargeCountsAndTheRepairsEnd) {
  const std::vector<Text> messages = OutcomeMessages(NumberedTexts());
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[0], u"11013(1000000),11015(1000000).\r\n\r\n11033");
  EXPECT_EQ(messages[1], u"11008\r\n40060(1000000)\r\n40061(1000000)");
}

TEST(ProgressTexts, ARepairThatLeftNothingHasNothingBelowItsMessage) {
  EXPECT_EQ(RepairMessage(TCleaningOutcome(), NumberedTexts()), u"11008");
}

TEST(ProgressTexts, ARepairSaysHowManyEntriesItDidNotSaveOrDelete) {
  TCleaningOutcome outcome;
  outcome.NotSaved.assign(2, nullptr);
  EXPECT_EQ(RepairMessage(outcome, NumberedTexts()), u"11008\r\n40060(2)");
  outcome.Failed.assign(3, nullptr);
  EXPECT_EQ(RepairMessage(outcome, NumberedTexts()), u"11008\r\n40060(2)\r\n40061(3)");
}

}  // namespace corvalt
