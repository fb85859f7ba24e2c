// Startup Programs: programs started at logon that are gone.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kRun = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";

void CheckRunKey(TScan& scan, TRootKey root, double start) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(root);
  const TOpenKey key(*registry, kRun);
  if (!key)
    return;
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    Text command = registry->ReadString(names[i]);
    scan.ReportProgress(ShareOfBar(i, names.size(), 50, start), LabelOf(kRun, names[i]));
    if (Contains(command, u"%"))
      command = scan.Paths().ExpandPathVariables(command);
    if (scan.Paths().CommandLineFileExists(command, true))
      continue;
    scan.ReportValue(root, kRun, names[i], command,
                     scan.Say(TextId::MissingStartupProgram, names[i], command));
  }
}

}  // namespace

void ScanStartupPrograms(TScan& scan) {
  CheckRunKey(scan, kHkeyCurrentUser, 0);
  if (!scan.Terminated())
    CheckRunKey(scan, kHkeyLocalMachine, 50);
}

}  // namespace corvalt
