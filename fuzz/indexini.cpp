// Any bytes as the index of the backup folder, and of the older folder beside it: whatever they name, no file
// outside the folder changes, and a new backup is listed.
#include <cstdlib>

#include "platform/memory/memorysystem.h"
#include "repair/backupstore.h"

namespace corvalt {

namespace {

constexpr TextView kFolder = u"C:\\Ann\\TessalySoft\\Tessaly Utilities\\Backups\\";
constexpr TextView kLegacyFolder = u"C:\\Ann\\TessalySoft\\Corvalt\\Backups\\";

void Expect(bool holds) {
  if (!holds)
    std::abort();
}

// Files that an index may try to reach, with names that are short to say.
void AddFiles(TMemoryDisk& disk) {
  for (const TextView path :
       {u"C:\\x", u"C:\\Ann\\x", u"C:\\Ann\\TessalySoft\\x", u"C:\\Ann\\TessalySoft\\Tessaly Utilities\\x",
        u"C:\\Ann\\TessalySoft\\Corvalt\\x"})
    disk.AddFile(path, "precious");
  for (const TextView folder : {kFolder, kLegacyFolder}) {
    for (const TextView name : {u"1", u"2", u"46341", u"a", u"nofile"})
      disk.AddFile(Text(folder) + Text(name), "backup");
    disk.AddFile(Text(folder) + u"link", "backup");
    disk.MakeLink(Text(folder) + u"link");
    disk.AddFile(Text(folder) + u"below\\x", "precious");
  }
}

std::size_t CountPrecious(const TMemoryDisk& disk) {
  std::size_t count = 0;
  for (const Text& path : disk.AllBelow(u"C:\\")) {
    const std::optional<std::string> content = disk.Content(path);
    count += content == "precious" || path.ends_with(u"\\link") ? 1U : 0U;
  }
  return count;
}

void UseEverything(TSystem& system, const TGlobalVars& vars) {
  BackupStore store(system, vars);
  store.MigrateLegacyBackups();
  std::vector<std::uint8_t> bytes;
  for (const TBackup& backup : store.ListBackups(kCleanerModuleId))
    static_cast<void>(store.ReadBackup(backup.Name, bytes));
  store.PruneBackups([] { return false; });
  for (const TBackup& backup : store.ListBackups(kCleanerModuleId))
    store.RemoveBackup(backup.Name);
  Expect(store.ListBackups(kCleanerModuleId).empty());
  const TBackupName name = store.BeginBackup();
  static_cast<void>(store.CommitBackup(name));
  const std::vector<TBackup> backups = store.ListBackups(kCleanerModuleId);
  Expect(backups.size() == 1 && backups.front().Name == name && backups.front().Size > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TMemorySystem memory;
  AddFiles(memory.Disk);
  const std::string index(reinterpret_cast<const char*>(data), size);
  memory.Disk.AddFile(Text(kFolder) + u"index.ini", index);
  if (size % 2 == 0)
    memory.Disk.AddFile(Text(kLegacyFolder) + u"index.ini", index);
  const std::size_t before = CountPrecious(memory.Disk);
  TSystem system = memory.Bundle();
  TGlobalVars vars;
  vars.AppDataFolder = u"C:\\Ann\\";
  vars.SuiteBackupsFolder = kFolder;
  vars.BackupsMax = 2;
  vars.BackupsDelete = 1;
  UseEverything(system, vars);
  Expect(CountPrecious(memory.Disk) == before);
  return 0;
}

}  // namespace corvalt
