#include <gtest/gtest.h>

#include "formats/inflate.h"
#include "tests/support/datafile.h"
#include "tests/support/largeinput.h"
#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kCatalogueFile = u"C:\\Program Files\\Tessaly\\data\\xdata.dat";
constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services\\";
constexpr TextView kHelperObjects =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\";
constexpr TextView kToolbar = u"\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";

Text Machine(TextView key) {
  return u"HKEY_LOCAL_MACHINE" + Text(key);
}

// The catalogue of one program "Bad" with these traces.
void WriteTraces(TScanRig& rig, const std::string& traces) {
  rig.WriteCatalogue("<list><program><name>Bad</name>" + traces + "</program></list>");
}

std::string Packed(std::string_view content) {
  const std::vector<std::uint8_t> file = PackDataFile(content);
  return {file.begin(), file.end()};
}

ScanProblem BadKey(TRootKey root, TextView keyPath) {
  return KeyProblem(root, keyPath, u"", u"", u" Bad");
}

ScanProblem BadValue(TRootKey root, TextView keyPath, TextView name) {
  return ValueProblem(root, keyPath, name, u"", u" Bad");
}

// Every trace of this catalogue exists but for those that say otherwise.
void InfectMachine(TScanRig& rig) {
  rig.WriteCatalogue(
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
      "<list>\r\n"
      "  <program>\r\n"
      "    <name>First &amp; Worst</name>\r\n"
      "    <service>BadSvc</service>\r\n"
      "    <service>AbsentSvc</service>\r\n"
      "    <regkey>HKEY_CURRENT_USER\\Software\\Bad</regkey>\r\n"
      "    "
      "<regvalue>HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Run\\bad.exe</"
      "regvalue>\r\n"
      "    <bho>{11111111-2222-3333-4444-555555555555}</bho>\r\n"
      "    <toolbar>{66666666-7777-8888-9999-000000000000}</toolbar>\r\n"
      "    <file>C:\\Windows\\bad.exe</file>\r\n"
      "  </program>\r\n"
      "  <program></program>\r\n"
      "  <program>\r\n"
      "    <name>Second</name>\r\n"
      "    <!-- a remark -->\r\n"
      "    <REGKEY>HKEY_CLASSES_ROOT\\Bad.Class</REGKEY>\r\n"
      "    <RegKey>HKEY_USERS\\.DEFAULT\\Software\\Absent</RegKey>\r\n"
      "  </program>\r\n"
      "</list>\r\n");
  TMemoryRegistry& registry = rig.System.Registry;
  registry.AddKey(Machine(kServices) + u"BadSvc");
  registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Bad");
  registry.Set(Machine(u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"), u"Bad.exe", u"C:\\bad.exe");
  registry.AddKey(Machine(kHelperObjects) + u"{11111111-2222-3333-4444-555555555555}");
  registry.SetRaw(Machine(kToolbar), {u"{66666666-7777-8888-9999-000000000000}", kRegBinary, {}});
  registry.AddKey(u"HKEY_CLASSES_ROOT\\bad.class");
}

// What ended the last run.
std::string FailureOf(TScanRig& rig) {
  return EncodeUtf8(DescribeException(rig.Failure, rig.System.Locale));
}

constexpr const char* kUnreadable = "40003(C:\\Program Files\\Tessaly\\\\data\\xdata.dat)";

}  // namespace

TEST(AdwareAndSpyware, EveryProblemOfALargerRegistryWithAllFields) {
  for (const TNameOrder order : {TNameOrder::Windows, TNameOrder::Wine}) {
    TScanRig rig(order);
    InfectMachine(rig);

    rig.Run({Section::AdwareAndSpyware});

    EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Adware and Spyware", 22, kNoRootKey, 6)}));
    EXPECT_EQ(
        AllFields(rig.Problems()),
        AllFields(
            {KeyProblem(kHkeyLocalMachine, Text(kServices) + u"BadSvc", u"", u"", u" First & Worst"),
             KeyProblem(kHkeyCurrentUser, u"Software\\Bad", u"", u"", u" First & Worst"),
             ValueProblem(kHkeyLocalMachine, u"Software\\Microsoft\\Windows\\CurrentVersion\\Run", u"bad.exe",
                          u"", u" First & Worst"),
             KeyProblem(kHkeyLocalMachine, Text(kHelperObjects) + u"{11111111-2222-3333-4444-555555555555}",
                        u"", u"", u" First & Worst"),
             ValueProblem(kHkeyLocalMachine, kToolbar, u"{66666666-7777-8888-9999-000000000000}", u"",
                          u" First & Worst"),
             KeyProblem(kHkeyClassesRoot, u"Bad.Class", u"", u"", u" Second")}));
  }
}

TEST(AdwareAndSpyware, ACleanMachineLeavesNoHeader) {
  TScanRig rig;
  WriteTraces(rig,
              "<service>Bad</service><regkey>HKEY_CURRENT_USER\\Bad</regkey>"
              "<regvalue>HKEY_CURRENT_USER\\Bad\\v</regvalue><bho>{1}</bho><toolbar>{1}</toolbar>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_TRUE(rig.Headers().empty());
  EXPECT_EQ(rig.Failure, nullptr);
}

TEST(AdwareAndSpyware, TheNamesOfTheUpperLevelsDoNotMatter) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u"Bad");
  rig.WriteCatalogue("<service><bho><whatever>Bad</whatever><service>Bad</service></bho></service>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadKey(kHkeyLocalMachine, Text(kServices) + u"Bad")}));
}

TEST(AdwareAndSpyware, TheLetterCaseOfAKindDoesNotMatter) {
  for (const std::string kind : {"service", "Service", "SERVICE", "sERVICE"}) {
    TScanRig rig;
    rig.System.Registry.AddKey(Machine(kServices) + u"Svc");
    WriteTraces(rig, "<" + kind + ">Svc</" + kind + ">");
    rig.Run({Section::AdwareAndSpyware});
    EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadKey(kHkeyLocalMachine, Text(kServices) + u"Svc")}))
        << kind;
  }
}

TEST(AdwareAndSpyware, AnyOtherKindIsIgnored) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u"Svc");
  WriteTraces(rig, "<services>Svc</services><x:service>Svc</x:service><process>Svc</process>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AdwareAndSpyware, TheFirstChildIsATraceTooWhenItsNameSaysSo) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u"BadSvc");
  rig.WriteCatalogue("<list><program><service>BadSvc</service></program></list>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({KeyProblem(kHkeyLocalMachine, Text(kServices) + u"BadSvc", u"", u"", u" BadSvc")}));
}

TEST(AdwareAndSpyware, AnAmpersandOfTheNameIsNotDoubled) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u"Svc");
  rig.WriteCatalogue("<l><p><n> A &amp; B </n><service>Svc</service></p></l>");

  rig.Run({Section::AdwareAndSpyware});

  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems().front().Description, u"  A & B ");
}

TEST(AdwareAndSpyware, AProgramWithoutANameGivesABlankDescription) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u"Svc");
  rig.WriteCatalogue("<l><p><n/><service>Svc</service></p></l>");

  rig.Run({Section::AdwareAndSpyware});

  ASSERT_EQ(rig.Problems().size(), 1u);
  EXPECT_EQ(rig.Problems().front().Description, u" ");
}

TEST(AdwareAndSpyware, ServicesAndHelperObjectsAreUsedUntrimmedAndSkippedWhenBlank) {
  TScanRig rig;
  rig.System.Registry.AddKey(Machine(kServices) + u" padded ");
  rig.System.Registry.AddKey(Machine(kServices) + u"tight");
  rig.System.Registry.AddKey(Machine(kHelperObjects) + u" {1} ");
  rig.System.Registry.AddKey(Machine(kHelperObjects) + u"{2}");
  rig.System.Registry.AddKey(Machine(kServices) + u"  ");
  rig.System.Registry.AddKey(Machine(kHelperObjects) + u"  ");
  WriteTraces(rig,
              "<service> padded </service><service> tight </service><service>  </service><service/>"
              "<bho> {1} </bho><bho> {2} </bho><bho>  </bho><bho/>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({BadKey(kHkeyLocalMachine, Text(kServices) + u" padded "),
                       BadKey(kHkeyLocalMachine, Text(kHelperObjects) + u" {1} ")}));
}

TEST(AdwareAndSpyware, AToolbarIsAValueOfTheToolbarKeyUntrimmed) {
  TScanRig rig;
  rig.System.Registry.Set(Machine(kToolbar), u"{1}", u"");
  rig.System.Registry.Set(Machine(kToolbar), u" {2} ", u"");
  WriteTraces(rig, "<toolbar>{1}</toolbar><toolbar> {1}</toolbar><toolbar> {2} </toolbar>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadValue(kHkeyLocalMachine, kToolbar, u"{1}"),
                                                  BadValue(kHkeyLocalMachine, kToolbar, u" {2} ")}));
}

TEST(AdwareAndSpyware, AKeyTraceIsTrimmedAfterItsRoot) {
  TScanRig rig;
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Bad");
  rig.System.Registry.AddKey(u"HKEY_LOCAL_MACHINE\\Software\\Bad");
  WriteTraces(rig,
              "<regkey>HKEY_LOCAL_MACHINE\\ Software\\Bad </regkey>"
              "<regkey> HKEY_LOCAL_MACHINE\\Software\\Bad</regkey>");

  rig.Run({Section::AdwareAndSpyware});

  // The second names no root, because of its leading blank, and so means the user's.
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadKey(kHkeyLocalMachine, u"Software\\Bad"),
                                                  BadKey(kHkeyCurrentUser, u"Software\\Bad")}));
}

TEST(AdwareAndSpyware, AKeyTraceWithoutAKeyPathIsSkipped) {
  TScanRig rig;
  WriteTraces(rig,
              "<regkey>HKEY_LOCAL_MACHINE</regkey><regkey>HKEY_LOCAL_MACHINE\\</regkey>"
              "<regkey>HKEY_LOCAL_MACHINE\\  </regkey><regkey/>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AdwareAndSpyware, EveryRootIsKnownByItsExactNameAlone) {
  struct TCase {
    std::string Name;
    TRootKey Root;
  };
  for (const TCase& each :
       {TCase{"HKEY_CLASSES_ROOT", kHkeyClassesRoot}, TCase{"HKEY_CURRENT_USER", kHkeyCurrentUser},
        TCase{"HKEY_LOCAL_MACHINE", kHkeyLocalMachine}, TCase{"HKEY_USERS", kHkeyUsers},
        TCase{"HKEY_CURRENT_CONFIG", kHkeyCurrentConfig}, TCase{"HKLM", kHkeyCurrentUser},
        TCase{"hkey_local_machine", kHkeyCurrentUser}}) {
    TScanRig rig;
    rig.System.Registry.Set(RootKeyName(each.Root) + u"\\Software\\Bad", u"v", u"");
    WriteTraces(rig, "<regkey>" + each.Name + "\\Software\\Bad</regkey><regvalue>" + each.Name +
                         "\\Software\\Bad\\v</regvalue>");
    rig.Run({Section::AdwareAndSpyware});
    EXPECT_EQ(AllFields(rig.Problems()),
              AllFields({BadKey(each.Root, u"Software\\Bad"), BadValue(each.Root, u"Software\\Bad", u"v")}))
        << each.Name;
  }
}

TEST(AdwareAndSpyware, AValueTraceIsSplitAtItsLastBackslashAndNotTrimmed) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Bad", u" v ", u"");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Bad", u"tight", u"");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Bad", u"", u"default");
  WriteTraces(rig,
              "<regvalue>HKEY_CURRENT_USER\\Software\\Bad\\ v </regvalue>"
              "<regvalue>HKEY_CURRENT_USER\\Software\\Bad\\ tight</regvalue>"
              "<regvalue>HKEY_CURRENT_USER\\Software\\Bad\\</regvalue>"
              "<regvalue>HKEY_CURRENT_USER\\Software\\Bad\\absent</regvalue>"
              "<regvalue>HKEY_CURRENT_USER\\Software\\Absent\\v</regvalue>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadValue(kHkeyCurrentUser, u"Software\\Bad", u" v "),
                                                  BadValue(kHkeyCurrentUser, u"Software\\Bad", u"")}));
}

TEST(AdwareAndSpyware, AValueTraceWithoutAKeyIsLookedUpInTheRootItself) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE", u"bad", u"");
  WriteTraces(rig, "<regvalue>HKEY_LOCAL_MACHINE\\bad</regvalue><regvalue>HKEY_LOCAL_MACHINE</regvalue>");
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadValue(kHkeyLocalMachine, u"", u"bad")}));

  // Without any backslash it is the root's default value.
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE", u"", u"");
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({BadValue(kHkeyLocalMachine, u"", u"bad"), BadValue(kHkeyLocalMachine, u"", u"")}));
}

TEST(AdwareAndSpyware, AKeyThatDoesNotOpenExistsButItsValuesAreSkipped) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Bad", u"v", u"");
  rig.System.Registry.Deny(u"HKEY_CURRENT_USER\\Software\\Bad");
  WriteTraces(rig,
              "<regvalue>HKEY_CURRENT_USER\\Software\\Bad\\v</regvalue>"
              "<regkey>HKEY_CURRENT_USER\\Software\\Bad</regkey>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadKey(kHkeyCurrentUser, u"Software\\Bad")}));
}

// The key paths of key and value traces begin without a backslash, in the ignore test too.
TEST(AdwareAndSpyware, AnIgnoreEntryMeetsARegistryTraceWithoutABackslashAfterTheRoot) {
  TScanRig rig;
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Bad");
  WriteTraces(rig, "<regkey>HKEY_CURRENT_USER\\Software\\Bad</regkey>");
  rig.Reg.IgnoreList = {u"hkey_current_user\\software\\bad"};
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(rig.Problems().size(), 1u);

  rig.Reg.IgnoreList = {u"HKEY_CURRENT_USERSoftware\\Bad"};
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(AdwareAndSpyware, ProgressNamesTheProgramWithoutABlank) {
  TScanRig rig;
  std::string programs;
  for (int i = 0; i < 120; ++i) {
    const std::string name = EncodeUtf8(NumberedName(u"p", i));
    programs += i < 10 ? "<p/>" : "<p><n>" + name + "</n><bho>{1}</bho></p>";
  }
  rig.WriteCatalogue("<l>" + programs + "</l>");

  rig.Run({Section::AdwareAndSpyware});

  // Ten programs without children make no call, but count: the 51st call is that of the 61st program, and
  // 61 x 100 / 120 = 50.8; the 101st that of the 111th, 92.5, a half that goes to the even number.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Spyware and Virus", {"item: p060", "bar: 51", "item: p110", "bar: 92"}));
}

TEST(AdwareAndSpyware, AProgramWithoutChildrenIsPassedOver) {
  TScanRig rig;
  rig.WriteCatalogue("<l><p/><p></p><p> text alone </p></l>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_TRUE(rig.Headers().empty());
  EXPECT_EQ(rig.Failure, nullptr);
}

TEST(AdwareAndSpyware, AnEmptyCatalogueFindsNothing) {
  TScanRig rig;
  rig.WriteCatalogue("<list/>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_TRUE(rig.Headers().empty());
  EXPECT_EQ(rig.Failure, nullptr);
}

TEST(AdwareAndSpyware, ACancelledScanFinishesItsTraceAndLooksAtNoOther) {
  TScanRig rig;
  rig.System.Registry.Set(Machine(kToolbar), u"{1}", u"");
  rig.System.Registry.Set(Machine(kToolbar), u"{2}", u"");
  rig.System.Registry.Set(Machine(kToolbar), u"{3}", u"");
  rig.WriteCatalogue(
      "<l><p><n>Bad</n><toolbar>{1}</toolbar><toolbar>{2}</toolbar></p>"
      "<p><n>Bad</n><toolbar>{3}</toolbar></p></l>");

  rig.RunAndCancel({Section::AdwareAndSpyware, Section::ObsoleteSoftware}, 1);

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Adware and Spyware", 22, kNoRootKey, 1)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({BadValue(kHkeyLocalMachine, kToolbar, u"{1}")}));
}

TEST(AdwareAndSpyware, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  rig.System.Registry.Set(Machine(kToolbar), u"{1}", u"");
  rig.System.Registry.Set(Machine(kToolbar), u"{2}", u"");
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Bad", u"v", u"");
  WriteTraces(rig,
              "<toolbar>{1}</toolbar><toolbar>{2}</toolbar><regvalue>HKEY_CURRENT_USER\\Bad\\v</regvalue>");
  ExpectConsistentWhereverCancelled(rig, Section::AdwareAndSpyware);
}

TEST(AdwareAndSpyware, WhatDoesNotReadAsACatalogueEndsTheScanWithItsName) {
  std::string cutOff = Packed("<list><p><n>Bad</n><service>Bad</service></p></list>");
  cutOff.resize(cutOff.size() - 6);
  std::string damaged = Packed("<list><p><n>Bad</n><service>Bad</service></p></list>");
  damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 0x55);
  for (const std::string& content :
       {std::string(), std::string("\1\2"), std::string("\1\2<list/>"), cutOff, damaged, Packed(""),
        Packed("no markup"), Packed("<list>"), Packed("<list><p></list></p>")}) {
    TScanRig rig;
    rig.System.Disk.AddFile(kCatalogueFile, content);
    rig.Run({Section::AdwareAndSpyware});
    EXPECT_EQ(FailureOf(rig), kUnreadable) << content.size() << " bytes";
  }
}

// Taken for empty, the trace would name the toolbar key's default value.
TEST(AdwareAndSpyware, ATraceThatIsNoUnicodeTextEndsTheScanAndReportsNothing) {
  TScanRig rig;
  rig.System.Registry.Set(Machine(kToolbar), u"", u"");
  WriteTraces(rig, "<toolbar>\xFF</toolbar>");

  rig.Run({Section::AdwareAndSpyware});

  EXPECT_EQ(FailureOf(rig), kUnreadable);
  EXPECT_TRUE(rig.Problems().empty());
}

TEST(AdwareAndSpyware, AMissingOrUnreadableCatalogueEndsTheScanWithItsName) {
  TScanRig rig;
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(FailureOf(rig), kUnreadable);

  InfectMachine(rig);
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(rig.Failure, nullptr);

  rig.System.Disk.MakeUnreadable(kCatalogueFile);
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(FailureOf(rig), kUnreadable);
}

TEST(AdwareAndSpyware, ACatalogueThatInflatesBeyondTheLimitEndsTheScan) {
  const std::string before = "<list><p><n>Bad</n></p>";
  const std::string after = "</list>";
  const std::size_t room = kLargestInflated - before.size() - after.size();
  TScanRig rig;
  // The largest one takes seconds to check; a part of it shows as well that the size alone is no fault.
  rig.WriteCatalogue(before + std::string(LargeInput(room, room / 16), ' ') + after);
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(rig.Failure, nullptr);

  rig.WriteCatalogue(before + std::string(room + 1, ' ') + after);
  rig.Run({Section::AdwareAndSpyware});
  EXPECT_EQ(FailureOf(rig), kUnreadable);
}

TEST(AdwareAndSpyware, ABrokenCatalogueKeepsEarlierSectionsAndNoHeaderOfItsOwn) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Vendor", u"Exe", u"C:\\Old\\app.exe");
  rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\Empty");

  rig.Run({Section::FilesOfCurrentUser, Section::AdwareAndSpyware, Section::ObsoleteSoftware});

  EXPECT_EQ(FailureOf(rig), kUnreadable);
  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, 1)}));
  EXPECT_EQ(rig.Problems().size(), 1u);
}

}  // namespace corvalt
