#include "system/systemerror.h"

#include <gtest/gtest.h>

#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

template <typename TException>
Text Described(const TException& exception) {
  TMemoryLocale locale;
  return DescribeException(std::make_exception_ptr(exception), locale);
}

TEST(DescribeException, ASystemErrorIsSaidInTheSystemsWords) {
  EXPECT_EQ(Described(TSystemException({kErrorOutOfMemory})), u"System message 14.");
}

TEST(DescribeException, WhatItBefellStandsBeforeIt) {
  EXPECT_EQ(Described(TSystemException({kErrorDiskFull}, u"D:\\a")), u"D:\\a: System message 112.");
}

TEST(DescribeException, TheProgramsOwnErrorsSayThemselves) {
  EXPECT_EQ(Described(TProgramException(u"caf\u00E9")), u"caf\u00E9");
}

TEST(DescribeException, AnyOtherExceptionSaysWhatItIs) {
  EXPECT_EQ(Described(std::runtime_error("the disk is gone")), u"the disk is gone");
  EXPECT_EQ(Described(std::runtime_error("\xFF")), u"");
  EXPECT_EQ(Described(42), u"");
}

TEST(DescribeException, NoneIsEmpty) {
  TMemoryLocale locale;
  EXPECT_EQ(DescribeException(nullptr, locale), u"");
}

}  // namespace

}  // namespace corvalt
