#include "ui/backupview.h"

#include <gtest/gtest.h>

#include <string>

#include "formats/backupblock.h"
#include "platform/memory/memorysystem.h"
#include "tests/support/largeinput.h"

namespace corvalt {

namespace {

Text Shown(std::string_view file) {
  TMemoryLocale locale;
  return BackupViewText({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, locale);
}

}  // namespace

TEST(BackupView, ShowsEveryKindOfLineEndAsALineBreak) {
  EXPECT_EQ(Shown("a\r\nb\nc\rd"), u"a\r\nb\r\nc\r\nd");
  EXPECT_EQ(Shown("\n\r\n\r\r\n"), u"\r\n\r\n\r\n\r\n");
}

TEST(BackupView, ShowsNulsInsteadOfEndingAtThem) {
  EXPECT_EQ(Shown(std::string_view("a\0b\0", 4)),
            u"a\x2400"
            u"b\x2400");
}

TEST(BackupView, ReadsTheFileInTheAnsiCodePage) {
  EXPECT_EQ(Shown("\x80 \xE4"), u"\x20AC \xE4");
}

TEST(BackupView, ReadsABackupInTheCodePageThatItWasMadeWith) {
  TBackupOrigin origin;
  origin.CodePage = 1251;
  const std::string head = "REGEDIT4\r\n" + OriginLines(origin);
  EXPECT_TRUE(Shown(head + "\xD1\xEB").ends_with(u"\u0421\u043B"));
  origin.CodePage = 12345;
  EXPECT_TRUE(Shown("REGEDIT4\r\n" + OriginLines(origin) + "\x80").ends_with(u"\u20AC"));
}

TEST(BackupView, OfAnEmptyFileIsEmpty) {
  EXPECT_EQ(Shown(""), u"");
}

TEST(BackupView, ShowsAFileOfFiftyMegabytesWhole) {
  const std::size_t lines = LargeInput(1000000, 50000);
  std::string file;
  for (std::size_t i = 0; i < lines; ++i)
    file.append("\"name\"=hex:00,11,22,33,44,55,66,77,88,99,aa,bb,cc,", 50).append("\0\n", 2);
  ASSERT_GT(file.size(), lines * 50);
  const Text shown = Shown(file);
  EXPECT_EQ(shown.size(), file.size() + lines);
  EXPECT_EQ(shown.substr(0, 6), u"\"name\"");
  EXPECT_EQ(shown.substr(shown.size() - 4), u",\x2400\r\n");
}

TEST(BackupView, CentersItsButton) {
  EXPECT_EQ(CenteredLeft(400, 75), 162);  // 162.5
  EXPECT_EQ(CenteredLeft(402, 75), 164);  // 163.5
  EXPECT_EQ(CenteredLeft(401, 75), 163);
}

}  // namespace corvalt
