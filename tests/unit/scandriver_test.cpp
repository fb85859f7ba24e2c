// The driver: which sections run, in which order, and what cancelling leaves.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/problemfields.h"
#include "tests/support/scanrig.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

// "name at position" for each section shown, in order; a section that shows itself twice counts once.
TStrings SectionsShown(const TScanRig& rig) {
  TStrings shown;
  const TStrings& updates = rig.Dialog.Updates;
  for (std::size_t i = 0; i + 1 < updates.size(); ++i) {
    constexpr std::string_view kStart = "section: 11035 ";
    constexpr std::string_view kOverall = "overall: ";
    if (!updates[i].starts_with(kStart))
      continue;
    const std::string name = updates[i].substr(kStart.size(), updates[i].size() - kStart.size() - 3);
    const std::string line = name + " at " + updates[i + 1].substr(kOverall.size());
    if (shown.empty() || shown.back() != line)
      shown.push_back(line);
  }
  return shown;
}

// Whether the section was shown at all.
bool Shows(const TScanRig& rig, const std::string& name) {
  const TStrings shown = SectionsShown(rig);
  return std::any_of(shown.begin(), shown.end(),
                     [&name](const std::string& line) { return line.starts_with(name + " at "); });
}

std::vector<std::int32_t> AllCodes() {
  std::vector<std::int32_t> codes;
  for (const TSection& section : SectionCatalogue())
    codes.push_back(section.Code);
  return codes;
}

constexpr TextView kMicrosoft = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
constexpr TextView kExplorer = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr TextView kControlSet = u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet";

Text Below(TextView key, TextView rest) {
  return Text(key) + Text(rest);
}

// Two problems for every section, but for Device Drivers, which never has one.
void FillWithProblems(TScanRig& rig) {
  TMemoryRegistry& registry = rig.System.Registry;
  const Text classes = u"HKEY_CLASSES_ROOT";
  for (const TextView n : {u"1", u"2"}) {
    const Text number(n);
    const Text gone = u"C:\\gone" + number + u".exe";
    registry.Set(Below(kExplorer, u"\\User Shell Folders"), number, gone);
    registry.Set(Below(kExplorer, u"\\Shell Folders"), number, gone);
    registry.Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vendor" + number, u"Exe", gone);
    registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor" + number, u"Exe", gone);
    registry.Set(u"HKEY_USERS\\S-1-" + number + u"\\Software\\Vendor", u"Exe", gone);
    registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Empty" + number);
    registry.AddKey(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Empty" + number);
    registry.Set(classes + u"\\CLSID\\{" + number + u"}\\InprocServer32", u"", u"C:\\gone.dll");
    registry.Set(classes + u"\\Typelib\\{" + number + u"}\\1.0\\0\\win32", u"", u"C:\\gone.dll");
    registry.Set(classes + u"\\Interface\\{" + number + u"}\\ProxyStubClsid32", u"", u"{1}");
    registry.Set(classes + u"\\." + number, u"", u"type" + number);
    registry.Set(classes + u"\\type" + number + u"\\CLSID", u"", u"{1}");
    registry.Set(classes + u"\\type" + number + u"\\DefaultIcon", u"", u"C:\\gone.ico");
    registry.AddKey(classes + u"\\type" + number + u"\\Shell\\open");
    registry.AddKey(classes + u"\\type" + number + u"\\shellex\\ContextMenuHandlers\\{9}");
    registry.AddKey(classes + u"\\type" + number + u"\\shellex\\PropertySheetHandlers\\h");
    registry.AddKey(Below(kExplorer, u"\\FileExts\\.") + number);
    registry.AddKey(Below(kExplorer, u"\\MenuOrder\\Start Menu2\\Programs\\Gone") + number);
    registry.Set(u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run", number, gone);
    registry.Set(Below(kMicrosoft, u"\\Run"), number, gone);
    registry.SetInteger(Below(kMicrosoft, u"\\SharedDLLs"), gone, 1);
    registry.Set(Below(kMicrosoft, u"\\App Paths\\gone") + number, u"", gone);
    registry.AddKey(Below(kMicrosoft, u"\\Uninstall\\App") + number);
    registry.Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\fonts", number, gone);
    registry.Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\Help", number, u"C:\\Gone");
    registry.Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\Html Help", number, u"C:\\Gone");
    registry.Set(u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\App" + number, u"", gone);
    registry.Set(Below(kExplorer, u"\\ComDlg32\\OpenSaveMRU\\") + number, u"MRUList", u"ab");
    registry.Set(Below(kExplorer, u"\\ComDlg32\\OpenSaveMRU\\") + number, u"a", gone);
    registry.Set(Below(kControlSet, u"\\Services\\s") + number, u"ImagePath", gone);
    registry.Set(Below(kControlSet, u"\\Services\\VxD\\v") + number, u"StaticVxD", gone);
    registry.Set(Below(kControlSet, u"\\Control\\VirtualDeviceDrivers"), number, gone);
    registry.AddKey(Below(kMicrosoft, u"\\App Management\\ARPCache\\Old") + number);
  }
  registry.AddKey(Below(kControlSet, u"\\Services\\bad1"));
  registry.AddKey(Below(kControlSet, u"\\Services\\bad2"));
  rig.WriteCatalogue(
      "<list><p><name>One</name><service>bad1</service><service>bad2</service></p>"
      "<p><name>Two</name><service>bad1</service></p></list>");
}

// Headers whose number differs from their children, or without children, and what else can't be.
void ExpectConsistentTree(TScanRig& rig) {
  std::size_t nodes = 0;
  for (TResultsNode* header = rig.Results.FirstRoot(); header != nullptr;
       header = rig.Results.NextSibling(header)) {
    ++nodes;
    EXPECT_NE(header->Problem.SectionCaption, u"");
    EXPECT_GT(header->Problem.ChildCount, 0u);
    EXPECT_EQ(header->Problem.ChildCount, header->Children.size());
    for (TResultsNode* node = rig.Results.FirstChild(header); node != nullptr;
         node = rig.Results.NextSibling(node)) {
      ++nodes;
      EXPECT_EQ(node->Parent, header);
      EXPECT_EQ(node->Problem.SectionCaption, u"");
      EXPECT_TRUE(node->Children.empty());
    }
  }
  EXPECT_EQ(rig.Results.Model().TotalCount(), nodes);
}

bool IsPrefix(const TStrings& part, const TStrings& whole) {
  return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

}  // namespace

// Codes are stored in the users' settings and stand in their scripts. New sections come behind these.
TEST(SectionCatalogue, BeginsWithTheFirstTwentyTwoSectionsInTheOrderOfTheirRun) {
  TStrings lines;
  for (const TSection& section : SectionCatalogue().first(22))
    lines.push_back(std::to_string(section.Code) + " " + EncodeUtf8(section.ProgressName));
  EXPECT_EQ(lines, (TStrings{"1 Registry Integrity",
                             "21 Files and Folders - HKEY_LOCAL_MACHINE",
                             "22 Files and Folders - HKEY_CURRENT_USER",
                             "23 Files and Folders - HKEY_USERS",
                             "100 Spyware and Virus",
                             "3 Obsolete Software",
                             "4 Custom Controls",
                             "5 File Extensions",
                             "6 File Associations",
                             "7 Start Menu",
                             "8 Startup Programs",
                             "9 Shared Programs",
                             "10 Software Locations",
                             "11 Add/Remove Programs",
                             "12 Windows Fonts",
                             "13 Help and Resources",
                             "14 Sounds and Appevents",
                             "15 MRU and History Lists",
                             "16 Device Drivers",
                             "17 Windows Services",
                             "18 Virtual Devices",
                             "19 ARP Cache"}));
}

TEST(ScanDriver, RunsEverySectionInTheCataloguesOrder) {
  TScanRig rig;
  rig.WriteCatalogue("<list/>");
  rig.Run(AllCodes());
  TStrings expected;
  double ordinal = 0;
  for (const TSection& section : SectionCatalogue()) {
    const double share = ++ordinal * 100 / static_cast<double>(SectionCatalogue().size());
    const std::string name = EncodeUtf8(section.ProgressName);
    expected.push_back(name + " at " + std::to_string(RoundHalfToEven(share)));
    // Add/Remove Programs goes to a place of its own on the bar.
    const std::string ownPlace = name + " at 64";
    if (section.Code == 11 && expected.back() != ownPlace)
      expected.push_back(ownPlace);
  }
  EXPECT_EQ(SectionsShown(rig), expected);
}

TEST(ScanDriver, EverySectionsHeaderHasItsOwnCaptionImageAndRoot) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run(AllCodes());
  TStrings lines;
  for (ScanProblem header : rig.Headers()) {
    header.ChildCount = 0;
    lines.push_back(FieldsOf(header));
  }
  EXPECT_EQ(lines, (TStrings{
                       HeaderFields("80000001", "Registry Integrity", 0, 0),
                       HeaderFields("80000002", "HKEY_LOCAL_MACHINE - Files and Folders", 1, 0),
                       HeaderFields("80000001", "HKEY_CURRENT_USER - Files and Folders", 1, 0),
                       HeaderFields("80000003", "HKEY_USERS - Files and Folders", 1, 0),
                       HeaderFields("0", "Adware and Spyware", 22, 0),
                       HeaderFields("0", "Obsolete software", 5, 0),
                       HeaderFields("0", "Custom Controls", 6, 0),
                       HeaderFields("0", "File Extensions", 7, 0),
                       HeaderFields("80000000", "File Associations", 8, 0),
                       HeaderFields("0", "Start Menu", 9, 0),
                       HeaderFields("0", "Startup programs", 10, 0),
                       HeaderFields("0", "Shared Programs", 11, 0),
                       HeaderFields("0", "Software Locations", 12, 0),
                       HeaderFields("80000002", "Add/Remove Programs", 13, 0),
                       HeaderFields("0", "Windows Fonts", 14, 0),
                       HeaderFields("0", "Help and Resources", 15, 0),
                       HeaderFields("80000001", "Sounds and Appevents", 1, 0),
                       HeaderFields("0", "MRU and History Lists", 17, 0),
                       HeaderFields("80000002", "Windows Services", 17, 0),
                       HeaderFields("80000002", "Virtual Devices", 20, 0),
                       HeaderFields("0", "ARP Cache", 22, 0),
                   }));
}

TEST(ScanDriver, TwoTickedSectionsShareTheBar) {
  TScanRig rig;
  rig.Run({5, 1});
  EXPECT_EQ(SectionsShown(rig), (TStrings{"Registry Integrity at 50", "File Extensions at 100"}));
}

TEST(ScanDriver, ACodeIsNotFoundInsideALongerOne) {
  TScanRig rig;
  rig.WriteCatalogue("<list/>");
  rig.Run({21});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Files and Folders - HKEY_LOCAL_MACHINE at 100"});
  rig.Run({1});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Registry Integrity at 100"});
  rig.Run({100});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Spyware and Virus at 100"});
}

TEST(ScanDriver, APartlyTickedGroupContributesItsTickedSectionsAlone) {
  TScanRig rig;
  rig.Run({22});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Files and Folders - HKEY_CURRENT_USER at 100"});
}

TEST(ScanDriver, AFullyTickedGroupIsNoSectionOfItsOwn) {
  TScanRig rig;
  rig.Run({21, 22, 23});
  EXPECT_EQ(SectionsShown(rig), (TStrings{"Files and Folders - HKEY_LOCAL_MACHINE at 33",
                                          "Files and Folders - HKEY_CURRENT_USER at 67",
                                          "Files and Folders - HKEY_USERS at 100"}));
}

TEST(ScanDriver, WithNothingTickedTheScanEndsAtOnce) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({});
  EXPECT_TRUE(rig.Dialog.Updates.empty());
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
  EXPECT_EQ(rig.Reads(), 0);
  EXPECT_EQ(rig.Failure, nullptr);
}

TEST(ScanDriver, TheResultsOfAnEarlierScanAreCleared) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({1});
  ASSERT_NE(rig.Results.FirstRoot(), nullptr);
  rig.Run({});
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
}

TEST(ScanDriver, SectionsOfOneScanStandInTheTreeInTheOrderOfTheirRun) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({19, 100, 1});
  TStrings captions;
  for (const ScanProblem& header : rig.Headers())
    captions.push_back(EncodeUtf8(header.SectionCaption));
  EXPECT_EQ(captions, (TStrings{"Registry Integrity", "Adware and Spyware", "ARP Cache"}));
}

TEST(Cancelling, DuringTheThirdSectionRunsNoLaterOne) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({1, 21});
  const int readsOfTwoSections = rig.Reads();
  // One read into the third section.
  rig.RunAndCancel({1, 21, 22, 23, 3, 4}, readsOfTwoSections + 1);
  EXPECT_EQ(SectionsShown(rig),
            (TStrings{"Registry Integrity at 17", "Files and Folders - HKEY_LOCAL_MACHINE at 33",
                      "Files and Folders - HKEY_CURRENT_USER at 50"}));
  ExpectConsistentTree(rig);
}

TEST(Cancelling, WithTheLastReadOfASectionRunsNoLaterOneEither) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({1});
  const int reads = rig.Reads();
  rig.RunAndCancel({1, 9}, reads);
  EXPECT_EQ(SectionsShown(rig), TStrings{"Registry Integrity at 50"});
  EXPECT_EQ(rig.Headers().size(), 1u);
}

TEST(Cancelling, AtTheFirstValueOfTheShellFoldersFinishesThatValueAlone) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({1}, 2);  // the names, then the first value
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"1");
  EXPECT_EQ(rig.Reads(), 2);
}

TEST(Cancelling, AtTheLastValueOfTheFirstShellFolderKeyLeavesTheSecondKeyUnread) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({1}, 3);
  EXPECT_EQ(rig.Problems().size(), 2u);
  EXPECT_EQ(rig.Reads(), 3);
}

TEST(Cancelling, AtTheNamesOfTheShellFoldersFindsNothingAndLeavesNoHeader) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({1}, 1);
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
  EXPECT_EQ(rig.Reads(), 1);
}

TEST(Cancelling, InAKeysValuesEntersNoSubKey) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\A", u"1", u"C:\\gone1");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\A", u"2", u"C:\\gone2");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\A\\B", u"1", u"C:\\gone1");
  // Values and subkeys of the root, those of "A", then the type of its first value.
  rig.RunAndCancel({22}, 5);
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\A");
  EXPECT_EQ(rig.Problems()[0].ValueName, u"1");
}

TEST(Cancelling, AtAFileTypeStillFinishesAllThatBelongsToIt) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({6});
  const TStrings all = rig.Lines();
  // The whole entry of type1 and of type2 holds the same kinds of problems; a cut inside one never happens.
  const auto ofType = [](const TStrings& lines, const std::string& type) {
    return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find("\\" + type + "\\shellex") != std::string::npos ||
             line.find("\\" + type + "\\Shell") != std::string::npos;
    });
  };
  EXPECT_EQ(ofType(all, "type1"), 3);
  const int reads = rig.Reads();
  for (int read = 1; read <= reads; ++read) {
    rig.RunAndCancel({6}, read);
    EXPECT_TRUE(IsPrefix(rig.Lines(), all)) << read;
    EXPECT_EQ(ofType(rig.Lines(), "type1") % 3, 0) << read;
    EXPECT_EQ(ofType(rig.Lines(), "type2") % 3, 0) << read;
  }
}

TEST(Cancelling, InTheFirstPassOfFileAssociationsSkipsTheSecond) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\.a", u"", u"gone");
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\.b", u"", u"gone");
  rig.System.Registry.AddKey(u"HKEY_CLASSES_ROOT\\*\\Shell\\open");
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\*", u"v", u"");
  rig.Run({6});
  ASSERT_EQ(rig.Problems().size(), 3u);
  // The class names; nothing more of "*" than its values and its missing class; then ".a".
  rig.RunAndCancel({6}, 1);
  EXPECT_TRUE(rig.Problems().empty());
  rig.RunAndCancel({6}, 3);
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\.a");
}

TEST(Cancelling, InAPassOfCustomControlsSkipsTheLaterPasses) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32", u"", u"C:\\gone.dll");
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\CLSID\\{2}\\InprocServer32", u"", u"C:\\gone.dll");
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\Typelib\\{3}\\1.0\\0\\win32", u"", u"C:\\gone.dll");
  rig.System.Registry.Set(u"HKEY_CLASSES_ROOT\\Interface\\{4}\\TypeLib", u"", u"{5}");
  rig.Run({4});
  ASSERT_EQ(rig.Problems().size(), 4u);
  rig.RunAndCancel({4}, 2);  // the class names, then the first class's server
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\CLSID\\{1}");
}

// Every section, cancelled at each of its registry reads in turn.

class CancellingSection : public testing::TestWithParam<std::int32_t> {};

TEST_P(CancellingSection, LeavesABeginningOfItsProblemsAndAConsistentTree) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({GetParam()});
  ASSERT_EQ(rig.Failure, nullptr);
  const TStrings all = rig.Lines();
  const int reads = rig.Reads();
  if (GetParam() != 16) {
    EXPECT_GE(all.size(), 2u);
  }
  std::size_t found = 0;
  for (int read = 1; read <= reads; ++read) {
    rig.RunAndCancel({GetParam(), 19}, read);
    ASSERT_EQ(rig.Failure, nullptr);
    ExpectConsistentTree(rig);
    const TStrings lines = rig.Lines();
    EXPECT_TRUE(IsPrefix(lines, all)) << "cancelled at read " << read;
    EXPECT_GE(lines.size(), found) << "cancelled at read " << read;
    EXPECT_EQ(Shows(rig, "ARP Cache"), GetParam() == 19) << "cancelled at read " << read;
    found = lines.size();
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, CancellingSection, testing::ValuesIn(AllCodes()));

TEST(Cancelling, BeforeTheSecondSectionEndsTheFirstOneProperly) {
  TScanRig rig;
  FillWithProblems(rig);
  for (int read = 1; read <= 12; ++read) {
    rig.RunAndCancel({1, 22}, read);
    ExpectConsistentTree(rig);
  }
}

TEST(Cancelling, AScanAfterACancelledOneFindsEverything) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run(AllCodes());
  const TStrings all = rig.Lines();
  rig.RunAndCancel(AllCodes(), 7);
  EXPECT_LT(rig.Lines().size(), all.size());
  rig.Run(AllCodes());
  EXPECT_EQ(rig.Lines(), all);
}

}  // namespace corvalt
