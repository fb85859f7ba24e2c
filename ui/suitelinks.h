// What lies around the program: the help file, the suite's other programs and its pages. Every call goes to
// the shell, and its result is not looked at.
#pragma once

#include <string_view>

#include "base/text.h"
#include "core/globals.h"
#include "system/programs.h"

namespace corvalt {

enum class TSuiteTool { DiskCleanup, StartupManager, UninstallManager, ProcessManager };

void OpenHelp(TPrograms& programs, const TGlobalVars& vars);
void OpenHomePage(TPrograms& programs);
void OpenUpgradePage(TPrograms& programs);

// An empty mail with a subject of one blank.
void RecommendToFriends(TPrograms& programs);

void StartSuiteTool(TSuiteTool tool, TPrograms& programs, const TGlobalVars& vars);

// The link that an enciphered literal of hexadecimal digits stands for; empty for anything else.
Text DecodeLink(std::string_view enciphered);

}  // namespace corvalt
