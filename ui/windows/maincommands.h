// The commands of the main window: one table for its menus, toolbar, links, context menu and keys.
#pragma once

#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "system/system.h"
#include "ui/regmain.h"
#include "ui/windows/commands.h"
#include "ui/windows/controlsapi.h"

namespace corvalt {

enum class TMenuPlace {
  None,  // hidden: the command works all the same
  File,
  Action,
  Help,
  Context,
};

class TMainCommands {
 public:
  // One command. The order of the table is the order in each menu, in the
  // toolbar and among the links.
  struct TAction {
    int Command = 0;
    TextId Caption{};
    TMenuPlace Menu = TMenuPlace::None;
    bool StartsGroup = false;                 // a separator stands before it, in its menu and in the toolbar
    int Image = kNoPicture;                   // with a picture it has a toolbar button and a link as well
    TextView Key = {};                        // the name of its key, shown behind the caption in a menu
    bool (TRegMain::*May)() const = nullptr;  // whether it may be done now; null: always
    void (TMainCommands::*Do)() = nullptr;    // nullptr: an entry without a command
  };

  // Everything must outlive this object.
  TMainCommands(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TRegMain& main, Text version);

  static const std::vector<TAction>& Actions();

  static bool IsCommand(int number) {
    return Find(number) != nullptr;
  }
  bool IsEnabled(int command) const;

  // Does nothing for a number that is no command. Dialogs open over this window.
  void Run(int command, HWND owner);

 private:
  static const TAction* Find(int command);

  void Scan();
  void Repair();
  void Restore();
  void ManageIgnoreList();
  void Export();
  void OpenInRegistryEditor();
  void Exit();
  void Help();
  void HomePage();
  void Recommend();
  void Upgrade();
  void About();
  void DiskCleanup();
  void StartupManager();
  void UninstallManager();
  void ProcessManager();

  bool MayWrite(TextView fileName);
  Text Plain(TextId id, TextView argument = {}) const;

  TSystem& m_system;
  const TGlobalVars& m_vars;
  TGlobalReg& m_reg;
  TRegMain& m_main;
  Text m_version;
  HWND m_owner = nullptr;
};

}  // namespace corvalt
