// The security descriptors of opened keys.
#pragma once

#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

// Owner, group, access list and, where the system has labels, the label; empty where it can't be read.
TBytes ReadSecurity(HKEY key);

// The SID of the owner that keys get which this program creates: its user, or the administrators where he is
// one of them (page "Owner of a New Object", learn.microsoft.com). Empty where the system does not tell; Wine
// names a third one, whom it makes the owner of nothing.
TBytes OwnerOfNewKeys();

// Sets each part of the descriptor as far as the handle's access and the user's privileges allow it.
void WriteSecurity(HKEY key, const TBytes& descriptor);

}  // namespace corvalt
