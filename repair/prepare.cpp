#include "repair/prepare.h"

#include <utility>

#include "core/languagetexts.h"
#include "repair/backupstore.h"
#include "system/systemerror.h"

namespace corvalt {

TPrepare::TPrepare(TPrepareContext context) : TWorkerThread(context.UiThread), m_context(std::move(context)) {
  Start();
}

void TPrepare::Execute() {
  SetOnTerminate(m_context.OnFinished);
  try {
    MaintainBackups(m_context.System, m_context.Vars, [this] { return Terminated(); });
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_context.System.Locale);
    throw TProgramException(PlainText(LanguageText(m_context.Vars.Texts, TextId::MaintenanceFailed, reason)));
  }
}

void MaintainBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop) {
  BackupStore store(system, vars);
  store.MigrateLegacyBackups();
  store.PruneBackups(stop);
}

}  // namespace corvalt
