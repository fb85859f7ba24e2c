#include <gtest/gtest.h>

#include "platform/windows/windowsprograms.h"

namespace corvalt {

namespace {

TEST(WindowsPrograms, AProgramThatIsMissingIsPassedOver) {
  TWindowsPrograms programs;
  programs.Execute(u"open", u"C:\\CorvaltNoSuchFolder\\\\diskcleanup.exe");
  // A message about it would have waited for somebody.
  EXPECT_EQ(FindWindowW(L"#32770", nullptr), nullptr);
}

}  // namespace

}  // namespace corvalt
