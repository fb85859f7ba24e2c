// Data files that claim much more than they are. What the process takes is the system's own figure; the
// programs under Wine share their memory with Wine, so that it is measured here alone.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "core/globalregs.h"
#include "formats/inflate.h"
#include "platform/memory/memorysystem.h"
#include "tests/support/datafile.h"

namespace corvalt {

namespace {

// The most memory that the process had so far, in bytes; 0 where the system does not tell.
std::size_t PeakMemory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  std::size_t kilobytes = 0;
  while (status >> word) {
    if (word == "VmHWM:")
      status >> kilobytes;
  }
  return 1024 * kilobytes;
}

}  // namespace

// An empty line that is kept costs 32 bytes, and a list that grows holds most of them twice.
TEST(HostileDataFile, ThatInflatesToLineFeedsCostsAFewTimesItsContent) {
  const std::size_t size = kLargestInflated / 64;
  const std::vector<std::uint8_t> file = PackDataFile(std::string(size, '\n'));
  EXPECT_LT(file.size(), size / 200);
  TMemorySystem system;
  system.Disk.AddFile(u"C:\\Corvalt\\data\\registry.dat",
                      {reinterpret_cast<const char*>(file.data()), file.size()});
  TSystem bundle = system.Bundle();
  TGlobalVars vars;
  vars.ProgramFolder = u"C:\\Corvalt\\";
  TGlobalReg reg;
  const std::size_t before = PeakMemory();
  ASSERT_GT(before, 0u);
  FillGlobalReg(bundle, vars, reg);
  EXPECT_TRUE(reg.BuiltInExclusions.empty());
  EXPECT_LT(PeakMemory() - before, 8 * size);
}

}  // namespace corvalt
