#include "platform/windows/keysecurity.h"

#include <vector>

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

// The SID with which the record begins (TOKEN_USER, TOKEN_OWNER); empty where it can't be read.
TBytes TokenSid(TOKEN_INFORMATION_CLASS information) {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened))
    return {};
  const TOwnedObject token(opened);
  DWORD size = 0;
  GetTokenInformation(token.Get(), information, nullptr, 0, &size);
  // Aligned as the record needs it.
  std::vector<std::uint64_t> record(size / sizeof(std::uint64_t) + 1);
  if (size == 0 || !GetTokenInformation(token.Get(), information, record.data(), size, &size))
    return {};
  const PSID sid = *reinterpret_cast<const PSID*>(record.data());
  const auto* const bytes = static_cast<const std::uint8_t*>(sid);
  return {bytes, bytes + GetLengthSid(sid)};
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

TBytes OwnerOfNewKeys() {
  // S-1-5-32-544.
  const TBytes administrators = {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0};
  const TBytes owner = TokenSid(TokenOwner);
  const bool isOwner = owner == administrators || owner == TokenSid(TokenUser);
  return isOwner ? owner : TBytes();
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
