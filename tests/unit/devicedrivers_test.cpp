#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

// Tells the scan to terminate when the section's bar moves for the first time.
class TCancellingDialog : public TRecordingDialog {
 public:
  void SetSectionPosition(std::int32_t position) override {
    TRecordingDialog::SetSectionPosition(position);
    Scan->Terminate();
  }

  TScan* Scan = nullptr;
};

}  // namespace

TEST(DeviceDrivers, TheSectionNeverAddsANode) {
  TScanRig rig;

  rig.Run({Section::DeviceDrivers});

  EXPECT_TRUE(rig.Headers().empty());
  EXPECT_EQ(rig.Reads(), 0);
  EXPECT_EQ(rig.Failure, nullptr);
}

TEST(DeviceDrivers, TheBarMovesThroughAHundredAndOneStepsWithoutALabel) {
  TScanRig rig;

  rig.Run({Section::DeviceDrivers});

  // The 51st and the 101st of the 101 calls.
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Device Drivers", {"item: ", "bar: 51", "item: ", "bar: 101"}));
}

TEST(DeviceDrivers, TheSectionSleepsAMillisecondAStep) {
  TScanRig rig;

  rig.Run({Section::DeviceDrivers});

  EXPECT_EQ(rig.System.Clock.Slept, std::chrono::milliseconds(101));
}

TEST(DeviceDrivers, ACancelledSectionRunsToItsEndAndMovesTheDialogNoMore) {
  TScanRig rig;
  TCancellingDialog dialog;
  rig.Sections.CheckOnly({Section::DeviceDrivers, 17});
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\gone", u"ImagePath",
                          u"C:\\Old\\gone.exe");
  bool finished = false;
  const auto onFinished = [&finished](TWorkerThread&) { finished = true; };
  TSystem system = rig.System.Bundle();
  const TScanContext context = {.System = system,
                                .Vars = rig.Vars,
                                .Reg = rig.Reg,
                                .Sections = rig.Sections,
                                .Results = rig.Results,
                                .UiThread = rig.UiThread,
                                .OnFinished = onFinished};
  dialog.Scan = &TWorkerThread::Launch<TScan>(context, dialog);
  rig.UiThread.RunUntil([&finished] { return finished; });

  std::vector<std::string> expected = SectionStart("Device Drivers", 50);
  expected.insert(expected.end(), {"item: ", "bar: 51"});
  EXPECT_EQ(dialog.Updates, expected);
  EXPECT_EQ(rig.System.Clock.Slept, std::chrono::milliseconds(101));
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(DeviceDrivers, ItsStepsCountForTheSectionsThatFollow) {
  TScanRig rig;
  for (int i = 0; i < 49; ++i) {
    rig.System.Registry.Set(
        u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\" + NumberedName(u"s", i), u"ImagePath",
        u"");
  }
  rig.System.Registry.Set(u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\VxD", u"Value", u"");

  rig.Run({Section::DeviceDrivers, 17, 18});

  // The services make calls 102 to 150, VxD, which names no image, none of them; the virtual devices' first
  // value is call 151.
  std::vector<std::string> expected = SectionStart("Device Drivers", 33);
  expected.insert(expected.end(), {"item: ", "bar: 51", "item: ", "bar: 101"});
  const std::vector<std::string> services = SectionStart("Windows Services", 67);
  expected.insert(expected.end(), services.begin(), services.end());
  const std::vector<std::string> devices = SectionStart("Virtual Devices", 100);
  expected.insert(expected.end(), devices.begin(), devices.end());
  expected.insert(expected.end(), {"item: SYSTEM\\CurrentControlSet\\Services\\VxD\\Value", "bar: 0"});
  EXPECT_EQ(rig.Dialog.Updates, expected);
}

}  // namespace corvalt
