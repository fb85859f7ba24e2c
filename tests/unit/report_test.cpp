// The problem report, byte for byte.

#include "ui/report.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysystem.h"
#include "ui/resultstree.h"

namespace corvalt {

namespace {

class Report : public testing::Test {
 protected:
  TResultsNode* AddHeader(TextView caption, std::uint32_t childCount) {
    TResultsNode* node = m_results.AddNode(nullptr);
    node->Problem.SectionCaption = caption;
    node->Problem.ChildCount = childCount;
    return node;
  }

  void AddProblem(TResultsNode* header, TRootKey rootKey, TextView keyPath, TextView description) {
    ScanProblem& problem = m_results.AddNode(header)->Problem;
    problem.RootKey = rootKey;
    problem.KeyPath = keyPath;
    problem.Description = description;
  }

  std::string Bytes() {
    return ReportBytes(m_results, m_clock, m_locale);
  }

  // What stands between the four opening and the two closing lines.
  std::vector<Text> SectionLines() {
    const std::vector<Text> lines = ReportLines(m_results, m_clock, m_locale);
    return {lines.begin() + 4, lines.end() - 2};
  }

  Text LastLine() {
    return ReportLines(m_results, m_clock, m_locale).back();
  }

  TResultsTreeModel m_results;
  TMemoryClock m_clock;
  TMemoryLocale m_locale;
};

const std::string kRule(70, '-');

}  // namespace

TEST_F(Report, OneSectionOfTwoProblemsHasFourteenLines) {
  TResultsNode* header = AddHeader(u"Windows Fonts", 2);
  AddProblem(header, kHkeyLocalMachine, u"\\Software\\Fonts", u"The first is gone.");
  AddProblem(header, kHkeyUsers, u"\\.DEFAULT\\Fonts", u"The second is gone.");
  m_clock.Time = 46341.5;  // 15 November 2026

  EXPECT_EQ(Bytes(),
            "Report created on 11/15/2026 by Tessaly Utilities.\r\n"
            "\r\n"
            "Problems found on your computer: \r\n" +
                kRule +
                "\r\n"
                "Windows Fonts(2 Problems found)\r\n"
                "\r\n"
                "Section: HKEY_LOCAL_MACHINE\\Software\\Fonts\r\n"
                "Reason : The first is gone.\r\n"
                "\r\n"
                "Section: HKEY_USERS\\.DEFAULT\\Fonts\r\n"
                "Reason : The second is gone.\r\n"
                "\r\n" +
                kRule +
                "\r\n"
                "Problems found on your computer (Total 2 Problems):\r\n");
}

TEST_F(Report, AnEmptyTreeStillHasItsOpeningAndItsTotal) {
  EXPECT_EQ(SectionLines(), std::vector<Text>());
  EXPECT_EQ(LastLine(), u"Problems found on your computer (Total 0 Problems):");
}

TEST_F(Report, HeadersWithoutProblemsAreWrittenAndTheTotalIsZero) {
  AddHeader(u"Start Menu", 0);
  AddHeader(u"ARP Cache", 0);

  EXPECT_EQ(SectionLines(),
            (std::vector<Text>{u"Start Menu(0 Problems found)", u"", u"ARP Cache(0 Problems found)", u""}));
  EXPECT_EQ(LastLine(), u"Problems found on your computer (Total 0 Problems):");
}

TEST_F(Report, AStaleHeaderCountIsKeptAndTheTotalCountsTheRows) {
  TResultsNode* header = AddHeader(u"Start Menu", 7);
  AddProblem(header, kHkeyCurrentUser, u"\\A", u"gone");

  EXPECT_EQ(SectionLines().front(), u"Start Menu(7 Problems found)");
  EXPECT_EQ(LastLine(), u"Problems found on your computer (Total 1 Problems):");
}

TEST_F(Report, AnEmptyCaptionGivesALineThatBeginsWithTheParenthesis) {
  AddHeader(u"", 1);

  EXPECT_EQ(SectionLines().front(), u"(1 Problems found)");
}

TEST_F(Report, AProblemWithoutARootIsWrittenBelowTheCurrentUser) {
  AddProblem(AddHeader(u"Files", 1), kNoRootKey, u"C:\\Old\\app.exe", u"gone");

  EXPECT_EQ(SectionLines()[2], u"Section: HKEY_CURRENT_USERC:\\Old\\app.exe");
}

TEST_F(Report, CharactersOfTheCodePageAreOneByteEach) {
  AddProblem(AddHeader(u"Fonts", 1), kHkeyCurrentUser, u"\\Stra\u00DFe\\\u20AC", u"gone");

  EXPECT_NE(Bytes().find("\\Stra\xDF"
                         "e\\\x80\r\n"),
            std::string::npos);
}

TEST_F(Report, CharactersThatTheCodePageLacksTakeTheSystemsBestFit) {
  const Text path = u"\\\u0416\u4E2D";
  AddProblem(AddHeader(u"Fonts", 1), kHkeyCurrentUser, path, u"gone");

  EXPECT_NE(Bytes().find("HKEY_CURRENT_USER" + m_locale.EncodeAnsi(path) + "\r\n"), std::string::npos);
}

TEST_F(Report, ANulInATextIsWrittenAsItIs) {
  const Text description = {u'a', u'\0', u'b'};
  AddProblem(AddHeader(u"Lists", 1), kHkeyCurrentUser, u"\\A", description);

  EXPECT_NE(Bytes().find(std::string("Reason : a\0b\r\n", 14)), std::string::npos);
}

TEST_F(Report, DoubledAmpersandsAreWrittenAsTheyAre) {
  AddProblem(AddHeader(u"Lists", 1), kHkeyCurrentUser, u"\\A & B", u"Salt && Pepper");

  EXPECT_EQ(SectionLines()[2], u"Section: HKEY_CURRENT_USER\\A & B");
  EXPECT_EQ(SectionLines()[3], u"Reason : Salt && Pepper");
}

TEST(ReportFileName, IsKeptWithTheExtensionTxtInAnyLetterCase) {
  EXPECT_EQ(ReportFileName(u"REPORT.TXT"), u"REPORT.TXT");
  EXPECT_EQ(ReportFileName(u"C:\\my folder\\report.Txt"), u"C:\\my folder\\report.Txt");
  EXPECT_EQ(ReportFileName(u"a.log.txt"), u"a.log.txt");
}

TEST(ReportFileName, GetsTheExtensionAppendedOtherwise) {
  EXPECT_EQ(ReportFileName(u"report"), u"report.txt");
  EXPECT_EQ(ReportFileName(u"report.log"), u"report.log.txt");
  EXPECT_EQ(ReportFileName(u"report.txt.bak"), u"report.txt.bak.txt");
  EXPECT_EQ(ReportFileName(u"report."), u"report..txt");
  EXPECT_EQ(ReportFileName(u"report.text"), u"report.text.txt");
}

TEST(ReportFileName, ADotInAFolderNameIsNoExtension) {
  EXPECT_EQ(ReportFileName(u"C:\\logs.txt\\report"), u"C:\\logs.txt\\report.txt");
}

}  // namespace corvalt
