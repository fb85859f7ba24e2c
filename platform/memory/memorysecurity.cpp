#include "platform/memory/memorysecurity.h"

#include <algorithm>

#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

constexpr std::uint32_t kReadAccess = 0x20019;  // KEY_READ (winnt.h)
constexpr std::uint8_t kRevision = 1;           // of descriptors and SIDs
constexpr std::uint8_t kAclRevision = 2;
constexpr std::uint8_t kAceTypeAllowed = 0;
constexpr std::uint32_t kDescriptorSize = 20;
constexpr std::uint32_t kNoWriteUp = 1;  // SYSTEM_MANDATORY_LABEL_NO_WRITE_UP (winnt.h)

void Append16(TBytes& bytes, std::size_t number) {
  bytes.push_back(static_cast<std::uint8_t>(number));
  bytes.push_back(static_cast<std::uint8_t>(number >> 8));
}

void Append32(TBytes& bytes, std::size_t number) {
  Append16(bytes, number);
  Append16(bytes, number >> 16);
}

void Append(TBytes& bytes, TSecurityPart part) {
  bytes.insert(bytes.end(), part.begin(), part.end());
}

TBytes EntryBytes(std::uint8_t type, std::uint8_t flags, std::uint32_t mask, const TBytes& sid) {
  TBytes bytes = {type, flags};
  Append16(bytes, 8 + sid.size());
  Append32(bytes, mask);
  Append(bytes, sid);
  return bytes;
}

TBytes ListBytes(const std::vector<TBytes>& entries) {
  std::size_t size = 8;
  for (const TBytes& entry : entries)
    size += entry.size();
  TBytes bytes = {kAclRevision, 0};
  Append16(bytes, size);
  Append16(bytes, entries.size());
  Append16(bytes, 0);
  for (const TBytes& entry : entries)
    Append(bytes, entry);
  return bytes;
}

TBytes DescriptorBytes(std::size_t control, TSecurityPart owner, TSecurityPart group, TSecurityPart label,
                       const std::vector<TBytes>& entries) {
  TBytes labelList;
  if (!label.empty())
    labelList = ListBytes({TBytes(label.begin(), label.end())});
  const TBytes accessList = ListBytes(entries);
  const std::size_t groupAt = kDescriptorSize + owner.size();
  const std::size_t labelAt = groupAt + group.size();
  const std::size_t accessAt = labelAt + labelList.size();
  TBytes bytes = {kRevision, 0};
  Append16(bytes, control | kSeSelfRelative | kSeDaclPresent | (label.empty() ? 0 : kSeSaclPresent));
  Append32(bytes, kDescriptorSize);
  Append32(bytes, groupAt);
  Append32(bytes, label.empty() ? 0 : labelAt);
  Append32(bytes, accessAt);
  for (const TSecurityPart part : {owner, group, TSecurityPart(labelList), TSecurityPart(accessList)})
    Append(bytes, part);
  return bytes;
}

std::uint32_t Number32(const TBytes& bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;)
    number = number << 8 | bytes[offset + i];
  return number;
}

std::vector<TBytes> EntriesToInherit(TSecurityPart accessList, const TBytes& owner) {
  const TBytes creatorOwner = SidBytes(u"S-1-3-0");
  std::vector<TBytes> entries;
  for (TSecurityPart rest = accessList.subspan(8); rest.size() >= 8;) {
    const std::size_t size = rest[2] + 256U * rest[3];
    TBytes entry(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
    const bool isCreators = std::ranges::equal(TSecurityPart(entry).subspan(8), creatorOwner);
    if ((entry[1] & kAceContainerInherit) != 0) {
      if (isCreators)
        entries.push_back(EntryBytes(entry[0], kAceInherited, Number32(entry, 4), owner));
      const int flags = entry[1] | kAceInherited;
      entry[1] = static_cast<std::uint8_t>(isCreators ? flags | kAceInheritOnly : flags & ~kAceInheritOnly);
      entries.push_back(std::move(entry));
    }
    rest = rest.subspan(size);
  }
  return entries;
}

}  // namespace

// A revision, an authority, and at least one number below it.
TBytes SidBytes(TextView sid) {
  std::vector<std::uint32_t> numbers;
  for (const char16_t unit : sid.substr(1)) {
    if (unit == u'-') {
      numbers.push_back(0);
    } else {
      numbers.back() = numbers.back() * 10 + (unit - u'0');
    }
  }
  TBytes bytes = {kRevision, static_cast<std::uint8_t>(numbers.size() - 2), 0, 0, 0, 0,
                  0,         static_cast<std::uint8_t>(numbers[1])};
  for (std::size_t i = 2; i < numbers.size(); ++i)
    Append32(bytes, numbers[i]);
  return bytes;
}

TBytes SecurityBytes(const TMemorySecurity& security) {
  std::vector<TBytes> entries;
  for (const TMemoryAccess& access : security.Access)
    entries.push_back(EntryBytes(kAceTypeAllowed, access.Flags, access.Mask, SidBytes(access.Sid)));
  TBytes label;
  if (security.Label) {
    const TBytes sid = SidBytes(u"S-1-16-" + DecimalText(*security.Label));
    label = EntryBytes(kAceTypeLabel, kAceContainerInherit, kNoWriteUp, sid);
  }
  return DescriptorBytes(security.IsProtected ? kSeDaclProtected : 0, SidBytes(security.Owner),
                         SidBytes(security.Group), label, entries);
}

TBytes DefaultSecurity() {
  return SecurityBytes({.Access = {{u"S-1-5-32-544", 0xF003F, kAceContainerInherit},
                                   {u"S-1-5-32-545", kReadAccess, kAceContainerInherit}}});
}

TBytes InheritedSecurity(const TBytes& parent, const TMemoryCreator& creator) {
  const std::optional<TSecurityParts> parts = ParseSecurity(parent);
  if (!parts || parts->AccessList.empty())
    return parent;
  return DescriptorBytes(kSeDaclAutoInherited, creator.Owner, creator.Group, parts->Label,
                         EntriesToInherit(parts->AccessList, creator.Owner));
}

}  // namespace corvalt
