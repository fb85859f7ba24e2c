// The security descriptors of opened keys.
#pragma once

#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

// Owner, group, access list and, where the system has labels, the label; empty where it can't be read.
TBytes ReadSecurity(HKEY key);

// Sets each part of the descriptor as far as the handle's access and the user's privileges allow it.
void WriteSecurity(HKEY key, const TBytes& descriptor);

}  // namespace corvalt
