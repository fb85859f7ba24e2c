#include "ui/windows/maincommands.h"

#include <commdlg.h>

#include <algorithm>

#include "base/limits.h"
#include "ui/report.h"
#include "ui/suitelinks.h"
#include "ui/windows/ignorereg.h"
#include "ui/windows/restoredeleted.h"
#include "ui/windows/waitcursor.h"

namespace corvalt {

TMainCommands::TMainCommands(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TRegMain& main,
                             Text version)
    : m_system(system), m_vars(vars), m_reg(reg), m_main(main), m_version(std::move(version)) {
}

// The Tools menu, the questions, the upgrade and the recommendation are hidden. The entries of the context
// menu below the first have no command behind them.
const std::vector<TMainCommands::TAction>& TMainCommands::Actions() {
  using enum TMenuPlace;
  static const std::vector<TAction> actions = {
      {kCmdScan, TextId::ActionScan, Action, false, kImageScan, {}, &TRegMain::CanScan, &TMainCommands::Scan},
      {kCmdRepair,
       TextId::ActionRepair,
       Action,
       false,
       kImageRepair,
       {},
       &TRegMain::CanRepair,
       &TMainCommands::Repair},
      {kCmdRestore,
       TextId::ActionRestore,
       Action,
       true,
       kImageRestore,
       {},
       &TRegMain::CanRestore,
       &TMainCommands::Restore},
      {kCmdIgnoreList,
       TextId::IgnoreListManager,
       None,
       true,
       kImageIgnoreList,
       {},
       &TRegMain::CanRestore,
       &TMainCommands::ManageIgnoreList},
      {kCmdExport,
       TextId::ActionExport,
       File,
       false,
       kNoPicture,
       {},
       &TRegMain::CanExport,
       &TMainCommands::Export},
      {kCmdExit, TextId::ActionExit, File, true, kNoPicture, {}, nullptr, &TMainCommands::Exit},
      {kCmdHelp, TextId::ActionHelpContents, Help, false, kNoPicture, u"F1", nullptr, &TMainCommands::Help},
      {kCmdHomePage, TextId::ActionHomePage, Help, true, kNoPicture, {}, nullptr, &TMainCommands::HomePage},
      {kCmdRecommend,
       TextId::ActionRecommend,
       None,
       false,
       kNoPicture,
       {},
       nullptr,
       &TMainCommands::Recommend},
      {kCmdUpgrade, TextId::ActionUpgrade, None, false, kNoPicture, {}, nullptr, &TMainCommands::Upgrade},
      {kCmdAbout, TextId::ActionAbout, Help, true, kNoPicture, {}, nullptr, &TMainCommands::About},
      {kCmdDiskCleanup, {}, None, false, kNoPicture, {}, nullptr, &TMainCommands::DiskCleanup},
      {kCmdStartupManager, {}, None, false, kNoPicture, {}, nullptr, &TMainCommands::StartupManager},
      {kCmdUninstallManager, {}, None, false, kNoPicture, {}, nullptr, &TMainCommands::UninstallManager},
      {kCmdProcessManager, {}, None, false, kNoPicture, {}, nullptr, &TMainCommands::ProcessManager},
      {kCmdOpenInRegedit,
       TextId::ButtonOpenInRegedit,
       Context,
       false,
       kNoPicture,
       {},
       nullptr,
       &TMainCommands::OpenInRegistryEditor},
      {kCmdModifyProperties, TextId::ActionModifyProperties, Context},
      {kCmdBackupEntry, TextId::ActionBackupEntry, Context},
      {kCmdRemoveEntry, TextId::ActionRemoveEntry, Context},
      {kCmdShowCommandLine, TextId::ActionShowCommandLine, Context},
      {kCmdRefresh, TextId::ActionRefresh, Context, false, kNoPicture, u"F5"},
  };
  return actions;
}

const TMainCommands::TAction* TMainCommands::Find(int command) {
  const std::vector<TAction>& actions = Actions();
  const auto found = std::find_if(actions.begin(), actions.end(),
                                  [command](const TAction& action) { return action.Command == command; });
  return found == actions.end() ? nullptr : &*found;
}

bool TMainCommands::IsEnabled(int command) const {
  const TAction* action = Find(command);
  return action == nullptr || action->May == nullptr || (m_main.*action->May)();
}

void TMainCommands::Run(int command, HWND owner) {
  const TAction* action = Find(command);
  if (action == nullptr || action->Do == nullptr || !IsEnabled(command))
    return;
  m_owner = owner;
  (this->*action->Do)();
}

void TMainCommands::Scan() {
  m_main.Scan();
}

void TMainCommands::Repair() {
  m_main.Repair();
}

void TMainCommands::Restore() {
  TfrmRestore restore(m_system, m_vars, m_owner);
  restore.RunModal();
}

void TMainCommands::ManageIgnoreList() {
  Tfrmignorereg manager(m_system, m_vars, m_reg, m_owner);
  manager.RunModal();
}

void TMainCommands::Export() {
  Text typed(kLongestPath + 1, u'\0');
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = m_owner;
  dialog.lpstrFilter = L"Text files(*.txt)\0*.txt\0";
  dialog.lpstrFile = WideBuffer(typed);
  dialog.nMaxFile = static_cast<DWORD>(typed.size());
  // The dialog asks about the name that was typed; about one that is written instead it is asked below.
  dialog.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_ENABLESIZING | OFN_NOCHANGEDIR;
  while (GetSaveFileNameW(&dialog)) {
    const TextView chosen = TextView(typed).substr(0, typed.find(u'\0'));
    const Text fileName = ReportFileName(chosen);
    if (fileName != chosen && !MayWrite(fileName))
      continue;
    const TWaitCursor wait;
    m_main.SaveReport(fileName);
    return;
  }
}

bool TMainCommands::MayWrite(TextView fileName) {
  if (!m_system.Files.Info(fileName).Exists)
    return true;
  return m_system.MessageBoxes.ShowMessage(Plain(TextId::ConfirmOverwrite, fileName),
                                           Plain(TextId::TitleConfirm),
                                           TMessageKind::Question) == TAnswer::Yes;
}

void TMainCommands::OpenInRegistryEditor() {
  // The walk through the editor's tree takes up to seconds.
  const TWaitCursor wait;
  m_main.OpenSelected();
}

void TMainCommands::Exit() {
  ::SendMessageW(m_owner, WM_CLOSE, 0, 0);
}

void TMainCommands::Help() {
  OpenHelp(m_system.Programs, m_vars);
}

void TMainCommands::HomePage() {
  OpenHomePage(m_system.Programs);
}

void TMainCommands::Recommend() {
  RecommendToFriends(m_system.Programs);
}

void TMainCommands::Upgrade() {
  OpenUpgradePage(m_system.Programs);
}

void TMainCommands::About() {
  const Text about = Plain(TextId::ProgramTitle) + u"\r\n" + Plain(TextId::AboutVersion, m_version) +
                     u"\r\n\r\n" + Plain(TextId::AboutPurpose);
  m_system.MessageBoxes.ShowMessage(about, Plain(TextId::ActionAbout), TMessageKind::Information);
}

void TMainCommands::DiskCleanup() {
  StartSuiteTool(TSuiteTool::DiskCleanup, m_system.Programs, m_vars);
}

void TMainCommands::StartupManager() {
  StartSuiteTool(TSuiteTool::StartupManager, m_system.Programs, m_vars);
}

void TMainCommands::UninstallManager() {
  StartSuiteTool(TSuiteTool::UninstallManager, m_system.Programs, m_vars);
}

void TMainCommands::ProcessManager() {
  StartSuiteTool(TSuiteTool::ProcessManager, m_system.Programs, m_vars);
}

Text TMainCommands::Plain(TextId id, TextView argument) const {
  return PlainLanguageText(m_vars.Texts, id, argument);
}

}  // namespace corvalt
