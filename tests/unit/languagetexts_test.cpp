#include "core/languagetexts.h"
#include "core/displaylanguages.h"

#include <gtest/gtest.h>

#include "core/globals.h"
#include "core/settingskeys.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

constexpr TextView kSuite = u"HKEY_CURRENT_USER\\Software\\TessalySoft\\Tessaly Utilities";

TLanguageTable Table(std::string_view bytes) {
  TMemoryLocale locale;
  return TLanguageTable::FromFile(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), locale);
}

// Looked up as the text of 10001.
Text Looked(std::string_view file, TextView arg1 = {}, TextView arg2 = {}) {
  return LanguageText({Table(file), {}}, TextId::MenuFile, arg1, arg2);
}

TEST(LanguageTable, TrimsTheIdentifierAndTheEndOfTheText) {
  EXPECT_EQ(Table(" \t10001 \t= File \t\r\n").Find(u"10001"), u" File");
}

TEST(LanguageTable, LeavesOutLinesWithoutAnEqualsSign) {
  const TLanguageTable table = Table("10001\r\n; remark\r\n\r\n10003=View");
  EXPECT_EQ(table.Lines().size(), 1u);
  EXPECT_EQ(table.Find(u"10003"), u"View");
  EXPECT_EQ(table.Find(u"10001"), u"");
}

TEST(LanguageTable, OfTwoLinesWithOneIdentifierTheFirstCounts) {
  EXPECT_EQ(Table("10001=first\n10001=second").Find(u"10001"), u"first");
}

TEST(LanguageTable, KeepsLaterEqualsSigns) {
  EXPECT_EQ(Table("10001=a=b").Find(u"10001"), u"a=b");
}

TEST(LanguageTable, AByteOrderMarkDecidesTheEncoding) {
  EXPECT_EQ(Table("\xEF\xBB\xBF"
                  "10001=\xC3\xA9")
                .Find(u"10001"),
            u"\u00E9");
  EXPECT_EQ(Table(std::string_view("\xFF\xFE"
                                   "1\0=\0\xE9\0",
                                   8))
                .Find(u"1"),
            u"\u00E9");
  EXPECT_EQ(Table(std::string_view("\xFE\xFF"
                                   "\0"
                                   "1\0=\0\xE9",
                                   8))
                .Find(u"1"),
            u"\u00E9");
}

TEST(LanguageTable, WithoutAMarkValidUtf8IsUtf8) {
  EXPECT_EQ(Table("1=\xC3\xA9").Find(u"1"), u"\u00E9");
}

TEST(LanguageTable, OtherBytesAreInTheAnsiCodePage) {
  EXPECT_EQ(Table("1=caf\xE9 \x80").Find(u"1"), u"caf\u00E9 \u20AC");
}

TEST(LanguageTable, AnOddLastByteOfUtf16IsDropped) {
  EXPECT_EQ(Table(std::string_view("\xFF\xFE"
                                   "1\0=\0a\0b",
                                   9))
                .Find(u"1"),
            u"a");
}

TEST(LanguageText, ArgumentsReplaceTheirPlaceholdersAndLeadingBlanksGo) {
  EXPECT_EQ(Looked("10001 =  Word %s2 and %s", u"first", u"second"), u"Word second and first");
}

TEST(LanguageText, EachPlaceholderIsReplacedEverywhere) {
  EXPECT_EQ(Looked("10001=%s%s2%s%s2", u"a", u"b"), u"abab");
}

TEST(LanguageText, WithoutArgumentsThePlaceholdersVanish) {
  EXPECT_EQ(Looked("10001=a%s b%s2"), u"a b");
}

TEST(LanguageText, AnAmpersandInATextOrAnArgumentIsDoubled) {
  EXPECT_EQ(Looked("10001=Q&A: %s, %s2", u"x&y", u"&"), u"Q&&A: x&&y, &&");
  EXPECT_EQ(Looked("10001=a&&b"), u"a&&&&b");
}

TEST(LanguageText, APlaceholderInTheSecondArgumentTakesTheFirst) {
  EXPECT_EQ(Looked("10001=%s2", u"one", u"<%s>"), u"<one>");
}

TEST(LanguageText, TheFirstArgumentIsNeverChanged) {
  EXPECT_EQ(Looked("10001=%s", u"%s2 and %s", u"two"), u"%s2 and %s");
}

TEST(LanguageText, LeadingBlanksOfAnArgumentGoToo) {
  EXPECT_EQ(Looked("10001= %s", u"  a "), u"a ");
}

TEST(LanguageText, IllFormedArgumentsAreCarriedUnchanged) {
  const Text lone = {0xD800, u'x', 0xDC00};
  EXPECT_EQ(Looked("10001=%s", lone), lone);
}

TEST(LanguageText, EnglishFillsTheGaps) {
  const TLanguageTexts texts = {Table("10001=Datei\n10003= \n"), Table("10001=File\n10003=View\n10004=Help")};
  EXPECT_EQ(LanguageText(texts, TextId::MenuFile), u"Datei");
  EXPECT_EQ(LanguageText(texts, TextId::ButtonView), u"View");
  EXPECT_EQ(LanguageText(texts, TextId::MenuHelp), u"Help");
}

TEST(LanguageText, IsEmptyWhenNeitherTableHasIt) {
  EXPECT_EQ(LanguageText({}, TextId::MenuFile, u"a", u"b"), u"");
}

TEST(PlainText, UndoesTheDoubling) {
  EXPECT_EQ(PlainText(u"Q&&A"), u"Q&A");
  EXPECT_EQ(PlainText(u"a&&&&b"), u"a&&b");
}

class LoadedLanguage : public testing::Test {
 protected:
  LoadedLanguage() {
    System.Disk.AddFile(u"C:\\Suite\\languages\\english.lng", "10001=File\n10003=View");
    System.Disk.AddFile(u"C:\\Suite\\languages\\german.lng", "10001=Datei");
  }
  Text Load() {
    TSystem bundle = System.Bundle();
    return LoadLanguage(bundle, u"C:\\Suite\\", Texts);
  }
  Text Setting() {
    const auto store = System.Registry.CreateStore(TRegistryAccess::Read);
    store->OpenKey(kSuiteKey, false);
    return store->ReadString(u"Language");
  }

  TMemorySystem System;
  TLanguageTexts Texts;
};

TEST_F(LoadedLanguage, IsTheOneThatTheSuiteNames) {
  System.Registry.Set(kSuite, u"Language", u"german.lng");
  EXPECT_EQ(Load(), u"german.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"Datei");
  EXPECT_EQ(LanguageText(Texts, TextId::ButtonView), u"View");
  EXPECT_EQ(Setting(), u"german.lng");
}

TEST_F(LoadedLanguage, IsEnglishOnTheFirstStartAndWrittenBack) {
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"File");
  EXPECT_EQ(Setting(), u"english.lng");
}

TEST_F(LoadedLanguage, IsThatOfWindowsOnTheFirstStartAndWrittenBack) {
  System.Locale.Language = 0x0407;
  EXPECT_EQ(Load(), u"german.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"Datei");
  EXPECT_EQ(Setting(), u"german.lng");
}

TEST_F(LoadedLanguage, AnEmptySettingCountsAsTheFirstStart) {
  System.Registry.Set(kSuite, u"Language", u"");
  System.Locale.Language = 0x0407;
  EXPECT_EQ(Load(), u"german.lng");
  EXPECT_EQ(Setting(), u"german.lng");
}

TEST_F(LoadedLanguage, IsEnglishOnTheFirstStartWhereTheLanguageOfWindowsHasNoFile) {
  System.Locale.Language = 0x0411;
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(Setting(), u"english.lng");
}

TEST_F(LoadedLanguage, TheUsersChoiceCountsMoreThanTheLanguageOfWindows) {
  System.Registry.Set(kSuite, u"Language", u"english.lng");
  System.Locale.Language = 0x0407;
  EXPECT_EQ(Load(), u"english.lng");
}

TEST_F(LoadedLanguage, AMissingFileGivesEnglishWhateverTheLanguageOfWindows) {
  System.Registry.Set(kSuite, u"Language", u"latin.lng");
  System.Locale.Language = 0x0407;
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(Setting(), u"english.lng");
}

TEST(LanguageFile, OfEveryCountryOfALanguageIsTheSame) {
  EXPECT_EQ(LanguageFileOf(0x0407), u"german.lng");
  EXPECT_EQ(LanguageFileOf(0x0C07), u"german.lng");
  EXPECT_EQ(LanguageFileOf(0x080A), u"spanish.lng");
  EXPECT_EQ(LanguageFileOf(0x0C0C), u"french.lng");
}

TEST(LanguageFile, OfChineseGoesByTheScript) {
  EXPECT_EQ(LanguageFileOf(0x0804), u"chinese-simplified.lng");
  EXPECT_EQ(LanguageFileOf(0x1004), u"chinese-simplified.lng");
  EXPECT_EQ(LanguageFileOf(0x0404), u"chinese-traditional.lng");
  EXPECT_EQ(LanguageFileOf(0x0C04), u"chinese-traditional.lng");
}

TEST(LanguageFile, OfPortugueseIsThatOfBrazilAlone) {
  EXPECT_EQ(LanguageFileOf(0x0416), u"portuguese-brazil.lng");
  EXPECT_EQ(LanguageFileOf(0x0816), u"english.lng");
}

TEST(LanguageFile, OfAnyOtherLanguageIsEnglish) {
  EXPECT_EQ(LanguageFileOf(0x0409), u"english.lng");
  EXPECT_EQ(LanguageFileOf(0x0408), u"english.lng");
  EXPECT_EQ(LanguageFileOf(0), u"english.lng");
  EXPECT_EQ(LanguageFileOf(0xFFFF), u"english.lng");
}

TEST_F(LoadedLanguage, IsEnglishAgainWhenTheFileIsMissing) {
  System.Registry.Set(kSuite, u"Language", u"latin.lng");
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(Setting(), u"english.lng");
}

TEST_F(LoadedLanguage, ASettingOfAnotherTypeReadsEmpty) {
  System.Registry.SetInteger(kSuite, u"Language", 7);
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(Setting(), u"english.lng");
}

TEST_F(LoadedLanguage, WorksWithoutAccessToTheSetting) {
  System.Registry.Set(kSuite, u"Language", u"german.lng");
  System.Registry.Deny(kSuite);
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"File");
}

TEST_F(LoadedLanguage, AMissingEnglishFileLeavesItsTableEmpty) {
  System.Disk.Remove(u"C:\\Suite\\languages\\english.lng");
  System.Registry.Set(kSuite, u"Language", u"german.lng");
  EXPECT_EQ(Load(), u"german.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"Datei");
  EXPECT_EQ(LanguageText(Texts, TextId::ButtonView), u"");
}

TEST_F(LoadedLanguage, WithoutAnyFileAllTextsAreEmpty) {
  System.Disk.Remove(u"C:\\Suite\\languages");
  EXPECT_EQ(Load(), u"english.lng");
  EXPECT_EQ(LanguageText(Texts, TextId::MenuFile), u"");
}

}  // namespace

}  // namespace corvalt
