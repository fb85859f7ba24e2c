// What the program has Windows start or show: other programs, links, the help file, a file's properties.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace corvalt {

class TPrograms {
 public:
  virtual ~TPrograms() = default;

  // ShellExecute with this verb, no parameters, no working folder, shown normally. The result is the
  // system's: nobody here checks it.
  virtual void Execute(TextView verb, TextView target) = 0;

  // Starts a program with this verb ("open", "RunAs") and waits until it is idle for input. False when it did
  // not start.
  virtual bool ExecuteAndWaitForIdle(TextView verb, TextView program) = 0;

  // The shell's properties sheet of a file: ShellExecuteEx with the verb "properties" and this mask.
  virtual bool ShowProperties(TextView path, std::uint32_t mask) = 0;

  // A topic of a compiled help file (HtmlHelp, HH_DISPLAY_TOPIC).
  virtual void ShowHelpTopic(TextView helpFile, TextView topic) = 0;
};

}  // namespace corvalt
