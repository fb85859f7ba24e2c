// The table of texts against the English language file, both ways.
#include "core/languageids.h"

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "tests/support/sourcefolder.h"

namespace corvalt {

namespace {

std::string BytesOfSource(const std::string& path) {
  std::ifstream file(SourceFolder() + "/" + path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> LinesOfEnglishFile() {
  std::istringstream bytes(BytesOfSource("languages/english.lng"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(bytes, line);) {
    lines.push_back(line);
  }
  return lines;
}

// Every line with "=", cut at the first one, in the order of the file.
std::vector<std::pair<std::string, std::string>> EnglishTexts() {
  std::vector<std::pair<std::string, std::string>> texts;
  for (const std::string& line : LinesOfEnglishFile()) {
    if (const std::size_t equals = line.find('='); equals != std::string::npos) {
      texts.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
  }
  return texts;
}

std::string Number(TextId id) {
  return std::to_string(static_cast<std::int32_t>(id));
}

std::set<std::string> NumbersOfTable() {
  std::set<std::string> numbers;
  for (const TTextEntry& entry : kTextIds) {
    numbers.insert(Number(entry.Id));
  }
  return numbers;
}

std::set<std::string> NumbersOfEnglishFile() {
  std::set<std::string> numbers;
  for (const auto& [number, text] : EnglishTexts()) {
    numbers.insert(number);
  }
  return numbers;
}

// The numbers that the declaration of TextId gives to its names.
std::multiset<std::string> NumbersOfDeclaration() {
  std::istringstream header(BytesOfSource("core/languageids.h"));
  std::multiset<std::string> numbers;
  bool inside = false;
  for (std::string line; std::getline(header, line);) {
    inside = (inside || line.starts_with("enum class TextId")) && !line.starts_with("};");
    if (const std::size_t equals = line.find(" = "); inside && equals != std::string::npos) {
      numbers.insert(line.substr(equals + 3, line.find(',') - equals - 3));
    }
  }
  return numbers;
}

std::size_t TakeAll(std::string& text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
    text.erase(at, part.size());
    ++count;
  }
  return count;
}

}  // namespace

TEST(EnglishTexts, HaveALineForEveryEntryOfTheTableAndNoOther) {
  EXPECT_EQ(NumbersOfEnglishFile(), NumbersOfTable());
}

TEST(EnglishTexts, NameEachIdentifierOnce) {
  EXPECT_EQ(EnglishTexts().size(), NumbersOfEnglishFile().size());
}

TEST(EnglishTexts, HoldThePlaceholdersThatTheTablePromises) {
  std::map<std::string, std::string> texts;
  for (const auto& [number, text] : EnglishTexts()) {
    texts.emplace(number, text);
  }
  for (const TTextEntry& entry : kTextIds) {
    std::string text = texts[Number(entry.Id)];
    const bool second = TakeAll(text, "%s2") > 0;
    const bool first = TakeAll(text, "%s") > 0;
    EXPECT_EQ(first, entry.Placeholders >= 1) << Number(entry.Id);
    EXPECT_EQ(second, entry.Placeholders == 2) << Number(entry.Id);
    EXPECT_EQ(text.find('%'), std::string::npos) << Number(entry.Id) << " holds a stray percent sign";
  }
}

TEST(EnglishTexts, AreNeverEmptyAndNeitherBeginNorEndWithABlank) {
  for (const auto& [number, text] : EnglishTexts()) {
    ASSERT_FALSE(text.empty()) << number;
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(text.front()))) << number;
    EXPECT_FALSE(std::isspace(static_cast<unsigned char>(text.back()))) << number;
  }
}

TEST(EnglishTexts, StandInLinesOfTheirOwnBetweenCommentsAndEmptyLines) {
  for (const std::string& line : LinesOfEnglishFile()) {
    const bool comment = line.empty() || (line.front() == ';' && line.find('=') == std::string::npos);
    const bool text = std::isdigit(static_cast<unsigned char>(line.empty() ? ' ' : line.front())) != 0 &&
                      line.find('=') != std::string::npos;
    EXPECT_TRUE(comment || text) << line;
  }
}

TEST(EnglishTexts, AreUtf8WithoutAByteOrderMark) {
  const std::string bytes = BytesOfSource("languages/english.lng");
  EXPECT_TRUE(DecodeUtf8(bytes).has_value());
  EXPECT_FALSE(bytes.starts_with("\xEF\xBB\xBF"));
}

TEST(TextTable, HasOneEntryForEachNameAndEachNumberStandsForOneName) {
  const std::set<std::string> table = NumbersOfTable();
  EXPECT_EQ(NumbersOfDeclaration(), std::multiset<std::string>(table.begin(), table.end()));
  EXPECT_EQ(table.size(), kTextIds.size());
}

TEST(TextTable, PromisesNoneOneOrTwoPlaceholders) {
  for (const TTextEntry& entry : kTextIds) {
    EXPECT_GE(entry.Placeholders, 0) << Number(entry.Id);
    EXPECT_LE(entry.Placeholders, 2) << Number(entry.Id);
  }
}

}  // namespace corvalt
