#include "core/workerthread.h"

namespace corvalt {

TWorkerThread::~TWorkerThread() {
  if (!m_thread.joinable())
    return;
  // Without a user interface the thread frees itself as its last act. It is detached then, because a thread
  // can't
  // wait for its own end.
  if (m_thread.get_id() == std::this_thread::get_id()) {
    m_thread.detach();
  } else {
    m_thread.join();
  }
}

void TWorkerThread::Start() {
  m_thread = std::thread([this] { Run(); });
}

void TWorkerThread::Adopt(std::unique_ptr<TWorkerThread> thread) {
  TWorkerThread& self = *thread;
  const std::lock_guard<std::mutex> hold(self.m_ownerMutex);
  if (!self.m_abandoned)
    self.m_self = std::move(thread);
}

void TWorkerThread::Run() {
  try {
    Execute();
  } catch (...) {
    m_fatalException = std::current_exception();
  }
  if (!m_uiThread.Post([this] { Finish(); }))
    AbandonUserInterface();
}

void TWorkerThread::Finish() {
  m_thread.join();
  if (m_endHandler)
    m_endHandler(*this);
  const std::unique_ptr<TWorkerThread> self = std::move(m_self);
}

void TWorkerThread::AbandonUserInterface() {
  std::unique_ptr<TWorkerThread> self;
  const std::lock_guard<std::mutex> hold(m_ownerMutex);
  m_abandoned = true;
  self = std::move(m_self);
}

void TWorkerThread::Synchronize(const std::function<void()>& routine) {
  if (!m_uiThread.Send(routine))
    Terminate();
}

}  // namespace corvalt
