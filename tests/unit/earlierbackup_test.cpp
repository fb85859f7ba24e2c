// A backup of an earlier release; tests/data/backups/README.md says where the files come from.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/memory/memorysystem.h"
#include "repair/restoredeleted.h"
#include "tests/support/sourcefolder.h"

namespace corvalt {

namespace {

std::string FileContent(const std::string& name) {
  std::ifstream file(SourceFolder() + "/tests/data/backups/" + name, std::ios::binary);
  EXPECT_TRUE(file.good()) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(EarlierBackup, IsRestoredToWhatTheEarlierReleaseMadeOfIt) {
  TMemorySystem system;
  TGlobalVars vars;
  vars.SuiteBackupsFolder = u"C:\\Backups\\";
  system.Disk.AddFile(u"C:\\Backups\\46341.5", FileContent("earlier.reg"));
  TSystem bundle = system.Bundle();
  int questions = 0;
  TRestoreGuide guide;
  guide.GoOn = [&questions](TRestoreDoubt, const TBackupOrigin&) { return ++questions == 0; };
  EXPECT_EQ(RestoreBackup(bundle, vars, u"46341.5", guide).End, TRestoreEnd::Restored);
  EXPECT_EQ(questions, 0);
  std::string dump;
  for (const TextView key : {u"HKEY_CLASSES_ROOT\\Thing", u"HKEY_CURRENT_USER\\Software\\Vendor",
                             u"HKEY_LOCAL_MACHINE\\System\\Other"}) {
    for (const std::string& line : system.Registry.Dump(key))
      dump += line + "\n";
  }
  EXPECT_EQ(dump, FileContent("earlier.txt"));
}

}  // namespace corvalt
