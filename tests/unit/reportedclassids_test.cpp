#include "scan/reportedclassids.h"

#include <gtest/gtest.h>

#include <random>

namespace corvalt {

namespace {

Text Joined(const std::vector<Text>& identifiers) {
  Text text;
  for (const Text& identifier : identifiers)
    text += (text.empty() ? Text() : Text(u"\r\n")) + identifier;
  return text;
}

struct TListOf : TReportedClassIds {
  explicit TListOf(const std::vector<Text>& identifiers) {
    for (const Text& identifier : identifiers)
      Append(identifier);
  }
};

}  // namespace

TEST(ReportedClassIds, AnEmptyListHoldsNothing) {
  TReportedClassIds list;
  EXPECT_FALSE(list.Holds(u"{1}"));
  EXPECT_FALSE(list.Holds(u""));
}

TEST(ReportedClassIds, HoldsWhatWasAppended) {
  TListOf list({u"{1}", u"{2}", u"{1}"});
  EXPECT_TRUE(list.Holds(u"{1}"));
  EXPECT_TRUE(list.Holds(u"{2}"));
  EXPECT_FALSE(list.Holds(u"{3}"));
  EXPECT_FALSE(list.Holds(u""));
}

TEST(ReportedClassIds, LetterCaseCounts) {
  EXPECT_FALSE(TListOf({u"{ABC}"}).Holds(u"{abc}"));
}

TEST(ReportedClassIds, HoldsEveryPartOfAnIdentifier) {
  TListOf list({u"{abcd}", u"{efgh}"});
  for (const TextView part : {u"{ab", u"bc", u"cd}", u"h}", u"e"})
    EXPECT_TRUE(list.Holds(part));
  EXPECT_FALSE(list.Holds(u"ac"));
  EXPECT_FALSE(list.Holds(u"{abcd}x"));
}

TEST(ReportedClassIds, HoldsATextAcrossALineBreak) {
  TListOf list({u"{ab}", u"{cd}"});
  EXPECT_TRUE(list.Holds(u"b}\r\n{c"));
  EXPECT_TRUE(list.Holds(u"\r\n"));
  EXPECT_TRUE(list.Holds(u"\n"));
  EXPECT_TRUE(list.Holds(u"{ab}\r\n{cd}"));
  EXPECT_FALSE(list.Holds(u"{cd}\r\n"));
  EXPECT_FALSE(list.Holds(u"}{"));
}

TEST(ReportedClassIds, WhatIsAppendedLaterIsFoundToo) {
  TListOf list({u"{ab}"});
  EXPECT_FALSE(list.Holds(u"cd"));
  list.Append(u"{cd}");
  EXPECT_TRUE(list.Holds(u"cd"));
  EXPECT_TRUE(list.Holds(u"}\r\n{"));
}

TEST(ReportedClassIds, PartsOfManyLengthsAreFoundAlsoAfterTheListHasGrown) {
  const Text first = u"{abcdefghijklmnop}";
  const Text later = u"{ponmlkjihgfedcba}";
  TListOf list({first});
  const auto expectParts = [&list](const Text& whole, bool held) {
    for (std::size_t length = 2; length <= whole.size(); ++length) {
      for (std::size_t start = 0; start + length <= whole.size(); ++start)
        EXPECT_EQ(list.Holds(whole.substr(start, length)), held) << length << " from " << start;
    }
  };
  expectParts(first, true);
  expectParts(later, false);
  list.Append(later);
  expectParts(first, true);
  expectParts(later, true);
}

TEST(ReportedClassIds, LongIdentifiersAreToldApartToTheirEnds) {
  const Text stem(250, u'a');
  TListOf list({stem + u"b", stem + u"d"});
  EXPECT_TRUE(list.Holds(stem));
  EXPECT_TRUE(list.Holds(stem.substr(1) + u"b"));
  EXPECT_FALSE(list.Holds(stem.substr(1) + u"c"));
  EXPECT_TRUE(list.Holds(stem.substr(100) + u"d"));
  EXPECT_FALSE(list.Holds(stem + u"a"));
}

TEST(ReportedClassIds, ATextLongerThanAnyIdentifierIsFoundAcrossLines) {
  std::vector<Text> identifiers;
  for (int i = 0; i < 40; ++i)
    identifiers.push_back(u"{same-identifier}");
  TListOf list(identifiers);
  const Text whole = Joined(identifiers);
  EXPECT_TRUE(list.Holds(whole));
  EXPECT_TRUE(list.Holds(TextView(whole).substr(3, 400)));
  EXPECT_FALSE(list.Holds(whole.substr(3, 400) + u"x"));
}

TEST(ReportedClassIds, AgreesWithAPlainSearchOverRandomLists) {
  std::mt19937 random(20260817);
  const auto randomText = [&random](std::size_t longest, const Text& alphabet) {
    Text text(1 + random() % longest, u' ');
    for (char16_t& unit : text)
      unit = alphabet[random() % alphabet.size()];
    return text;
  };
  for (int round = 0; round < 200; ++round) {
    std::vector<Text> identifiers;
    TReportedClassIds list;
    for (std::size_t i = random() % 8; i > 0; --i) {
      identifiers.push_back(randomText(9, u"ab{}"));
      list.Append(identifiers.back());
    }
    const Text whole = Joined(identifiers);
    for (int i = 0; i < 80; ++i) {
      const Text asked = randomText(6, u"ab{}\r\n");
      ASSERT_EQ(list.Holds(asked), whole.find(asked) != Text::npos) << "round " << round;
      if (whole.empty())
        continue;
      const std::size_t start = random() % whole.size();
      ASSERT_TRUE(list.Holds(TextView(whole).substr(start, 1 + random() % 12))) << "round " << round;
    }
  }
}

}  // namespace corvalt
