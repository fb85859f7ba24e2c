#include "ui/console/consoleprogram.h"

#include <algorithm>

#include "ui/console/arguments.h"
#include "ui/console/commands.h"

namespace corvalt {

namespace {

constexpr TextView kHelpOption = u"--help";
constexpr TextView kVersionOption = u"--version";

constexpr TextView kHelpEnd =
    u"  corvaltc --help\n"
    u"      explains the commands\n"
    u"  corvaltc --version\n"
    u"      names the version\n"
    u"\n"
    u"  --sections  the sections to scan, by their numbers\n"
    u"  --report    writes the problem report, a plain text\n"
    u"  --json      writes what was found as JSON; FILE \"-\" is standard output\n"
    u"  --quiet     lists nothing and shows no progress\n"
    u"  --yes       lets repair delete; a complete backup is made before\n"
    u"  --no-backup  needed beside --yes where the suite's settings switch this program's backups off\n"
    u"\n"
    u"Ctrl-C cancels a scan; what was found until then is written and counts. It cancels a repair too,\n"
    u"which then lists what is left, and a restore, which ends behind the entry that it is at.\n"
    u"Standard output is UTF-8 with line feeds.\n"
    u"\n"
    u"Exit codes:\n"
    u"  0  nothing found; everything repaired, restored or changed as asked\n"
    u"  1  problems found; some left by a repair, or skipped by a restore; no such entry to remove\n"
    u"  2  wrong usage; nothing was done\n"
    u"  3  the command failed, or what it found could not be written; a repair that fails so has deleted\n"
    u"     nothing; the reason stands on standard error\n"
    u"  4  interrupted; a restore has written what it says\n";

Text HelpText() {
  Text help = u"Corvalt, the registry cleaner, for the command line.\n\n";
  for (const TCommand& command : Commands()) {
    const Text usage = command.Usage.empty() ? Text() : u" " + Text(command.Usage);
    help += u"  corvaltc " + Text(command.Name) + usage + u"\n      " + Text(command.Summary) + u"\n";
  }
  return help.append(kHelpEnd);
}

const TCommand& FindCommand(const Text& name) {
  const auto commands = Commands();
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&name](const TCommand& command) { return command.Name == name; });
  if (found == commands.end())
    throw TUsageError(u"Unknown command: " + name);
  return *found;
}

TExitCode RunCommand(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  const TCommand& command = FindCommand(arguments.front());
  const TCommandRun run = command.Prepare({arguments.begin() + 1, arguments.end()});
  TGlobalVars vars;
  TGlobalReg reg;
  program.Start(program.System, vars, reg);
  TQueueUiThread uiThread;
  TConsoleContext context = {program.System, vars, reg, program.Console, uiThread};
  const TExitCode code = run(context);
  uiThread.Shut();
  return code;
}

TExitCode Print(const TConsoleProgram& program, TextView text) {
  return program.Console.Write(EncodeUtf8(text)).Failed() ? TExitCode::Failed : TExitCode::Nothing;
}

TExitCode Obey(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  if (arguments.empty())
    throw TUsageError(u"No command is given.");
  if (std::find(arguments.begin(), arguments.end(), kHelpOption) != arguments.end())
    return Print(program, HelpText());
  if (arguments.front() != kVersionOption)
    return RunCommand(arguments, program);
  if (arguments.size() > 1)
    throw TUsageError(u"Unexpected argument: " + arguments[1]);
  return Print(program, u"corvaltc " + Text(program.Version) + u"\n");
}

}  // namespace

TExitCode RunConsoleProgram(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  try {
    return Obey(arguments, program);
  } catch (const TUsageError& error) {
    program.Console.Tell(error.Message());
    program.Console.Tell(u"\"corvaltc --help\" explains the commands.");
    return TExitCode::WrongUsage;
  } catch (...) {
    program.Console.Tell(DescribeException(std::current_exception(), program.System.Locale));
    return TExitCode::Failed;
  }
}

}  // namespace corvalt
