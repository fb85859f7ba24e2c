#include "formats/regfilereader.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/memory/memorysystem.h"
#include "tests/support/largeinput.h"

namespace corvalt {

namespace {

// What a file says: one line an entry, "key \Foo", "value \Foo name 1:4100..", "delete key \Foo",
// "delete value \Foo name", and a last line "skipped N".
class TReading {
 public:
  explicit TReading(std::string_view file) {
    TMemoryLocale locale;
    TRegFileReader reader({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, locale);
    HasHeader = reader.HasHeader();
    while (const TRegFileEntry* entry = reader.Next())
      Entries.push_back(Said(*entry));
    Skipped = reader.LinesSkipped();
  }

  bool HasHeader = false;
  std::vector<std::string> Entries;
  std::size_t Skipped = 0;

 private:
  static std::string Said(const TRegFileEntry& entry) {
    const std::string root = entry.RootKey == kHkeyCurrentUser ? "" : EncodeUtf8(RootKeyName(entry.RootKey));
    const std::string path = root + EncodeUtf8(entry.KeyPath);
    switch (entry.Kind) {
      case TRegFileEntry::TKind::Key:
        return "key " + path;
      case TRegFileEntry::TKind::DeleteKey:
        return "delete key " + path;
      case TRegFileEntry::TKind::DeleteValue:
        return "delete value " + path + " " + EncodeUtf8(entry.Value.Name);
      case TRegFileEntry::TKind::Value:
        break;
    }
    return "value " + path + " " + EncodeUtf8(entry.Value.Name) + " " + Data(entry.Value);
  }

  static std::string Data(const TRawValue& value) {
    std::string text = std::to_string(value.Type) + ":";
    for (const std::uint8_t byte : value.Data) {
      text += "0123456789abcdef"[byte >> 4];
      text += "0123456789abcdef"[byte & 15];
    }
    return text;
  }
};

using TLines = std::vector<std::string>;

// The entries of these lines below the key \K of the user's root, which is left out of the answer.
TReading ReadBelowKey(std::string_view lines) {
  TReading reading("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n" + std::string(lines));
  EXPECT_FALSE(reading.Entries.empty());
  EXPECT_EQ(reading.Entries.front(), "key \\K");
  reading.Entries.erase(reading.Entries.begin());
  return reading;
}

void ExpectMalformed(std::string_view line) {
  const TReading reading = ReadBelowKey(std::string(line) + "\r\n\"after\"=dword:00000001\r\n");
  EXPECT_EQ(reading.Entries, TLines{"value \\K after 4:01000000"}) << line;
  EXPECT_EQ(reading.Skipped, 1U) << line;
}

void ExpectValue(std::string_view line, const std::string& value) {
  const TReading reading = ReadBelowKey(std::string(line) + "\r\n");
  EXPECT_EQ(reading.Entries, TLines{"value \\K " + value}) << line;
  EXPECT_EQ(reading.Skipped, 0U) << line;
}

}  // namespace

TEST(RegFileReader, TheHeaderIsTheFirstLineThatIsNotBlank) {
  EXPECT_TRUE(TReading("REGEDIT4\r\n").HasHeader);
  EXPECT_TRUE(TReading("REGEDIT4").HasHeader);
  EXPECT_TRUE(TReading("\n\n REGEDIT4 \n").HasHeader);
  EXPECT_FALSE(TReading("").HasHeader);
  EXPECT_FALSE(TReading("REGEDIT\n").HasHeader);
  EXPECT_FALSE(TReading("REGEDIT45\n").HasHeader);
  EXPECT_FALSE(TReading("[HKEY_CURRENT_USER\\K]\nREGEDIT4\n").HasHeader);
  EXPECT_FALSE(TReading("Windows Registry Editor Version 5.00\n").HasHeader);
  EXPECT_FALSE(TReading(std::string_view("\xFF\xFER\0E\0G\0", 8)).HasHeader);
}

TEST(RegFileReader, AFileWithoutTheHeaderSaysNothing) {
  EXPECT_EQ(TReading("[HKEY_CURRENT_USER\\K]\n@=\"x\"\n").Entries, TLines{});
}

TEST(RegFileReader, LineEndsOfEachKindEndALine) {
  const TLines both = {"key \\K", "value \\K a 4:01000000", "value \\K b 4:02000000"};
  for (const std::string end : {"\r\n", "\n", "\r"}) {
    const TReading reading("REGEDIT4" + end + end + "[HKEY_CURRENT_USER\\K]" + end + "\"a\"=dword:1" + end +
                           "\"b\"=dword:2" + end);
    EXPECT_EQ(reading.Entries, both);
    EXPECT_EQ(reading.Skipped, 0U);
  }
  EXPECT_EQ(TReading("REGEDIT4\r[HKEY_CURRENT_USER\\K]\n\"a\"=dword:1\r\n\"b\"=dword:2").Entries, both);
}

TEST(RegFileReader, AMissingLastLineEndLosesNothing) {
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:01,02").Entries, TLines{"value \\K a 3:0102"});
  EXPECT_EQ(TReading("REGEDIT4\n[HKEY_CURRENT_USER\\K]").Entries, TLines{"key \\K"});
}

TEST(RegFileReader, CommentsAndBlankLinesSayNothing) {
  const TReading reading =
      ReadBelowKey("; [HKEY_CURRENT_USER\\Other]\r\n\r\n \t \r\n  ;\r\n\"a\"=dword:1 ;one\r\n");
  EXPECT_EQ(reading.Entries, TLines{"value \\K a 4:01000000"});
  EXPECT_EQ(reading.Skipped, 0U);
}

TEST(RegFileReader, BlanksAroundTokensDontCount) {
  ExpectValue("  \"a\" =\t\"x\"  ", "a 1:78000000");
  ExpectValue("\t@ = dword: 0000000a \t", " 4:0a000000");
  ExpectValue("\"a\"= hex: 01 , 02\t,03 ", "a 3:010203");
  EXPECT_EQ(TReading("REGEDIT4\n [HKEY_CURRENT_USER\\K] \n").Entries, TLines{"key \\K"});
}

TEST(RegFileReader, BlanksInsideNamesAndStringsCount) {
  ExpectValue("\" a \"=\" x \"", " a  1:2000780020000000");
  EXPECT_EQ(TReading("REGEDIT4\n[HKEY_CURRENT_USER\\ K ]\n").Entries, TLines{"key \\ K "});
}

TEST(RegFileReader, AnAtSignOrAnEmptyNameIsTheDefaultValue) {
  ExpectValue("@=\"\"", " 1:0000");
  ExpectValue("\"\"=\"\"", " 1:0000");
  ExpectValue("\"@\"=\"\"", "@ 1:0000");
}

TEST(RegFileReader, EscapesStandForQuotesBackslashesAndLineBreaks) {
  ExpectValue(R"("a\"b\\c"="\\\"")", "a\"b\\c 1:5c0022000000");
  ExpectValue(R"("a"="x\r\ny")", "a 1:78000d000a0079000000");
}

TEST(RegFileReader, CommentsAboutAKeyWithoutItsLineEndTheKeyBefore) {
  const TReading reading = ReadBelowKey(";Corvalt volatile=1\r\n\"a\"=\"x\"\r\n\"b\"=\"y\"\r\n");
  EXPECT_EQ(reading.Entries, TLines());
  EXPECT_EQ(reading.Skipped, 2U);
}

TEST(RegFileReader, CommentsAboutAKeyWhoseLineIsDamagedDoNotCountForTheNext) {
  const std::string file =
      "REGEDIT4\r\n;Corvalt volatile=1\r\nXHKEY_CURRENT_USER\\A]\r\n[HKEY_CURRENT_USER\\B]\r\n";
  TMemoryLocale locale;
  TRegFileReader reader({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, locale);
  const TRegFileEntry* entry = reader.Next();
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->KeyPath, u"\\B");
  EXPECT_EQ(entry->Attributes, TRegFileAttributes());
  EXPECT_EQ(reader.LinesSkipped(), 1U);
}

TEST(RegFileReader, UnknownEscapesAreMalformed) {
  ExpectMalformed(R"("a"="C:\temp")");
  ExpectMalformed(R"("a\x"="b")");
  ExpectMalformed(R"("a"="b\0c")");
}

TEST(RegFileReader, AStringMayHoldEverythingElse) {
  ExpectValue("\"a=;[]@\"=\"b=;[]@\"", "a=;[]@ 1:62003d003b005b005d0040000000");
}

TEST(RegFileReader, BytesOfTheCodePageAreDecoded) {
  ExpectValue("\"\xE4\x80\"=\"\x80\"", "\xC3\xA4\xE2\x82\xAC 1:ac200000");
  ExpectValue("\"a\"=hex(2):80,00", "a 2:ac200000");
}

TEST(RegFileReader, StringsWithLineBreaksGoOnToTheirClosingQuote) {
  const TReading reading = ReadBelowKey("\"a\"=\"x\r\n[HKEY_CURRENT_USER]\ny\"\r\n\"b\"=dword:1\r\n");
  EXPECT_EQ(reading.Entries.size(), 2U);
  EXPECT_EQ(
      reading.Entries.front(),
      "value \\K a "
      "1:"
      "78000d000a005b0048004b00450059005f00430055005200520045004e0054005f0055005300450052005d000a0079000000");
  EXPECT_EQ(reading.Skipped, 0U);
}

TEST(RegFileReader, AStringWithoutItsClosingQuoteTakesNoOtherLineWithIt) {
  ExpectMalformed("\"a\"=\"x");
  ExpectMalformed("\"a\"=\"x\\\"");
  ExpectMalformed("\"a\"=\"x\\");
  const TReading reading =
      ReadBelowKey("\"a\"=\"x\r\n\r\n[HKEY_CURRENT_USER\\L]\r\n\"b\"=\"y\"\r\n\"c\"=\"z");
  EXPECT_EQ(reading.Entries, (TLines{"key \\L", "value \\L b 1:79000000"}));
  EXPECT_EQ(reading.Skipped, 2U);
}

TEST(RegFileReader, IntegersHaveOneToEightDigits) {
  ExpectValue("\"a\"=dword:0000FFff", "a 4:ffff0000");
  ExpectValue("\"a\"=dword:1", "a 4:01000000");
  ExpectValue("\"a\"=DWORD:80000000", "a 4:00000080");
  ExpectMalformed("\"a\"=dword:");
  ExpectMalformed("\"a\"=dword:123456789");
  ExpectMalformed("\"a\"=dword:12g");
  ExpectMalformed("\"a\"=dword:-1");
  ExpectMalformed("\"a\"=dword:1 2");
}

TEST(RegFileReader, BinaryDataAreBytesBetweenCommas) {
  ExpectValue("\"a\"=hex:", "a 3:");
  ExpectValue("\"a\"=hex:1,2,fF", "a 3:0102ff");
  ExpectMalformed("\"a\"=hex:01,");
  ExpectMalformed("\"a\"=hex:,01");
  ExpectMalformed("\"a\"=hex:01,,02");
  ExpectMalformed("\"a\"=hex:01 02");
  ExpectMalformed("\"a\"=hex:100");
  ExpectMalformed("\"a\"=hex:0g");
  ExpectMalformed("\"a\"=hex");
  ExpectMalformed("\"a\"=hex 01");
}

TEST(RegFileReader, HexWithATypeIsOfAnyTypeNumber) {
  ExpectValue("\"a\"=hex(0):01", "a 0:01");
  ExpectValue("\"a\"=hex(4):01,02,03", "a 4:010203");
  ExpectValue("\"a\"=hex(b):01,02,03,04,05,06,07,08", "a 11:0102030405060708");
  ExpectValue("\"a\"=hex(FFFF0001):01", "a 4294901761:01");
  ExpectMalformed("\"a\"=hex():01");
  ExpectMalformed("\"a\"=hex(100000000):01");
  ExpectMalformed("\"a\"=hex(2:01");
  ExpectMalformed("\"a\"=hex(g):01");
}

TEST(RegFileReader, HexOfTextTypesIsAnsiText) {
  ExpectValue("\"a\"=hex(1):41,00", "a 1:41000000");
  ExpectValue("\"a\"=hex(1):41", "a 1:4100");
  ExpectValue("\"a\"=hex(2):", "a 2:");
  ExpectValue("\"a\"=hex(7):41,00,42,00,00", "a 7:41000000420000000000");
}

TEST(RegFileReader, FoldedLinesAreOne) {
  ExpectValue("\"a\"=hex:01,\\\r\n  02,\\\r\n  03", "a 3:010203");
  ExpectValue("\"a\"=hex:\\\n01,\\ \n02", "a 3:0102");
  ExpectValue("\"a\"=hex:01,\\\r\n\r\n  ; between\r\n  02", "a 3:0102");
  ExpectValue("\"a\"=hex:01,\\ ; after\r\n  02", "a 3:0102");
}

TEST(RegFileReader, AFoldThatLeadsNowhereIsMalformed) {
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:01,\\").Skipped, 1U);
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:01,\\\r\n\r\n").Skipped, 1U);
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:01,\\\r\n").Entries, TLines{});
}

TEST(RegFileReader, ABrokenFoldTakesNoEntryWithIt) {
  const TReading reading =
      ReadBelowKey("\"a\"=hex:01,\\\r\n  02,\\\r\n[HKEY_CURRENT_USER\\L]\r\n\"b\"=dword:1\r\n");
  EXPECT_EQ(reading.Entries, (TLines{"key \\L", "value \\L b 4:01000000"}));
  EXPECT_EQ(reading.Skipped, 2U);
  const TReading value = ReadBelowKey("\"a\"=hex:01,\\\r\n\"b\"=dword:1\r\n");
  EXPECT_EQ(value.Entries, TLines{"value \\K b 4:01000000"});
  EXPECT_EQ(value.Skipped, 1U);
}

TEST(RegFileReader, TheLeftoversOfABrokenFoldAreCountedLineByLine) {
  const TReading reading = ReadBelowKey("\"a\"=hex:01,\\\r\n  zz,\\\r\n  03\r\n\"b\"=dword:1\r\n");
  EXPECT_EQ(reading.Entries, TLines{"value \\K b 4:01000000"});
  EXPECT_EQ(reading.Skipped, 3U);
}

TEST(RegFileReader, DeletionsOfKeysAndValues) {
  const TReading reading = ReadBelowKey("\"a\"=-\r\n@ = - ; gone\r\n[-HKEY_LOCAL_MACHINE\\Foo\\Bar]\r\n");
  EXPECT_EQ(reading.Entries,
            (TLines{"delete value \\K a", "delete value \\K ", "delete key HKEY_LOCAL_MACHINE\\Foo\\Bar"}));
  ExpectMalformed("\"a\"=-1");
}

TEST(RegFileReader, ValuesAfterADeletedKeyBelongToNoKey) {
  const TReading reading("REGEDIT4\n[-HKEY_CURRENT_USER\\K]\n\"a\"=\"x\"\n\"b\"=-\n");
  EXPECT_EQ(reading.Entries, TLines{"delete key \\K"});
  EXPECT_EQ(reading.Skipped, 2U);
}

TEST(RegFileReader, TheLastBracketEndsAKeyLine) {
  EXPECT_EQ(TReading("REGEDIT4\n[HKEY_CURRENT_USER\\a]b[c]]\n").Entries, TLines{"key \\a]b[c]"});
  EXPECT_EQ(TReading("REGEDIT4\n[HKEY_CURRENT_USER\\a] ; a comment\n").Entries, TLines{"key \\a"});
}

TEST(RegFileReader, EveryRootIsKnownInEachLetterCase) {
  EXPECT_EQ(TReading("REGEDIT4\n[HKEY_CLASSES_ROOT\\a]\n[HKEY_USERS\\a]\n[HKEY_CURRENT_CONFIG\\a]\n"
                     "[HKEY_DYN_DATA\\a]\n[hkey_local_machine\\a]\n[HKEY_CURRENT_USER]\n")
                .Entries,
            (TLines{"key HKEY_CLASSES_ROOT\\a", "key HKEY_USERS\\a", "key HKEY_CURRENT_CONFIG\\a",
                    "key HKEY_DYN_DATA\\a", "key HKEY_LOCAL_MACHINE\\a", "key \\"}));
}

TEST(RegFileReader, ValuesAfterAMalformedKeyLineGoToNoKey) {
  for (const std::string line :
       {"[HKEY_CURRENT_USER\\L", "[HKCU\\L]", "[\\L]", "[]", "[HKEY_CURRENT_USER\\L] x",
        "[ HKEY_CURRENT_USER\\L]", "[HKEY_CURRENT_USER\\\\L]", "[--HKEY_CURRENT_USER\\L]",
        "HKEY_CURRENT_USER\\L]", "x[HKEY_CURRENT_USER\\L]"}) {
    const TReading reading = ReadBelowKey(
        line + "\r\n\"a\"=\"x\"\r\n\"b\"=hex:01,\\\r\n  02\r\n[HKEY_CURRENT_USER\\M]\r\n@=\"y\"\r\n");
    EXPECT_EQ(reading.Entries, (TLines{"key \\M", "value \\M  1:79000000"})) << line;
    EXPECT_EQ(reading.Skipped, 4U) << line;
  }
}

TEST(RegFileReader, AStringWithLineBreaksAfterAMalformedKeyLineIsSkippedWhole) {
  const TReading reading =
      ReadBelowKey("[HKEY_CURRENT_USER\\L\r\n\"a\"=\"x\r\n[HKEY_CURRENT_USER]\r\n\"\r\n");
  EXPECT_EQ(reading.Entries, TLines{});
  EXPECT_EQ(reading.Skipped, 4U);
}

TEST(RegFileReader, ValuesBeforeAnyKeyLineGoNowhere) {
  const TReading reading("REGEDIT4\n\"a\"=\"x\"\n");
  EXPECT_EQ(reading.Entries, TLines{});
  EXPECT_EQ(reading.Skipped, 1U);
}

TEST(RegFileReader, MalformedLinesAreSkippedAndCounted) {
  ExpectMalformed("garbage");
  ExpectMalformed("a=\"x\"");
  ExpectMalformed("\"a\"");
  ExpectMalformed("\"a\"=");
  ExpectMalformed("\"a\"\"b\"");
  ExpectMalformed("\"a=\"x\"");
  ExpectMalformed("\"a\"=\"x\"y");
  ExpectMalformed("\"a\"=x");
  ExpectMalformed("\"a\"=qword:1");
  ExpectMalformed("@\"a\"=\"x\"");
  ExpectMalformed("REGEDIT4");
  ExpectMalformed("\\");
  ExpectMalformed(std::string_view("\"a\0\"=\"x\"", 9));
  ExpectMalformed(std::string_view("\"a\"=\"x\0\"", 9));
}

TEST(RegFileReader, OurOwnKeysAndValuesAreRead) {
  const TReading reading(
      "REGEDIT4\n;TIORegistry key=HKEY_CURRENT_USER:5c000104\n;TIORegistry "
      "value=6100+\n;TIORegistry+0d00:ffff0001:+\n"
      ";TIORegistry+00+\n;TIORegistry+ff\n;TIORegistry value=:1:\n");
  EXPECT_EQ(reading.Entries,
            (TLines{"key \\\xD0\x81", "value \\\xD0\x81 a\r 4294901761:00ff", "value \\\xD0\x81  1:"}));
  EXPECT_EQ(reading.Skipped, 0U);
}

TEST(RegFileReader, MalformedLinesOfOurOwnAreSkippedAndCounted) {
  ExpectMalformed(";TIORegistry value=");
  ExpectMalformed(";TIORegistry value=6:1:");
  ExpectMalformed(";TIORegistry value=61:1:00");
  ExpectMalformed(";TIORegistry value=6100:1:0");
  ExpectMalformed(";TIORegistry value=6100:1:00 ");
  ExpectMalformed(";TIORegistry value=6100::00");
  ExpectMalformed(";TIORegistry value=6100:1:00+");
  ExpectMalformed(";TIORegistry value=0000:1:00");
  ExpectMalformed(";TIORegistry+00");
}

TEST(RegFileReader, ValuesAfterAMalformedKeyOfOurOwnGoToNoKey) {
  for (const std::string line :
       {";TIORegistry key=HKEY_CURRENT_USER:", ";TIORegistry key=HKCU:5c006100",
        ";TIORegistry key=HKEY_CURRENT_USER:6100", ";TIORegistry key=HKEY_CURRENT_USER:5c0061",
        ";TIORegistry key=HKEY_CURRENT_USER:5c006100+", ";TIORegistry kex=HKEY_CURRENT_USER"}) {
    const TReading reading = ReadBelowKey(line + "\n\"a\"=\"x\"\n;TIORegistry value=6100:1:\n");
    EXPECT_EQ(reading.Entries, TLines{}) << line;
    EXPECT_EQ(reading.Skipped, 3U) << line;
  }
}

TEST(RegFileReader, AFoldNeverSwallowsAValueOfOurOwn) {
  const TReading reading = ReadBelowKey("\"a\"=hex:01\\\r\n;TIORegistry value=6200:3:01\r\n");
  EXPECT_EQ(reading.Entries, TLines{"value \\K b 3:01"});
  EXPECT_EQ(reading.Skipped, 1U);
}

// Readers that go over a line more than a few times would not end here, at the whole size.
class RegFileReaderHugeFile : public testing::Test {
 protected:
  static std::string Repeated(std::string_view part, std::size_t times) {
    std::string text;
    text.reserve(part.size() * times);
    for (std::size_t i = 0; i < times; ++i)
      text += part;
    return text;
  }

  const std::size_t m_many = LargeInput(4 * 1024 * 1024, 128 * 1024);
};

TEST_F(RegFileReaderHugeFile, OfOneLine) {
  EXPECT_EQ(ReadBelowKey(std::string(16 * m_many, 'x')).Skipped, 1U);
}

TEST_F(RegFileReaderHugeFile, OfMillionsOfEmptyLines) {
  const std::string lines(LargeInput(10'000'000, 250'000), '\n');
  EXPECT_EQ(ReadBelowKey(lines).Skipped, 0U);
}

TEST_F(RegFileReaderHugeFile, OfEmptyLinesBehindAFold) {
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:01,\\" + std::string(m_many, '\n')).Skipped, 1U);
}

TEST_F(RegFileReaderHugeFile, OfBackslashes) {
  const std::string backslashes(m_many, '\\');
  EXPECT_EQ(ReadBelowKey(backslashes).Skipped, 1U);
  EXPECT_EQ(ReadBelowKey("\"" + backslashes).Skipped, 1U);
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:" + backslashes).Skipped, 1U);
}

TEST_F(RegFileReaderHugeFile, OfFolds) {
  EXPECT_EQ(ReadBelowKey("\"a\"=hex:" + Repeated("\\\n", m_many)).Skipped, m_many);
}

TEST_F(RegFileReaderHugeFile, OfOneString) {
  const TReading reading = ReadBelowKey("\"a\"=\"" + std::string(m_many, 'x') + "\"");
  EXPECT_EQ(reading.Skipped, 0U);
  ASSERT_EQ(reading.Entries.size(), 1U);
  EXPECT_GT(reading.Entries.front().size(), 4 * m_many);
}

TEST_F(RegFileReaderHugeFile, OfStringsWithoutAnEnd) {
  EXPECT_EQ(ReadBelowKey(Repeated("@=\"a\n", m_many / 4)).Skipped, m_many / 4);
}

TEST_F(RegFileReaderHugeFile, OfBrackets) {
  EXPECT_EQ(ReadBelowKey(std::string(m_many, ']')).Skipped, 1U);
  EXPECT_EQ(ReadBelowKey(std::string(m_many, '[')).Skipped, 1U);
}

TEST_F(RegFileReaderHugeFile, OfOneValueOfOurOwn) {
  EXPECT_EQ(ReadBelowKey(";TIORegistry value=:3:" + std::string(m_many, '0')).Skipped, 0U);
}

}  // namespace corvalt
