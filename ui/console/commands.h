// The commands of the console program: one table that the command line and the help read. Each command has a
// source file of its own.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "base/text.h"
#include "core/languageids.h"
#include "ui/console/console.h"

namespace corvalt {

using TCommandRun = std::function<TExitCode(TConsoleContext&)>;

struct TCommand {
  TextView Name;
  TextView Usage;  // its arguments
  TextId Summary;

  // What to run for these arguments, those after the command's name. Throws TUsageError.
  TCommandRun (*Prepare)(const std::vector<Text>& arguments);
};

std::span<const TCommand> Commands();

TCommandRun PrepareSections(const std::vector<Text>& arguments);
TCommandRun PrepareScan(const std::vector<Text>& arguments);
TCommandRun PrepareRepair(const std::vector<Text>& arguments);
TCommandRun PrepareBackups(const std::vector<Text>& arguments);
TCommandRun PrepareRestore(const std::vector<Text>& list);
TCommandRun PrepareIgnore(const std::vector<Text>& list);
TCommandRun PreparePurge(const std::vector<Text>& list);

}  // namespace corvalt
