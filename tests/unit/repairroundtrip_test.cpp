// Scan, repair, scan again and restore, over a registry with problems in every section.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "scan/catalogue.h"
#include "tests/support/repairrig.h"

namespace corvalt {

namespace {

constexpr std::string_view kCatalogue =
    "<list><program><name>Ad</name><service>AdService</service><toolbar>{AD}</toolbar>"
    "<regkey>HKEY_CURRENT_USER\\Software\\Ad</regkey>"
    "<regvalue>HKEY_LOCAL_MACHINE\\Software\\Shared\\Ad</regvalue></program></list>";

const Text kCurrentVersion = u"\\Software\\Microsoft\\Windows\\CurrentVersion";
constexpr TextView kClassId = u"{C0000000-0000-0000-0000-000000000003}";
constexpr TextView kGone = u"C:\\gone.exe";

std::vector<std::int32_t> AllSections() {
  std::vector<std::int32_t> codes;
  for (const TSection& section : SectionCatalogue())
    codes.push_back(section.Code);
  return codes;
}

// Values of every type and shape, which no scanner looks at but which a deleted key takes with it.
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

void AddClassProblems(TMemoryRegistry& registry) {
  const Text root = u"HKEY_CLASSES_ROOT\\";
  registry.Set(root + u"CLSID\\" + Text(kClassId) + u"\\InprocServer32", u"", u"C:\\gone.dll");
  AddOddValues(registry, root + u"CLSID\\" + Text(kClassId));
  registry.Set(root + u"TypeLib\\{C1}\\1.0\\HELPDIR", u"", kGone);
  registry.Set(root + u"Interface\\{C2}\\TypeLib", u"", u"{DEAD}");
  registry.Set(root + u".gone", u"", u"Gone.Type");
  registry.Set(root + u"Broken.Type\\DefaultIcon", u"", u"C:\\gone.ico,0");
  registry.Set(root + u"Broken.Type\\Shell\\open\\command", u"", u"C:\\gone.exe %1");
}

void AddUserProblems(TMemoryRegistry& registry) {
  const Text explorer = u"HKEY_CURRENT_USER" + kCurrentVersion + u"\\Explorer";
  registry.Set(explorer + u"\\Shell Folders", u"Fonts", u"C:\\gone folder");
  registry.Set(u"HKEY_CURRENT_USER\\Software\\App", u"File", kGone);
  registry.Set(u"HKEY_USERS\\S-1\\Software\\App", u"File", kGone);
  registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Empty");
  registry.AddKey(explorer + u"\\FileExts\\.gone");
  registry.SetRaw(explorer + u"\\MenuOrder\\Start Menu2\\Programs\\Gone", {u"Order", kRegBinary, {0}});
  registry.Set(explorer + u"\\ComDlg32\\OpenSaveMRU\\txt", u"a", u"C:\\gone.txt");
  registry.Set(explorer + u"\\ComDlg32\\OpenSaveMRU\\txt", u"b", u"C:\\gone too.txt");
  registry.Set(explorer + u"\\ComDlg32\\OpenSaveMRU\\txt", u"", u"C:\\gone default.txt");
  registry.Set(explorer + u"\\ComDlg32\\OpenSaveMRU\\txt", u"MRUList", u"ab");
  registry.Set(u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\App\\Open\\.Current", u"", u"C:\\gone.wav");
}

void AddMachineProblems(TMemoryRegistry& registry) {
  const Text machine = u"HKEY_LOCAL_MACHINE" + kCurrentVersion;
  registry.Set(u"HKEY_LOCAL_MACHINE\\Software\\App", u"File", kGone);
  registry.AddKey(u"HKEY_LOCAL_MACHINE\\Software\\Empty\\Deep\\Down");
  registry.Set(machine + u"\\Run", u"Gone", kGone);
  registry.SetInteger(machine + u"\\SharedDLLs", u"C:\\gone.dll", 1);
  registry.Set(machine + u"\\App Paths\\gone.exe", u"", kGone);
  AddOddValues(registry, machine + u"\\App Paths\\gone.exe\\Below");
  registry.Set(machine + u"\\Uninstall\\Bare", u"DisplayName", u"Bare");
  registry.Set(machine + u"\\Fonts", u"Gone (TrueType)", u"C:\\gone.ttf");
  registry.Set(u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\Help", u"gone.hlp", u"C:\\");
  registry.Set(u"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Gone", u"ImagePath",
               u"C:\\gone.sys");
  registry.Set(u"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\VxD\\Gone", u"StaticVxD",
               u"C:\\gone.vxd");
  registry.SetInteger(machine + u"\\App Management\\ARPCache\\Forgotten", u"Changed", 0);
}

void AddAdwareTraces(TMemoryRegistry& registry) {
  AddOddValues(registry, u"HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\AdService");
  registry.SetRaw(u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Internet Explorer\\Toolbar",
                  {u"{AD}", kRegBinary, {0}});
  AddOddValues(registry, u"HKEY_CURRENT_USER\\Software\\Ad\\Deep");
  registry.SetExpand(u"HKEY_LOCAL_MACHINE\\Software\\Shared", u"Ad", u"%x%");
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
    AddClassProblems(Rig.System.Registry);
    AddUserProblems(Rig.System.Registry);
    AddMachineProblems(Rig.System.Registry);
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
    EXPECT_EQ(problem.Description, u"11044") << EncodeUtf8(problem.KeyPath);
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
