// What both programs do before anything else.
#pragma once

#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languagetexts.h"
#include "system/system.h"

namespace corvalt {

// Fills the two program-wide records in the order that the suite's other programs rely on; missing settings
// are written. Throws TSystemException when the machine's drive list does not fit.
void RunStartSequence(TSystem& system, TGlobalVars& vars, TGlobalReg& reg);

// The texts of the user's language before that sequence; changes nothing.
TLanguageTexts ReadTexts(TSystem& system);

}  // namespace corvalt
