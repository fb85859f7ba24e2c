// The driver: which sections run, in which order, and what cancelling leaves.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

// "name at position" for each section shown, in order; a section that shows itself twice counts once.
TStrings SectionsShown(const TScanRig& rig) {
  TStrings shown;
  const TStrings& updates = rig.Dialog.Updates;
  const std::string start = "section: " + EncodeUtf8(Says(TextId::ScanningSection)) + " ";
  constexpr std::string_view kOverall = "overall: ";
  for (std::size_t i = 0; i + 1 < updates.size(); ++i) {
    if (!updates[i].starts_with(start))
      continue;
    const std::string name = updates[i].substr(start.size(), updates[i].size() - start.size() - 3);
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

// Problems for every section, but for Device Drivers, which never has one. "#" stands for a number.
constexpr std::string_view kProblems = R"(
; Registry Integrity
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders]
"#"="C:\\gone#.exe"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"#"="C:\\gone#.exe"
; Files and Folders
[HKEY_LOCAL_MACHINE\SOFTWARE\Vendor#]
"Exe"="C:\\gone#.exe"
[HKEY_CURRENT_USER\Software\Vendor#]
"Exe"="C:\\gone#.exe"
[HKEY_USERS\S-1-#\Software\Vendor]
"Exe"="C:\\gone#.exe"
; Adware and Spyware
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\bad#]
; Obsolete Software
[HKEY_CURRENT_USER\Software\Empty#]
[HKEY_LOCAL_MACHINE\SOFTWARE\Empty#]
; Custom Controls
[HKEY_CLASSES_ROOT\CLSID\{#}\InprocServer32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\Typelib\{#}\1.0\0\win32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\Interface\{#}\ProxyStubClsid32]
@="{1}"
; File Extensions
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts\.#]
; File Associations
[HKEY_CLASSES_ROOT\.#]
@="type#"
[HKEY_CLASSES_ROOT\type#\CLSID]
@="{1}"
[HKEY_CLASSES_ROOT\type#\DefaultIcon]
@="C:\\gone.ico"
[HKEY_CLASSES_ROOT\type#\Shell\open]
[HKEY_CLASSES_ROOT\type#\shellex\ContextMenuHandlers\{9}]
[HKEY_CLASSES_ROOT\type#\shellex\PropertySheetHandlers\h]
; Start Menu
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\MenuOrder\Start Menu2\Programs\Gone#]
; Startup Programs
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run]
"#"="C:\\gone#.exe"
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run]
"#"="C:\\gone#.exe"
; Shared Programs
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs]
"C:\\gone#.exe"=dword:00000001
; Software Locations
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths\gone#]
@="C:\\gone#.exe"
; Add/Remove Programs
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\App#]
; Windows Fonts
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion\fonts]
"#"="C:\\gone#.exe"
; Help and Resources
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Help]
"#"="C:\\Gone"
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Html Help]
"#"="C:\\Gone"
; Sounds and Appevents
[HKEY_CURRENT_USER\AppEvents\Schemes\Apps\App#]
@="C:\\gone#.exe"
; MRU and History Lists
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\ComDlg32\OpenSaveMRU\#]
"MRUList"="ab"
"a"="C:\\gone#.exe"
; Windows Services
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\s#]
"ImagePath"="C:\\gone#.exe"
; Virtual Devices
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\VxD\v#]
"StaticVxD"="C:\\gone#.exe"
[HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\VirtualDeviceDrivers]
"#"="C:\\gone#.exe"
; ARP Cache
[HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\App Management\ARPCache\Old#]
)";

// The problems with the numbers 1 and 2.
void FillWithProblems(TScanRig& rig) {
  for (const char number : {'1', '2'}) {
    std::string numbered(kProblems);
    std::replace(numbered.begin(), numbered.end(), '#', number);
    LoadRegText(rig.System.Registry, numbered);
  }
  rig.WriteCatalogue(
      "<list><p><name>One</name><service>bad1</service><service>bad2</service></p>"
      "<p><name>Two</name><service>bad1</service></p></list>");
}

// Every header has a caption and counts its problems, of which it has at least one; problems have neither a
// caption nor children; the tree counts all of them.
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

// The codes are stored in the users' settings and stand in their scripts, so they are compared as the numbers
// they are there. New sections come behind these.
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
    if (section.Code == Section::AddRemovePrograms && expected.back() != ownPlace)
      expected.push_back(ownPlace);
  }
  EXPECT_EQ(SectionsShown(rig), expected);
}

TEST(ScanDriver, EverySectionsHeaderHasItsOwnCaptionImageAndRoot) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run(AllCodes());
  std::vector<ScanProblem> headers = rig.Headers();
  for (ScanProblem& header : headers)
    header.ChildCount = 0;
  EXPECT_EQ(AllFields(headers),
            AllFields({
                SectionHeader(u"Registry Integrity", 0, kHkeyCurrentUser, 0),
                SectionHeader(u"HKEY_LOCAL_MACHINE - Files and Folders", 1, kHkeyLocalMachine, 0),
                SectionHeader(u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, 0),
                SectionHeader(u"HKEY_USERS - Files and Folders", 1, kHkeyUsers, 0),
                SectionHeader(u"Adware and Spyware", 22, kNoRootKey, 0),
                SectionHeader(u"Obsolete software", 5, kNoRootKey, 0),
                SectionHeader(u"Custom Controls", 6, kNoRootKey, 0),
                SectionHeader(u"File Extensions", 7, kNoRootKey, 0),
                SectionHeader(u"File Associations", 8, kHkeyClassesRoot, 0),
                SectionHeader(u"Start Menu", 9, kNoRootKey, 0),
                SectionHeader(u"Startup programs", 10, kNoRootKey, 0),
                SectionHeader(u"Shared Programs", 11, kNoRootKey, 0),
                SectionHeader(u"Software Locations", 12, kNoRootKey, 0),
                SectionHeader(u"Add/Remove Programs", 13, kHkeyLocalMachine, 0),
                SectionHeader(u"Windows Fonts", 14, kNoRootKey, 0),
                SectionHeader(u"Help and Resources", 15, kNoRootKey, 0),
                SectionHeader(u"Sounds and Appevents", 1, kHkeyCurrentUser, 0),
                SectionHeader(u"MRU and History Lists", 17, kNoRootKey, 0),
                SectionHeader(u"Windows Services", 17, kHkeyLocalMachine, 0),
                SectionHeader(u"Virtual Devices", 20, kHkeyLocalMachine, 0),
                SectionHeader(u"ARP Cache", 22, kNoRootKey, 0),
            }));
}

TEST(ScanDriver, TwoTickedSectionsShareTheBar) {
  TScanRig rig;
  rig.Run({Section::FileExtensions, Section::RegistryIntegrity});
  EXPECT_EQ(SectionsShown(rig), (TStrings{"Registry Integrity at 50", "File Extensions at 100"}));
}

TEST(ScanDriver, ACodeIsNotFoundInsideALongerOne) {
  TScanRig rig;
  rig.WriteCatalogue("<list/>");
  // The code of Registry Integrity, 1, is a part of the other two.
  rig.Run({Section::FilesOfLocalMachine});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Files and Folders - HKEY_LOCAL_MACHINE at 100"});
  rig.Run({Section::RegistryIntegrity});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Registry Integrity at 100"});
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Spyware and Virus at 100"});
}

TEST(ScanDriver, APartlyTickedGroupContributesItsTickedSectionsAlone) {
  TScanRig rig;
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(SectionsShown(rig), TStrings{"Files and Folders - HKEY_CURRENT_USER at 100"});
}

TEST(ScanDriver, AFullyTickedGroupIsNoSectionOfItsOwn) {
  TScanRig rig;
  rig.Run({Section::FilesOfLocalMachine, Section::FilesOfCurrentUser, Section::FilesOfUsers});
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
  rig.Run({Section::RegistryIntegrity});
  ASSERT_NE(rig.Results.FirstRoot(), nullptr);
  rig.Run({});
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
}

TEST(ScanDriver, SectionsOfOneScanStandInTheTreeInTheOrderOfTheirRun) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({Section::ArpCache, Section::AdwareAndSpyware, Section::RegistryIntegrity});
  TStrings captions;
  for (const ScanProblem& header : rig.Headers())
    captions.push_back(EncodeUtf8(header.SectionCaption));
  EXPECT_EQ(captions, (TStrings{"Registry Integrity", "Adware and Spyware", "ARP Cache"}));
}

TEST(Cancelling, DuringTheThirdSectionRunsNoLaterOne) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({Section::RegistryIntegrity, Section::FilesOfLocalMachine});
  const int readsOfTwoSections = rig.Reads();
  // One read into the third section.
  rig.RunAndCancel({Section::RegistryIntegrity, Section::FilesOfLocalMachine, Section::FilesOfCurrentUser,
                    Section::FilesOfUsers, Section::ObsoleteSoftware, Section::CustomControls},
                   readsOfTwoSections + 1);
  EXPECT_EQ(SectionsShown(rig),
            (TStrings{"Registry Integrity at 17", "Files and Folders - HKEY_LOCAL_MACHINE at 33",
                      "Files and Folders - HKEY_CURRENT_USER at 50"}));
  ExpectConsistentTree(rig);
}

TEST(Cancelling, WithTheLastReadOfASectionRunsNoLaterOneEither) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({Section::RegistryIntegrity});
  const int reads = rig.Reads();
  rig.RunAndCancel({Section::RegistryIntegrity, Section::SharedPrograms}, reads);
  EXPECT_EQ(SectionsShown(rig), TStrings{"Registry Integrity at 50"});
  EXPECT_EQ(rig.Headers().size(), 1u);
  EXPECT_EQ(rig.Reads(), reads);
}

TEST(Cancelling, AtTheFirstValueOfTheShellFoldersFinishesThatValueAlone) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({Section::RegistryIntegrity}, 2);  // the names, then the first value
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].ValueName, u"1");
  EXPECT_EQ(rig.Reads(), 2);
}

TEST(Cancelling, AtTheLastValueOfTheFirstShellFolderKeyLeavesTheSecondKeyUnread) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({Section::RegistryIntegrity}, 3);
  EXPECT_EQ(rig.Problems().size(), 2u);
  EXPECT_EQ(rig.Reads(), 3);
}

TEST(Cancelling, AtTheNamesOfTheShellFoldersFindsNothingAndLeavesNoHeader) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.RunAndCancel({Section::RegistryIntegrity}, 1);
  EXPECT_EQ(rig.Results.FirstRoot(), nullptr);
  EXPECT_EQ(rig.Reads(), 1);
}

TEST(Cancelling, InAKeysValuesEntersNoSubKey) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\A]
"1"="C:\\gone1"
"2"="C:\\gone2"
[HKEY_CURRENT_USER\A\B]
"1"="C:\\gone1"
)");
  // Values and subkeys of the root, those of "A", then the type of its first value.
  rig.RunAndCancel({Section::FilesOfCurrentUser}, 5);
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\A");
  EXPECT_EQ(rig.Problems()[0].ValueName, u"1");
}

TEST(Cancelling, AtAFileTypeStillFinishesAllThatBelongsToIt) {
  TScanRig rig;
  FillWithProblems(rig);
  rig.Run({Section::FileAssociations});
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
    rig.RunAndCancel({Section::FileAssociations}, read);
    EXPECT_TRUE(IsPrefix(rig.Lines(), all)) << read;
    EXPECT_EQ(ofType(rig.Lines(), "type1") % 3, 0) << read;
    EXPECT_EQ(ofType(rig.Lines(), "type2") % 3, 0) << read;
  }
}

TEST(Cancelling, InTheFirstPassOfFileAssociationsSkipsTheSecond) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\.a]
@="gone"
[HKEY_CLASSES_ROOT\.b]
@="gone"
[HKEY_CLASSES_ROOT\*\Shell\open]
[HKEY_CLASSES_ROOT\*]
"v"=""
)");
  rig.Run({Section::FileAssociations});
  ASSERT_EQ(rig.Problems().size(), 3u);
  // The reads are the names of the classes, the values of "*", which links to no class, then those of ".a".
  rig.RunAndCancel({Section::FileAssociations}, 1);
  EXPECT_TRUE(rig.Problems().empty());
  rig.RunAndCancel({Section::FileAssociations}, 3);
  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems()[0].KeyPath, u"\\.a");
}

TEST(Cancelling, InAPassOfCustomControlsSkipsTheLaterPasses) {
  TScanRig rig;
  LoadRegText(rig.System.Registry, R"(
[HKEY_CLASSES_ROOT\CLSID\{1}\InprocServer32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\CLSID\{2}\InprocServer32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\Typelib\{3}\1.0\0\win32]
@="C:\\gone.dll"
[HKEY_CLASSES_ROOT\Interface\{4}\TypeLib]
@="{5}"
)");
  rig.Run({Section::CustomControls});
  ASSERT_EQ(rig.Problems().size(), 4u);
  rig.RunAndCancel({Section::CustomControls}, 2);  // the class names, then the first class's server
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
  if (GetParam() != Section::DeviceDrivers) {
    EXPECT_GE(all.size(), 2u);
  }
  const TSection& last = SectionCatalogue().back();
  std::size_t found = 0;
  for (int read = 1; read <= reads; ++read) {
    rig.RunAndCancel({GetParam(), last.Code}, read);
    ASSERT_EQ(rig.Failure, nullptr);
    ExpectConsistentTree(rig);
    const TStrings lines = rig.Lines();
    EXPECT_TRUE(IsPrefix(lines, all)) << "cancelled at read " << read;
    EXPECT_GE(lines.size(), found) << "cancelled at read " << read;
    EXPECT_EQ(Shows(rig, EncodeUtf8(last.ProgressName)), GetParam() == last.Code)
        << "cancelled at read " << read;
    found = lines.size();
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, CancellingSection, testing::ValuesIn(AllCodes()));

TEST(Cancelling, BeforeTheSecondSectionEndsTheFirstOneProperly) {
  TScanRig rig;
  FillWithProblems(rig);
  for (int read = 1; read <= 12; ++read) {
    rig.RunAndCancel({Section::RegistryIntegrity, Section::FilesOfCurrentUser}, read);
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
