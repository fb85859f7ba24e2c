// Security descriptors as the bytes that Windows stores, built in a few words.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

struct TMemoryAccess {
  Text Sid;                      // "S-1-5-32-544"
  std::uint32_t Mask = 0xF003F;  // KEY_ALL_ACCESS (winnt.h)
  std::uint8_t Flags = 0;        // of ACE_HEADER
};

struct TMemorySecurity {
  Text Owner = u"S-1-5-32-544";
  Text Group = u"S-1-5-18";
  std::vector<TMemoryAccess> Access;
  bool IsProtected = false;
  std::optional<std::uint32_t> Label = std::nullopt;  // SECURITY_MANDATORY_LOW_RID and so on (winnt.h)
};

// A self-relative descriptor.
TBytes SecurityBytes(const TMemorySecurity& security);

// Of the top of a hive: administrators may do everything, users read, both inherited by what lies below.
TBytes DefaultSecurity();

// "S-1-5-32-544" as bytes.
TBytes SidBytes(TextView sid);

// Who creates keys: new keys get his owner and group, never those of the parent (page "Owner of a New
// Object", learn.microsoft.com).
struct TMemoryCreator {
  TBytes Owner = SidBytes(u"S-1-5-32-544");
  TBytes Group = SidBytes(u"S-1-5-18");
};

// What a new key gets: owner and group of its creator, and from its parent the label and the entries that the
// parent hands down, marked as inherited. An entry for CREATOR OWNER becomes one for the owner, and is handed
// down further (page "ACE Inheritance Rules", learn.microsoft.com).
TBytes InheritedSecurity(const TBytes& parent, const TMemoryCreator& creator);

}  // namespace corvalt
