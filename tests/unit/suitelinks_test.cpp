// What lies around the program, as the shell is asked for it.

#include "ui/suitelinks.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/memory/memoryprograms.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

class SuiteLinks : public testing::Test {
 protected:
  SuiteLinks() {
    m_vars.ProgramFolder = u"C:\\Suite\\";
  }

  // The only call; empty when there is not exactly one.
  std::string Call() const {
    return m_calls.size() == 1 ? m_calls.front() : std::string();
  }

  TLines m_calls;
  TMemoryPrograms m_programs{m_calls};
  TGlobalVars m_vars;
};

// The domain of a link that was opened with the verb "open"; nothing where that is no web link.
std::optional<std::string> DomainOpened(const std::string& call) {
  const std::string start = "execute open https://";
  if (!call.starts_with(start))
    return std::nullopt;
  return call.substr(start.size(), call.find('/', start.size()) - start.size());
}

}  // namespace

TEST_F(SuiteLinks, HelpOpensItsTopicInTheHelpFileBehindTwoSeparators) {
  OpenHelp(m_programs, m_vars);
  EXPECT_EQ(Call(), "help C:\\Suite\\\\help.chm /Registry_Cleaner.htm");
}

TEST_F(SuiteLinks, RecommendingOpensAnEmptyMailWithASubjectOfOneBlank) {
  RecommendToFriends(m_programs);
  EXPECT_EQ(Call(), "execute open mailto:?subject= &body=");
}

TEST_F(SuiteLinks, PagesLieUnderAReservedDomain) {
  OpenHomePage(m_programs);
  OpenUpgradePage(m_programs);
  ASSERT_EQ(m_calls.size(), 2u);
  for (const std::string& call : m_calls) {
    const std::optional<std::string> domain = DomainOpened(call);
    ASSERT_TRUE(domain) << call;
    EXPECT_TRUE(domain->ends_with(".example")) << call;
  }
}

TEST_F(SuiteLinks, TheUpgradePageIsNotTheHomePage) {
  OpenHomePage(m_programs);
  OpenUpgradePage(m_programs);
  ASSERT_EQ(m_calls.size(), 2u);
  EXPECT_NE(m_calls[0], m_calls[1]);
}

TEST_F(SuiteLinks, EachToolIsAProgramOfItsOwnBehindTwoSeparators) {
  for (const TSuiteTool tool : {TSuiteTool::DiskCleanup, TSuiteTool::StartupManager,
                                TSuiteTool::UninstallManager, TSuiteTool::ProcessManager}) {
    StartSuiteTool(tool, m_programs, m_vars);
  }
  EXPECT_EQ(m_calls, TLines({"execute open C:\\Suite\\\\diskcleanup.exe",
                             "execute open C:\\Suite\\\\startupmanager.exe",
                             "execute open C:\\Suite\\\\uninstallmanager.exe",
                             "execute open C:\\Suite\\\\processmanager.exe"}));
}

// The first letter's key is 5A, and each letter's key is 7 more than the one before.

TEST(LinkDecoder, TakesEachPairOfDigitsForALetter) {
  // h 68 ^ 5A = 32, i 69 ^ 61 = 08
  EXPECT_EQ(DecodeLink("3208"), u"hi");
}

TEST(LinkDecoder, KeysBeginAnewBehindTheHighestByte) {
  // The letter at place 24 has the key 5A + 24 x 7 = 102 (hexadecimal), that is 02.
  std::string literal;
  for (unsigned place = 0; place < 24; ++place) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const unsigned byte = 'x' ^ (0x5A + 7 * place);
    literal += {kDigits[byte / 16], kDigits[byte % 16]};
  }
  // z 7A ^ 02 = 78
  EXPECT_EQ(DecodeLink(literal + "78"), Text(24, u'x') + u"z");
}

TEST(LinkDecoder, GivesNothingForAnEmptyLiteral) {
  EXPECT_EQ(DecodeLink(""), u"");
}

TEST(LinkDecoder, GivesNothingForALiteralThatLostADigit) {
  EXPECT_EQ(DecodeLink("320"), u"");
  EXPECT_EQ(DecodeLink("3"), u"");
}

TEST(LinkDecoder, GivesNothingForALiteralWithADamagedDigit) {
  for (const char* damaged : {"32G8", "320G", "G208", "3:08", "3@08", "32 8", "-208", "320x"})
    EXPECT_EQ(DecodeLink(damaged), u"") << damaged;
  EXPECT_EQ(DecodeLink(std::string("32\0008", 4)), u"");
}

TEST(LinkDecoder, GivesNothingForSmallDigitsAsTheLiteralsHaveNone) {
  EXPECT_EQ(DecodeLink("3b"), u"");
  EXPECT_NE(DecodeLink("3B"), u"");
}

}  // namespace corvalt
