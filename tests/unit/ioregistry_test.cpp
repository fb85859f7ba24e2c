#include "formats/ioregistry.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/memory/memorysystem.h"
#include "tests/support/keyat.h"
#include "tests/support/largeinput.h"
#include "tests/support/nastyregistry.h"

namespace corvalt {

namespace {

using TLines = std::vector<std::string>;

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// A registry in memory with an exporter over it, and the key HKEY_CURRENT_USER\K that most tests use.
class IORegistry : public testing::Test {
 protected:
  void Set(TextView name, std::uint32_t type, TBytes data) {
    System.Registry.SetRaw(kKey, {Text(name), type, std::move(data)});
  }

  std::string Exported() const {
    const TBytes& text = Exporter.ExportedText();
    return {text.begin(), text.end()};
  }

  // What the export of \K says below its key line.
  std::string ExportedBelowKey() {
    Exporter.Clear();
    EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Done);
    const std::string head = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n";
    const std::string text = Exported();
    EXPECT_TRUE(text.starts_with(head)) << text;
    return text.substr(head.size());
  }

  // Exports \K, deletes it, imports it, and expects the registry as it was.
  void ExpectRoundTrip() {
    const TLines before = System.Registry.Dump(u"HKEY_CURRENT_USER");
    Exporter.Clear();
    ASSERT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Done);
    EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
    System.Registry.RemoveKey(kKey);
    const TImportResult imported = Exporter.Import(Exporter.ExportedText());
    EXPECT_TRUE(imported.EverythingWritten());
    EXPECT_EQ(System.Registry.Dump(u"HKEY_CURRENT_USER"), before) << Exported();
  }

  static constexpr TextView kKey = u"HKEY_CURRENT_USER\\K";
  TMemorySystem System;
  TIORegistry Exporter{System.Raw, System.Locale};
};

}  // namespace

TEST_F(IORegistry, WithoutExportsTheTextIsTheHeaderAlone) {
  EXPECT_EQ(Exported(), "REGEDIT4\r\n");
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
}

TEST_F(IORegistry, AKeyIsWrittenWithItsSubkeys) {
  System.Registry.Set(u"HKEY_LOCAL_MACHINE\\System\\A", u"", u"default");
  System.Registry.SetInteger(u"HKEY_LOCAL_MACHINE\\System\\A", u"Number", 0xAB);
  System.Registry.AddKey(u"HKEY_LOCAL_MACHINE\\System\\A\\Empty\\Deeper");
  System.Registry.Set(u"HKEY_LOCAL_MACHINE\\System\\A\\Full", u"Name", u"Data");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_LOCAL_MACHINE\\SYSTEM\\a")), TExportResult::Done);
  EXPECT_EQ(Exported(),
            "REGEDIT4\r\n"
            "\r\n"
            "[HKEY_LOCAL_MACHINE\\System\\A]\r\n"
            "@=\"default\"\r\n"
            "\"Number\"=dword:000000ab\r\n"
            "\r\n"
            "[HKEY_LOCAL_MACHINE\\System\\A\\Empty]\r\n"
            "\r\n"
            "[HKEY_LOCAL_MACHINE\\System\\A\\Empty\\Deeper]\r\n"
            "\r\n"
            "[HKEY_LOCAL_MACHINE\\System\\A\\Full]\r\n"
            "\"Name\"=\"Data\"\r\n");
}

TEST_F(IORegistry, AValueIsWrittenAloneUnderItsKey) {
  System.Registry.Set(kKey, u"One", u"1");
  System.Registry.Set(kKey, u"Two", u"2");
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\Sub");
  EXPECT_EQ(Exporter.ExportValue(KeyAt(kKey), u"TWO"), TExportResult::Done);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n\"Two\"=\"2\"\r\n");
}

TEST_F(IORegistry, ANameOfOneNulIsTheDefaultValue) {
  System.Registry.Set(kKey, u"", u"x");
  EXPECT_EQ(Exporter.ExportValue(KeyAt(kKey), TextView(u"\0", 1)), TExportResult::Done);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n@=\"x\"\r\n");
}

TEST_F(IORegistry, ExportsAreCollectedUntilCleared) {
  System.Registry.Set(kKey, u"One", u"1");
  EXPECT_EQ(Exporter.ExportValue(KeyAt(kKey), u"One"), TExportResult::Done);
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Done);
  EXPECT_EQ(Exported(),
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n\"One\"=\"1\"\r\n"
            "\r\n[HKEY_CURRENT_USER\\K]\r\n\"One\"=\"1\"\r\n");
  Exporter.Clear();
  EXPECT_EQ(Exported(), "REGEDIT4\r\n");
}

TEST_F(IORegistry, AKeyPathMayLackItsBackslashOrHaveOneTooMany) {
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\Sub");
  for (const TextView path : {u"K\\Sub", u"\\K\\Sub", u"K\\Sub\\", u"\\K\\\\Sub"}) {
    Exporter.Clear();
    EXPECT_EQ(Exporter.ExportKey(*TKeyPath::Parse(kHkeyCurrentUser, path)), TExportResult::Done);
    EXPECT_EQ(Exported(), "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K\\Sub]\r\n");
  }
}

TEST_F(IORegistry, AWholeRootCanBeExported) {
  System.Registry.Set(u"HKEY_CURRENT_CONFIG", u"a", u"1");
  System.Registry.AddKey(u"HKEY_CURRENT_CONFIG\\K");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_CONFIG\\")), TExportResult::Done);
  EXPECT_EQ(Exported(),
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_CONFIG]\r\n\"a\"=\"1\"\r\n\r\n[HKEY_CURRENT_CONFIG\\K]\r\n");
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
}

TEST_F(IORegistry, WhatIsMissingAppendsNothing) {
  System.Registry.AddKey(kKey);
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\Gone")), TExportResult::Missing);
  EXPECT_EQ(Exporter.ExportValue(KeyAt(kKey), u"Gone"), TExportResult::Missing);
  EXPECT_EQ(Exporter.ExportValue(KeyAt(u"HKEY_CURRENT_USER\\Gone"), u"x"), TExportResult::Missing);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n");
}

TEST_F(IORegistry, ADeniedKeyBelowLeavesTheWholeExportOut) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\A", u"a", u"1");
  System.Registry.Deny(u"HKEY_CURRENT_USER\\K\\B\\C");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Unreadable);
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\K\\B\\C")), TExportResult::Unreadable);
  EXPECT_EQ(Exporter.ExportValue(KeyAt(u"HKEY_CURRENT_USER\\K\\B\\C"), u"a"), TExportResult::Unreadable);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n");
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(BytesOf("REGEDIT4\r\n")));
}

TEST_F(IORegistry, ALinkBelowLeavesTheWholeExportOut) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\Target", u"a", u"1");
  System.Registry.MakeLink(u"HKEY_CURRENT_USER\\K\\Link", u"HKEY_CURRENT_USER\\Target");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Unreadable);
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\K\\Link")), TExportResult::Unreadable);
  EXPECT_EQ(Exporter.ExportValue(KeyAt(u"HKEY_CURRENT_USER\\K\\Link"), u"a"), TExportResult::Unreadable);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n");
}

TEST_F(IORegistry, WhatCantBeReadLeavesEarlierExportsAlone) {
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\Good");
  System.Registry.Deny(u"HKEY_CURRENT_USER\\K\\B");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\Good")), TExportResult::Done);
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Unreadable);
  EXPECT_EQ(Exported(), "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Good]\r\n");
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
}

TEST_F(IORegistry, StringsAreQuoted) {
  Set(u"a", kRegSz, StringBytes(u"C:\\Program Files\\\"x\""));
  EXPECT_EQ(ExportedBelowKey(), "\"a\"=\"C:\\\\Program Files\\\\\\\"x\\\"\"\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, NamesAreEscapedToo) {
  Set(u"a\"b\\c=[d];@", kRegSz, StringBytes(u""));
  EXPECT_EQ(ExportedBelowKey(), "\"a\\\"b\\\\c=[d];@\"=\"\"\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, TextOfTheCodePageIsWrittenInIt) {
  Set(u"\u00E4", kRegSz, StringBytes(u"\u20AC"));
  Set(u"e", kRegExpandSz, StringBytes(u"\u20AC"));
  EXPECT_EQ(ExportedBelowKey(), "\"\xE4\"=\"\x80\"\r\n\"e\"=hex(2):80,00\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, ExpandableAndMultipleStringsAreAnsiBytes) {
  Set(u"e", kRegExpandSz, StringBytes(u"%x%"));
  Set(u"m", kRegMultiSz, StringBytes(TextView(u"a\0b\0", 4)));
  Set(u"n", kRegMultiSz, StringBytes(u""));
  EXPECT_EQ(ExportedBelowKey(),
            "\"e\"=hex(2):25,78,25,00\r\n\"m\"=hex(7):61,00,62,00,00\r\n\"n\"=hex(7):00\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, StringsWithLineBreaksAreAnsiBytes) {
  Set(u"a", kRegSz, StringBytes(u"x\r\ny"));
  EXPECT_EQ(ExportedBelowKey(), "\"a\"=hex(1):78,0d,0a,79,00\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, EachTypeKeepsItsNumber) {
  for (std::uint32_t type = 0; type <= 12; ++type)
    Set(u"t" + DecimalText(type), type, {1, 0, 0, 0});
  Set(u"u", 0xFFFF0001, {1});
  // The first bytes of text types are no text that ends in a NUL and has none before it.
  EXPECT_EQ(ExportedBelowKey(),
            "\"t0\"=hex(0):01,00,00,00\r\n"
            "\"t1\"=hex(1):01,00\r\n"
            "\"t2\"=hex(2):01,00\r\n"
            "\"t3\"=hex:01,00,00,00\r\n"
            "\"t4\"=dword:00000001\r\n"
            "\"t5\"=hex(5):01,00,00,00\r\n"
            "\"t6\"=hex(6):01,00,00,00\r\n"
            "\"t7\"=hex(7):01,00\r\n"
            "\"t8\"=hex(8):01,00,00,00\r\n"
            "\"t9\"=hex(9):01,00,00,00\r\n"
            "\"t10\"=hex(a):01,00,00,00\r\n"
            "\"t11\"=hex(b):01,00,00,00\r\n"
            "\"t12\"=hex(c):01,00,00,00\r\n"
            "\"u\"=hex(ffff0001):01\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, EmptyDataOfEachTypeStayEmpty) {
  for (std::uint32_t type = 0; type <= 12; ++type)
    Set(u"t" + DecimalText(type), type, {});
  EXPECT_TRUE(
      ExportedBelowKey().starts_with("\"t0\"=hex(0):\r\n\"t1\"=hex(1):\r\n\"t2\"=hex(2):\r\n\"t3\"=hex:\r\n"
                                     "\"t4\"=hex(4):\r\n"));
  ExpectRoundTrip();
}

TEST_F(IORegistry, IntegersOfTheWrongSizeAreBytes) {
  Set(u"a", kRegDword, {1, 2, 3});
  Set(u"b", kRegDword, {1, 2, 3, 4, 5});
  EXPECT_EQ(ExportedBelowKey(), "\"a\"=hex(4):01,02,03\r\n\"b\"=hex(4):01,02,03,04,05\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, StringsThatDontEndInOneNulAreWrittenExactly) {
  Set(u"a", kRegSz, UnitBytes(u"x"));
  Set(u"b", kRegSz, UnitBytes(TextView(u"x\0y\0", 4)));
  Set(u"c", kRegSz, UnitBytes(TextView(u"x\0\0", 3)));
  Set(u"d", kRegSz, {0x41, 0, 0});
  Set(u"e", kRegMultiSz, UnitBytes(u"x"));
  Set(u"f", kRegExpandSz, UnitBytes(TextView(u"\0\0", 2)));
  EXPECT_EQ(ExportedBelowKey(),
            ";TIORegistry value=6100:1:7800\r\n"
            ";TIORegistry value=6200:1:7800000079000000\r\n"
            ";TIORegistry value=6300:1:780000000000\r\n"
            ";TIORegistry value=6400:1:410000\r\n"
            ";TIORegistry value=6500:7:7800\r\n"
            ";TIORegistry value=6600:2:00000000\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, TextOutsideTheCodePageIsWrittenExactly) {
  Set(u"a", kRegSz, StringBytes(u"\u0401"));
  Set(u"\u0401", kRegDword, {1, 0, 0, 0});
  Set(u"s", kRegExpandSz, StringBytes(Text(1, char16_t(0xD800))));
  Set(Text(1, char16_t(0xDC00)), kRegSz, StringBytes(u"x"));
  EXPECT_EQ(ExportedBelowKey(),
            ";TIORegistry value=6100:1:01040000\r\n"
            ";TIORegistry value=0104:4:01000000\r\n"
            ";TIORegistry value=7300:2:00d80000\r\n"
            ";TIORegistry value=00dc:1:78000000\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, NamesWithLineBreaksAreWrittenExactly) {
  Set(u"a\r\n[HKEY_CURRENT_USER\\Evil]", kRegSz, StringBytes(u"x"));
  EXPECT_EQ(ExportedBelowKey().find("Evil"), std::string::npos);
  ExpectRoundTrip();
}

TEST_F(IORegistry, BelowAKeyWrittenExactlyEverythingIs) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\\u0401", u"a", u"x");
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\\u0401\\Plain", u"a", u"x");
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\\u0402", u"", u"");
  System.Registry.Set(u"HKEY_CURRENT_USER\\L", u"a", u"x");
  EXPECT_EQ(ExportedBelowKey(),
            "\r\n"
            ";TIORegistry key=HKEY_CURRENT_USER:5c004b005c000104\r\n"
            ";TIORegistry value=6100:1:78000000\r\n"
            "\r\n"
            ";TIORegistry key=HKEY_CURRENT_USER:5c004b005c0001045c0050006c00610069006e00\r\n"
            ";TIORegistry value=6100:1:78000000\r\n"
            "\r\n"
            ";TIORegistry key=HKEY_CURRENT_USER:5c004b005c000204\r\n"
            ";TIORegistry value=:1:0000\r\n");
  ExpectRoundTrip();
  EXPECT_EQ(Exporter.ExportKey(KeyAt(u"HKEY_CURRENT_USER\\L")), TExportResult::Done);
  EXPECT_TRUE(Exported().ends_with("\r\n[HKEY_CURRENT_USER\\L]\r\n\"a\"=\"x\"\r\n"));
}

TEST_F(IORegistry, KeyNamesWithLineBreaksAreWrittenExactly) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\a]\r\n[HKEY_CURRENT_USER\\Evil", u"a", u"x");
  EXPECT_EQ(ExportedBelowKey().find("Evil"), std::string::npos);
  ExpectRoundTrip();
}

TEST_F(IORegistry, KeyNamesWithBracketsAndBlanksStayPlain) {
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\ a]b[\"=;@ ");
  EXPECT_EQ(ExportedBelowKey(), "\r\n[HKEY_CURRENT_USER\\K\\ a]b[\"=;@ ]\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, LongBinaryLinesFoldAsTheSystemsEditorFoldsThem) {
  TBytes data;
  for (std::uint8_t i = 0; i < 60; ++i)
    data.push_back(i);
  Set(u"b060", kRegBinary, data);
  EXPECT_EQ(ExportedBelowKey(),
            "\"b060\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\r\n"
            "  16,17,18,19,1a,1b,1c,1d,1e,1f,20,21,22,23,24,25,26,27,28,29,2a,2b,2c,2d,2e,\\\r\n"
            "  2f,30,31,32,33,34,35,36,37,38,39,3a,3b\r\n");
  data.resize(23);
  Set(u"b060", kRegBinary, data);
  EXPECT_EQ(ExportedBelowKey(),
            "\"b060\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15,\\\r\n  16\r\n");
  data.resize(22);
  Set(u"b060", kRegBinary, data);
  EXPECT_EQ(ExportedBelowKey(),
            "\"b060\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,15\r\n");
}

TEST_F(IORegistry, BehindALongNameOneByteStandsOnTheFirstLine) {
  Set(Text(90, u'n'), kRegBinary, {0, 1, 2});
  EXPECT_EQ(ExportedBelowKey(), "\"" + std::string(90, 'n') + "\"=hex:00,\\\r\n  01,02\r\n");
  ExpectRoundTrip();
}

TEST_F(IORegistry, NoFoldedLineIsLongerThanEightyColumns) {
  for (std::size_t length = 1; length < 70; ++length) {
    Set(Text(length, u'n'), kRegBinary, TBytes(100, 7));
    Set(Text(length, char16_t(0x401)), kRegBinary, TBytes(100, 7));
  }
  for (const Text& line : SplitLines(FromAscii(ExportedBelowKey())))
    EXPECT_LE(line.size(), 80U) << EncodeUtf8(line);
  ExpectRoundTrip();
}

TEST_F(IORegistry, NamesOf255UnitsAndDeepTreesComeBack) {
  Text path = u"HKEY_CURRENT_USER\\K";
  for (int level = 0; level < 500; ++level)
    path += u"\\level";
  System.Registry.Set(path, Text(255, u'v'), u"deep");
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\" + Text(255, u'k'));
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\" + Text(255, char16_t(0x4E00)));
  ExpectRoundTrip();
}

TEST_F(IORegistry, ValuesOfSeveralMebibytesComeBack) {
  const std::size_t units = LargeInput(1024, 384) * 1024;
  Set(u"string", kRegSz, StringBytes(Text(2 * units, u'x')));
  Set(u"binary", kRegBinary, TBytes(3 * units, 0xA5));
  Set(u"exact", kRegSz, UnitBytes(Text(units, char16_t(0x401))));
  ExpectRoundTrip();
}

TEST_F(IORegistry, ValuesComeBackInTheirOrder) {
  System.Registry.Set(kKey, u"z", u"1");
  System.Registry.Set(kKey, u"", u"2");
  System.Registry.Set(kKey, u"a", u"3");
  ExpectRoundTrip();
}

TEST_F(IORegistry, AFileIsComparedWithTheRegistryNotWithTheText) {
  Set(u"a", kRegDword, {1, 0, 0, 0});
  System.Registry.AddKey(u"HKEY_CURRENT_USER\\K\\Sub");
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Done);
  const std::string sub = "[HKEY_CURRENT_USER\\K\\Sub]";
  const std::string key = "REGEDIT4\n[HKEY_CURRENT_USER\\K]\n";
  const std::string good = key + "\"a\"=dword:1\n" + sub;
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(BytesOf(good)));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf("")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf("REGEDIT4\n")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + "\"a\"=dword:1\n")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + "\"a\"=dword:2\n" + sub)));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + "\"A\"=dword:1\n" + sub)));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + "\"a\"=hex:01,00,00,00\n" + sub)));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + "\"a\"=-\n" + sub)));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(key + sub + "\n\"a\"=dword:1\n")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(good + "\ngarbage")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(good + "\n\"b\"=dword:1")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(BytesOf(good + "\n[-HKEY_CURRENT_USER\\K\\Sub]")));
  EXPECT_FALSE(Exporter.HoldsWhatWasExported(
      BytesOf("REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n\"a\"=dword:1\n[HKEY_LOCAL_MACHINE\\K\\Sub]")));
}

TEST_F(IORegistry, TheComparisonKeepsWhatTheRegistrySaidAtTheTimeOfExport) {
  Set(u"a", kRegSz, StringBytes(u"before"));
  EXPECT_EQ(Exporter.ExportKey(KeyAt(kKey)), TExportResult::Done);
  System.Registry.RemoveKey(kKey);
  EXPECT_TRUE(Exporter.HoldsWhatWasExported(Exporter.ExportedText()));
}

TEST_F(IORegistry, WithoutTheHeaderNothingIsImported) {
  const TImportResult result = Exporter.Import(BytesOf("[HKEY_CURRENT_USER\\K]\n@=\"x\"\n"));
  EXPECT_FALSE(result.HasHeader);
  EXPECT_FALSE(result.EverythingWritten());
  EXPECT_FALSE(System.Registry.HasKey(kKey));
}

TEST_F(IORegistry, AnImportCountsWhatItWroteAndSkipped) {
  const TImportResult result = Exporter.Import(
      BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n@=\"x\"\ngarbage\n\"a\"=dword:1\n[HKEY_CURRENT_USER\\L]\n"));
  EXPECT_TRUE(result.HasHeader);
  EXPECT_EQ(result.KeysWritten, 2U);
  EXPECT_EQ(result.ValuesWritten, 2U);
  EXPECT_EQ(result.LinesSkipped, 1U);
  EXPECT_EQ(result.WritesFailed, 0U);
  EXPECT_FALSE(result.EverythingWritten());
  EXPECT_TRUE(System.Registry.HasKey(u"HKEY_CURRENT_USER\\L"));
  EXPECT_TRUE(System.Registry.HasValue(kKey, u"a"));
}

TEST_F(IORegistry, AnImportWritesOverWhatIsThere) {
  System.Registry.Set(kKey, u"a", u"old");
  System.Registry.Set(kKey, u"b", u"stays");
  EXPECT_TRUE(
      Exporter.Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=dword:1\n")).EverythingWritten());
  EXPECT_EQ(System.Registry.FindValue(kKey, u"a")->Type, kRegDword);
  EXPECT_TRUE(System.Registry.HasValue(kKey, u"b"));
}

TEST_F(IORegistry, WhatIsThereAsTheFileHasItIsNotWrittenAgain) {
  System.Registry.Set(kKey, u"Name", u"x");
  System.Registry.Set(kKey, u"changed", u"new");
  System.Registry.Set(u"HKEY_CURRENT_USER\\L", u"Name", u"x");
  const std::uint64_t time = System.Registry.KeyAt(u"HKEY_CURRENT_USER\\L")->LastWrite;
  const TImportResult result =
      Exporter.Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"name\"=\"x\"\n\"changed\"=\"old\"\n"
                              "[HKEY_CURRENT_USER\\L]\n\"NAME\"=\"x\"\n"));
  EXPECT_TRUE(result.EverythingWritten());
  EXPECT_EQ(result.KeysWritten, 0U);
  EXPECT_EQ(result.ValuesWritten, 1U);
  EXPECT_EQ(System.Registry.KeyAt(u"HKEY_CURRENT_USER\\L")->LastWrite, time);
  EXPECT_EQ(System.Registry.FindValue(kKey, u"changed")->Data, StringBytes(u"old"));
}

TEST_F(IORegistry, OfAKeyThatMayOnlyBeReadOnlyWhatDiffersFails) {
  System.Registry.Set(kKey, u"same", u"x");
  System.Registry.Set(kKey, u"differs", u"new");
  System.Registry.LetUse(kKey, TMemoryRights::Read);
  EXPECT_TRUE(
      Exporter.Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"same\"=\"x\"\n")).EverythingWritten());
  const TImportResult result = Exporter.Import(
      BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"same\"=\"x\"\n\"differs\"=\"old\"\n\"gone\"=\"x\"\n"));
  EXPECT_EQ(result.WritesFailed, 2U);
  EXPECT_EQ(result.ValuesWritten, 0U);
}

// The same name twice: what the file has last counts.
TEST_F(IORegistry, OfAValueThatStandsInTheFileTwiceTheLastIsWritten) {
  System.Registry.Set(kKey, u"a", u"first");
  EXPECT_TRUE(Exporter
                  .Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=\"second\"\n"
                                  "[HKEY_CURRENT_USER\\K]\n\"a\"=\"first\"\n"))
                  .EverythingWritten());
  EXPECT_EQ(System.Registry.FindValue(kKey, u"a")->Data, StringBytes(u"first"));
}

TEST_F(IORegistry, AValueThatTheFileDeletesFirstIsWrittenAlsoWhenItWasThere) {
  System.Registry.Set(kKey, u"a", u"x");
  EXPECT_TRUE(Exporter.Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=-\n\"a\"=\"x\"\n"))
                  .EverythingWritten());
  EXPECT_TRUE(System.Registry.HasValue(kKey, u"a"));
}

TEST_F(IORegistry, RefusedWritesAreCountedAndTheRestGoesOn) {
  System.Registry.Deny(u"HKEY_CURRENT_USER\\K\\Denied");
  const TImportResult result = Exporter.Import(
      BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K\\Denied]\n\"a\"=\"x\"\n[HKEY_CURRENT_USER\\K]\n@=\"y\"\n"));
  EXPECT_EQ(result.WritesFailed, 2U);
  // The key itself was there, as the parent of the denied one.
  EXPECT_EQ(result.KeysWritten, 0U);
  EXPECT_EQ(result.ValuesWritten, 1U);
  EXPECT_EQ(result.LinesSkipped, 0U);
  EXPECT_FALSE(result.EverythingWritten());
  EXPECT_TRUE(System.Registry.HasValue(kKey, u""));
}

TEST_F(IORegistry, DeletionsAreCarriedOut) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\K\\Sub\\Deep", u"a", u"x");
  System.Registry.Set(kKey, u"a", u"x");
  System.Registry.Set(kKey, u"", u"x");
  const TImportResult result = Exporter.Import(
      BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=-\n@=-\n[-HKEY_CURRENT_USER\\K\\Sub]\n"));
  EXPECT_TRUE(result.EverythingWritten());
  EXPECT_EQ(System.Registry.Dump(kKey), TLines{"[HKEY_CURRENT_USER\\K]"});
}

TEST_F(IORegistry, DeletingWhatIsNotThereSucceeds) {
  const TImportResult result =
      Exporter.Import(BytesOf("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=-\n[-HKEY_CURRENT_USER\\K\\Sub]\n"));
  EXPECT_TRUE(result.EverythingWritten());
}

TEST_F(IORegistry, ADeletionNeverFollowsALink) {
  System.Registry.Set(u"HKEY_CURRENT_USER\\Target\\Sub", u"a", u"x");
  System.Registry.Set(u"HKEY_CURRENT_USER\\Target", u"a", u"x");
  System.Registry.MakeLink(u"HKEY_CURRENT_USER\\K\\Link", u"HKEY_CURRENT_USER\\Target");
  const TLines before = System.Registry.Dump(u"HKEY_CURRENT_USER");
  const TImportResult result =
      Exporter.Import(BytesOf("REGEDIT4\n[-HKEY_CURRENT_USER\\K]\n[-HKEY_CURRENT_USER\\K\\Link]\n"
                              "[HKEY_CURRENT_USER\\K\\Link]\n\"a\"=-\n"));
  EXPECT_EQ(result.WritesFailed, 4U);
  EXPECT_EQ(System.Registry.Dump(u"HKEY_CURRENT_USER"), before);
}

TEST_F(IORegistry, ARootIsNeverDeleted) {
  System.Registry.AddKey(kKey);
  EXPECT_EQ(Exporter.Import(BytesOf("REGEDIT4\n[-HKEY_CURRENT_USER]\n")).WritesFailed, 1U);
  EXPECT_TRUE(System.Registry.HasKey(kKey));
}

TEST_F(IORegistry, AnythingComesBackByteForByte) {
  const std::size_t wanted = LargeInput(100000, 10000);
  std::size_t values = 0;
  for (const TNastyKey& key : MakeNastyTree(20240607, wanted, u"\\K")) {
    const Text fullPath = u"HKEY_CURRENT_USER" + key.Path;
    System.Registry.AddKey(fullPath);
    for (const TRawValue& value : key.Values)
      System.Registry.SetRaw(fullPath, value);
    values += key.Values.size();
  }
  EXPECT_EQ(values, wanted);
  ExpectRoundTrip();
}

}  // namespace corvalt
