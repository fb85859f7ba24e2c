// The views of the registry on 64-bit Windows (page "Accessing an Alternate Registry View").
#pragma once

#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"

namespace corvalt {

// The view of this program.
TRegistryView OwnView();

// Whether the system has the view: every system has the program's own, and 64-bit Windows has both.
bool HasView(TRegistryView view);

// What makes an opening take place in the view.
REGSAM ViewFlag(TRegistryView view);

}  // namespace corvalt
