// TGlobalVars: the machine's folders, the Windows version, the suite's settings and the language tables.
// Filled once at start, before any window exists, and read everywhere by reference.
#pragma once

#include <cstdint>
#include <vector>

#include "base/text.h"
#include "core/languagetexts.h"
#include "system/system.h"

namespace corvalt {

// Some fields are read by no part of this module, such as CommonFilesFolder, SkinPath and the folders of the
// Start menu; the suite requires that all of them are filled, so keep them.
struct TGlobalVars {
  // Folders end with "\".
  Text AppDataFolder;
  Text ProgramFilesFolder;
  Text CommonFilesFolder;
  Text WindowsFolder;
  Text TempFolder;
  Text SystemFolder;
  Text AllUsersFolder;
  Text UserProfileFolder;
  Text StartupFolder;
  Text CommonStartupFolder;
  Text StartMenuFolder;
  Text CommonStartMenuFolder;
  Text ProgramsFolder;
  Text CommonProgramsFolder;
  bool IsPortable = false;
  Text SuiteDataFolder;
  Text SuiteBackupsFolder;
  std::int32_t BackupsMax = 0;     // the suite's limit for the number of backups
  std::int32_t BackupsDelete = 0;  // the suite's age class of backups
  Text WindowsVersionName;         // "nt3.51", "95", "nt4.0", "98", "me", "2000", "xp", "vista" or empty
  std::int32_t WindowsMajorVersion = 0;
  Text FixedDrives;  // upper-case roots, each followed by ";"
  std::vector<Text> SearchFolders;
  Text LanguageName;
  Text SkinPath;
  TLanguageTexts Texts;

  // What 32-bit programs see for the system folder, with a trailing "\". Empty in a 32-bit program, which
  // sees it there itself.
  Text SysWow64Folder;

  // Where the program lies, with a trailing "\".
  Text ProgramFolder;
};

// The version's name; an unknown version has none.
Text WindowsVersionNameOf(const TSystemVersion& version);

// Fills everything, in the order that the suite's other programs rely on: version, folders, search folders,
// fixed drives, language, suite settings. Missing settings are written with their defaults. Throws
// TSystemException with code kErrorOutOfMemory when the drive list does not fit.
void FillGlobalVars(TSystem& system, TGlobalVars& vars);

}  // namespace corvalt
