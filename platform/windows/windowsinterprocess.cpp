#include "platform/windows/windowsinterprocess.h"

#include "platform/windows/windowsapi.h"

namespace {

class TMutexLock : public THeldLock {
 public:
  explicit TMutexLock(TOwnedObject mutex) : m_mutex(std::move(mutex)) {
  }
  ~TMutexLock() override {
    ReleaseMutex(m_mutex.Get());
  }

 private:
  TOwnedObject m_mutex;
};

}  // namespace

std::unique_ptr<THeldLock> TWindowsInterprocess::Lock(TextView name) {
  // A "\" in a mutex's name ends its namespace.
  const Text systemName = u"Local\\" + ReplaceAll(name, u"\\", u"/");
  if (HoldsNul(name))
    return nullptr;
  TOwnedObject mutex(CreateMutexW(nullptr, FALSE, Wide(systemName)));
  if (!mutex)
    return nullptr;
  // Abandoned: its holder died, and it is ours now.
  const DWORD answer = WaitForSingleObject(mutex.Get(), INFINITE);
  if (answer != WAIT_OBJECT_0 && answer != WAIT_ABANDONED)
    return nullptr;
  return std::make_unique<TMutexLock>(std::move(mutex));
}
