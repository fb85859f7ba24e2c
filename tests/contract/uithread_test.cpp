#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "core/workerthread.h"
#include "tests/contract/subject.h"

namespace corvalt {

namespace {

class UiThreadContract : public ::testing::Test {
 protected:
  // Runs body on a worker while this thread serves the user interface.
  void RunWorker(const std::function<void()>& body) {
    std::atomic<bool> ended = false;
    std::thread worker([&] {
      body();
      m_door.Post([&ended] { ended = true; });
    });
    m_subject->RunUiUntil([&ended] { return ended.load(); });
    worker.join();
  }

  const std::unique_ptr<TSubject> m_subject = MakeSubject();
  TUiThread& m_door = m_subject->UiThread();
};

TEST_F(UiThreadContract, ASentRoutineHasRunOnTheUserInterfaceThreadWhenSendReturns) {
  const std::thread::id here = std::this_thread::get_id();
  RunWorker([&] {
    std::thread::id ranOn;
    EXPECT_TRUE(m_door.Send([&ranOn] { ranOn = std::this_thread::get_id(); }));
    EXPECT_EQ(ranOn, here);
  });
}

TEST_F(UiThreadContract, AnExceptionTravelsBackToTheSender) {
  RunWorker([&] {
    EXPECT_THROW(m_door.Send([] { throw std::runtime_error("told"); }), std::runtime_error);
    EXPECT_TRUE(m_door.Send([] {}));
  });
}

TEST_F(UiThreadContract, PostedRoutinesRunInTheirOrder) {
  std::vector<int> order;
  RunWorker([&] {
    for (int i = 0; i < 100; ++i)
      EXPECT_TRUE(m_door.Post([&order, i] { order.push_back(i); }));
    EXPECT_TRUE(m_door.Send([&order] { order.push_back(100); }));
  });
  ASSERT_EQ(order.size(), 101u);
  for (int i = 0; i <= 100; ++i)
    EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST_F(UiThreadContract, NoWakeUpIsLostBetweenManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kSends = 500;
  int sum = 0;
  int ended = 0;
  std::vector<std::thread> workers;
  for (int i = 0; i < kThreads; ++i) {
    workers.emplace_back([&] {
      for (int j = 0; j < kSends; ++j)
        EXPECT_TRUE(m_door.Send([&sum] { ++sum; }));
      m_door.Post([&ended] { ++ended; });
    });
  }
  m_subject->RunUiUntil([&ended] { return ended == kThreads; });
  for (std::thread& worker : workers)
    worker.join();
  EXPECT_EQ(sum, kThreads * kSends);
}

TEST_F(UiThreadContract, ShuttingAnswersAWaitingSenderAndRefusesWhatComesLater) {
  bool hasRun = false;
  std::atomic<bool> sends = false;
  std::atomic<int> answer = -1;
  std::thread worker([&] {
    sends = true;
    answer = m_door.Send([&hasRun] { hasRun = true; }) ? 1 : 0;
  });
  while (!sends)
    std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  m_door.Shut();
  worker.join();
  EXPECT_EQ(answer, 0);
  EXPECT_FALSE(hasRun);
  EXPECT_FALSE(m_door.Post([&hasRun] { hasRun = true; }));
  std::thread([&] { EXPECT_FALSE(m_door.Send([&hasRun] { hasRun = true; })); }).join();
  EXPECT_FALSE(hasRun);
}

TEST_F(UiThreadContract, WhatWasPostedRunsAtTheLatestWhenTheDoorIsShut) {
  int runs = 0;
  bool refused = false;
  EXPECT_TRUE(m_door.Post([&] {
    ++runs;
    refused = !m_door.Post([&runs] { ++runs; });
  }));
  EXPECT_TRUE(m_door.Post([&runs] { ++runs; }));
  m_door.Shut();
  EXPECT_EQ(runs, 2);
  EXPECT_TRUE(refused);
  m_door.Shut();
  EXPECT_EQ(runs, 2);
}

class TAsker : public TWorkerThread {
 public:
  TAsker(TUiThread& uiThread, std::atomic<bool>& asks, std::atomic<bool>& ended)
      : TWorkerThread(uiThread), m_asks(asks), m_ended(ended) {
    Start();
  }
  ~TAsker() override {
    m_ended = true;
  }

 protected:
  void Execute() override {
    while (!Terminated()) {
      m_asks = true;
      Synchronize([] {});
    }
  }

 private:
  std::atomic<bool>& m_asks;
  std::atomic<bool>& m_ended;
};

TEST_F(UiThreadContract, TheProgramCanCloseWhileAWorkerWaitsForIt) {
  std::atomic<bool> asks = false;
  std::atomic<bool> ended = false;
  TWorkerThread::Launch<TAsker>(m_door, asks, ended);
  m_subject->RunUiUntil([&asks] { return asks.load(); });
  m_door.Shut();
  while (!ended)
    std::this_thread::yield();
}

}  // namespace

}  // namespace corvalt
