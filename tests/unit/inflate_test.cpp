#include "formats/inflate.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/datafile.h"

namespace corvalt {

namespace {

using TBytes = std::vector<std::uint8_t>;

std::optional<std::string> Inflated(const TBytes& file) {
  const auto content = InflateDataFile(file);
  if (!content)
    return std::nullopt;
  return std::string(content->begin(), content->end());
}

TEST(InflateDataFile, GivesTheContentBack) {
  EXPECT_EQ(Inflated(PackDataFile("a line\r\nanother\r\n")), "a line\r\nanother\r\n");
  EXPECT_EQ(Inflated(PackDataFile("")), "");
}

TEST(InflateDataFile, GivesALongContentBack) {
  std::string content;
  for (int i = 0; content.size() < 1000000; ++i)
    content += std::to_string(i);
  EXPECT_EQ(Inflated(PackDataFile(content)), content);
}

TEST(InflateDataFile, SkipsTheTwoLeadingBytesWithoutLooking) {
  TBytes file = PackDataFile("content");
  file[0] = 0xFF;
  file[1] = 0x00;
  EXPECT_EQ(Inflated(file), "content");
}

TEST(InflateDataFile, AShortFileIsUnreadable) {
  EXPECT_FALSE(InflateDataFile({}));
  EXPECT_FALSE(InflateDataFile(TBytes{1}));
  EXPECT_FALSE(InflateDataFile(TBytes{1, 2}));
  EXPECT_FALSE(InflateDataFile(TBytes{1, 2, 0x78}));
}

TEST(InflateDataFile, WhatIsNotZlibIsUnreadable) {
  EXPECT_FALSE(InflateDataFile(TBytes{'P', 'K', 3, 4, 5, 6, 7, 8, 9}));
}

TEST(InflateDataFile, AFileCutOffAnywhereIsUnreadableAsAWhole) {
  const TBytes file = PackDataFile("some content that is long enough to be cut in many places 0123456789");
  for (std::size_t length = 0; length < file.size(); ++length)
    EXPECT_FALSE(InflateDataFile(std::span(file).first(length))) << length;
}

TEST(InflateDataFile, ADamagedFileIsUnreadable) {
  TBytes file = PackDataFile("some content");
  file.back() ^= 1;  // the checksum
  EXPECT_FALSE(InflateDataFile(file));
}

TEST(InflateDataFile, AStreamThatNeedsADictionaryIsUnreadable) {
  // A header with the dictionary flag set, and a valid check of its own.
  EXPECT_FALSE(InflateDataFile(TBytes{0, 0, 0x78, 0xBB, 0, 0, 0, 1, 3, 0, 0, 0, 0, 1}));
}

TEST(InflateDataFile, BytesAfterTheStreamAreIgnored) {
  TBytes file = PackDataFile("content");
  file.insert(file.end(), {1, 2, 3});
  EXPECT_EQ(Inflated(file), "content");
}

TEST(InflateDataFile, TheLargestContentIsReadAndOneByteMoreIsNot) {
  std::string content(kLargestInflated, 'x');
  const auto largest = InflateDataFile(PackDataFile(content));
  ASSERT_TRUE(largest);
  EXPECT_EQ(largest->size(), kLargestInflated);
  content.push_back('x');
  EXPECT_FALSE(InflateDataFile(PackDataFile(content)));
}

}  // namespace

}  // namespace corvalt
