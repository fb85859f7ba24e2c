// A whole scan as its user sees it: what stands in the results tree when the dialog changes, when the scan is
// cancelled, while it is busy and when it fails.

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

using TStrings = std::vector<std::string>;

constexpr TextView kSharedDlls =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
constexpr TextView kUserShellFolders =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

// Each is a problem, but for those that the ignore list knows.
void AddMissingSharedFiles(TScanRig& rig, int count) {
  for (int i = 0; i < count; ++i)
    rig.System.Registry.SetInteger(kSharedDlls, NumberedName(u"C:\\f", i), 1);
}

// A dialog that adds the number of rows that the tree has at each update.
class TRowCountingDialog : public TRecordingDialog {
 public:
  explicit TRowCountingDialog(TResultsTreeModel& results) : m_results(results) {
  }
  void SetSectionLabel(TextView text) override {
    TRecordingDialog::SetSectionLabel(text);
    AddRows();
  }
  void SetItemLabel(TextView text) override {
    TRecordingDialog::SetItemLabel(text);
    AddRows();
  }
  void SetOverallPosition(std::int32_t position) override {
    TRecordingDialog::SetOverallPosition(position);
    AddRows();
  }
  void SetSectionPosition(std::int32_t position) override {
    TRecordingDialog::SetSectionPosition(position);
    AddRows();
  }

 private:
  void AddRows() {
    Updates.back() += ", rows: " + std::to_string(m_results.Model().TotalCount());
  }

  TResultsTreeModel& m_results;
};

}  // namespace

// These are the updates, and the rows beside them, of a scan that hands over each problem by itself.
// Ten of the shared files are ignored, and four reports of progress come from Obsolete Software.
TEST(HandOver, TheDialogShowsTheSameUpdatesAtTheSameRowsAsProblemsHandedOverOneByOne) {
  TScanRig rig;
  for (int i = 0; i < 30; ++i)
    rig.System.Registry.Set(kUserShellFolders, NumberedName(u"s", i), u"C:\\Gone");
  AddMissingSharedFiles(rig, 120);
  rig.Reg.IgnoreList = {u"c:\\f01"};
  TRowCountingDialog dialog(rig.Results);
  rig.RunWith(dialog, {Section::RegistryIntegrity, Section::ObsoleteSoftware, Section::SharedPrograms});
  const std::string scanning = "section: " + EncodeUtf8(Says(TextId::ScanningSection)) + " ";
  const std::string item = "item: SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\C:\\f";
  EXPECT_EQ(
      dialog.Updates,
      (TStrings{"item: , rows: 0", scanning + "Registry Integrity..., rows: 0", "overall: 33, rows: 0",
                "item: , rows: 31", scanning + "Obsolete Software..., rows: 31", "overall: 67, rows: 31",
                "item: , rows: 31", scanning + "Shared Programs..., rows: 31", "overall: 100, rows: 31",
                item + "016, rows: 42", "bar: 14, rows: 42", item + "066, rows: 88", "bar: 56, rows: 88",
                item + "116, rows: 138", "bar: 98, rows: 138"}));
}

TEST(HandOver, CancelIsFollowedByTheRowsThatWereFoundUntilThen) {
  TScanRig rig;
  // The services run to their end whatever the thread is told.
  for (int i = 0; i < 40; ++i) {
    rig.System.Registry.Set(
        u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\" + NumberedName(u"s", i), u"ImagePath",
        u"C:\\gone.sys");
  }
  constexpr int kCancelledAt = 30;
  rig.OnRead = [&rig](TScan& scan, int reads) {
    if (reads == kCancelledAt)
      scan.Terminate();
    // One read lists the services, and two are made for each.
    const int examined = (reads - 2) / 2;
    if (reads > kCancelledAt + 1) {
      EXPECT_EQ(rig.Results.Model().TotalCount(), 1u + static_cast<std::size_t>(examined));
    }
  };
  rig.Run({Section::WindowsServices});
  EXPECT_EQ(rig.Problems().size(), 40u);
}

// The walk meets no value with text, so that only the keys themselves can hand the rows over.
TEST(HandOver, AWalkOfKeysWithoutTextsHandsOverWhatHasWaitedForLong) {
  TScanRig rig;
  rig.System.Registry.Set(u"HKEY_CURRENT_USER\\Software\\A", u"Exe", u"C:\\gone");
  for (int i = 0; i < 20; ++i)
    rig.System.Registry.AddKey(u"HKEY_CURRENT_USER\\Software\\B\\" + NumberedName(u"k", i));
  std::size_t rowsAtTheEnd = 0;
  rig.OnRead = [&](TScan&, int reads) {
    if (reads == 20)
      std::this_thread::sleep_for(TProblemBatch::kLongestWait);
    rowsAtTheEnd = rig.Results.Model().TotalCount();
  };
  rig.Run({Section::FilesOfCurrentUser});
  EXPECT_EQ(rowsAtTheEnd, 2u);
}

// No value of this section is a problem but the first, so that only the progress can hand it over.
TEST(HandOver, AnItemWithoutAProblemHandsOverWhatHasWaitedForLong) {
  TScanRig rig;
  rig.System.Registry.SetInteger(kSharedDlls, u"C:\\gone", 1);
  for (int i = 0; i < 20; ++i)
    rig.System.Registry.SetInteger(kSharedDlls, NumberedName(u"f", i), 1);
  std::size_t rowsAtTheEnd = 0;
  rig.OnRead = [&](TScan&, int reads) {
    if (reads == 10)
      std::this_thread::sleep_for(TProblemBatch::kLongestWait);
    rowsAtTheEnd = rig.Results.Model().TotalCount();
  };
  rig.Run({Section::SharedPrograms});
  EXPECT_EQ(rowsAtTheEnd, 2u);
}

TEST(HandOver, AnErrorLeavesWhatWasFoundBeforeIt) {
  TScanRig rig;
  AddMissingSharedFiles(rig, 20);
  rig.OnRead = [](TScan&, int reads) {
    if (reads == 10)
      throw std::runtime_error("the registry is gone");
  };
  rig.Run({Section::SharedPrograms});
  EXPECT_NE(rig.Failure, nullptr);
  // One read lists the names, and two are made for each value.
  EXPECT_EQ(rig.Problems().size(), 4u);
}

}  // namespace corvalt
