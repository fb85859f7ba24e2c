// What is done to the backups at the start of the program: old ones are taken over, outdated ones removed,
// and what copies of the program left behind that were ended in the middle.
#pragma once

#include <functional>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "formats/inifile.h"
#include "repair/backupfolder.h"
#include "system/system.h"

namespace corvalt {

// The key of a section that names the module whose backup it is.
inline constexpr TextView kTypeKey = u"Type";

[[nodiscard]] bool HasSection(const TIniFile& index, TextView name);

// Whether the section is a backup of this module. Letter case does not count.
[[nodiscard]] bool IsOfModule(const TIniFile& index, TextView section, TextView moduleId);

// Moves the backups of this module's older releases from their own folder into the suite's, and deletes their
// index. Throws as the store does. An index that can't be deleted throws too; backups that were removed
// before stay removed then, though the old index names them again at each start.
void MigrateBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop);

// Removes the backups of all modules that are too old, then those that are too many. The lock is the
// caller's.
class TBackupPruning {
 public:
  // All must outlive the object.
  TBackupPruning(TSystem& system, const TGlobalVars& vars, TBackupFolder& folder,
                 const std::function<bool()>& stop);

  // The index is read once and written once.
  void Run();

 private:
  void PruneByAge(TIniFile& index, const std::vector<Text>& names);
  void PruneByCount(TIniFile& index, std::vector<Text> names);
  bool IsTooOld(TextView name);
  void DeleteFiles(const TIniFile& index, const Text& name);
  bool Delete(TextView name);

  TSystem& m_system;
  const TGlobalVars& m_vars;
  TBackupFolder& m_folder;
  const std::function<bool()>& m_stop;
};

// Deletes the temporary files of backups, of their lists of changes and of the index whose process has ended.
void RemoveTemporaryFiles(TSystem& system, TBackupFolder& folder);

}  // namespace corvalt
