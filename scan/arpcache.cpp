// ARP Cache: cached Add/Remove Programs entries of programs that are no longer in the uninstall list.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kCache = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache";
constexpr TextView kUninstall = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

}  // namespace

void ScanArpCache(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kCache);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(kCache) + u"\\" + names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), key);
    const TOpenKey uninstall(*registry, kUninstall);
    if (uninstall && !registry->KeyExists(names[i]))
      scan.ReportKey(kHkeyLocalMachine, key, {}, scan.Say(TextId::MissingUninstaller, names[i]));
  }
}

}  // namespace corvalt
