#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

constexpr TextView kRun = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr TextView kUserRun = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr TextView kMachineRun = u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";

ScanProblem Missing(TRootKey root, TextView name, TextView command) {
  return ValueProblem(root, kRun, name, command, Says(TextId::MissingStartupProgram, name, command));
}

void RegisterManyPrograms(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Tools\\here.exe");
  LoadRegText(rig.System.Registry, R"(
[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Run]
"Machine"="\"C:\\Old\\machine.exe\" -q"
"Here"="here"
[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run]
"Updater"="C:\\Old\\updater.exe /start"
"Bare"="gone.exe"
"Here"="C:\\Tools\\here.exe -x"
"Empty"=""
"Removable"="E:\\gone.exe"
)");
  rig.System.Registry.SetExpand(kUserRun, u"Expanded", u"%windir%\\gone.exe");
}

}  // namespace

TEST(StartupPrograms, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyPrograms(rig);

  rig.Run({Section::StartupPrograms});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Startup programs", 10, kNoRootKey, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(kHkeyCurrentUser, u"Updater", u"C:\\Old\\updater.exe /start"),
                       Missing(kHkeyCurrentUser, u"Bare", u"gone.exe"),
                       Missing(kHkeyCurrentUser, u"Expanded", u"C:\\WINDOWS\\GONE.EXE"),
                       Missing(kHkeyLocalMachine, u"Machine", u"\"C:\\Old\\machine.exe\" -q")}));
}

TEST(StartupPrograms, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyPrograms(rig);

  rig.Run({Section::StartupPrograms});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(kHkeyCurrentUser, u"Bare", u"gone.exe"),
                       Missing(kHkeyCurrentUser, u"Expanded", u"C:\\WINDOWS\\GONE.EXE"),
                       Missing(kHkeyCurrentUser, u"Updater", u"C:\\Old\\updater.exe /start"),
                       Missing(kHkeyLocalMachine, u"Machine", u"\"C:\\Old\\machine.exe\" -q")}));
}

TEST(StartupPrograms, AnEmptyCommandAndOneThatIsNoTextAreNotReported) {
  TScanRig rig;
  rig.System.Registry.Set(kUserRun, u"Empty", u"");
  rig.System.Registry.SetInteger(kUserRun, u"Number", 1);
  rig.System.Registry.SetRaw(kUserRun, {u"Binary", kRegBinary, {1, 2}});

  rig.Run({Section::StartupPrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartupPrograms, APercentSignAnywhereUpperCasesTheReportedCommand) {
  TScanRig rig;
  rig.System.Registry.Set(kUserRun, u"Percent", u"C:\\Old\\50%.exe");

  rig.Run({Section::StartupPrograms});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(kHkeyCurrentUser, u"Percent", u"C:\\OLD\\50%.EXE")}));
}

TEST(StartupPrograms, AReferenceIsExpandedWhateverTheTypeOfTheValue) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Program Files\\App\\app.exe");
  rig.System.Registry.Set(kUserRun, u"Text", u"\"%ProgramFiles%\\App\\app.exe\" -tray");
  rig.System.Registry.SetExpand(kUserRun, u"Expandable", u"%ProgramFiles%\\App\\app.exe -tray");

  rig.Run({Section::StartupPrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartupPrograms, TheDefaultValueIsAnEntryLikeTheOthers) {
  TScanRig rig;
  rig.System.Registry.Set(kUserRun, u"", u"C:\\Old\\gone.exe");

  rig.Run({Section::StartupPrograms});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHkeyCurrentUser, u"", u"C:\\Old\\gone.exe")}));
}

TEST(StartupPrograms, ACommandIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\host.exe");
  rig.System.Registry.Set(kUserRun, u"Host", u"C:\\Tools\\host.exe,Start");

  rig.Run({Section::StartupPrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartupPrograms, NoOtherStartUpPlaceIsVisited) {
  TScanRig rig;
  for (const TextView key : {u"RunOnce", u"RunServices", u"RunOnceEx", u"Run\\Below"}) {
    rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\" + Text(key),
                            u"Gone", u"C:\\Old\\gone.exe");
  }

  rig.Run({Section::StartupPrograms});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(StartupPrograms, EachKeyFillsOneHalfOfTheBar) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i) {
    rig.System.Registry.Set(kUserRun, NumberedName(u"p", i), u"");
    rig.System.Registry.Set(kMachineRun, NumberedName(u"p", i), u"");
  }

  rig.Run({Section::StartupPrograms});

  // The user's 51st, 51 x 50 / 60 = 42.5, and the machine's 41st, 50 + 41 x 50 / 60 = 84.2.
  const std::string key = "item: Software\\Microsoft\\Windows\\CurrentVersion\\Run\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Startup Programs", {key + "p050", "bar: 42", key + "p040", "bar: 84"}));
}

TEST(StartupPrograms, ACancelledScanLooksAtNoOtherItemAndNotAtTheMachine) {
  TScanRig rig;
  rig.System.Registry.Set(kUserRun, u"One", u"C:\\Old\\one.exe");
  rig.System.Registry.Set(kUserRun, u"Two", u"C:\\Old\\two.exe");
  rig.System.Registry.Set(kMachineRun, u"Three", u"C:\\Old\\three.exe");

  rig.RunAndCancel({Section::StartupPrograms}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::StartupPrograms}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(kHkeyCurrentUser, u"One", u"C:\\Old\\one.exe")}));
}

TEST(StartupPrograms, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RegisterManyPrograms(rig);
  ExpectConsistentWhereverCancelled(rig, Section::StartupPrograms);
}

}  // namespace corvalt
