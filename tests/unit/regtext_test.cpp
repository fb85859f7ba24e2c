#include "tests/support/regtext.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace corvalt {

TEST(RegText, WhatIsLoadedIsWrittenAgain) {
  const std::string text = R"([HKEY_CURRENT_USER\Software\Vendor]
@="the default"
"A \"name\""="C:\\Old\\app.exe"
"Count"=dword:00000102
"Order"=hex:08,00
"Unknown"=hex(7e):01

[HKEY_CURRENT_USER\Software\Vendor\Empty]

[HKEY_CURRENT_USER\Software\Vendor\Full]
"x"=""
)";
  TMemoryRegistry registry;
  LoadRegText(registry, text);
  EXPECT_EQ(RegText(registry, u"HKEY_CURRENT_USER\\Software\\Vendor"), text);
}

TEST(RegText, KeysComeInTheOrderOfThePlatform) {
  TMemoryRegistry registry(TNameOrder::Wine);
  LoadRegText(registry, "[HKEY_CURRENT_USER\\K\\a]\n[HKEY_CURRENT_USER\\K\\_]\n");
  EXPECT_EQ(RegText(registry, u"HKEY_CURRENT_USER\\K"),
            "[HKEY_CURRENT_USER\\K]\n\n[HKEY_CURRENT_USER\\K\\_]\n\n[HKEY_CURRENT_USER\\K\\a]\n");
}

TEST(RegText, KeysMayStandBelowATopKey) {
  TMemoryRegistry registry;
  LoadRegText(registry, "[]\n@=\"top\"\n[\\Sub]\n\"a\"=\"[\"\n", "HKEY_CURRENT_USER\\K");
  EXPECT_EQ(RegText(registry, u"HKEY_CURRENT_USER\\K"),
            "[HKEY_CURRENT_USER\\K]\n@=\"top\"\n\n[HKEY_CURRENT_USER\\K\\Sub]\n\"a\"=\"[\"\n");
}

TEST(RegText, AMissingKeyIsAnEmptyText) {
  const TMemoryRegistry registry;
  EXPECT_EQ(RegText(registry, u"HKEY_CURRENT_USER\\K"), "");
}

TEST(RegText, AMalformedTextIsRefused) {
  TMemoryRegistry registry;
  EXPECT_THROW(LoadRegText(registry, "[HKEY_CURRENT_USER\\K]\n\"a\"=nonsense\n"), std::invalid_argument);
  EXPECT_THROW(LoadRegText(registry, "[HKEY_NOWHERE\\K]\n"), std::invalid_argument);
  EXPECT_THROW(LoadRegText(registry, "\"a\"=\"value without a key\"\n"), std::invalid_argument);
}

}  // namespace corvalt
