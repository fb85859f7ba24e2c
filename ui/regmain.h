// The main window's work without the window: its trees, what may be done when, the flows of scan and repair,
// and what happens when a worker thread ends.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "core/workerthread.h"
#include "repair/prepare.h"
#include "repair/threadclean.h"
#include "scan/scantrees.h"
#include "scan/threadscan.h"
#include "system/system.h"
#include "system/uithread.h"
#include "ui/progresstexts.h"
#include "ui/resultsrows.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"
#include "ui/summary.h"

namespace corvalt {

// How the user left the progress dialog.
enum class TProgressEnd { Closed, RepairWanted };

// The modal progress dialog as the main window's work sees it.
class TProgressView : public TProgressDialog {
 public:
  // Shows the dialog; returns when it has been left, whether its thread has ended or not.
  virtual TProgressEnd ShowModal() = 0;

  // The run has ended in this way, with this message and this many problems left to repair.
  virtual void ShowResult(TRunEnd end, TextView message, std::size_t problemCount) = 0;

  // The run has ended and its result is shown: draws the attention of a user who does not look at the dialog.
  virtual void RunEnded(TRunEnd end) = 0;

  // Whether the Repair button may be pressed now. Called whenever it changes, also while the button is not
  // shown yet.
  virtual void EnableRepair(bool enabled) = 0;
};

// What the window does for its work, on the user-interface thread.
class TRegMainView {
 public:
  virtual ~TRegMainView() = default;

  virtual std::unique_ptr<TProgressView> CreateProgress(TProgressMode mode) = 0;
  virtual void ShowSummary(const TSummary& summary) = 0;

  // Rows came, went or changed: scroll bars, row controls and pictures are out of date.
  virtual void ResultsChanged() = 0;

  // What may be done has changed.
  virtual void ActionsChanged() = 0;
};

class TRegMain {
 public:
  // Everything must outlive this object, and this object the threads: see WorkerRuns.
  TRegMain(TSystem& system, const TGlobalVars& vars, TGlobalReg& reg, TUiThread& uiThread,
           TRegMainView& view);

  TSectionsTreeModel& Sections() {
    return m_sections;
  }
  TResultsTreeModel& Results() {
    return m_results;
  }
  TResultsRows& Rows() {
    return m_rows;
  }
  const TResultsRows& Rows() const {
    return m_rows;
  }

  // How the window measures a text in the results tree's font, in pixels.
  void SetMeasure(std::function<int(TextView)> measure) {
    m_measure = std::move(measure);
  }

  // The window's creation, showing and end.
  void StartMaintenance();
  void LoadSections();
  void SaveSettings();

  // Whether a scan or repair thread runs, or its end handler has still to run. Until then the trees belong to
  // it.
  bool WorkerRuns() const {
    return m_scan != nullptr || m_cleaning != nullptr;
  }
  // Whether any thread of this object runs; the window must not be destroyed meanwhile.
  bool AnyThreadRuns() const {
    return WorkerRuns() || m_prepare != nullptr;
  }
  void TerminateThreads();

  bool CanScan() const {
    return !WorkerRuns();
  }
  bool CanRepair() const;
  bool CanRestore() const {
    return !WorkerRuns();
  }
  bool CanExport() const;

  // A scan without a ticked section is not begun, and a message box tells the user why. A scan clears the
  // results of the one before.
  void Scan();
  void Repair();

  void UpdateSummary();

  // What stands in the results tree while it has no rows.
  Text EmptyHint() const;

  // Writes the report, and shows a message that it is saved, or the system's reason why it is not.
  void SaveReport(TextView fileName);

  // Shows what failed in a message box.
  void ShowFailure(const std::exception_ptr& failure);

  // The selected problem in the registry editor, or its file's properties.
  void OpenSelected();

 private:
  class TOpenDialog;

  TProgressEnd RunWithProgress(TProgressMode mode);
  // Tells the thread that the progress dialog shows to stop, if it still runs.
  void StopRun();
  void ScanFinished(TWorkerThread& thread);
  void CleaningFinished(TWorkerThread& thread);
  void MaintenanceFinished(TWorkerThread& thread);
  void ActionsChanged();
  void RunEnded();
  void ShowLeftovers(const std::vector<Text>& lines);
  void ShowFailure(TextView message);
  bool ConfirmIgnore();
  // The text as a message box shows it, each "&" once.
  Text Plain(TextId id, TextView argument = {}) const;

  TSystem& m_system;
  const TGlobalVars& m_vars;
  TGlobalReg& m_reg;
  TUiThread& m_uiThread;
  TRegMainView& m_view;
  std::function<int(TextView)> m_measure;
  TSectionsTreeModel m_sections;
  TResultsTreeModel m_results;
  TResultsRows m_rows;

  // Null while there is none.
  TScan* m_scan = nullptr;
  TCleaning* m_cleaning = nullptr;
  TPrepare* m_prepare = nullptr;
  TProgressView* m_progress = nullptr;

  // Of the run that the progress dialog shows.
  TRunEnd m_runEnd = TRunEnd::Complete;

  // The last run was a scan that came to its end.
  bool m_scanned = false;
};

}  // namespace corvalt
