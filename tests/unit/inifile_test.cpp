#include "formats/inifile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

using TTexts = std::vector<Text>;

class IniFile : public testing::Test {
 protected:
  TIniFile From(std::string_view bytes) {
    return TIniFile::FromBytes(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), Locale);
  }
  std::string Bytes(const TIniFile& file) {
    const std::vector<std::uint8_t> bytes = file.ToBytes(Locale);
    return {bytes.begin(), bytes.end()};
  }
  TIniFile Again(const TIniFile& file) {
    return From(Bytes(file));
  }

  TMemoryLocale Locale;
};

TEST_F(IniFile, ReadsAValueTrimmed) {
  EXPECT_EQ(From("[s]\r\n key \t= a value \t\r\n").Read(u"s", u"key"), u"a value");
}

TEST_F(IniFile, NamesCompareWithoutRegardToCase) {
  EXPECT_EQ(From("[Portable]\nType=1").Read(u"PORTABLE", u"type"), u"1");
}

TEST_F(IniFile, OnePairOfQuotesIsTakenOff) {
  const TIniFile file = From("[s]\na=\" x \"\nb='y'\nc=\"\"z\"\"\nd=\"\ne=\"x'\nf=\"\"");
  EXPECT_EQ(file.Read(u"s", u"a"), u" x ");
  EXPECT_EQ(file.Read(u"s", u"b"), u"y");
  EXPECT_EQ(file.Read(u"s", u"c"), u"\"z\"");
  EXPECT_EQ(file.Read(u"s", u"d"), u"\"");
  EXPECT_EQ(file.Read(u"s", u"e"), u"\"x'");
  EXPECT_EQ(file.Read(u"s", u"f"), u"");
}

TEST_F(IniFile, TellsAnEmptyValueFromAMissingOne) {
  const TIniFile file = From("[s]\na=\nno equals sign\n");
  EXPECT_EQ(file.Read(u"s", u"a"), u"");
  EXPECT_FALSE(file.Read(u"s", u"b"));
  EXPECT_FALSE(file.Read(u"s", u"no equals sign"));
  EXPECT_FALSE(file.Read(u"t", u"a"));
}

TEST_F(IniFile, LinesBeforeTheFirstSectionBelongToNone) {
  EXPECT_FALSE(From("a=1\n[s]\n").Read(u"s", u"a"));
  EXPECT_FALSE(From("a=1\n").Read(u"", u"a"));
}

TEST_F(IniFile, CommentsSayNothing) {
  const TIniFile file = From("[s]\n;a=1\n ; b=2\n;[t]\nc=3");
  EXPECT_FALSE(file.Read(u"s", u"a"));
  EXPECT_FALSE(file.Read(u"s", u";a"));
  EXPECT_EQ(file.Read(u"s", u"c"), u"3");
  EXPECT_EQ(file.SectionNames(), (TTexts{u"s"}));
}

TEST_F(IniFile, OfTwoWithOneNameTheFirstCounts) {
  const TIniFile file = From("[s]\na=1\nA=2\n[S]\na=3\nb=4\n");
  EXPECT_EQ(file.Read(u"s", u"a"), u"1");
  EXPECT_FALSE(file.Read(u"s", u"b"));
  EXPECT_EQ(file.SectionNames(), (TTexts{u"s"}));
}

TEST_F(IniFile, SectionNamesComeInFileOrder) {
  EXPECT_EQ(From("[b]\n [ a ] x\n[unclosed\n[]\n[c]d=1").SectionNames(), (TTexts{u"b", u"a", u"", u"c"}));
}

TEST_F(IniFile, KnowsTheThreeLineEnds) {
  const TIniFile file = From("[s]\ra=1\nb=2\r\nc=3");
  EXPECT_EQ(file.Read(u"s", u"a"), u"1");
  EXPECT_EQ(file.Read(u"s", u"b"), u"2");
  EXPECT_EQ(file.Read(u"s", u"c"), u"3");
}

TEST_F(IniFile, ReadsTheThreeEncodings) {
  EXPECT_EQ(From("[s]\na=caf\xE9").Read(u"s", u"a"), u"caf\u00E9");
  EXPECT_EQ(From("[s]\na=caf\xC3\xA9").Read(u"s", u"a"), u"caf\u00C3\u00A9");
  EXPECT_EQ(From("\xEF\xBB\xBF[s]\na=caf\xC3\xA9").Read(u"s", u"a"), u"caf\u00E9");
  EXPECT_EQ(From(std::string_view("\xFF\xFE[\0s\0]\0\n\0a\0=\0\xE9\0", 16)).Read(u"s", u"a"), u"\u00E9");
}

TEST_F(IniFile, AUtf8MarkBeforeOtherBytesIsNoMark) {
  const std::string bytes = "\xEF\xBB\xBF[s]\na=caf\xE9\n[t]\nb=caf\xE9";
  EXPECT_EQ(From(bytes).Read(u"t", u"b"), u"caf\u00E9");
  EXPECT_EQ(Bytes(From(bytes)), bytes);
}

TEST_F(IniFile, WhatIsNotChangedStaysToTheByte) {
  for (const std::string_view bytes : {"", "\r\n\r\n", "junk\n[s]\r\n ; c\n\n a = 'x' \r[unclosed\n=\n\xE9",
                                       "\xEF\xBB\xBF[s]\na=\xC3\xA9"}) {
    EXPECT_EQ(Bytes(From(bytes)), bytes);
  }
}

// In code page 932 the byte 0x81 begins a character of two bytes, and 0xFF is none: text and back they
// change.
TEST_F(IniFile, LinesThatAreNotChangedStayToTheByteWhenAnotherIs) {
  class TLossyLocale : public TMemoryLocale {
   public:
    Text DecodeAnsi(std::string_view bytes) override {
      Text text = TMemoryLocale::DecodeAnsi(bytes);
      std::replace(text.begin(), text.end(), u'\u00FF', u'?');
      return text;
    }
  };
  TLossyLocale locale;
  const std::string bytes = "[a]\r\nk=\xFF\xFF\n[b]\rk=1";
  TIniFile file = TIniFile::FromBytes(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), locale);
  file.Write(u"b", u"k", u"2");
  file.Write(u"c", u"k", u"3");
  const std::vector<std::uint8_t> written = file.ToBytes(locale);
  EXPECT_EQ(std::string(written.begin(), written.end()), "[a]\r\nk=\xFF\xFF\n[b]\rk=2\r\n[c]\r\nk=3\r\n");
}

TEST_F(IniFile, WritingReplacesTheValueAlone) {
  TIniFile file = From("[s]\n key = old ; x\nother=1\n");
  file.Write(u"S", u"KEY", u"new");
  EXPECT_EQ(Bytes(file), "[s]\n key =new\nother=1\n");
}

TEST_F(IniFile, ANewKeyIsAddedAtTheEndOfItsSection) {
  TIniFile file = From("[s]\r\na=1\r\n\r\n[t]\r\nc=3");
  file.Write(u"s", u"b", u"2");
  file.Write(u"t", u"d", u"4");
  EXPECT_EQ(Bytes(file), "[s]\r\na=1\r\nb=2\r\n\r\n[t]\r\nc=3\r\nd=4\r\n");
}

TEST_F(IniFile, ANewSectionIsAddedAtTheEndOfTheFile) {
  TIniFile file = From("[s]\na=1");
  file.Write(u"t", u"b", u"2");
  EXPECT_EQ(Bytes(file), "[s]\na=1\r\n[t]\r\nb=2\r\n");
  TIniFile empty;
  empty.Write(u"46341.5", u"Type", u"11001");
  EXPECT_EQ(Bytes(empty), "[46341.5]\r\nType=11001\r\n");
}

TEST_F(IniFile, AValueThatReadingWouldTrimIsWrittenInQuotes) {
  TIniFile file;
  for (const TextView value : {u" a ", u"\"a\"", u"'a'", u"\t", u"\"", u"", u"a=b;c"}) {
    file.Write(u"s", u"k", value);
    EXPECT_EQ(Again(file).Read(u"s", u"k"), value);
  }
}

TEST_F(IniFile, ErasingTakesEverySectionOfTheName) {
  TIniFile file = From("x\n[a]\n1=1\n\n[b]\n2=2\n[A]\n3=3\n[c]\n");
  file.EraseSection(u"a");
  EXPECT_EQ(Bytes(file), "x\n[b]\n2=2\n[c]\n");
  file.EraseSection(u"gone");
  EXPECT_EQ(file.SectionNames(), (TTexts{u"b", u"c"}));
}

TEST_F(IniFile, ATextThatTheCodePageLacksMakesTheFileUtf16) {
  TIniFile file = From("[s]\r\na=caf\xE9\r\n");
  file.Write(u"s", u"b", u"\u0434");
  EXPECT_EQ(Bytes(file).substr(0, 4), std::string_view("\xFF\xFE[\0", 4));
  EXPECT_EQ(Again(file).Read(u"s", u"a"), u"caf\u00E9");
  EXPECT_EQ(Again(file).Read(u"s", u"b"), u"\u0434");
}

TEST_F(IniFile, Utf16StaysUtf16) {
  TIniFile file = From(std::string_view("\xFF\xFE[\0s\0]\0\n\0", 10));
  file.Write(u"s", u"a", u"1");
  EXPECT_EQ(Bytes(file), std::string_view("\xFF\xFE[\0s\0]\0\n\0a\0=\0"
                                          "1\0\r\0\n\0",
                                          20));
}

TEST_F(IniFile, AnIllFormedTextSurvivesInUtf16) {
  TIniFile file = From("\xEF\xBB\xBF[s]\n");
  const Text lone = {u'a', 0xD800};
  file.Write(u"s", u"k", lone);
  EXPECT_EQ(Again(file).Read(u"s", u"k"), lone);
}

TEST_F(IniFile, AContentThatBeginsLikeAMarkIsNotTakenForOne) {
  // Only the bad byte in [x] keeps the first three from being a mark.
  TIniFile file = From(
      "\xEF\xBB\xBF"
      "[s]\n[t]\na=\xC3\xA9\n[x]\nb=\xE9\n");
  file.EraseSection(u"x");
  EXPECT_EQ(Again(file).SectionNames(), file.SectionNames());
  EXPECT_EQ(Again(file).Read(u"t", u"a"), u"\u00C3\u00A9");
}

TEST_F(IniFile, WhatIsWrittenIsReadBackWhateverTheFileHeld) {
  std::mt19937 random(7);
  constexpr std::string_view kPieces[] = {"[",        "]",
                                          "=",        ";",
                                          "a",        "B",
                                          " ",        "\t",
                                          "\"",       "'",
                                          "\r\n",     "\n",
                                          "\r",       "s",
                                          "\xE9",     "\xEF\xBB\xBF",
                                          "\xFF\xFE", std::string_view("\0", 1)};
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    for (auto count = random() % 30; count > 0; --count)
      bytes += kPieces[random() % std::size(kPieces)];
    TIniFile file = From(bytes);
    const Text value(random() % 4, u"\u00E9\u0434 \""[random() % 4]);
    file.Write(u"s", u"a", value);
    ASSERT_EQ(Again(file).Read(u"s", u"a"), value) << testing::PrintToString(bytes);
    ASSERT_EQ(Again(file).SectionNames(), file.SectionNames()) << testing::PrintToString(bytes);
    file.EraseSection(u"s");
    ASSERT_FALSE(Again(file).Read(u"s", u"a")) << testing::PrintToString(bytes);
  }
}

}  // namespace

}  // namespace corvalt
