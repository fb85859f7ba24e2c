// The console program from its arguments to its exit code.
#pragma once

#include <functional>
#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languagetexts.h"
#include "system/system.h"
#include "ui/console/console.h"

namespace corvalt {

struct TConsoleProgram {
  TSystem& System;
  TConsole& Console;
  TextView Version;

  // The start sequence; it runs before every command, and not for the help or wrong usage.
  std::function<void(TSystem&, TGlobalVars&, TGlobalReg&)> Start;

  // The texts for the help and for wrong usage; changes nothing.
  std::function<TLanguageTexts(TSystem&)> Texts;
};

// Runs what the arguments, the program's own name not among them, ask for on the calling thread.
TExitCode RunConsoleProgram(const std::vector<Text>& arguments, const TConsoleProgram& program);

}  // namespace corvalt
