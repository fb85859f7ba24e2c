#include "platform/windows/windowsinterprocess.h"

#include <vector>

#include "platform/windows/windowsapi.h"

#include <sddl.h>

namespace corvalt {

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

// The security identifier of the program's user, "S-1-...". Empty when the system doesn't say it.
Text UserIdentifier() {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened))
    return {};
  const TOwnedObject token(opened);
  DWORD size = 0;
  GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
  std::vector<std::uint8_t> buffer(size);
  if (!GetTokenInformation(token.Get(), TokenUser, buffer.data(), size, &size))
    return {};
  LPWSTR identifier = nullptr;
  if (!ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid, &identifier))
    return {};
  const TOwnedLocalMemory owner(identifier);
  return Text(FromWide(identifier));
}

// What an elevated program makes is, unless said otherwise, closed to the same user's other programs.
TOwnedObject OpenMutexOfUser(const Text& systemName) {
  const Text user = UserIdentifier();
  const Text rights = user.empty() ? Text() : u"D:(A;;GA;;;SY)(A;;GA;;;" + user + u")";
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (rights.empty() || !ConvertStringSecurityDescriptorToSecurityDescriptorW(Wide(rights), SDDL_REVISION_1,
                                                                              &descriptor, nullptr))
    return {};
  const TOwnedLocalMemory owner(descriptor);
  SECURITY_ATTRIBUTES attributes = {sizeof(attributes), descriptor, FALSE};
  return TOwnedObject(CreateMutexW(&attributes, FALSE, Wide(systemName)));
}

}  // namespace

std::unique_ptr<THeldLock> TWindowsInterprocess::Lock(TextView name) {
  if (HoldsNul(name))
    return nullptr;
  // A "\" in a mutex's name ends its namespace.
  TOwnedObject mutex = OpenMutexOfUser(u"Global\\" + ReplaceAll(name, u"\\", u"/"));
  if (!mutex)
    return nullptr;
  // Abandoned: its holder died, and it is ours now.
  const DWORD answer = WaitForSingleObject(mutex.Get(), INFINITE);
  if (answer != WAIT_OBJECT_0 && answer != WAIT_ABANDONED)
    return nullptr;
  return std::make_unique<TMutexLock>(std::move(mutex));
}

}  // namespace corvalt
