#include "platform/windows/keysecurity.h"

#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

// Vista and later (winnt.h); page "SECURITY_INFORMATION".
constexpr SECURITY_INFORMATION kLabelInformation = 0x10;
constexpr SECURITY_INFORMATION kPlainInformation =
    OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

constexpr DWORD kUsualDescriptor = 1024;  // bytes

// A privilege of the program's user, switched on for the life of the object where the user has it.
class TPrivilege {
 public:
  explicit TPrivilege(const wchar_t* name) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &opened))
      return;
    m_token = TOwnedObject(opened);
    TOKEN_PRIVILEGES wanted = {};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD size = sizeof(m_before);
    if (LookupPrivilegeValueW(nullptr, name, &wanted.Privileges[0].Luid))
      AdjustTokenPrivileges(m_token.Get(), FALSE, &wanted, sizeof(m_before), &m_before, &size);
  }
  ~TPrivilege() {
    if (m_before.PrivilegeCount != 0)
      AdjustTokenPrivileges(m_token.Get(), FALSE, &m_before, 0, nullptr, nullptr);
  }
  TPrivilege(const TPrivilege&) = delete;
  TPrivilege& operator=(const TPrivilege&) = delete;

 private:
  TOwnedObject m_token;
  TOKEN_PRIVILEGES m_before = {};  // what was changed: none where the privilege was on, or is not held
};

LSTATUS Query(HKEY key, SECURITY_INFORMATION information, TBytes& descriptor) {
  descriptor.resize(kUsualDescriptor);
  auto size = static_cast<DWORD>(descriptor.size());
  LSTATUS status = RegGetKeySecurity(key, information, descriptor.data(), &size);
  if (status == ERROR_INSUFFICIENT_BUFFER) {
    descriptor.resize(size);
    status = RegGetKeySecurity(key, information, descriptor.data(), &size);
  }
  if (status == ERROR_SUCCESS)
    descriptor.resize(GetSecurityDescriptorLength(descriptor.data()));
  return status;
}

// The bit that a descriptor is stored with is set by another bit in the descriptor that is handed over (page
// "SECURITY_DESCRIPTOR_CONTROL").
void AskForInheritance(TBytes& descriptor) {
  const auto control = static_cast<std::uint16_t>(descriptor[2] | (descriptor[3] << 8));
  if ((control & kSeDaclAutoInherited) != 0)
    descriptor[3] = static_cast<std::uint8_t>(descriptor[3] | (kSeDaclAutoInheritReq >> 8));
}

}  // namespace

TBytes ReadSecurity(HKEY key) {
  TBytes descriptor;
  if (Query(key, kPlainInformation | kLabelInformation, descriptor) == ERROR_SUCCESS)
    return descriptor;
  if (Query(key, kPlainInformation, descriptor) == ERROR_SUCCESS)
    return descriptor;
  return {};
}

void WriteSecurity(HKEY key, const TBytes& descriptor) {
  const std::optional<TSecurityParts> parts = ParseSecurity(descriptor);
  if (!parts)
    return;
  TBytes bytes = descriptor;
  AskForInheritance(bytes);
  if (!IsValidSecurityDescriptor(bytes.data()))
    return;
  if ((parts->Control & kSeDaclPresent) != 0) {
    const bool isProtected = (parts->Control & kSeDaclProtected) != 0;
    RegSetKeySecurity(key,
                      DACL_SECURITY_INFORMATION | (isProtected ? PROTECTED_DACL_SECURITY_INFORMATION
                                                               : UNPROTECTED_DACL_SECURITY_INFORMATION),
                      bytes.data());
  }
  if (!parts->Label.empty())
    RegSetKeySecurity(key, kLabelInformation, bytes.data());
  if (!parts->Group.empty())
    RegSetKeySecurity(key, GROUP_SECURITY_INFORMATION, bytes.data());
  if (!parts->Owner.empty()) {
    const TPrivilege restore(SE_RESTORE_NAME);
    RegSetKeySecurity(key, OWNER_SECURITY_INFORMATION, bytes.data());
  }
}

}  // namespace corvalt
