#include "base/text.h"

#include <gtest/gtest.h>

#include "base/lettercase.h"
#include "system/machine.h"

namespace corvalt {

namespace {

using TLines = std::vector<Text>;

TEST(Trim, TakesAllCharactersUpToTheBlank) {
  EXPECT_EQ(Trim(u"\t\r\n \x01 text\x1F "), u"text");
  EXPECT_EQ(Trim(Text(u"\0a\0", 3)), u"a");
  EXPECT_EQ(Trim(u" \t "), u"");
  EXPECT_EQ(Trim(u""), u"");
}

TEST(Trim, KeepsWhatLiesInsideAndWiderBlanks) {
  EXPECT_EQ(Trim(u" a  b "), u"a  b");
  EXPECT_EQ(Trim(u"\u00A0a\u3000"), u"\u00A0a\u3000");
}

TEST(TrimLeadingBlanks, TakesBlanksAloneAndOnlyInFront) {
  EXPECT_EQ(TrimLeadingBlanks(u"  a "), u"a ");
  EXPECT_EQ(TrimLeadingBlanks(u" \ta"), u"\ta");
  EXPECT_EQ(TrimLeadingBlanks(u"   "), u"");
}

TEST(CutAt, KeepsWhatStandsBeforeTheFirstSeparator) {
  EXPECT_EQ(CutAt(u"//", u"a//b//c"), u"a");
  EXPECT_EQ(CutAt(u"//", u"//b"), u"");
  EXPECT_EQ(CutAt(u"//", u"a/b"), u"a/b");
  EXPECT_EQ(CutAt(u"", u"ab"), u"ab");
}

TEST(ReplaceAll, ReplacesInOnePassFromLeftToRight) {
  EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(ReplaceAll(u"a&b&", u"&", u"&&"), u"a&&b&&");
  EXPECT_EQ(ReplaceAll(u"abc", u"x", u"y"), u"abc");
  EXPECT_EQ(ReplaceAll(u"abc", u"", u"y"), u"abc");
  EXPECT_EQ(ReplaceAll(u"abc", u"b", u""), u"ac");
}

TEST(Contains, AnEmptyPartNeverOccurs) {
  EXPECT_TRUE(Contains(u"abc", u"bc"));
  EXPECT_FALSE(Contains(u"abc", u"BC"));
  EXPECT_FALSE(Contains(u"abc", u""));
  EXPECT_FALSE(Contains(u"", u""));
}

TEST(LastPos, CountsFromOneAndAnswersZeroForNone) {
  EXPECT_EQ(LastPos(u"\\", u"C:\\a\\b"), 5u);
  EXPECT_EQ(LastPos(u"C", u"C:\\a"), 1u);
  EXPECT_EQ(LastPos(u"aa", u"aaa"), 2u);
  EXPECT_EQ(LastPos(u"x", u"C:\\a"), 0u);
  EXPECT_EQ(LastPos(u"", u"C:\\a"), 0u);
  EXPECT_EQ(LastPos(u"a", u""), 0u);
}

TEST(SplitLines, KnowsTheThreeLineEnds) {
  EXPECT_EQ(SplitLines(u"a\r\nb\nc\rd"), (TLines{u"a", u"b", u"c", u"d"}));
  EXPECT_EQ(SplitLines(u"\r\n\r\na\r\n"), (TLines{u"", u"", u"a"}));
  EXPECT_EQ(SplitLines(u"a\n\rb"), (TLines{u"a", u"", u"b"}));
  EXPECT_TRUE(SplitLines(u"").empty());
}

TEST(WithTrailingBackslash, AddsOneOnlyWhereItLacks) {
  EXPECT_EQ(WithTrailingBackslash(u"C:\\a"), u"C:\\a\\");
  EXPECT_EQ(WithTrailingBackslash(u"C:\\a\\"), u"C:\\a\\");
  EXPECT_EQ(WithTrailingBackslash(u""), u"\\");
}

TEST(WithoutLeadingBackslash, TakesTheFirstAlone) {
  EXPECT_EQ(WithoutLeadingBackslash(u"\\a\\"), u"a\\");
  EXPECT_EQ(WithoutLeadingBackslash(u"\\\\a"), u"\\a");
  EXPECT_EQ(WithoutLeadingBackslash(u"a"), u"a");
  EXPECT_EQ(WithoutLeadingBackslash(u""), u"");
}

TEST(DecimalText, WritesNegativeNumbersToo) {
  EXPECT_EQ(DecimalText(0), u"0");
  EXPECT_EQ(DecimalText(-42), u"-42");
  EXPECT_EQ(DecimalText(INT64_MIN), u"-9223372036854775808");
}

TEST(ParseInteger, TakesASignAndDigitsWithin32Bits) {
  EXPECT_EQ(ParseInteger(u"0"), 0);
  EXPECT_EQ(ParseInteger(u"-12"), -12);
  EXPECT_EQ(ParseInteger(u"+12"), 12);
  EXPECT_EQ(ParseInteger(u"2147483647"), INT32_MAX);
  EXPECT_EQ(ParseInteger(u"-2147483648"), INT32_MIN);
}

TEST(ParseInteger, RefusesEverythingElse) {
  for (const TextView text : {u"", u"-", u"+", u" 1", u"1 ", u"1a", u"0x1", u"1.0", u"2147483648",
                              u"-2147483649", u"99999999999999999999999", u"--1"}) {
    EXPECT_FALSE(ParseInteger(text)) << EncodeUtf8(text);
  }
}

TEST(DecodeUtf8, DecodesAllLengths) {
  EXPECT_EQ(DecodeUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), u"a\u00E9\u20AC\U0001F600");
}

TEST(DecodeUtf8, RefusesWhatIsNotUtf8) {
  for (const std::string_view bytes : {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                                       "\xF4\x90\x80\x80", "\xF8\x88", "\xE2\x82", "a\xFF"}) {
    EXPECT_FALSE(DecodeUtf8(bytes));
  }
}

TEST(EncodeUtf8, WritesPairsAndReplacesLoneSurrogates) {
  EXPECT_EQ(EncodeUtf8(u"a\u00E9\u20AC\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  const Text lone = {u'a', 0xD800, u'b', 0xDC00};
  EXPECT_EQ(EncodeUtf8(lone),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(EncodeUtf8(Text{0xD83D}), "\xEF\xBF\xBD");
}

TEST(FromAscii, WidensEachCharacter) {
  EXPECT_EQ(FromAscii("Software"), u"Software");
}

TEST(FolderOf, KeepsTheSeparator) {
  EXPECT_EQ(FolderOf(u"C:\\a\\b.exe"), u"C:\\a\\");
  EXPECT_EQ(FolderOf(u"C:\\b.exe"), u"C:\\");
  EXPECT_EQ(FolderOf(u"C:\\a/b.exe"), u"C:\\a/");
  EXPECT_EQ(FolderOf(u"C:\\a\\"), u"C:\\a\\");
  EXPECT_EQ(FolderOf(u"b.exe"), u"");
  EXPECT_EQ(FolderOf(u""), u"");
}

TEST(LetterCase, MapsOneUnitAtATimeAndNotAsciiOnly) {
  EXPECT_EQ(UpperCase(u"abc\u00E9\u0434\u03C9"), u"ABC\u00C9\u0414\u03A9");
  EXPECT_EQ(LowerCase(u"ABC\u00C9\u0414\u03A9"), u"abc\u00E9\u0434\u03C9");
  EXPECT_EQ(UpperUnit(u'z'), u'Z');
  EXPECT_EQ(LowerUnit(u'Z'), u'z');
}

TEST(LetterCase, FollowsNoLocaleAndNoPairs) {
  EXPECT_EQ(UpperCase(u"i\u00DF"), u"I\u00DF");
  EXPECT_EQ(UpperCase(u"\U00010428"), u"\U00010428");
  const Text lone = {0xD801};
  EXPECT_EQ(UpperCase(lone), lone);
}

TEST(LetterCase, ComparesByUpperCasedUnits) {
  EXPECT_TRUE(EqualIgnoringCase(u"Software", u"SOFTWARE"));
  EXPECT_FALSE(EqualIgnoringCase(u"Software", u"SoftwareX"));
  EXPECT_EQ(CompareIgnoringCase(u"a", u"A"), 0);
  EXPECT_LT(CompareIgnoringCase(u"a", u"B"), 0);
  EXPECT_GT(CompareIgnoringCase(u"b", u"A"), 0);
  EXPECT_LT(CompareIgnoringCase(u"a", u"ab"), 0);
  EXPECT_GT(CompareIgnoringCase(u"ab", u"A"), 0);
  // "_" lies between the upper-case and the lower-case letters.
  EXPECT_LT(CompareIgnoringCase(u"z", u"_"), 0);
}

}  // namespace

}  // namespace corvalt
