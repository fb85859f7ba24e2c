// Obsolete Software: vendor keys that hold no value anywhere below them.

#include "base/lettercase.h"
#include "scan/threadscan.h"

namespace corvalt {

void TScan::ScanObsoleteSoftware(const TSection& section) {
  AddHeader(section);
  CheckVendorKeys(kHkeyCurrentUser, 0);
  if (!Terminated())
    CheckVendorKeys(kHkeyLocalMachine, 50);
  FinishSection();
}

void TScan::CheckVendorKeys(TRootKey root, double start) {
  const std::unique_ptr<RegistryStore> registry = OpenRoot(root);
  const std::vector<Text> names = SubKeyNames(*registry, u"\\SOFTWARE");
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    if (EqualIgnoringCase(names[i], u"POLICIES"))
      continue;
    ReportProgress(ShareOfBar(i, names.size(), 50, start), u"Software\\" + names[i]);
    const Text key = u"\\software\\" + names[i];
    if (IsKeyEmpty(root, key, true))
      ReportKey(root, key, {}, Say(TextId::EmptyKey));
  }
}

}  // namespace corvalt
