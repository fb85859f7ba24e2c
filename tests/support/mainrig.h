// The main window's work over a system in memory, with a window and progress dialogs that remember what they
// were told, and a user who does what a test prescribes.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/names.h"
#include "tests/support/scanrig.h"
#include "ui/regmain.h"

namespace corvalt {

// One progress dialog, also after it has gone.
struct TDialogRecord {
  TProgressMode Mode = TProgressMode::Scan;
  bool IsThere = true;
  std::vector<std::string> Updates;  // labels and bars, as TRecordingDialog words them
  std::vector<std::string> Results;  // "message|count", with "failed: " before it
  std::vector<TRunEnd> Ends;
  bool MayRepair = false;
  TProgressEnd End = TProgressEnd::Closed;
};

class TMainRig : private TRegMainView {
 private:
  TScanRig m_machine;
  TSystem m_system;

 public:
  TMainRig();

  // A value that names a missing file: a problem that only this section reports. The number tells them
  // apart.
  static constexpr std::int32_t kSection = Section::FilesOfCurrentUser;
  void Break(int number);
  void BreakMany(int count);
  bool IsBroken(int number) const;

  // What the user does with the next dialogs, each while it is open; it closes when the routine ends, as its
  // record shows then. Without a routine the user waits for the thread's end.
  using TUser = std::function<void(TDialogRecord&)>;
  std::deque<TUser> Users;

  // Pieces of what the user does.
  void WaitForTheEnd();
  void PumpUntil(const std::function<bool()>& done);

  // What may be done now: "scan repair restore export", or some of it.
  std::string Enabled() const;

  // The rows of the results tree.
  TResultsNode* Header(std::size_t index);
  TResultsNode* Row(std::size_t header, std::size_t index);
  std::size_t RowCount();

  // The check marks in the user's settings: the names of all, and one of them ("true", "false", "(none)").
  std::vector<Text> StoredSections();
  std::string StoredSection(TextView name);

  TMemorySystem& System = m_machine.System;
  TGlobalVars& Vars = m_machine.Vars;
  TGlobalReg& Reg = m_machine.Reg;
  TQueueUiThread& UiThread = m_machine.UiThread;
  TRegMain Main;

  std::deque<TDialogRecord> Dialogs;
  std::vector<TSummary> Summaries;
  int ResultsChanges = 0;
  int ActionsChanges = 0;
  // The dialog can't be made, or throws while it is shown.
  bool NoDialog = false;
  bool DialogThrows = false;

 private:
  class TDialog;

  std::unique_ptr<TProgressView> CreateProgress(TProgressMode mode) override;
  void ShowSummary(const TSummary& summary) override;
  void ResultsChanged() override;
  void ActionsChanged() override;
};

}  // namespace corvalt
