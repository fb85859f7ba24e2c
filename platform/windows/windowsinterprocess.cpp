#include "platform/windows/windowsinterprocess.h"

#include <algorithm>

#include "base/lettercase.h"
#include "platform/windows/usersid.h"
#include "platform/windows/windowsapi.h"

#include <sddl.h>

namespace corvalt {

namespace {

constexpr DWORD kSlice = 100;  // milliseconds

// What waiting for a mutex and giving it back need.
constexpr DWORD kWaitAndRelease = SYNCHRONIZE | MUTEX_MODIFY_STATE;

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

// Everything for the system and the user, and for all who are logged on what a lock that they share needs.
Text RightsText(const Text& user, bool forAllUsers) {
  const Text others = forAllUsers ? u"(A;;0x100001;;;AU)" : u"";
  static_assert(kWaitAndRelease == 0x100001);
  return u"D:(A;;GA;;;SY)(A;;GA;;;" + user + u")" + others;
}

// Without a descriptor of its own, an object that an elevated program makes is closed to the programs that
// the same user runs without elevation. Null where the system has no security descriptors.
TOwnedLocalMemory MakeDescriptor(const Text& user, bool forAllUsers) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (user.empty() || !ConvertStringSecurityDescriptorToSecurityDescriptorW(
                          Wide(RightsText(user, forAllUsers)), SDDL_REVISION_1, &descriptor, nullptr))
    return {};
  return TOwnedLocalMemory(descriptor);
}

TOwnedObject MakeMutex(const Text& systemName, PSECURITY_DESCRIPTOR descriptor) {
  SECURITY_ATTRIBUTES attributes = {sizeof(attributes), descriptor, FALSE};
  TOwnedObject mutex(CreateMutexW(descriptor == nullptr ? nullptr : &attributes, FALSE, Wide(systemName)));
  // Creating asks for every right, which another user's mutex doesn't give (CreateMutex,
  // learn.microsoft.com).
  if (!mutex && GetLastError() == ERROR_ACCESS_DENIED)
    mutex = TOwnedObject(OpenMutexW(kWaitAndRelease, FALSE, Wide(systemName)));
  return mutex;
}

TOwnedObject MutexOf(const TLockWish& wish) {
  const Text user = UserSidText();
  const TOwnedLocalMemory descriptor = MakeDescriptor(user, wish.ForAllUsers);
  // A "\" in a mutex's name ends its namespace; letter case counts in it.
  Text name = ReplaceAll(UpperCase(wish.Name), u"\\", u"/");
  if (!wish.ForAllUsers && !user.empty())
    name += u" " + user;
  TOwnedObject mutex = MakeMutex(u"Global\\" + name, descriptor.Get());
  // Systems without sessions know no namespaces, and no "\" in a name (CreateMutex, learn.microsoft.com).
  const DWORD error = mutex ? ERROR_SUCCESS : GetLastError();
  if (error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME || error == ERROR_BAD_PATHNAME)
    mutex = MakeMutex(name, descriptor.Get());
  return mutex;
}

TLockEnd WaitFor(HANDLE mutex, std::chrono::milliseconds patience, const std::function<bool()>& stop) {
  const auto limit = static_cast<DWORD>(patience.count());
  const DWORD begin = GetTickCount();
  for (;;) {
    // The difference is right also when the count has begun anew, every 49 days.
    const DWORD waited = GetTickCount() - begin;
    const DWORD answer = WaitForSingleObject(mutex, waited < limit ? std::min(kSlice, limit - waited) : 0);
    // Abandoned: its holder died, and it is ours now.
    if (answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED)
      return TLockEnd::Held;
    if (answer != WAIT_TIMEOUT)
      return TLockEnd::Refused;
    if (stop && stop())
      return TLockEnd::Stopped;
    if (waited >= limit)
      return TLockEnd::TimedOut;
  }
}

}  // namespace

TLockAnswer TWindowsInterprocess::Lock(const TLockWish& wish, const std::function<bool()>& stop) {
  if (HoldsNul(wish.Name))
    return {};
  TOwnedObject mutex = MutexOf(wish);
  if (!mutex)
    return {};
  const TLockEnd end = WaitFor(mutex.Get(), wish.Patience, stop);
  if (end != TLockEnd::Held)
    return {end, nullptr};
  return {end, std::make_unique<TMutexLock>(std::move(mutex))};
}

bool TWindowsInterprocess::ProcessRuns(std::uint32_t processId) {
  const TOwnedObject process(OpenProcess(SYNCHRONIZE, FALSE, processId));
  // A process that may not be opened is there; an identifier of none is an invalid parameter (OpenProcess,
  // learn.microsoft.com).
  if (!process)
    return GetLastError() != ERROR_INVALID_PARAMETER;
  // The object of a process that has ended lives on while anybody has it open.
  return WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT;
}

}  // namespace corvalt
