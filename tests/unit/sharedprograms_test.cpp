#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

constexpr TextView kSharedDlls = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
constexpr TextView kFullPath =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";

void Count(TScanRig& rig, TextView file, std::uint32_t count) {
  rig.System.Registry.SetInteger(kFullPath, file, count);
}

ScanProblem Missing(TextView file, TextView count) {
  return ValueProblem(kHkeyLocalMachine, kSharedDlls, file, count, Says(TextId::MissingSharedFile, file));
}

ScanProblem Unused(TextView file) {
  return ValueProblem(kHkeyLocalMachine, kSharedDlls, file, u"0", Says(TextId::UnusedSharedFile, file));
}

void CountManyFiles(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\used.dll");
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\unused.dll");
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\Windows\\system32\\used.dll"=dword:00000003
"C:\\Windows\\system32\\unused.dll"=dword:00000000
"C:\\Old\\gone.dll"=dword:0000000c
"C:\\Old\\both.dll"=dword:00000000
"E:\\removable.dll"=dword:00000001
"C:\\Old\\a text.dll"="0"
"relative.dll"=dword:00000005
)");
}

}  // namespace

TEST(SharedPrograms, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  CountManyFiles(rig);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Shared Programs", 11, kNoRootKey, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Unused(u"C:\\Windows\\system32\\unused.dll"), Missing(u"C:\\Old\\gone.dll", u"12"),
                       Missing(u"C:\\Old\\both.dll", u"0"), Missing(u"C:\\Old\\a text.dll", u"1")}));
}

TEST(SharedPrograms, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  CountManyFiles(rig);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"C:\\Old\\a text.dll", u"1"), Missing(u"C:\\Old\\both.dll", u"0"),
                       Missing(u"C:\\Old\\gone.dll", u"12"), Unused(u"C:\\Windows\\system32\\unused.dll")}));
}

TEST(SharedPrograms, AMissingFileWithCountZeroIsOnlyMissing) {
  TScanRig rig;
  Count(rig, u"C:\\Old\\gone.dll", 0);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"C:\\Old\\gone.dll", u"0")}));
}

TEST(SharedPrograms, ACountOfAnotherTypeIsOnlyTestedForItsFile) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\here.dll");
  rig.System.Disk.AddFile(u"C:\\Windows\\there.dll");
  rig.System.Registry.Set(kFullPath, u"C:\\Windows\\here.dll", u"0");
  rig.System.Registry.SetRaw(kFullPath, {u"C:\\Windows\\there.dll", kRegBinary, {0, 0, 0, 0}});
  rig.System.Registry.SetRaw(kFullPath, {u"C:\\Old\\gone.dll", kRegBinary, {0, 0, 0, 0}});

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"C:\\Old\\gone.dll", u"1")}));
}

TEST(SharedPrograms, ANegativeCountIsNotZero) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\here.dll");
  Count(rig, u"C:\\Windows\\here.dll", 0x80000000u);
  Count(rig, u"C:\\Old\\gone.dll", 0xFFFFFFFFu);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"C:\\Old\\gone.dll", u"-1")}));
}

TEST(SharedPrograms, ANameThatIsNoLocalPathExistsAndMayBeUnused) {
  TScanRig rig;
  Count(rig, u"relative.dll", 1);
  Count(rig, u"unused.dll", 0);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Unused(u"unused.dll")}));
}

TEST(SharedPrograms, ANameWithAReferenceIsExpanded) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Windows\\here.dll");
  Count(rig, u"%windir%\\here.dll", 1);
  Count(rig, u"%windir%\\gone.dll", 1);

  rig.Run({Section::SharedPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"%windir%\\gone.dll", u"1")}));
}

TEST(SharedPrograms, NothingRegisteredLeavesNoHeader) {
  TScanRig rig;

  rig.Run({Section::SharedPrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(SharedPrograms, ProgressNamesTheFile) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    Count(rig, NumberedName(u"f", i), 1);

  rig.Run({Section::SharedPrograms});

  const std::string key = "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Shared Programs", {key + "f050", "bar: 42", key + "f100", "bar: 84"}));
}

TEST(SharedPrograms, ACancelledScanFinishesItsItemAndLooksAtNoOther) {
  TScanRig rig;
  Count(rig, u"C:\\Old\\a.dll", 1);
  Count(rig, u"C:\\Old\\b.dll", 1);

  rig.RunAndCancel({Section::SharedPrograms}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::SharedPrograms}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"C:\\Old\\a.dll", u"1")}));
}

TEST(SharedPrograms, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  CountManyFiles(rig);
  ExpectConsistentWhereverCancelled(rig, Section::SharedPrograms);
}

}  // namespace corvalt
