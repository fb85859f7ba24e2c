#include "system/queueuithread.h"

#include <utility>

namespace corvalt {

bool TQueueUiThread::Send(const std::function<void()>& routine) {
  TSender sender;
  std::unique_lock<std::mutex> lock(m_mutex);
  if (m_shut)
    return false;
  Add({routine, &sender});
  m_answered.wait(lock, [&sender] { return sender.Answered; });
  if (sender.Exception)
    std::rethrow_exception(sender.Exception);
  return sender.HasRun;
}

bool TQueueUiThread::Post(std::function<void()> routine) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_shut)
    return false;
  Add({std::move(routine), nullptr});
  return true;
}

void TQueueUiThread::Shut() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shut = true;
  }
  TEntry entry;
  while (Take(entry)) {
    if (entry.Sender == nullptr) {
      entry.Routine();
    } else {
      Answer(*entry.Sender, false, nullptr);
    }
  }
}

void TQueueUiThread::RunUntil(const std::function<bool()>& done) {
  while (!done()) {
    TEntry entry;
    {
      std::unique_lock<std::mutex> lock(m_mutex);
      m_arrived.wait(lock, [this] { return !m_queue.empty(); });
      entry = std::move(m_queue.front());
      m_queue.pop_front();
    }
    Run(entry);
  }
}

void TQueueUiThread::RunPending() {
  while (RunOne()) {
  }
}

bool TQueueUiThread::RunOne() {
  TEntry entry;
  if (!Take(entry))
    return false;
  Run(entry);
  return true;
}

void TQueueUiThread::Add(TEntry entry) {
  m_queue.push_back(std::move(entry));
  m_arrived.notify_one();
  Arrived();
}

bool TQueueUiThread::Take(TEntry& entry) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_queue.empty())
    return false;
  entry = std::move(m_queue.front());
  m_queue.pop_front();
  return true;
}

void TQueueUiThread::Run(TEntry& entry) {
  if (entry.Sender == nullptr) {
    entry.Routine();
    return;
  }
  std::exception_ptr exception;
  try {
    entry.Routine();
  } catch (...) {
    exception = std::current_exception();
  }
  Answer(*entry.Sender, true, exception);
}

void TQueueUiThread::Answer(TSender& sender, bool hasRun, std::exception_ptr exception) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  sender.HasRun = hasRun;
  sender.Exception = std::move(exception);
  sender.Answered = true;
  m_answered.notify_all();
}

}  // namespace corvalt
