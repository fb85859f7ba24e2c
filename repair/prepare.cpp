#include "repair/prepare.h"

#include <exception>
#include <memory>
#include <utility>

#include "core/languagetexts.h"
#include "core/settingskeys.h"
#include "repair/backupstore.h"
#include "system/openkey.h"
#include "system/systemerror.h"

namespace corvalt {

namespace {

// The failure that the last start showed, in the cleaner's own settings.
constexpr TextView kFailureValue = u"maintenancefailure";

// Stores the reason of a failure for the next start; an empty reason means that there was none. Returns
// whether it differs from the stored one: only then the user is told, so that what fails in the same way at
// each start is shown once.
bool RememberFailure(TSystem& system, const Text& reason) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*store, kCleanerSettingsKey, !reason.empty());
  if (!key)
    return true;
  const bool isNew = store->ReadString(kFailureValue) != reason;
  if (isNew && reason.empty())
    store->DeleteValue(kFailureValue);
  else if (isNew)
    store->WriteString(kFailureValue, reason);
  return isNew;
}

}  // namespace

TPrepare::TPrepare(TPrepareContext context) : TWorkerThread(context.UiThread), m_context(std::move(context)) {
  Start();
}

void TPrepare::Execute() {
  SetOnTerminate(m_context.OnFinished);
  try {
    MaintainBackups(m_context.System, m_context.Vars, [this] { return Terminated(); });
    RememberFailure(m_context.System, {});
  } catch (...) {
    const Text reason = DescribeException(std::current_exception(), m_context.System.Locale);
    if (RememberFailure(m_context.System, reason))
      throw TProgramException(PlainLanguageText(m_context.Vars.Texts, TextId::MaintenanceFailed, reason));
  }
}

void MaintainBackups(TSystem& system, const TGlobalVars& vars, const std::function<bool()>& stop) {
  BackupStore store(system, vars, stop);
  std::exception_ptr failure;
  try {
    try {
      store.MigrateLegacyBackups();
    } catch (const TBackupWorkStopped&) {
      throw;
    } catch (...) {
      // The other backups are tidied up also where the old ones can't be taken over.
      failure = std::current_exception();
    }
    store.RemoveLeftFiles();
    store.PruneBackups(stop);
  } catch (const TBackupWorkStopped&) {
    return;
  }
  if (failure)
    std::rethrow_exception(failure);
}

}  // namespace corvalt
