// corvaltc ignore: the ignore list, shown and changed.

#include <algorithm>

#include "base/lettercase.h"
#include "repair/ignorereg.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"
#include "ui/ignorelistmodel.h"

namespace corvalt {

namespace {

TExitCode ListEntries(TConsoleContext& context) {
  std::string lines;
  for (const Text& entry : context.Reg.IgnoreList)
    lines += LineText(entry) + "\n";
  return WriteData(context, lines) ? TExitCode::Done : TExitCode::Failed;
}

// The list as it was stored; a failure to store it is silent.
TExitCode CodeOfStored(TConsoleContext& context, const Text& entry, bool expected) {
  const std::vector<Text> stored = LoadIgnoreList(context.System);
  const bool isStored = std::any_of(stored.begin(), stored.end(),
                                    [&entry](const Text& each) { return EqualIgnoringCase(each, entry); });
  if (isStored == expected)
    return TExitCode::Done;
  TellText(context, TextId::IgnoreListNotStored);
  return TExitCode::Failed;
}

TExitCode Add(TConsoleContext& context, const Text& entry) {
  AddIgnoreEntry(context.System, context.Reg, entry);
  return CodeOfStored(context, entry, true);
}

// The row of an entry, given as the list shows it or without the mark of a switched-off one.
std::optional<std::size_t> RowOf(const TIgnoreListModel& model, const Text& entry) {
  const std::vector<TIgnoreRow>& rows = model.Rows();
  const auto row = std::find_if(rows.begin(), rows.end(), [&entry](const TIgnoreRow& each) {
    return EqualIgnoringCase(each.Caption, entry) ||
           (!each.Checked && EqualIgnoringCase(u";" + each.Caption, entry));
  });
  if (row == rows.end())
    return std::nullopt;
  return static_cast<std::size_t>(row - rows.begin());
}

TExitCode Remove(TConsoleContext& context, const Text& entry) {
  TIgnoreListModel model(context.Reg);
  std::optional<std::size_t> row = RowOf(model, entry);
  if (!row) {
    TellText(context, TextId::NoSuchIgnoreEntry, entry);
    return TExitCode::SomethingLeft;
  }
  // An entry that was switched on again stands there twice.
  for (; row; row = RowOf(model, entry))
    model.Remove(*row);
  model.Save(context.System, context.Reg);
  return CodeOfStored(context, entry, false);
}

}  // namespace

TCommandRun PrepareIgnore(const std::vector<Text>& list) {
  const TArguments arguments(list, {});
  const std::vector<Text>& words = arguments.Plain();
  if (words.size() == 1 && words[0] == u"list")
    return ListEntries;
  const bool hasEntry = words.size() == 2 && !words[1].empty();
  if (hasEntry && words[0] == u"add")
    return [entry = words[1]](TConsoleContext& context) { return Add(context, entry); };
  if (hasEntry && words[0] == u"remove")
    return [entry = words[1]](TConsoleContext& context) { return Remove(context, entry); };
  throw TUsageError(TextId::IgnoreNeedsWords);
}

}  // namespace corvalt
