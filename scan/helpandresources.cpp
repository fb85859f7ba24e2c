// Help and Resources: registered help files that are not in their folder.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

// A value's name is the file, its data the folder.
void CheckHelpKey(TScan& scan, RegistryStore& registry, TextView keyPath, double start) {
  const TOpenKey key(registry, keyPath);
  if (!key)
    return;
  const std::vector<Text> names = registry.GetValueNames();
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text folder = registry.ReadString(names[i]);
    scan.ReportProgress(ShareOfBar(i, names.size(), 50, start), LabelOf(keyPath, names[i]));
    const Text path = WithTrailingBackslash(folder) + names[i];
    if (scan.Paths().CommandLineFileExists(path, true))
      continue;
    scan.ReportValue(kHkeyLocalMachine, keyPath, names[i], folder,
                     scan.Say(TextId::MissingHelpFile, names[i], path));
  }
}

}  // namespace

void ScanHelpAndResources(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  CheckHelpKey(scan, *registry, u"\\SOFTWARE\\Microsoft\\Windows\\Help", 0);
  CheckHelpKey(scan, *registry, u"\\SOFTWARE\\Microsoft\\Windows\\Html Help", 50);
}

}  // namespace corvalt
