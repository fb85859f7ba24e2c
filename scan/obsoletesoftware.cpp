// Obsolete Software: vendor keys that hold no value anywhere below them.

#include "base/lettercase.h"
#include "scan/threadscan.h"

namespace corvalt {

namespace {

void CheckVendorKeys(TScan& scan, TRootKey root, double start) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(root);
  const std::vector<Text> names = SubKeyNames(*registry, u"\\SOFTWARE");
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    if (EqualIgnoringCase(names[i], u"POLICIES"))
      continue;
    scan.ReportProgress(ShareOfBar(i, names.size(), 50, start), u"Software\\" + names[i]);
    const Text key = u"\\software\\" + names[i];
    if (scan.IsKeyEmpty(root, key, true))
      scan.ReportKey(root, key, {}, scan.Say(TextId::EmptyKey));
  }
}

}  // namespace

void ScanObsoleteSoftware(TScan& scan) {
  CheckVendorKeys(scan, kHkeyCurrentUser, 0);
  if (!scan.Terminated())
    CheckVendorKeys(scan, kHkeyLocalMachine, 50);
}

}  // namespace corvalt
