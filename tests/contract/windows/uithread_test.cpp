#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/windows/windowsuithread.h"

namespace corvalt {

namespace {

void IgnoreFailure(const std::exception_ptr&) {
}

void DispatchUntil(const bool& done) {
  MSG message = {};
  while (!done && GetMessageW(&message, nullptr, 0, 0) > 0)
    DispatchMessageW(&message);
}

TEST(WindowsUiThread, AModalLoopInsideARoutineServesOtherThreads) {
  TWindowsUiThread door(IgnoreFailure);
  bool served = false;
  bool left = false;
  std::thread worker;
  door.Post([&] {
    worker = std::thread([&] { EXPECT_TRUE(door.Send([&served] { served = true; })); });
    DispatchUntil(served);
    left = true;
  });
  DispatchUntil(left);
  worker.join();
  EXPECT_TRUE(served);
}

// The message queue takes 10,000 messages.
TEST(WindowsUiThread, MoreRoutinesThanTheMessageQueueTakesAllRunInOrder) {
  constexpr int kFromHere = 12000;
  constexpr int kFromThere = 3000;
  TWindowsUiThread door(IgnoreFailure);
  std::vector<int> order;
  for (int i = 0; i < kFromHere; ++i)
    ASSERT_TRUE(door.Post([&order, i] { order.push_back(i); }));
  std::atomic<bool> posted = false;
  std::thread worker([&] {
    for (int i = 0; i < kFromThere; ++i)
      door.Post([&order, i] { order.push_back(kFromHere + i); });
    posted = true;
  });
  while (!posted)
    std::this_thread::yield();
  worker.join();
  bool done = false;
  MSG message = {};
  while (order.size() < kFromHere + kFromThere && GetMessageW(&message, nullptr, 0, 0) > 0)
    DispatchMessageW(&message);
  for (int i = 0; i < kFromHere + kFromThere; ++i)
    ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
  door.Post([&done] { done = true; });
  DispatchUntil(done);
}

TEST(WindowsUiThread, AnExceptionOfAPostedRoutineReachesTheFailureHandler) {
  std::string told;
  bool ended = false;
  TWindowsUiThread door([&told](const std::exception_ptr& exception) {
    try {
      std::rethrow_exception(exception);
    } catch (const std::runtime_error& error) {
      told = error.what();
    }
  });
  door.Post([] { throw std::runtime_error("broken"); });
  door.Post([&ended] { ended = true; });
  DispatchUntil(ended);
  EXPECT_EQ(told, "broken");
}

}  // namespace

}  // namespace corvalt
