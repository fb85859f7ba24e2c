#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services\\";

Text FullPathOf(TextView service) {
  return u"HKEY_LOCAL_MACHINE" + Text(kServices) + Text(service);
}

void Register(TScanRig& rig, TextView service, TextView image) {
  rig.System.Registry.Set(FullPathOf(service), u"ImagePath", image);
}

ScanProblem Missing(TextView service, TextView image) {
  return KeyProblem(kHkeyLocalMachine, Text(kServices) + Text(service), u"ImagePath", image,
                    Says(TextId::MissingServiceFile, image));
}

void RegisterManyServices(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Windows\\system32\\here.exe");
  Register(rig, u"_gone", u"C:\\Old\\gone.exe -k");
  Register(rig, u"Here", u"C:\\Windows\\system32\\here.exe -k netsvcs");
  Register(rig, u"relative", u"system32\\drivers\\gone.sys");
  Register(rig, u"root", u"\\SystemRoot\\system32\\drivers\\gone.sys");
  Register(rig, u"native", u"\\??\\C:\\Old\\native.sys");
  rig.System.Registry.SetExpand(FullPathOf(u"expand"), u"ImagePath", u"%SystemRoot%\\system32\\gone.exe");
  rig.System.Registry.SetExpand(FullPathOf(u"expanded"), u"ImagePath", u"%SystemRoot%\\system32\\here.exe");
  rig.System.Registry.SetRaw(FullPathOf(u"binary"), {u"ImagePath", kRegBinary, {1, 2, 3}});
  rig.System.Registry.SetRaw(FullPathOf(u"list"),
                             {u"ImagePath", kRegMultiSz, StringBytes(u"C:\\Old\\a.exe")});
  rig.System.Registry.SetInteger(FullPathOf(u"without"), u"Start", 4);
  Register(rig, u"denied", u"C:\\Old\\denied.exe");
  rig.System.Registry.Deny(FullPathOf(u"denied"));
  Register(rig, u"Here\\Parameters", u"C:\\Old\\below.exe");
}

}  // namespace

TEST(WindowsServices, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RegisterManyServices(rig);

  rig.Run({Section::WindowsServices});

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"Windows Services", 17, kHkeyLocalMachine, 3)}));
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"expand", u"%SystemRoot%\\system32\\gone.exe"),
                                                  Missing(u"native", u"\\??\\C:\\Old\\native.sys"),
                                                  Missing(u"_gone", u"C:\\Old\\gone.exe -k")}));
}

TEST(WindowsServices, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  RegisterManyServices(rig);

  rig.Run({Section::WindowsServices});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"_gone", u"C:\\Old\\gone.exe -k"),
                                                  Missing(u"expand", u"%SystemRoot%\\system32\\gone.exe"),
                                                  Missing(u"native", u"\\??\\C:\\Old\\native.sys")}));
}

TEST(WindowsServices, ARelativeDriverPathIsNotJudged) {
  TScanRig rig;
  Register(rig, u"a", u"system32\\drivers\\gone.sys");
  Register(rig, u"b", u"\\SystemRoot\\system32\\drivers\\gone.sys");
  Register(rig, u"c", u"");

  rig.Run({Section::WindowsServices});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(WindowsServices, AServiceWithoutATextForItsImageIsSkippedWithoutProgress) {
  TScanRig rig;
  for (int i = 0; i < 60; ++i)
    Register(rig, NumberedName(u"s", i), u"");
  for (int i = 0; i < 3; ++i) {
    rig.System.Registry.RemoveKey(FullPathOf(NumberedName(u"s", i)));
    rig.System.Registry.AddKey(FullPathOf(NumberedName(u"s", i)));
  }

  rig.Run({Section::WindowsServices});

  // The 51st call is that of the 54th service: 100 x 54 / 3600 + 100 x 53 / 60 = 89.8.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Windows Services", {"item: SYSTEM\\CurrentControlSet\\Services\\s053", "bar: 90"}));
}

TEST(WindowsServices, TheBarLagsTheOrdinaryRatio) {
  TScanRig rig;
  for (int i = 0; i < 70; ++i)
    Register(rig, NumberedName(u"s", i), u"");

  rig.Run({Section::WindowsServices});

  // 100 x 51 / 4900 + 100 x 50 / 70 = 72.5, a little below: 72.47; the ordinary ratio would be 72.86.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Windows Services", {"item: SYSTEM\\CurrentControlSet\\Services\\s050", "bar: 72"}));
}

TEST(WindowsServices, TheLastServiceFillsTheBar) {
  TScanRig rig;
  for (int i = 0; i < 51; ++i)
    Register(rig, NumberedName(u"s", i), u"");

  rig.Run({Section::WindowsServices});

  // 100 x 51 / 2601 + 100 x 50 / 51 = 100.
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("Windows Services", {"item: SYSTEM\\CurrentControlSet\\Services\\s050", "bar: 100"}));
}

TEST(WindowsServices, ACancelledSectionRunsToItsEnd) {
  TScanRig rig;
  RegisterManyServices(rig);
  rig.Run({Section::WindowsServices});
  const std::vector<std::string> whole = AllFields(rig.Problems());
  const int reads = rig.Reads();
  ASSERT_EQ(whole.size(), 3u);

  for (int read = 1; read <= reads; ++read) {
    rig.RunAndCancel({Section::WindowsServices}, read);
    EXPECT_EQ(AllFields(rig.Problems()), whole) << "cancelled at read " << read;
    EXPECT_EQ(AllFields(rig.Headers()),
              AllFields({SectionHeader(u"Windows Services", 17, kHkeyLocalMachine, 3)}));
  }
}

TEST(WindowsServices, ACancelledSectionMovesTheDialogNoMore) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    Register(rig, NumberedName(u"s", i), u"");

  rig.RunAndCancel({Section::WindowsServices}, 1);

  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Windows Services", {}));
}

TEST(WindowsServices, NoServicesLeaveNoHeader) {
  TScanRig rig;

  rig.Run({Section::WindowsServices});

  EXPECT_TRUE(rig.Headers().empty());
}

}  // namespace corvalt
