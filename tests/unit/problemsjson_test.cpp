// The results tree as JSON, byte for byte.

#include "ui/problemsjson.h"

#include <gtest/gtest.h>

#include "ui/resultstree.h"

namespace corvalt {

namespace {

ScanProblem Header(TextView caption, TRootKey rootKey, std::int32_t imageIndex, std::uint32_t childCount) {
  ScanProblem header;
  header.SectionCaption = caption;
  header.RootKey = rootKey;
  header.ImageIndex = imageIndex;
  header.ChildCount = childCount;
  return header;
}

ScanProblem Problem(TRootKey rootKey, TextView keyPath) {
  ScanProblem problem;
  problem.RootKey = rootKey;
  problem.KeyPath = keyPath;
  return problem;
}

TResultsNode* Add(TResultsTreeModel& results, TResultsNode* parent, const ScanProblem& problem) {
  TResultsNode* node = results.AddNode(parent);
  node->Problem = problem;
  return node;
}

std::string ProblemsJson(TResultsTree& results) {
  std::string json;
  EXPECT_FALSE(WriteProblemsJson(results, [&json](std::string_view piece) {
                 json += piece;
                 return TSystemError();
               }).Failed());
  return json;
}

}  // namespace

TEST(ProblemsJson, OfManyProblemsIsNeverInMemoryWhole) {
  TResultsTreeModel results;
  TResultsNode* header = Add(results, nullptr, Header(u"Many", kNoRootKey, 0, 3000));
  for (int i = 0; i < 3000; ++i)
    Add(results, header, Problem(kHkeyUsers, u"\\Software\\" + Text(100, u'x')));
  std::size_t longest = 0;
  std::size_t all = 0;
  const TSystemError error = WriteProblemsJson(results, [&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    all += piece.size();
    return TSystemError();
  });
  EXPECT_FALSE(error.Failed());
  EXPECT_EQ(all, ProblemsJson(results).size());
  EXPECT_GT(all, 700000U);
  EXPECT_LT(longest, 66000U);
}

TEST(ProblemsJson, EndsAtTheFirstPieceThatCannotBeWritten) {
  TResultsTreeModel results;
  TResultsNode* header = Add(results, nullptr, Header(u"Many", kNoRootKey, 0, 3000));
  for (int i = 0; i < 3000; ++i)
    Add(results, header, Problem(kHkeyUsers, u"\\Software\\" + Text(100, u'x')));
  int calls = 0;
  const TSystemError error = WriteProblemsJson(results, [&calls](std::string_view) {
    ++calls;
    return TSystemError{kErrorDiskFull};
  });
  EXPECT_EQ(error.Code, kErrorDiskFull);
  EXPECT_EQ(calls, 1);
}

TEST(ProblemsJson, AnEmptyTreeIsAnEmptyList) {
  TResultsTreeModel results;

  EXPECT_EQ(ProblemsJson(results), "{\"formatVersion\":1,\"sections\":[]}\n");
}

TEST(ProblemsJson, SaysEveryFieldOfHeadersAndProblemsInTreeOrder) {
  TResultsTreeModel results;
  TResultsNode* fonts = Add(results, nullptr, Header(u"Windows Fonts", kNoRootKey, 14, 2));
  ScanProblem first = Problem(kHkeyLocalMachine, u"\\Software\\Fonts");
  first.ValueName = u"Arial";
  first.ValueData = u"C:\\a \"b\".ttf";
  first.Description = u"It is && was";
  first.Extra = u"more";
  first.CheckMark = TCheckMark::Skip;
  Add(results, fonts, first);
  ScanProblem second = Problem(kHkeyUsers, u"\\.DEFAULT");
  second.Kind = TProblemKind::Key;
  second.ImageIndex = 0;
  Add(results, fonts, second);
  Add(results, nullptr, Header(u"Start Menu", kHkeyCurrentUser, 9, 0));

  EXPECT_EQ(ProblemsJson(results),
            R"({"formatVersion":1,"sections":[
{"caption":"Windows Fonts","rootKey":null,"imageIndex":14,"childCount":2,"problems":[
{"rootKey":"HKEY_LOCAL_MACHINE","keyPath":"\\Software\\Fonts","valueName":"Arial","valueData":"C:\\a \"b\".ttf",)"
            R"("description":"It is && was","kind":2,"imageIndex":-1,"extra":"more","checkMark":2},
{"rootKey":"HKEY_USERS","keyPath":"\\.DEFAULT","valueName":"","valueData":"","description":"","kind":1,)"
            R"("imageIndex":0,"extra":"","checkMark":1}]},
{"caption":"Start Menu","rootKey":"HKEY_CURRENT_USER","imageIndex":9,"childCount":0,"problems":[]}]}
)");
}

TEST(JsonString, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(JsonString(u"a\"b\\c/d"), R"("a\"b\\c/d")");
}

TEST(JsonString, ControlCharactersBecomeEscapes) {
  const Text text = {u'a', u'\0', u'\n', u'\t', 0x1B, 0x7F, 0x9B, u'z'};

  EXPECT_EQ(JsonString(text), R"("a\u0000\u000a\u0009\u001b\u007f\u009bz")");
}

TEST(JsonString, OtherCharactersAreUtf8) {
  EXPECT_EQ(JsonString(u"\u00E9\u4E2D\U0001F600\uFFFF"),
            "\"\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80\xEF\xBF\xBF\"");
}

TEST(JsonString, LoneSurrogatesBecomeEscapes) {
  const Text highAtTheEnd = {u'a', 0xD800};
  const Text highBeforeALetter = {0xDBFF, u'a'};
  const Text lowAlone = {0xDC00, u'a'};
  const Text lowBeforeHigh = {0xDFFF, 0xD83D, 0xDE00};

  EXPECT_EQ(JsonString(highAtTheEnd), R"("a\ud800")");
  EXPECT_EQ(JsonString(highBeforeALetter), R"("\udbffa")");
  EXPECT_EQ(JsonString(lowAlone), R"("\udc00a")");
  EXPECT_EQ(JsonString(lowBeforeHigh), "\"\\udfff\xF0\x9F\x98\x80\"");
}

}  // namespace corvalt
