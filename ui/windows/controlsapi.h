// The one way to the system's headers for windows and controls, which build on <windows.h>.
#pragma once

#include "platform/windows/windowsapi.h"

// Needs the types of <windows.h>.
#include <commctrl.h>
#include <oleacc.h>
#include <uxtheme.h>
#include <vssym32.h>
#include <windowsx.h>
