// Looks at the running program from another process, as assistive technology and other programs do. Without
// arguments it prints what it can do.
#include <objbase.h>

#include <algorithm>
#include <climits>

#include "tests/wine/windowreader/commands.h"

namespace corvalt {

namespace {

constexpr TextView kIntroduction = u"wine_windowreader [-p PROCESS] COMMAND\n";
constexpr TextView kRemarks =
    u"TREE is \"sections\" or \"results\". Fields are parted by tabs, lines of a text by \" | \". Without -p "
    u"the\n"
    u"program's only process is meant. Exit codes: 0; 1 when what was waited for did not come; 2 for what "
    u"can't be "
    u"done.\n";

// The words behind the command.
class TWords {
 public:
  explicit TWords(std::vector<Text> words) : m_words(std::move(words)) {
  }
  std::size_t Count() const {
    return m_words.size();
  }
  const Text& At(std::size_t i) const {
    if (i >= m_words.size())
      Refuse("too few arguments");
    return m_words[i];
  }
  LONG NumberAt(std::size_t i) const {
    const auto parsed = ParseInteger(At(i));
    if (!parsed)
      Refuse("not a number");
    return *parsed;
  }

 private:
  std::vector<Text> m_words;
};

TOutline OutlineOf(const TProgram& program, const TWords& words) {
  return TOutline(program.Tree(words.At(0)));
}

struct TCommand {
  TextView Name;
  TextView Arguments;
  TextView Help;
  int (*Run)(const TProgram& program, const TWords& words);
};

// clang-format off
const TCommand kCommands[] = {
    {u"windows", u"",
     u"the visible windows, without -p of all programs: handle, process, class, state, left, top, width, height, title",
     [](const TProgram& program, const TWords&) { return PrintWindows(program); }},
    {u"wait", u"TITLE", u"waits for a visible, enabled window whose title begins so, and prints it",
     [](const TProgram& program, const TWords& words) { return WaitForWindow(program, words.At(0)); }},
    {u"gone", u"TITLE", u"waits until there is none",
     [](const TProgram& program, const TWords& words) { return WaitUntilGone(program, words.At(0)); }},
    {u"saying", u"TITLE TEXT", u"waits until a control in it shows a text that begins so, and prints the control",
     [](const TProgram& program, const TWords& words) { return WaitUntilSaid(program, words.At(0), words.At(1)); }},
    {u"controls", u"TITLE",
     u"its controls: handle, class, number, state, left, top, width, height, text; a progress bar's text is its position",
     [](const TProgram& program, const TWords& words) { return PrintControls(program, words.At(0)); }},
    {u"list", u"TITLE", u"the rows of its list: number, states, left, top, width, height, texts",
     [](const TProgram& program, const TWords& words) { return PrintList(program, words.At(0)); }},
    {u"chooser", u"", u"the choices of the results tree's chooser, the current one marked with \"*\"",
     [](const TProgram& program, const TWords&) { return PrintChoices(program); }},
    {u"status", u"", u"the parts of the status bar, one a line",
     [](const TProgram& program, const TWords&) { return PrintStatus(program); }},
    {u"tool", u"COMMAND STATE", u"waits until the toolbar's button is \"enabled\" or \"disabled\"",
     [](const TProgram& program, const TWords& words) {
       return WaitForTool(program, static_cast<WPARAM>(words.NumberAt(0)), words.At(1));
     }},
    {u"outline", u"TREE", u"the whole tree to MSAA: role, number of rows, selected row, row with the focus",
     [](const TProgram& program, const TWords& words) { return PrintOutline(OutlineOf(program, words)); }},
    {u"rows", u"TREE [A B]",
     u"its rows, or those from A to B: number, role, level, states, left, top, width, height, name",
     [](const TProgram& program, const TWords& words) {
       const bool isPart = words.Count() > 1;
       return PrintRows(OutlineOf(program, words), isPart ? words.NumberAt(1) : 1, isPart ? words.NumberAt(2) : LONG_MAX);
     }},
    {u"at", u"TREE LEFT TOP", u"the row that MSAA finds at a point of the screen",
     [](const TProgram& program, const TWords& words) {
       return PrintRowAt(OutlineOf(program, words), words.NumberAt(1), words.NumberAt(2));
     }},
    {u"next", u"TREE ROW WAY", u"the row that MSAA finds next to it: up, down, left, right, first, last",
     [](const TProgram& program, const TWords& words) {
       return PrintNext(OutlineOf(program, words), words.NumberAt(1), words.At(2));
     }},
    {u"toggle", u"TREE ROW", u"does the row's default action, and prints the action's name",
     [](const TProgram& program, const TWords& words) { return Toggle(OutlineOf(program, words), words.NumberAt(1)); }},
    {u"select", u"TREE ROW", u"selects the row",
     [](const TProgram& program, const TWords& words) { return Select(OutlineOf(program, words), words.NumberAt(1)); }},
    {u"listen", u"EVENT",
     u"waits for an \"alert\" of the program, as assistive technology hears it, and prints what it is about",
     [](const TProgram& program, const TWords& words) { return Listen(program, words.At(0)); }},
    {u"object", u"TITLE NUMBER", u"role, name and description to MSAA of a control of the window, 0 for the window itself",
     [](const TProgram& program, const TWords& words) {
       return PrintObject(program, words.At(0), words.NumberAt(1));
     }},
    {u"close", u"", u"asks the main window to close, as the system's task list does",
     [](const TProgram& program, const TWords&) { return AskToClose(program); }},
    {u"resources", u"", u"what the program holds: handles, windows, USER, GDI objects, kilobytes",
     [](const TProgram& program, const TWords&) { return PrintResources(program); }},
};
// clang-format on

void PrintUsage() {
  Print(Text(kIntroduction));
  for (const TCommand& command : kCommands) {
    const Text usage =
        Text(command.Name) + (command.Arguments.empty() ? u"" : u" ") + Text(command.Arguments);
    Print(u"  " + usage + u"\n      " + Text(command.Help) + u"\n");
  }
  Print(Text(kRemarks));
}

int Run(const TProgram& program, TextView name, const TWords& words) {
  const auto* const command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [name](const TCommand& each) { return each.Name == name; });
  if (command == std::end(kCommands))
    Refuse("no such command");
  return command->Run(program, words);
}

int RunTool(int count, wchar_t** arguments) {
  std::vector<Text> words;
  for (int i = 1; i < count; ++i)
    words.emplace_back(FromWide(arguments[i]));
  DWORD process = 0;
  if (words.size() > 1 && words[0] == u"-p") {
    process = static_cast<DWORD>(ParseInteger(words[1]).value_or(0));
    words.erase(words.begin(), words.begin() + 2);
  }
  if (words.empty()) {
    PrintUsage();
    return kImpossible;
  }
  const Text command = words[0];
  words.erase(words.begin());
  CoInitialize(nullptr);
  int code = kImpossible;
  try {
    code = Run(TProgram(process), command, TWords(std::move(words)));
  } catch (const std::exception& failure) {
    Print(FromAscii(failure.what()) + u"\n");
  }
  CoUninitialize();
  return code;
}

}  // namespace

}  // namespace corvalt

int wmain(int count, wchar_t** arguments) {
  return corvalt::RunTool(count, arguments);
}
