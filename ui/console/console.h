// What the commands of the console program need of it: the two outputs, the terminal, the interrupt key.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "system/queueuithread.h"
#include "system/system.h"
#include "system/systemerror.h"

namespace corvalt {

class TConsole {
 public:
  virtual ~TConsole() = default;

  // Data for standard output: UTF-8, written byte for byte, lines ended by LF. The system's error when not
  // all of it could be written.
  virtual TSystemError Write(std::string_view utf8) = 0;

  // One line for the person at the screen, to standard error.
  virtual void Tell(TextView line) = 0;

  // Shows a line that the next one replaces, while standard error is a terminal; an empty one clears it.
  virtual void ShowProgress(TextView line) = 0;

  // What the interrupt key does; without a handler it ends the program. The handler runs on a thread of the
  // system's. When this returns the handler before it is not running any more.
  virtual void SetInterruptHandler(std::function<void()> handler) = 0;
};

// The program's exit codes.
enum class TExitCode : int {
  Done = 0,           // no problem was found, or everything was repaired, restored or changed as asked
  SomethingLeft = 1,  // problems were found, or some were not repaired, restored or there to be changed
  WrongUsage = 2,     // no command was run
  Failed = 3,         // with the reason on standard error
  Interrupted = 4,    // by the interrupt key, after something was changed
};

// What a command runs on, the start sequence done. The calling thread is the user-interface thread.
struct TConsoleContext {
  TSystem& System;
  const TGlobalVars& Vars;
  TGlobalReg& Reg;
  TConsole& Console;
  TQueueUiThread& UiThread;
};

}  // namespace corvalt
