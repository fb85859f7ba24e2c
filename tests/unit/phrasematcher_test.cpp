#include "scan/phrasematcher.h"

#include <gtest/gtest.h>

#include <random>

namespace corvalt {

namespace {

bool NaivelyOccurs(const std::vector<Text>& phrases, TextView text) {
  for (const Text& phrase : phrases) {
    if (!phrase.empty() && text.find(phrase) != TextView::npos)
      return true;
  }
  return false;
}

Text RandomText(std::mt19937& random, std::size_t longest, std::size_t letters) {
  Text text(std::uniform_int_distribution<std::size_t>(0, longest)(random), u'a');
  for (char16_t& unit : text)
    unit = static_cast<char16_t>(u'a' + random() % letters);
  return text;
}

}  // namespace

TEST(PhraseMatcher, WithoutPhrasesNothingMatches) {
  const TPhraseMatcher matcher({});
  EXPECT_FALSE(matcher.OccursIn(u""));
  EXPECT_FALSE(matcher.OccursIn(u"text"));
}

TEST(PhraseMatcher, AnEmptyPhraseNeverMatches) {
  const TPhraseMatcher matcher({u"", u"b"});
  EXPECT_FALSE(matcher.OccursIn(u""));
  EXPECT_FALSE(matcher.OccursIn(u"a"));
  EXPECT_TRUE(matcher.OccursIn(u"ab"));
}

TEST(PhraseMatcher, APhraseMatchesAtTheStartInTheMiddleAndAtTheEnd) {
  const TPhraseMatcher matcher({u"abc"});
  EXPECT_TRUE(matcher.OccursIn(u"abcxx"));
  EXPECT_TRUE(matcher.OccursIn(u"xabcx"));
  EXPECT_TRUE(matcher.OccursIn(u"xxabc"));
  EXPECT_TRUE(matcher.OccursIn(u"abc"));
  EXPECT_FALSE(matcher.OccursIn(u"ab"));
  EXPECT_FALSE(matcher.OccursIn(u"abxc"));
}

TEST(PhraseMatcher, APhraseInsideAnotherMatchesByItself) {
  const TPhraseMatcher matcher({u"abcd", u"bc"});
  EXPECT_TRUE(matcher.OccursIn(u"abce"));
  EXPECT_TRUE(matcher.OccursIn(u"xbcx"));
  EXPECT_FALSE(matcher.OccursIn(u"abdc"));
}

TEST(PhraseMatcher, AFalseStartIsResumedWhereItOverlaps) {
  const TPhraseMatcher matcher({u"aab"});
  EXPECT_TRUE(matcher.OccursIn(u"aaab"));
  EXPECT_TRUE(matcher.OccursIn(u"aaaaaab"));
  EXPECT_FALSE(matcher.OccursIn(u"ababab"));
}

TEST(PhraseMatcher, LetterCaseCounts) {
  EXPECT_FALSE(TPhraseMatcher({u"abc"}).OccursIn(u"ABC"));
}

TEST(PhraseMatcher, EveryUnitIsALetterLikeAnother) {
  const Text odd = {u'\0', 0xD800, 0xFFFF};
  const TPhraseMatcher matcher({odd});
  EXPECT_TRUE(matcher.OccursIn(u"x" + odd + u"y"));
  EXPECT_FALSE(matcher.OccursIn(odd.substr(1)));
}

TEST(PhraseMatcher, AgreesWithAPlainSearchOverRandomTexts) {
  std::mt19937 random(20260816);
  for (int round = 0; round < 400; ++round) {
    const std::size_t letters = 2 + random() % 3;
    std::vector<Text> phrases;
    for (std::size_t i = random() % 12; i > 0; --i)
      phrases.push_back(RandomText(random, 7, letters));
    const TPhraseMatcher matcher(phrases);
    for (int i = 0; i < 60; ++i) {
      const Text text = RandomText(random, 14, letters);
      ASSERT_EQ(matcher.OccursIn(text), NaivelyOccurs(phrases, text)) << "round " << round;
    }
  }
}

TEST(PhraseMatcher, AgreesWithAPlainSearchOverManyLongPhrases) {
  std::mt19937 random(7);
  std::vector<Text> phrases;
  for (int i = 0; i < 500; ++i)
    phrases.push_back(u"hkey_" + RandomText(random, 30, 26) + u"\\" + RandomText(random, 10, 4));
  const TPhraseMatcher matcher(phrases);
  int hits = 0;
  for (int i = 0; i < 500; ++i) {
    Text text = RandomText(random, 20, 26) + phrases[random() % phrases.size()] + RandomText(random, 20, 26);
    if (i % 2 == 0)
      text.erase(random() % text.size(), 1);
    const bool expected = NaivelyOccurs(phrases, text);
    hits += expected ? 1 : 0;
    ASSERT_EQ(matcher.OccursIn(text), expected) << i;
  }
  EXPECT_GT(hits, 250);
  EXPECT_LT(hits, 500);
}

}  // namespace corvalt
