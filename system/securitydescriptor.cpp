#include "system/securitydescriptor.h"

#include <algorithm>

namespace corvalt {

namespace {

constexpr std::size_t kDescriptorSize = 20;  // bytes of SECURITY_DESCRIPTOR_RELATIVE
constexpr std::size_t kSidHeaderSize = 8;
constexpr std::size_t kAclHeaderSize = 8;
constexpr std::size_t kAceHeaderSize = 4;

std::uint16_t Number16(TSecurityPart bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
}

std::uint32_t Number32(TSecurityPart bytes, std::size_t offset) {
  return Number16(bytes, offset) | (std::uint32_t{Number16(bytes, offset + 2)} << 16);
}

// The part at an offset when its header of headerSize bytes lies inside; nullopt where it doesn't.
std::optional<TSecurityPart> PartAt(TSecurityPart bytes, std::uint32_t offset, std::size_t headerSize) {
  if (offset < kDescriptorSize || offset > bytes.size() || bytes.size() - offset < headerSize)
    return std::nullopt;
  return bytes.subspan(offset);
}

// An offset of 0 means that there is no such part; nullopt where the part does not lie inside.
std::optional<TSecurityPart> SidAt(TSecurityPart bytes, std::uint32_t offset) {
  if (offset == 0)
    return TSecurityPart();
  const std::optional<TSecurityPart> sid = PartAt(bytes, offset, kSidHeaderSize);
  if (!sid)
    return std::nullopt;
  const std::size_t size = kSidHeaderSize + std::size_t{4} * (*sid)[1];
  return size > sid->size() ? std::nullopt : std::optional<TSecurityPart>(sid->first(size));
}

std::optional<TSecurityPart> AclAt(TSecurityPart bytes, std::uint32_t offset) {
  if (offset == 0)
    return TSecurityPart();
  const std::optional<TSecurityPart> acl = PartAt(bytes, offset, kAclHeaderSize);
  if (!acl)
    return std::nullopt;
  const std::size_t size = Number16(*acl, 2);
  return size < kAclHeaderSize || size > acl->size() ? std::nullopt
                                                     : std::optional<TSecurityPart>(acl->first(size));
}

// Calls routine with each entry of a list until it returns false. False where the list is damaged.
template <typename TRoutine>
bool ForEachEntry(TSecurityPart acl, TRoutine routine) {
  if (acl.empty())
    return true;
  const std::size_t count = Number16(acl, 4);
  TSecurityPart rest = acl.subspan(kAclHeaderSize);
  for (std::size_t i = 0; i < count; ++i) {
    if (rest.size() < kAceHeaderSize)
      return false;
    const std::size_t size = Number16(rest, 2);
    if (size < kAceHeaderSize || size > rest.size())
      return false;
    if (!routine(rest.first(size)))
      return true;
    rest = rest.subspan(size);
  }
  return true;
}

bool Same(TSecurityPart a, TSecurityPart b) {
  return std::ranges::equal(a, b);
}

bool HasEntryOfItsOwn(TSecurityPart acl) {
  bool found = false;
  ForEachEntry(acl, [&found](TSecurityPart entry) {
    found = (entry[1] & kAceInherited) == 0;
    return !found;
  });
  return found;
}

}  // namespace

std::optional<TSecurityParts> ParseSecurity(std::span<const std::uint8_t> descriptor) {
  if (descriptor.size() < kDescriptorSize)
    return std::nullopt;
  TSecurityParts parts;
  parts.Control = Number16(descriptor, 2);
  if ((parts.Control & kSeSelfRelative) == 0)
    return std::nullopt;
  const bool hasSacl = (parts.Control & kSeSaclPresent) != 0;
  const bool hasDacl = (parts.Control & kSeDaclPresent) != 0;
  const auto owner = SidAt(descriptor, Number32(descriptor, 4));
  const auto group = SidAt(descriptor, Number32(descriptor, 8));
  const auto sacl = AclAt(descriptor, hasSacl ? Number32(descriptor, 12) : 0);
  const auto dacl = AclAt(descriptor, hasDacl ? Number32(descriptor, 16) : 0);
  if (!owner || !group || !sacl || !dacl)
    return std::nullopt;
  parts.Owner = *owner;
  parts.Group = *group;
  parts.AccessList = *dacl;
  const bool saclIsWhole = ForEachEntry(*sacl, [&parts](TSecurityPart entry) {
    if (entry[0] == kAceTypeLabel)
      parts.Label = entry;
    return parts.Label.empty();
  });
  const bool daclIsWhole = ForEachEntry(*dacl, [](TSecurityPart) { return true; });
  return saclIsWhole && daclIsWhole ? std::optional<TSecurityParts>(parts) : std::nullopt;
}

bool HasOwnSecurity(std::span<const std::uint8_t> descriptor, std::span<const std::uint8_t> parent,
                    std::span<const std::uint8_t> newOwner) {
  const std::optional<TSecurityParts> own = ParseSecurity(descriptor);
  if (!own)
    return false;
  // Where CREATOR OWNER is inherited the access list is another one too.
  if (!newOwner.empty() && !Same(own->Owner, newOwner))
    return true;
  if (Same(descriptor, parent))
    return false;
  const std::optional<TSecurityParts> above = ParseSecurity(parent);
  const bool isProtected = (own->Control & kSeDaclProtected) != 0;
  if (isProtected || own->AccessList.empty() || HasEntryOfItsOwn(own->AccessList))
    return true;
  if (!above)
    return false;
  return !Same(own->Label, above->Label) || (newOwner.empty() && !Same(own->Owner, above->Owner));
}

bool HasSecurity(std::span<const std::uint8_t> descriptor, std::span<const std::uint8_t> wanted) {
  const std::optional<TSecurityParts> has = ParseSecurity(descriptor);
  const std::optional<TSecurityParts> shall = ParseSecurity(wanted);
  if (!has || !shall)
    return false;
  const auto sameWhereWanted = [](TSecurityPart there, TSecurityPart part) {
    return part.empty() || Same(there, part);
  };
  if (!sameWhereWanted(has->Owner, shall->Owner) || !sameWhereWanted(has->Group, shall->Group) ||
      !sameWhereWanted(has->Label, shall->Label))
    return false;
  if ((shall->Control & kSeDaclPresent) == 0)
    return true;
  return ((has->Control ^ shall->Control) & kSeDaclProtected) == 0 &&
         Same(has->AccessList, shall->AccessList);
}

}  // namespace corvalt
