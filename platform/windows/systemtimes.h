// Between the system's calendar times and the day count that the logic uses.
#pragma once

#include <optional>

#include "platform/windows/windowsapi.h"
#include "system/systemlocale.h"

namespace corvalt {

// To the millisecond. nullopt for what is outside the system's calendar (SYSTEMTIME, learn.microsoft.com):
// before 1601, after 30827, no number.
std::optional<SYSTEMTIME> SystemTimeOf(TDateTime time);

// Expects a valid time.
TDateTime DateTimeOf(const SYSTEMTIME& time);

}  // namespace corvalt
