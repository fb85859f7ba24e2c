// TPrepare: the worker thread that tidies up the backups once, when the program starts.
#pragma once

#include <functional>

#include "core/globals.h"
#include "core/workerthread.h"
#include "system/system.h"
#include "system/uithread.h"

namespace corvalt {

// Everything must outlive the thread.
struct TPrepareContext {
  TSystem& System;
  const TGlobalVars& Vars;
  TUiThread& UiThread;
  TWorkerThread::TEndHandler OnFinished;  // runs on the user-interface thread when the maintenance has ended
};

class TPrepare final : public TWorkerThread {
 public:
  // Starts at once. When it ends early its exception gives the reason in the user's words, unless the start
  // before failed for the same reason.
  explicit TPrepare(TPrepareContext context);

 protected:
  void Execute() override;

 private:
  TPrepareContext m_context;
};

// What the thread does, for programs that wait for it: takes over old backups, deletes what
// interrupted programs left, removes outdated backups. Asks stop between two backups, and while it waits for
// another copy of the program. Throws as BackupStore does, the first failure when all is done that can be.
void MaintainBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop);

}  // namespace corvalt
