// corvaltc backups: name, time and size of each backup, one a line with tabs between.

#include "repair/restoredeleted.h"
#include "system/systemerror.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"

namespace corvalt {

namespace {

TExitCode ListBackups(TConsoleContext& context) {
  std::string lines;
  try {
    for (const TBackup& backup : BackupsNewestFirst(context.System, context.Vars)) {
      lines += LineText(backup.Name.Value()) + "\t" +
               LineText(BackupTimeText(backup, context.System.Locale)) + "\t" + std::to_string(backup.Size) +
               "\n";
    }
  } catch (...) {
    TellText(context, TextId::BackupsNotListed,
             DescribeException(std::current_exception(), context.System.Locale));
    return TExitCode::Failed;
  }
  return WriteData(context, lines) ? TExitCode::Done : TExitCode::Failed;
}

}  // namespace

TCommandRun PrepareBackups(const std::vector<Text>& arguments) {
  TArguments(arguments, {}).RefusePlain();
  return ListBackups;
}

}  // namespace corvalt
