// The names that Windows keeps for devices.
#pragma once

#include "base/text.h"

namespace corvalt {

// Whether a name of a file or folder means a device wherever it stands and whatever its extension, such as
// "nul" or "com1.txt" (page "Naming Files, Paths, and Namespaces", learn.microsoft.com; CLOCK$ is
// one for old versions of Windows). Letter case and blanks before the extension don't count. The name holds
// no separator.
bool IsDeviceName(TextView name);

}  // namespace corvalt
