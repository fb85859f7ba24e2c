#include <gtest/gtest.h>

#include "tests/support/scanrig.h"

TEST(FilesAndFolders, AMissingFileIsReportedAsItsValue) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Exe", u"C:\\Old\\app.exe");

  rig.Run({22});

  EXPECT_EQ(rig.Lines(),
            (std::vector<std::string>{"HKEY_CURRENT_USER | \\Software\\Vendor | Exe | C:\\Old\\app.exe | "
                                      "11042(Exe|C:\\Old\\app.exe)"}));
}
