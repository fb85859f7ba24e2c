// Sounds and Appevents: sounds of the user's event schemes whose file is gone.

#include "scan/threadscan.h"

namespace corvalt {

void TScan::ScanSoundsAndAppevents(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyCurrentUser);
  // The bar stays at 0; only the label moves.
  ScanKeyTree(*registry, kHkeyCurrentUser, 0, TPhraseMatcher({}), u"\\AppEvents\\Schemes\\Apps");
  FinishSection();
}

}  // namespace corvalt
