// Scan, repair, scan again and restore, over a registry with problems in every section.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "scan/catalogue.h"
#include "tests/support/names.h"
#include "tests/support/regtext.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

constexpr std::string_view kCatalogue =
    "<list><program><name>Ad</name><service>AdService</service><toolbar>{AD}</toolbar>"
    "<regkey>HKEY_CURRENT_USER\\Software\\Ad</regkey>"
    "<regvalue>HKEY_LOCAL_MACHINE\\Software\\Shared\\Ad</regvalue></program></list>";

std::vector<std::int32_t> AllSections() {
  std::vector<std::int32_t> codes;
  for (const TSection& section : SectionCatalogue())
    codes.push_back(section.Code);
  return codes;
}

// Values of every type and shape; not each of them can be written in a .reg text of a test. No scanner looks
// at them, but a deleted key takes them with it.
void AddOddValues(TMemoryRegistry& registry, const Text& key) {
  registry.SetRaw(key, {u"none", kRegNone, {}});
  registry.SetRaw(key, {u"unterminated", kRegSz, {0x61, 0x00}});
  registry.SetRaw(key, {u"odd", kRegExpandSz, {0x61, 0x00, 0x62}});
  registry.SetRaw(key, {u"short integer", kRegDword, {1, 2, 3}});
  registry.SetRaw(key, {u"big endian", kRegDwordBigEndian, {0, 0, 0, 1}});
  registry.SetRaw(key, {u"several", kRegMultiSz, {0x61, 0, 0, 0, 0x62, 0, 0, 0, 0, 0}});
  registry.SetRaw(key, {u"unknown", 0xFFFFFFFF, {9, 8, 7}});
  registry.SetRaw(key, {u"64 bits", kRegQword, {1, 2, 3, 4, 5, 6, 7, 8}});
  registry.SetRaw(key, {u"na\"m\\e = [x]\n", kRegBinary, TBytes(5000, 0xA5)});
  registry.SetRaw(key, {Text(1, char16_t{0xD800}), kRegSz, {0x00, 0xD8, 0, 0}});
  registry.SetRaw(key, {u"\x4E2D", kRegSz, StringBytes(u"\x4E2D\x6587")});
  registry.SetRaw(key, {u"", kRegSz, StringBytes(u"default")});
}

// Problems of every section except Adware and Spyware.
constexpr std::string_view kClassProblems = R"(
[HKEY_CLASSES_ROOT\CLSID\{C0000000-0000-0000-0000-000000000003}\InprocServer32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\TypeLib\{C1}\1.0\HELPDIR]
@="C:\\gone.exe"
[HKEY_CLASSES_ROOT\Interface\{C2}\TypeLib]
@="{DEAD}"
[HKEY_CLASSES_ROOT\.gone]
@="Gone.Type"
[HKEY_CLASSES_ROOT\Broken.Type\DefaultIcon]
@="C:\\gone.ico,0"
[HKEY_CLASSES_ROOT\Broken.Type\Shell\open\command]
@="C:\\gone.exe %1"
)";

constexpr std::string_view kUserProblems = R"(
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Fonts"="C:\\gone folder"
[HKEY_CURRENT_USER\Software\App]
"File"="C:\\gone.exe"
[HKEY_USERS\S-1\Software\App]
"File"="C:\\gone.exe"
[HKEY_CURRENT_USER\Software\Empty]
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts\.gone]
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\MenuOrder\Start Menu2\Programs\Gone]
"Order"=hex:00
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\ComDlg32\OpenSaveMRU\txt]
"a"="C:\\gone.txt"
"b"="C:\\gone too.txt"
@="C:\\gone default.txt"
"MRUList"="ab"
[HKEY_CURRENT_USER\AppEvents\Schemes\Apps\App\Open\.Current]
@="C:\\gone.wav"
)";

constexpr std::string_view kMachineProblems = R"reg(
[HKEY_LOCAL_MACHINE\Software\App]
"File"="C:\\gone.exe"
[HKEY_LOCAL_MACHINE\Software\Empty\Deep\Down]
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Run]
"Gone"="C:\\gone.exe"
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\gone.dll"=dword:00000001
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\App Paths\gone.exe]
@="C:\\gone.exe"
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Uninstall\Bare]
"DisplayName"="Bare"
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Fonts]
"Gone (TrueType)"="C:\\gone.ttf"
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\Help]
"gone.hlp"="C:\\"
[HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services\Gone]
"ImagePath"="C:\\gone.sys"
[HKEY_LOCAL_MACHINE\System\CurrentControlSet\Services\VxD\Gone]
"StaticVxD"="C:\\gone.vxd"
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\App Management\ARPCache\Forgotten]
"Changed"=dword:00000000
)reg";

void AddProblems(TMemoryRegistry& registry) {
  for (const std::string_view problems : {kClassProblems, kUserProblems, kMachineProblems})
    LoadRegText(registry, problems);
  AddOddValues(registry, u"HKEY_CLASSES_ROOT\\CLSID\\{C0000000-0000-0000-0000-000000000003}");
  AddOddValues(
      registry,
      u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\gone.exe\\Below");
}

void AddAdwareTraces(TMemoryRegistry& registry) {
  LoadRegText(registry, R"(
[HKEY_LOCAL_MACHINE\Software\Microsoft\Internet Explorer\Toolbar]
"{AD}"=hex:00
)");
  registry.SetExpand(u"HKEY_LOCAL_MACHINE\\Software\\Shared", u"Ad", u"%x%");
  AddOddValues(registry, u"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\AdService");
  AddOddValues(registry, u"HKEY_CURRENT_USER\\Software\\Ad\\Deep");
}

std::vector<std::string> WholeDump(const TMemoryRegistry& registry) {
  std::vector<std::string> lines;
  for (const TextView root :
       {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER", u"HKEY_LOCAL_MACHINE", u"HKEY_USERS"}) {
    for (std::string& line : registry.Dump(root))
      lines.push_back(std::move(line));
  }
  // A value that comes back is the last of its key, in the order of creation.
  std::sort(lines.begin(), lines.end());
  return lines;
}

class RepairRoundTrip : public testing::TestWithParam<TNameOrder> {
 protected:
  RepairRoundTrip() : Rig(GetParam()) {
    AddProblems(Rig.System.Registry);
    AddAdwareTraces(Rig.System.Registry);
    Rig.WriteCatalogue(kCatalogue);
  }

  std::set<Text> Captions() {
    std::set<Text> captions;
    for (const ScanProblem& header : Rig.Headers())
      captions.insert(header.SectionCaption);
    return captions;
  }

  TRepairRig Rig;
};

}  // namespace

TEST_P(RepairRoundTrip, GivesBackEveryKeyAndValueByteForByte) {
  const std::vector<std::string> before = WholeDump(Rig.System.Registry);
  Rig.Run(AllSections());
  ASSERT_EQ(Rig.Failure, nullptr);
  const std::size_t found = Rig.Problems().size();
  EXPECT_GE(Captions().size(), 17U);
  Rig.Repair();
  ASSERT_EQ(Rig.FailureText, "");
  EXPECT_EQ(Rig.Outcome.Deleted.size(), found);
  EXPECT_TRUE(Rig.Unmarked().empty());
  EXPECT_NE(WholeDump(Rig.System.Registry), before);
  Rig.RestoreTheBackup();
  EXPECT_EQ(WholeDump(Rig.System.Registry), before);
}

TEST_P(RepairRoundTrip, LeavesOnlyWhatTheDeletionsMadeEmpty) {
  Rig.Run(AllSections());
  Rig.Repair();
  Rig.Run(AllSections());
  for (const ScanProblem& problem : Rig.Problems()) {
    EXPECT_EQ(problem.Kind, TProblemKind::Key) << EncodeUtf8(problem.KeyPath);
    EXPECT_EQ(problem.Description, Says(TextId::EmptyKey)) << EncodeUtf8(problem.KeyPath);
  }
}

TEST_P(RepairRoundTrip, DeletesNothingWhenTheDiskIsFull) {
  Rig.Run(AllSections());
  const std::vector<std::string> before = WholeDump(Rig.System.Registry);
  Rig.System.Disk.FailReplacing(kErrorDiskFull);
  Rig.Repair();
  EXPECT_EQ(WholeDump(Rig.System.Registry), before);
  EXPECT_FALSE(Rig.FailureText.empty());
}

INSTANTIATE_TEST_SUITE_P(NameOrders, RepairRoundTrip, testing::Values(TNameOrder::Windows, TNameOrder::Wine));

}  // namespace corvalt
