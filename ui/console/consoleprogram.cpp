#include "ui/console/consoleprogram.h"

#include <algorithm>
#include <array>

#include "core/rightprogram.h"
#include "ui/console/arguments.h"
#include "ui/console/cells.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"

namespace corvalt {

namespace {

constexpr TextView kVersionOption = u"--version";
constexpr TextView kHelpCommand = u"help";
constexpr std::array<TextView, 3> kHelpOptions = {u"--help", u"-h", u"/?"};

constexpr std::size_t kHelpWidth = 100;  // columns of a line

struct THelpLine {
  TextView Word;
  TextId Text;
};

constexpr std::array kOptionLines = std::to_array<THelpLine>({
    {u"--sections", TextId::HelpOptionSections},
    {u"--report", TextId::HelpOptionReport},
    {u"--json", TextId::HelpOptionJson},
    {u"--quiet", TextId::HelpOptionQuiet},
    {u"--yes", TextId::HelpOptionYes},
    {u"--no-backup", TextId::HelpOptionNoBackup},
    {u"--foreign", TextId::HelpOptionForeign},
});

// In the order of their numbers, which begin with 0.
constexpr std::array kExitCodes = {TextId::HelpExitDone, TextId::HelpExitLeft, TextId::HelpExitUsage,
                                   TextId::HelpExitFailed, TextId::HelpExitInterrupted};

// The text on lines of its own, each but the first behind this many blanks.
Text Wrapped(TextView text, std::size_t indent) {
  Text lines;
  while (!text.empty()) {
    if (!lines.empty())
      lines += u"\n" + Text(indent, u' ');
    const std::size_t length = LineLength(text, kHelpWidth - indent);
    lines += Trim(text.substr(0, length));
    text.remove_prefix(length);
    text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
  }
  return lines + u"\n";
}

// A word, and what it means from this column on.
Text HelpLine(TextView word, TextView meaning, std::size_t column) {
  Text line = u"  " + Text(word);
  line.resize(std::max(column, line.size() + 2), u' ');
  return line + Wrapped(meaning, line.size());
}

Text CommandHelp(TextView name, TextView usage, TextView summary) {
  constexpr std::size_t kIndent = 6;
  const Text arguments = usage.empty() ? Text() : u" " + Text(usage);
  return u"  corvaltc " + Text(name) + arguments + u"\n" + Text(kIndent, u' ') + Wrapped(summary, kIndent);
}

Text HelpText(const TLanguageTexts& texts) {
  constexpr std::size_t kOptionColumn = 15;
  constexpr std::size_t kExitCodeColumn = 5;
  const auto text = [&texts](TextId id) { return ConsoleText(texts, id); };
  Text help = Wrapped(text(TextId::HelpTitle), 0) + u"\n";
  for (const TCommand& command : Commands())
    help += CommandHelp(command.Name, command.Usage, text(command.Summary));
  help += CommandHelp(kHelpCommand, {}, text(TextId::HelpHelp));
  help += CommandHelp(kVersionOption, {}, text(TextId::HelpVersion)) + u"\n";
  for (const THelpLine& line : kOptionLines)
    help += HelpLine(line.Word, text(line.Text), kOptionColumn);
  help += u"\n" + Wrapped(text(TextId::HelpInterrupt), 0) + Wrapped(text(TextId::HelpEncoding), 0);
  help += u"\n" + Wrapped(text(TextId::HelpExitCodes), 0);
  for (std::size_t code = 0; code < kExitCodes.size(); ++code)
    help += HelpLine(DecimalText(static_cast<std::int64_t>(code)), text(kExitCodes[code]), kExitCodeColumn);
  return help;
}

bool AsksForHelp(const std::vector<Text>& arguments) {
  return arguments.front() == kHelpCommand ||
         std::any_of(arguments.begin(), arguments.end(), [](const Text& argument) {
           return std::find(kHelpOptions.begin(), kHelpOptions.end(), argument) != kHelpOptions.end();
         });
}

const TCommand& FindCommand(const Text& name) {
  const auto commands = Commands();
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&name](const TCommand& command) { return command.Name == name; });
  if (found == commands.end())
    throw TUsageError(TextId::UnknownCommand, name);
  return *found;
}

TExitCode RunCommand(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  const TCommand& command = FindCommand(arguments.front());
  const TCommandRun run = command.Prepare({arguments.begin() + 1, arguments.end()});
  TGlobalVars vars;
  TGlobalReg reg;
  program.Start(program.System, vars, reg);
  if (const std::optional<Text> hint = WrongProgramHint(program.System.Probe, vars.Texts))
    program.Console.Tell(*hint);
  TQueueUiThread uiThread;
  TConsoleContext context = {
      .System = program.System, .Vars = vars, .Reg = reg, .Console = program.Console, .UiThread = uiThread};
  const TExitCode code = run(context);
  uiThread.Shut();
  return code;
}

TExitCode Print(const TConsoleProgram& program, TextView text) {
  return program.Console.Write(EncodeUtf8(text)).Failed() ? TExitCode::Failed : TExitCode::Done;
}

TExitCode Obey(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  if (arguments.empty())
    throw TUsageError(TextId::NoCommand);
  if (AsksForHelp(arguments))
    return Print(program, HelpText(program.Texts(program.System)));
  if (arguments.front() != kVersionOption)
    return RunCommand(arguments, program);
  if (arguments.size() > 1)
    throw TUsageError(TextId::UnexpectedArgument, arguments[1]);
  return Print(program, u"corvaltc " + Text(program.Version) + u"\n");
}

}  // namespace

TExitCode RunConsoleProgram(const std::vector<Text>& arguments, const TConsoleProgram& program) {
  try {
    return Obey(arguments, program);
  } catch (const TUsageError& error) {
    const TLanguageTexts texts = program.Texts(program.System);
    program.Console.Tell(ConsoleText(texts, error.Id, error.Argument));
    program.Console.Tell(ConsoleText(texts, TextId::HelpHint));
    return TExitCode::WrongUsage;
  } catch (...) {
    program.Console.Tell(DescribeException(std::current_exception(), program.System.Locale));
    return TExitCode::Failed;
  }
}

}  // namespace corvalt
