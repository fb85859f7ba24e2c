// The security identifier of the user that the program runs as.
#pragma once

#include "base/text.h"

namespace corvalt {

// In its text form, "S-1-5-..."; empty where the system has none (Windows 95 family) or can't be asked.
Text UserSidText();

}  // namespace corvalt
