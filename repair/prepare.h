// TPrepare: the worker thread that tidies up the backups once, when the program starts.
#pragma once

#include "core/globals.h"
#include "core/workerthread.h"
#include "system/system.h"

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
  // Starts at once. When it ends early its exception says why in the user's words.
  explicit TPrepare(TPrepareContext context);

 protected:
  void Execute() override;

 private:
  TPrepareContext m_context;
};

// What the thread does, for programs that have nothing to do meanwhile. Failures throw as the store says.
void MaintainBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop);

}  // namespace corvalt
