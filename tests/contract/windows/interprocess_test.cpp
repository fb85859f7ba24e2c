#include <gtest/gtest.h>

#include <thread>

#include "platform/windows/windowsapi.h"
#include "platform/windows/windowsinterprocess.h"

namespace corvalt {

namespace {

TEST(WindowsLock, IsOneForAllSessionsOfTheUser) {
  TWindowsInterprocess interprocess;
  const std::unique_ptr<THeldLock> held = interprocess.Lock(u"Corvalt\\Everywhere");
  ASSERT_NE(held, nullptr);
  const TOwnedObject opened(
      OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, L"Global\\Corvalt/Everywhere"));
  ASSERT_TRUE(opened);
  DWORD answer = WAIT_FAILED;
  std::thread([&] { answer = WaitForSingleObject(opened.Get(), 0); }).join();
  EXPECT_EQ(answer, static_cast<DWORD>(WAIT_TIMEOUT));
}

TEST(WindowsLock, RefusesANameThatHoldsANul) {
  EXPECT_EQ(TWindowsInterprocess().Lock(TextView(u"a\0b", 3)), nullptr);
}

}  // namespace

}  // namespace corvalt
