// corvaltc purge: removes what this program has stored for the user that runs it.

#include "core/globalregs.h"
#include "core/settingskeys.h"
#include "repair/backupstore.h"
#include "ui/console/arguments.h"
#include "ui/console/commands.h"
#include "ui/console/output.h"

namespace corvalt {

namespace {

constexpr TextView kYes = u"--yes";

// The key as the registry editor shows it.
Text SettingsPlace() {
  return RootKeyName(kHkeyCurrentUser) + Text(kCleanerKey);
}

// To standard error, as everything that is no data.
void TellWhatGoesAndStays(TConsoleContext& context, std::size_t backups) {
  TellText(context, TextId::BackupsThatGo, DecimalText(static_cast<std::int64_t>(backups)));
  TellText(context, TextId::SettingsThatGo, SettingsPlace());
  TellText(context, TextId::WhatStays, context.Vars.SuiteBackupsFolder);
}

// Whether all of them are gone.
bool RemoveBackups(TConsoleContext& context, BackupStore& store) {
  const TRemovedBackups result = store.RemoveAllBackups(kCleanerModuleId);
  for (const auto& [name, error] : result.Kept)
    TellText(context, TextId::BackupNotRemoved, name.Value(),
             context.System.Locale.SystemMessage(error.Code));
  return result.Kept.empty();
}

bool RemoveSettings(TConsoleContext& context) {
  const bool isGone = DeleteCleanerSettings(context.System);
  if (!isGone)
    TellText(context, TextId::SettingsNotRemoved, SettingsPlace());
  return isGone;
}

// The backups first: while they can't be removed, because another copy of the program works on them or their
// list can't be read, nothing is.
TExitCode Purge(TConsoleContext& context, bool yes) {
  BackupStore store(context.System, context.Vars);
  if (!yes) {
    TellWhatGoesAndStays(context, store.ListBackups(kCleanerModuleId).size());
    TellText(context, TextId::NothingPurgedWithoutYes);
    return TExitCode::SomethingLeft;
  }
  store.MigrateLegacyBackups();
  TellWhatGoesAndStays(context, store.ListBackups(kCleanerModuleId).size());
  const bool backupsAreGone = RemoveBackups(context, store);
  const bool settingsAreGone = RemoveSettings(context);
  return backupsAreGone && settingsAreGone ? TExitCode::Done : TExitCode::SomethingLeft;
}

}  // namespace

TCommandRun PreparePurge(const std::vector<Text>& list) {
  const TArguments arguments(list, {{kYes}, {}});
  arguments.RefusePlain();
  return [yes = arguments.Has(kYes)](TConsoleContext& context) { return Purge(context, yes); };
}

}  // namespace corvalt
