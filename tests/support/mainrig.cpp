#include "tests/support/mainrig.h"

#include <stdexcept>

#include "core/settingskeys.h"

namespace corvalt {

namespace {

Text NumberedKey(int number) {
  return u"HKEY_CURRENT_USER\\Software\\App\\" + DecimalText(number);
}

}  // namespace

// What it is told goes to its record. A call after its end is a use after free, which the sanitizers find.
class TMainRig::TDialog : public TProgressView {
 public:
  TDialog(TMainRig& rig, TDialogRecord& record) : m_rig(rig), m_record(&record) {
  }
  ~TDialog() override {
    m_record->IsThere = false;
  }

  TProgressEnd ShowModal() override {
    if (m_rig.Users.empty()) {
      m_rig.WaitForTheEnd();
    } else {
      const TUser user = m_rig.Users.front();
      m_rig.Users.pop_front();
      user(*m_record);
    }
    if (m_rig.DialogThrows)
      throw std::runtime_error("the dialog is gone");
    return m_record->End;
  }
  void ShowResult(TRunEnd end, TextView message, std::size_t problemCount) override {
    m_record->Results.push_back((end == TRunEnd::Failed ? "failed: " : "") + EncodeUtf8(message) + "|" +
                                std::to_string(problemCount));
  }
  void RunEnded(TRunEnd end) override {
    m_record->Ends.push_back(end);
  }
  void EnableRepair(bool enabled) override {
    m_record->MayRepair = enabled;
  }
  void SetSectionLabel(TextView text) override {
    m_recorder.SetSectionLabel(text);
    Keep();
  }
  void SetItemLabel(TextView text) override {
    m_recorder.SetItemLabel(text);
    Keep();
  }
  void SetOverallPosition(std::int32_t position) override {
    m_recorder.SetOverallPosition(position);
    Keep();
  }
  void SetSectionPosition(std::int32_t position) override {
    m_recorder.SetSectionPosition(position);
    Keep();
  }

 private:
  void Keep() {
    m_record->Updates.push_back(m_recorder.Updates.back());
  }

  TMainRig& m_rig;
  TDialogRecord* m_record;
  TRecordingDialog m_recorder;
};

TMainRig::TMainRig() : m_system(m_machine.System.Bundle()), Main(m_system, Vars, Reg, UiThread, *this) {
  Main.Sections().CheckOnly({kSection});
}

void TMainRig::Break(int number) {
  System.Registry.Set(NumberedKey(number), u"File", u"C:\\gone.exe");
}

void TMainRig::BreakMany(int count) {
  for (int number = 0; number < count; ++number)
    Break(number);
}

bool TMainRig::IsBroken(int number) const {
  return System.Registry.HasValue(NumberedKey(number), u"File");
}

void TMainRig::WaitForTheEnd() {
  PumpUntil([this] { return !Main.WorkerRuns(); });
}

void TMainRig::PumpUntil(const std::function<bool()>& done) {
  UiThread.RunUntil(done);
}

std::string TMainRig::Enabled() const {
  std::string enabled;
  const auto add = [&enabled](bool can, const char* name) {
    if (can)
      enabled += (enabled.empty() ? "" : " ") + std::string(name);
  };
  add(Main.CanScan(), "scan");
  add(Main.CanRepair(), "repair");
  add(Main.CanRestore(), "restore");
  add(Main.CanExport(), "export");
  return enabled;
}

TResultsNode* TMainRig::Header(std::size_t index) {
  return static_cast<TResultsNode*>(Main.Results().Model().Roots().at(index).get());
}

TResultsNode* TMainRig::Row(std::size_t header, std::size_t index) {
  return static_cast<TResultsNode*>(Header(header)->Children.at(index).get());
}

std::size_t TMainRig::RowCount() {
  return Main.Results().Model().TotalCount() - Main.Results().Model().Roots().size();
}

std::vector<Text> TMainRig::StoredSections() {
  const std::unique_ptr<RegistryStore> store = System.Registry.CreateStore(TRegistryAccess::Read);
  return store->OpenKey(kSectionsKey, false) ? store->GetValueNames() : std::vector<Text>();
}

std::string TMainRig::StoredSection(TextView name) {
  const std::unique_ptr<RegistryStore> store = System.Registry.CreateStore(TRegistryAccess::Read);
  if (!store->OpenKey(kSectionsKey, false) || !store->ValueExists(name))
    return "(none)";
  return store->ReadBool(name) ? "true" : "false";
}

std::unique_ptr<TProgressView> TMainRig::CreateProgress(TProgressMode mode) {
  if (NoDialog)
    throw std::runtime_error("no dialog");
  TDialogRecord& record = Dialogs.emplace_back();
  record.Mode = mode;
  return std::make_unique<TDialog>(*this, record);
}

void TMainRig::ShowSummary(const TSummary& summary) {
  Summaries.push_back(summary);
}

void TMainRig::ResultsChanged() {
  ++ResultsChanges;
}

void TMainRig::ActionsChanged() {
  ++ActionsChanges;
}

}  // namespace corvalt
