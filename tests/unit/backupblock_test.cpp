#include "formats/backupblock.h"

#include <gtest/gtest.h>

#include "formats/ioregistry.h"
#include "formats/regfilereader.h"
#include "formats/regfilewriter.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TBackupOrigin Origin() {
  TBackupOrigin origin;
  origin.CodePage = 1252;
  origin.ViewBits = 64;
  origin.Computer = u"ANNS-PC";
  origin.UserSid = u"S-1-5-21-1000-2000-3000-1001";
  return origin;
}

constexpr std::string_view kOriginLines =
    ";Corvalt format=1\r\n;Corvalt codepage=1252\r\n;Corvalt view=64\r\n;Corvalt computer=ANNS-PC\r\n"
    ";Corvalt user=S-1-5-21-1000-2000-3000-1001\r\n";

// A backup's text of one key without values.
std::string SmallBackup() {
  std::string text = "REGEDIT4\r\n" + std::string(kOriginLines) + "\r\n[HKEY_CURRENT_USER\\K]\r\n\r\n";
  return text + EndLine(BytesOf(text), {1, 0});
}

bool IsWhole(std::string_view text) {
  TMemoryLocale locale;
  return InspectRegFile(BytesOf(text), locale).IsWhole;
}

// The attributes of the first key of a text, or those of no key.
TRegFileAttributes AttributesIn(std::string_view text, std::size_t skipped = 0) {
  TMemoryLocale locale;
  TRegFileReader reader(BytesOf(text), locale);
  TRegFileAttributes attributes;
  while (const TRegFileEntry* entry = reader.Next())
    attributes = entry->Attributes;
  EXPECT_EQ(reader.LinesSkipped(), skipped);
  return attributes;
}

}  // namespace

TEST(BackupBlock, StandsBehindTheHeader) {
  TMemorySystem system;
  TIORegistry exporter(system.Raw, system.Locale);
  exporter.Clear(Origin());
  EXPECT_EQ(std::string(exporter.ExportedText().begin(), exporter.ExportedText().end()),
            "REGEDIT4\r\n" + std::string(kOriginLines));
}

TEST(BackupBlock, ComesBackAsItWasWritten) {
  TBackupOrigin origin = Origin();
  origin.Computer = Text(u"M\u00FC\\LLER \u0416") + char16_t(0xD800) + u"\r\n;";
  EXPECT_EQ(ReadOrigin(BytesOf("REGEDIT4\r\n" + OriginLines(origin))), origin);
  EXPECT_EQ(ReadOrigin(BytesOf("\n REGEDIT4\n" + OriginLines(origin) + "\n[x]")), origin);
}

TEST(BackupBlock, IsMissingInOtherFiles) {
  EXPECT_FALSE(ReadOrigin(BytesOf("")));
  EXPECT_FALSE(ReadOrigin(BytesOf("REGEDIT4\r\n")));
  EXPECT_FALSE(ReadOrigin(BytesOf("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n")));
  EXPECT_FALSE(ReadOrigin(BytesOf("REGEDIT4\r\n;TIORegistry key=\r\n")));
}

TEST(BackupBlock, MalformedFieldsHaveNoContent) {
  const std::optional<TBackupOrigin> origin = ReadOrigin(
      BytesOf("REGEDIT4\r\n;Corvalt format=x\r\n;Corvalt codepage=99999999999\r\n;Corvalt view=\r\n"
              ";Corvalt computer=a\\12\r\n;Corvalt later=1\r\n;Corvalt user=S-1\r\n"));
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->Format, 0U);
  EXPECT_EQ(origin->CodePage, 0U);
  EXPECT_EQ(origin->ViewBits, 0U);
  EXPECT_EQ(origin->Computer, u"");
  EXPECT_EQ(origin->UserSid, u"S-1");
}

TEST(BackupBlock, TheLastLineCountsAndChecks) {
  const std::string text = SmallBackup();
  EXPECT_TRUE(text.ends_with("\r\n;Corvalt end=1:0:" + text.substr(text.size() - 10, 8) + "\r\n"));
  EXPECT_EQ(ReadEnd(BytesOf(text)), (TBackupEnd{1, 0}));
  EXPECT_TRUE(IsWhole(text));
}

TEST(BackupBlock, NoByteChangesUnnoticed) {
  const std::string text = SmallBackup();
  const std::size_t last = text.size() - 2;  // the last line end may go
  for (std::size_t i = std::string_view("REGEDIT4\r\n").size(); i < last; ++i) {
    std::string changed = text;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_FALSE(IsWhole(changed)) << i;
  }
}

TEST(BackupBlock, AFileThatIsCutOffIsNotWhole) {
  const std::string text = SmallBackup();
  const std::size_t origin = std::string_view("REGEDIT4\r\n;Corvalt ").size();
  for (std::size_t size = origin; size < text.size() - 2; ++size)
    EXPECT_FALSE(IsWhole(text.substr(0, size))) << size;
  EXPECT_FALSE(IsWhole(text + "\r\n"));
  EXPECT_FALSE(IsWhole(text + "[HKEY_CURRENT_USER\\L]\r\n"));
}

TEST(BackupBlock, TheCountsMustBeRight) {
  std::string text = "REGEDIT4\r\n" + std::string(kOriginLines) + "\r\n[HKEY_CURRENT_USER\\K]\r\n@=\"x\"\r\n";
  EXPECT_TRUE(IsWhole(text + EndLine(BytesOf(text), {1, 1})));
  EXPECT_FALSE(IsWhole(text + EndLine(BytesOf(text), {1, 0})));
  EXPECT_FALSE(IsWhole(text + EndLine(BytesOf(text), {2, 1})));
}

TEST(BackupBlock, AFileOfAnEarlierReleaseCountsAsWhole) {
  EXPECT_TRUE(IsWhole("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n"));
}

TEST(BackupBlock, TheFilesCodePageDecodesIt) {
  TMemorySystem system;
  TIORegistry importer(system.Raw, system.Locale);
  const std::string key = "\r\n[HKEY_CURRENT_USER\\K\xE4]\r\n\"\xE4\"=hex(2):e4,00\r\n";
  EXPECT_TRUE(importer.Import(BytesOf("REGEDIT4\r\n;Corvalt codepage=1251\r\n" + key)).EverythingWritten());
  const TRawValue* value = system.Registry.FindValue(u"HKEY_CURRENT_USER\\K\u0434", u"\u0434");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->Data, StringBytes(u"\u0434"));
  // One that the system lacks can't be used.
  EXPECT_TRUE(importer.Import(BytesOf("REGEDIT4\r\n;Corvalt codepage=4711\r\n" + key)).EverythingWritten());
  EXPECT_TRUE(system.Registry.HasKey(u"HKEY_CURRENT_USER\\K\u00E4"));
}

TEST(BackupAttributes, StandBeforeTheirKeyLine) {
  TMemoryLocale locale;
  TBytes bytes;
  TRegFileAttributes attributes;
  attributes.Hive = kHkeyLocalMachine;
  attributes.ClassName = u"Shell";
  attributes.IsVolatile = true;
  attributes.Security = TBytes(40, 0x2A);
  attributes.LastWrite = 0x01D9A1B2C3D4E5F6;
  TRegFileWriter writer(locale, bytes);
  writer.WriteHeader();
  writer.WriteKey(kHkeyClassesRoot, u"\\K", attributes);
  const std::string text(bytes.begin(), bytes.end());
  EXPECT_EQ(text,
            "REGEDIT4\r\n\r\n"
            ";Corvalt hive=HKEY_LOCAL_MACHINE\r\n"
            ";Corvalt class=5300680065006c006c00\r\n"
            ";Corvalt volatile=1\r\n"
            ";Corvalt security=2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a2a+\r\n"
            ";Corvalt +2a2a2a2a2a2a2a2a2a2a\r\n"
            ";Corvalt time=01d9a1b2c3d4e5f6\r\n"
            "[HKEY_CLASSES_ROOT\\K]\r\n");
  EXPECT_EQ(AttributesIn(text), attributes);
}

TEST(BackupAttributes, BelongToTheNextKeyOnly) {
  const std::string head = "REGEDIT4\n;Corvalt class=4100\n";
  EXPECT_EQ(AttributesIn(head + "[HKEY_CURRENT_USER\\K]\n").ClassName, u"A");
  EXPECT_EQ(AttributesIn(head + "[HKEY_CURRENT_USER\\K]\n@=\"x\"\n").ClassName, u"A");
  EXPECT_EQ(AttributesIn(head + ";TIORegistry key=HKEY_CURRENT_USER:5c004b00\n").ClassName, u"A");
  EXPECT_EQ(AttributesIn(head + "[HKEY_CURRENT_USER\\K]\n[HKEY_CURRENT_USER\\L]\n").ClassName, u"");
  EXPECT_EQ(AttributesIn(head + "[damaged\n[HKEY_CURRENT_USER\\L]\n", 1).ClassName, u"");
}

TEST(BackupAttributes, OfADamagedLineAreLeftOutAndTheLineIsCounted) {
  for (const std::string line :
       {"class=4", "class=410", "class=41zz", "class=4100+", "security=0", "security=01+\n[", "time=01",
        "time=01d9a1b2c3d4e5f6aa", "time=01d9a1b2c3d4e5g6"}) {
    const TRegFileAttributes attributes = AttributesIn(
        "REGEDIT4\n;Corvalt " + line + "\n[HKEY_CLASSES_ROOT\\K]\n", line.ends_with('[') ? 2 : 1);
    EXPECT_EQ(attributes, TRegFileAttributes()) << line;
  }
}

// The merged root would take the key to the machine's hive, for all users.
TEST(BackupAttributes, WithADamagedHiveTakeTheirKeyToNoHive) {
  TMemoryLocale locale;
  for (const std::string hive : {"HKEY_USERS", "hkey_local_machine", "HKEY_CURRENT_USE", ""}) {
    for (const std::string key : {"[HKEY_CLASSES_ROOT\\K]", ";TIORegistry key=HKEY_CLASSES_ROOT:5c004b00"}) {
      const std::string text = "REGEDIT4\n;Corvalt hive=" + hive + "\n;Corvalt class=4100\n" + key +
                               "\n;TIORegistry value=6100:3:00\n[HKEY_CLASSES_ROOT\\L]\n";
      TRegFileReader reader(BytesOf(text), locale);
      const TRegFileEntry* entry = reader.Next();
      ASSERT_NE(entry, nullptr) << text;
      EXPECT_EQ(entry->KeyPath, u"\\L") << text;
      EXPECT_EQ(entry->Attributes, TRegFileAttributes());
      EXPECT_EQ(reader.Next(), nullptr);
      EXPECT_EQ(reader.LinesSkipped(), 3U) << text;
    }
  }
}

TEST(BackupAttributes, OfAnUnknownKindAreSkippedAndNotCounted) {
  EXPECT_EQ(AttributesIn("REGEDIT4\n;Corvalt later=1\n;Corvalt +00\n;Corvalt \n;Corvalt volatile=2\n"
                         "[HKEY_CURRENT_USER\\K]\n;Corvalt more\n@=\"x\"\n"),
            TRegFileAttributes());
}

TEST(BackupAttributes, OnlyClassesHaveAHive) {
  EXPECT_EQ(AttributesIn("REGEDIT4\n;Corvalt hive=HKEY_CURRENT_USER\n[HKEY_CLASSES_ROOT\\K]\n").Hive,
            kHkeyCurrentUser);
  EXPECT_EQ(AttributesIn("REGEDIT4\n;Corvalt hive=HKEY_CURRENT_USER\n[HKEY_USERS\\K]\n").Hive, kNoRootKey);
}

TEST(BackupAttributes, EndAValueThatGoesOnBeforeThem) {
  TMemoryLocale locale;
  const std::string text =
      "REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"a\"=hex:01,\\\n;Corvalt class=4100\n[HKEY_CURRENT_USER\\L]\n";
  TRegFileReader reader(BytesOf(text), locale);
  EXPECT_EQ(reader.Next()->KeyPath, u"\\K");
  const TRegFileEntry* entry = reader.Next();
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->KeyPath, u"\\L");
  EXPECT_EQ(entry->Attributes.ClassName, u"A");
  EXPECT_EQ(reader.Next(), nullptr);
  EXPECT_EQ(reader.FirstSkipped(), (std::vector<TSkippedLine>{{3, u"\"a\"=hex:01,\\"}}));
}

TEST(SkippedLines, AreNumberedInTheFile) {
  TMemoryLocale locale;
  const std::string text =
      "\r\nREGEDIT4\r\n\r\nnonsense\r\n[HKEY_CURRENT_USER\\K]\r\"a\"=hex:01,\\\n  02,\\\n\n  xx\n"
      "\"b\"=\"open\n\"c\"=dword:1\n";
  TRegFileReader reader(BytesOf(text), locale);
  while (reader.Next() != nullptr) {
  }
  EXPECT_EQ(
      reader.FirstSkipped(),
      (std::vector<TSkippedLine>{
          {4, u"nonsense"}, {6, u"\"a\"=hex:01,\\"}, {7, u"  02,\\"}, {9, u"  xx"}, {10, u"\"b\"=\"open"}}));
  EXPECT_EQ(reader.LinesSkipped(), 5U);
}

TEST(SkippedLines, AreKeptByTheirBeginning) {
  TMemoryLocale locale;
  const std::string text = "REGEDIT4\n" + std::string(100000, 'x') + "\n";
  TRegFileReader reader(BytesOf(text), locale);
  EXPECT_EQ(reader.Next(), nullptr);
  ASSERT_EQ(reader.FirstSkipped().size(), 1U);
  EXPECT_EQ(reader.FirstSkipped()[0].Line, Text(200, u'x'));
}

}  // namespace corvalt
