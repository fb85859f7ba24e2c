// Sounds and Appevents: sounds of the user's event schemes whose file is gone.

#include "scan/threadscan.h"

namespace corvalt {

void ScanSoundsAndAppevents(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyCurrentUser);
  // The bar stays at 0; only the label moves.
  scan.ScanKeyTree(*registry, kHkeyCurrentUser, 0, TPhraseMatcher({}), u"\\AppEvents\\Schemes\\Apps");
}

}  // namespace corvalt
