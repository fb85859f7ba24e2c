// Self-relative security descriptors as bytes: what makes a key's permissions its own. The layout is that of
// SECURITY_DESCRIPTOR, ACL and ACE_HEADER (winnt.h); the bytes may come from a damaged file.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace corvalt {

// Bits of SECURITY_DESCRIPTOR_CONTROL (winnt.h).
inline constexpr std::uint16_t kSeDaclPresent = 0x0004;
inline constexpr std::uint16_t kSeSaclPresent = 0x0010;
inline constexpr std::uint16_t kSeDaclAutoInheritReq = 0x0100;
inline constexpr std::uint16_t kSeDaclAutoInherited = 0x0400;
inline constexpr std::uint16_t kSeDaclProtected = 0x1000;
inline constexpr std::uint16_t kSeSelfRelative = 0x8000;

// Flags and types of ACE_HEADER (winnt.h).
inline constexpr std::uint8_t kAceContainerInherit = 0x02;
inline constexpr std::uint8_t kAceInheritOnly = 0x08;
inline constexpr std::uint8_t kAceInherited = 0x10;
inline constexpr std::uint8_t kAceTypeLabel = 0x11;  // SYSTEM_MANDATORY_LABEL_ACE_TYPE

using TSecurityPart = std::span<const std::uint8_t>;

// The parts of a descriptor, each a view of its bytes; empty where it has none.
struct TSecurityParts {
  std::uint16_t Control = 0;
  TSecurityPart Owner;       // a SID
  TSecurityPart Group;       // a SID
  TSecurityPart AccessList;  // the DACL
  TSecurityPart Label;       // the integrity label's entry of the SACL
};

// nullopt where the bytes are no whole self-relative descriptor.
std::optional<TSecurityParts> ParseSecurity(std::span<const std::uint8_t> descriptor);

// Whether a key's permissions are others than those of a key that is created in its place: the owner is not
// the one that new keys get, which is never the parent's but comes from whoever creates them (page "Owner of
// a New Object", learn.microsoft.com); or the access list is protected, or missing, or has an entry that is
// not inherited; or the label is not the parent's. False where the descriptors are equal byte for byte but
// for such an owner, and where there is none. newOwner is a SID; where it is empty the parent's owner is
// compared.
bool HasOwnSecurity(std::span<const std::uint8_t> descriptor, std::span<const std::uint8_t> parent,
                    std::span<const std::uint8_t> newOwner);

// Whether owner, group, access list with its protection, and label are the same. A part that wanted lacks is
// not compared.
bool HasSecurity(std::span<const std::uint8_t> descriptor, std::span<const std::uint8_t> wanted);

}  // namespace corvalt
