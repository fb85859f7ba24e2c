// The worker thread over the queue, with real threads. Nothing here waits for a time to pass: the order of
// things is given by the UI-thread interface itself.
#include "core/workerthread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <stdexcept>
#include <string>

#include "system/queueuithread.h"

namespace corvalt {

namespace {

// What a test learns of a thread that frees itself.
struct TSeen {
  std::thread::id EndedOn;
  bool HasEnded = false;
  bool WasFreedAtItsEnd = false;
  std::atomic<bool> IsFreed = false;
  std::string Exception;
  std::vector<std::string> Order;
};

class TProbeThread : public TWorkerThread {
 public:
  using TBody = std::function<void(TProbeThread&)>;

  TProbeThread(TUiThread& uiThread, TSeen& seen, TBody body)
      : TWorkerThread(uiThread), m_seen(seen), m_body(std::move(body)) {
    SetOnTerminate([&seen](TWorkerThread& thread) {
      seen.EndedOn = std::this_thread::get_id();
      seen.WasFreedAtItsEnd = seen.IsFreed;
      seen.Exception = Words(thread.FatalException());
      seen.Order.push_back("end handler");
      seen.HasEnded = true;
    });
    Start();
  }
  ~TProbeThread() override {
    m_seen.IsFreed = true;
  }

  using TWorkerThread::Synchronize;

 protected:
  void Execute() override {
    m_body(*this);
  }

 private:
  static std::string Words(const std::exception_ptr& exception) {
    if (!exception)
      return {};
    try {
      std::rethrow_exception(exception);
    } catch (const std::exception& error) {
      return error.what();
    }
  }

  TSeen& m_seen;
  TBody m_body;
};

class WorkerThread : public testing::Test {
 protected:
  TProbeThread& Launch(TProbeThread::TBody body) {
    return TWorkerThread::Launch<TProbeThread>(Ui, Seen, std::move(body));
  }
  void RunToTheEnd() {
    Ui.RunUntil([this] { return Seen.HasEnded; });
  }

  TQueueUiThread Ui;
  TSeen Seen;
};

TEST_F(WorkerThread, RunsItsBodyOnAnotherThread) {
  std::thread::id bodyRanOn;
  Launch([&](TProbeThread&) { bodyRanOn = std::this_thread::get_id(); });
  RunToTheEnd();
  EXPECT_NE(bodyRanOn, std::thread::id());
  EXPECT_NE(bodyRanOn, std::this_thread::get_id());
}

TEST_F(WorkerThread, CallsItsEndHandlerOnTheUserInterfaceThread) {
  Launch([](TProbeThread&) {});
  RunToTheEnd();
  EXPECT_EQ(Seen.EndedOn, std::this_thread::get_id());
  EXPECT_EQ(Seen.Exception, "");
}

TEST_F(WorkerThread, FreesItselfAfterItsEndHandler) {
  Launch([](TProbeThread&) {});
  RunToTheEnd();
  EXPECT_FALSE(Seen.WasFreedAtItsEnd);
  EXPECT_TRUE(Seen.IsFreed);
}

TEST_F(WorkerThread, HandsAnExceptionOfItsBodyToTheEndHandler) {
  Launch([](TProbeThread&) { throw std::runtime_error("the disk is gone"); });
  RunToTheEnd();
  EXPECT_EQ(Seen.Exception, "the disk is gone");
  EXPECT_TRUE(Seen.IsFreed);
}

TEST_F(WorkerThread, SynchronizeRunsOnTheUserInterfaceThreadWhileTheBodyWaits) {
  std::thread::id routineRanOn;
  Launch([&](TProbeThread& thread) {
    Seen.Order.push_back("before");
    thread.Synchronize([&] {
      routineRanOn = std::this_thread::get_id();
      Seen.Order.push_back("inside");
    });
    Seen.Order.push_back("after");
  });
  RunToTheEnd();
  EXPECT_EQ(routineRanOn, std::this_thread::get_id());
  EXPECT_EQ(Seen.Order, (std::vector<std::string>{"before", "inside", "after", "end handler"}));
}

TEST_F(WorkerThread, SynchronizeKeepsItsOrder) {
  std::vector<int> numbers;
  Launch([&](TProbeThread& thread) {
    for (int i = 0; i < 1000; ++i)
      thread.Synchronize([&numbers, i] { numbers.push_back(i); });
  });
  RunToTheEnd();
  ASSERT_EQ(numbers.size(), 1000u);
  EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

TEST_F(WorkerThread, AnExceptionInASynchronizedRoutineEndsTheBody) {
  Launch([&](TProbeThread& thread) {
    thread.Synchronize([] { throw std::runtime_error("the row is gone"); });
    Seen.Order.push_back("not reached");
  });
  RunToTheEnd();
  EXPECT_EQ(Seen.Exception, "the row is gone");
  EXPECT_EQ(Seen.Order, (std::vector<std::string>{"end handler"}));
}

TEST_F(WorkerThread, TerminateIsSeenByTheBody) {
  TProbeThread& thread = Launch([](TProbeThread& self) {
    while (!self.Terminated())
      std::this_thread::yield();
  });
  EXPECT_FALSE(thread.Terminated());
  thread.Terminate();
  RunToTheEnd();
  EXPECT_TRUE(Seen.IsFreed);
}

TEST_F(WorkerThread, AnEndHandlerMayLaunchTheNextThread) {
  TSeen next;
  Launch([&](TProbeThread& thread) {
    thread.Synchronize([&] { TWorkerThread::Launch<TProbeThread>(Ui, next, [](TProbeThread&) {}); });
  });
  Ui.RunUntil([&] { return Seen.HasEnded && next.HasEnded; });
  EXPECT_TRUE(Seen.IsFreed);
  EXPECT_TRUE(next.IsFreed);
}

TEST_F(WorkerThread, ManyThreadsShareOneDoor) {
  constexpr int kThreads = 8;
  TSeen seen[kThreads];
  int count = 0;
  for (TSeen& one : seen) {
    TWorkerThread::Launch<TProbeThread>(Ui, one, [&count](TProbeThread& thread) {
      for (int i = 0; i < 100; ++i)
        thread.Synchronize([&count] { ++count; });
    });
  }
  Ui.RunUntil(
      [&] { return std::all_of(std::begin(seen), std::end(seen), [](auto& s) { return s.HasEnded; }); });
  EXPECT_EQ(count, kThreads * 100);
}

// Waits until the thread has freed itself without a user interface.
void AwaitFreed(const TSeen& seen) {
  while (!seen.IsFreed)
    std::this_thread::yield();
}

TEST_F(WorkerThread, ShuttingTheDoorReleasesAThreadThatWaits) {
  std::promise<void> aboutToWait;
  std::atomic<bool> hasRun = false;
  std::atomic<bool> terminated = false;
  Launch([&](TProbeThread& thread) {
    aboutToWait.set_value();
    thread.Synchronize([&] { hasRun = true; });
    terminated = thread.Terminated();
  });
  aboutToWait.get_future().wait();
  Ui.Shut();
  AwaitFreed(Seen);
  EXPECT_FALSE(hasRun);
  EXPECT_TRUE(terminated);
  EXPECT_FALSE(Seen.HasEnded);
}

TEST_F(WorkerThread, ShuttingTheDoorRunsTheEndHandlersThatWerePosted) {
  std::atomic<bool> posted = false;
  Ui.Post([&] { posted = true; });
  Ui.Shut();
  EXPECT_TRUE(posted);
}

TEST_F(WorkerThread, AThreadThatMeetsAShutDoorIsToldToTerminate) {
  Ui.Shut();
  std::atomic<bool> hasRun = false;
  Launch([&](TProbeThread& thread) {
    while (!thread.Terminated())
      thread.Synchronize([&] { hasRun = true; });
  });
  AwaitFreed(Seen);
  EXPECT_FALSE(hasRun);
  EXPECT_FALSE(Ui.Post([] {}));
}

TEST_F(WorkerThread, ClosingDuringABusyThreadEndsItEveryTime) {
  for (int round = 0; round < 200; ++round) {
    TQueueUiThread ui;
    TSeen seen;
    int count = 0;
    TWorkerThread::Launch<TProbeThread>(ui, seen, [&count](TProbeThread& thread) {
      while (!thread.Terminated())
        thread.Synchronize([&count] { ++count; });
    });
    ui.RunUntil([&] { return count >= round % 5; });
    ui.Shut();
    AwaitFreed(seen);
    EXPECT_GE(count, round % 5);
  }
}

}  // namespace

}  // namespace corvalt
