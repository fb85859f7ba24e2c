// The user-interface thread of a program without windows, and of the tests: a queue that one thread works
// off.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>

#include "system/uithread.h"

namespace corvalt {

class TQueueUiThread : public TUiThread {
 public:
  bool Send(const std::function<void()>& routine) override;
  bool Post(std::function<void()> routine) override;
  void Shut() override;

  // Works the queue off on the calling thread until done returns true; done is called at first and after each
  // routine.
  void RunUntil(const std::function<bool()>& done);

  // Runs what is waiting now.
  void RunPending();

 protected:
  // Runs the oldest waiting routine; false when there is none.
  bool RunOne();

  // Something was put into the queue. Called on any thread, and no other call on this object is allowed
  // inside.
  virtual void Arrived() {
  }

 private:
  // A sender that waits, on its own stack.
  struct TSender {
    bool Answered = false;
    bool HasRun = false;
    std::exception_ptr Exception;
  };
  struct TEntry {
    std::function<void()> Routine;
    TSender* Sender = nullptr;  // null for a posted routine
  };

  void Add(TEntry entry);
  void Run(TEntry& entry);
  bool Take(TEntry& entry);
  void Answer(TSender& sender, bool hasRun, std::exception_ptr exception);

  std::mutex m_mutex;
  std::condition_variable m_arrived;
  std::condition_variable m_answered;
  std::deque<TEntry> m_queue;
  bool m_shut = false;
};

}  // namespace corvalt
