// Base class of the worker threads: a body, a terminate flag and a synchronous call on the user-interface
// thread.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "system/uithread.h"

namespace corvalt {

class TWorkerThread {
 public:
  // Runs on the user-interface thread after Execute has ended, also when Execute threw.
  using TEndHandler = std::function<void(TWorkerThread&)>;

  // Creates a thread that is its own owner: it frees itself on the user-interface thread after its end
  // handler, and the reference returned here is valid until then. Called on the user-interface thread.
  template <typename TThread, typename... TArguments>
  static TThread& Launch(TArguments&&... arguments) {
    auto thread = std::make_unique<TThread>(std::forward<TArguments>(arguments)...);
    TThread& reference = *thread;
    Adopt(std::move(thread));
    return reference;
  }

  // Waits for the body to end. By then TUiThread::Shut must have been called, or the end handler have run:
  // otherwise a body that waits for the user-interface thread would never end.
  virtual ~TWorkerThread();
  TWorkerThread(const TWorkerThread&) = delete;
  TWorkerThread& operator=(const TWorkerThread&) = delete;

  // Asks the body to end at its next check.
  void Terminate() {
    m_terminated = true;
  }
  bool Terminated() const {
    return m_terminated;
  }

  // What ended Execute early, for the end handler; null after a normal end.
  std::exception_ptr FatalException() const {
    return m_fatalException;
  }

 protected:
  explicit TWorkerThread(TUiThread& uiThread) : m_uiThread(uiThread) {
  }

  // The last statement of the most derived constructor: the body runs from here on.
  void Start();

  virtual void Execute() = 0;

  // Called by Execute, or before Start.
  void SetOnTerminate(TEndHandler handler) {
    m_endHandler = std::move(handler);
  }

  // Runs routine on the user-interface thread and waits for it. When the user interface is gone for good the
  // routine does not run and the thread is told to terminate.
  void Synchronize(const std::function<void()>& routine);

 private:
  static void Adopt(std::unique_ptr<TWorkerThread> thread);
  void Run();
  void Finish();
  void AbandonUserInterface();

  TUiThread& m_uiThread;
  std::atomic<bool> m_terminated = false;
  TEndHandler m_endHandler;
  std::exception_ptr m_fatalException;
  // Guards the two below between Launch and a body that ends without a user interface.
  std::mutex m_ownerMutex;
  std::unique_ptr<TWorkerThread> m_self;
  bool m_abandoned = false;
  std::thread m_thread;
};

}  // namespace corvalt
