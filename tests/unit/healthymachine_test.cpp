// A scan of a machine on which nothing is broken: what it may still report.

#include "tests/support/healthymachine.h"

#include <gtest/gtest.h>

#include "scan/catalogue.h"

namespace corvalt {

namespace {

std::vector<std::int32_t> AllSections() {
  std::vector<std::int32_t> codes;
  for (const TSection& section : SectionCatalogue())
    codes.push_back(section.Code);
  return codes;
}

class HealthyMachine : public testing::Test {
 protected:
  TFoundLines Scan() {
    BecomeHealthyMachine(m_rig);
    m_rig.WriteCatalogue("<programs/>");
    m_rig.Run(AllSections());
    EXPECT_EQ(m_rig.Failure, nullptr);
    return FoundLines(m_rig);
  }

  TScanRig m_rig;
};

TEST_F(HealthyMachine, IsDescribedByAtLeastThreeHundredEntries) {
  EXPECT_GE(HealthyEntries(), 300);
}

// Without the list that is shipped: what it has to shield is written down, so that no entry of it is idle.
TEST_F(HealthyMachine, ReportsWithoutExclusionsWhatTheListHasToShield) {
  const std::string differences = Differences(ExpectedLines("unshielded.expected"), Scan());
  EXPECT_TRUE(differences.empty()) << differences;
}

TEST_F(HealthyMachine, ReportsWithTheShippedExclusionsOnlyWhatCanNotBeShielded) {
  m_rig.Reg.BuiltInExclusions = ShippedExclusions();
  const std::string differences = Differences(ExpectedLines("stillreported.expected"), Scan());
  EXPECT_TRUE(differences.empty()) << differences;
}

}  // namespace

}  // namespace corvalt
