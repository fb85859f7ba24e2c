#include "system/registryvalues.h"

#include <gtest/gtest.h>

namespace corvalt {

TEST(RegistryValues, OneStringAndSeveralAreText) {
  for (const std::uint32_t type : {kRegSz, kRegExpandSz}) {
    EXPECT_TRUE(IsStringType(type));
    EXPECT_TRUE(IsTextType(type));
  }
  EXPECT_FALSE(IsStringType(kRegMultiSz));
  EXPECT_TRUE(IsTextType(kRegMultiSz));
  for (const std::uint32_t type : {kRegNone, kRegBinary, kRegDword, kRegLink, kRegQword, 1000U})
    EXPECT_FALSE(IsTextType(type)) << type;
}

TEST(RegistryValues, ANameOfOneNulIsTheDefaultValue) {
  EXPECT_TRUE(IsDefaultValueName(u""));
  EXPECT_TRUE(IsDefaultValueName(TextView(u"\0", 1)));
  EXPECT_FALSE(IsDefaultValueName(TextView(u"\0\0", 2)));
  EXPECT_FALSE(IsDefaultValueName(u"a"));
  EXPECT_EQ(StoredValueName(TextView(u"\0", 1)), u"");
  EXPECT_EQ(StoredValueName(TextView(u"a\0", 2)), TextView(u"a\0", 2));
}

TEST(RegistryValues, OnlyWholeUnitsCanEndInNul) {
  EXPECT_TRUE(EndsInNul(TBytes{'a', 0, 0, 0}));
  EXPECT_FALSE(EndsInNul(TBytes{'a', 0}));
  EXPECT_FALSE(EndsInNul(TBytes{0, 0, 0}));
  EXPECT_FALSE(EndsInNul(TBytes{0}));
  EXPECT_FALSE(EndsInNul(TBytes{}));
}

TEST(RegistryValues, UnitsAreBytesWithTheLowOneFirst) {
  EXPECT_EQ(UnitBytes(u"a\u0401"), (TBytes{'a', 0, 0x01, 0x04}));
  EXPECT_EQ(StringBytes(u"a"), (TBytes{'a', 0, 0, 0}));
  EXPECT_EQ(UnitsOf(TBytes{'a', 0, 0x01, 0x04}), u"a\u0401");
}

TEST(RegistryValues, AnOddLastByteIsDropped) {
  EXPECT_EQ(UnitsOf(TBytes{'a', 0, 'b'}), u"a");
  EXPECT_EQ(UnitsOf(TBytes{'a'}), u"");
}

TEST(RegistryValues, AStringEndsAtItsFirstNul) {
  EXPECT_EQ(StringOf(TBytes{'a', 0, 0, 0, 'b', 0}), u"a");
  EXPECT_EQ(StringOf(TBytes{'a', 0}), u"a");
  EXPECT_EQ(StringOf(TBytes{}), u"");
}

TEST(RegistryValues, AnIntegerHasItsTypeAndFourBytes) {
  EXPECT_EQ(IntegerOf(kRegDword, IntegerBytes(0xFFFFFFFE)), -2);
  EXPECT_EQ(IntegerOf(kRegDword, TBytes{1, 2, 3, 4}), 0x04030201);
  EXPECT_EQ(IntegerOf(kRegDword, TBytes{1, 0, 0}), std::nullopt);
  EXPECT_EQ(IntegerOf(kRegDword, TBytes{1, 0, 0, 0, 0}), std::nullopt);
  EXPECT_EQ(IntegerOf(kRegBinary, IntegerBytes(1)), std::nullopt);
  EXPECT_EQ(IntegerOf(kRegDwordBigEndian, IntegerBytes(1)), std::nullopt);
}

}  // namespace corvalt
