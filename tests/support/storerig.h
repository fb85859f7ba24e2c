// A backup store over a disk in memory, with an index and files built in a few lines.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "base/text.h"
#include "core/globals.h"
#include "formats/ioregistry.h"
#include "platform/memory/memorysystem.h"
#include "repair/backupname.h"
#include "repair/backupstore.h"
#include "repair/deletionright.h"
#include "system/system.h"
#include "system/systemlocale.h"
#include "tests/support/keyat.h"
#include "tests/support/scanrig.h"

namespace corvalt {

inline constexpr TextView kFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Tessaly Utilities\\Backups\\";
inline constexpr TextView kLegacyFolder = u"C:\\Users\\Ann\\AppData\\TessalySoft\\Corvalt\\Backups\\";
inline constexpr TextView kKey = u"HKEY_CURRENT_USER\\Software\\Old";
inline constexpr TDateTime kNow = 46341.5;

inline bool Never() {
  return false;
}

// The name of a backup as a text.
inline Text NameAt(TDateTime time, TextView decimalSign) {
  return TBackupName::OfTime(time, decimalSign).Value();
}

inline TBackupName Named(TextView name) {
  return TBackupName::FromText(name).value();
}

// A store over an empty disk, at noon of 15 November 2026.
class TStoreRig {
 public:
  TStoreRig() {
    Vars.AppDataFolder = u"C:\\Users\\Ann\\AppData\\";
    Vars.SuiteBackupsFolder = kFolder;
    Vars.BackupsMax = 60;
    Vars.BackupsDelete = 1;
    Vars.Texts = NumberedTexts();
    System.Clock.Time = kNow;
  }

  BackupStore Store() {
    TSystem bundle = System.Bundle();
    return BackupStore(bundle, Vars);
  }

  void SetIndex(std::string_view content) {
    System.Disk.AddFile(Text(kFolder) + u"index.ini", content);
  }

  // A backup of each name, with a file of the same name.
  void AddBackups(const std::vector<std::string>& names) {
    std::string index;
    for (const std::string& name : names) {
      index += "[" + name + "]\r\nType=11001\r\n";
      AddFile(FromAscii(name));
    }
    SetIndex(index);
  }

  void AddFile(TextView name) {
    System.Disk.AddFile(Text(kFolder) + Text(name), "REGEDIT4\r\n");
  }

  std::string Index() {
    return System.Disk.Content(Text(kFolder) + u"index.ini").value_or("(none)");
  }

  bool HasFile(TextView name) {
    return System.Disk.Content(Text(kFolder) + Text(name)).has_value();
  }

  std::vector<std::string> Listed() {
    std::vector<std::string> names;
    for (const TBackup& backup : Store().ListBackups(kCleanerModuleId))
      names.push_back(EncodeUtf8(backup.Name.Value()));
    return names;
  }

  // Makes a backup of one value and returns the right that it gives.
  TDeletionRight BackUpOneValue() {
    System.Registry.Set(kKey, u"Path", u"C:\\gone.exe");
    BackupStore store = Store();
    const TBackupName name = store.BeginBackup();
    EXPECT_EQ(store.AddValueToBackup(KeyAt(u"HKEY_CURRENT_USER\\Software\\Old"), u"Path"),
              TExportResult::Done);
    return store.CommitBackup(name);
  }

  TMemorySystem System;
  TGlobalVars Vars;
};

using TNames = std::vector<std::string>;

}  // namespace corvalt
