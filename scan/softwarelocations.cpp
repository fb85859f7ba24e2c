// Software Locations: registered application paths whose program is gone.

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kAppPaths = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths";

}  // namespace

void ScanSoftwareLocations(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kAppPaths);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(kAppPaths) + u"\\" + names[i];
    const TOpenKey opened(*registry, key);
    if (!opened)
      continue;
    Text target = registry->ReadString({});
    const Text folder = registry->ReadString(u"Path");
    if (EqualIgnoringCase(target, names[i]) && !folder.empty())
      target = WithTrailingBackslash(folder) + target;
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    // A target without a drive can't be judged.
    const bool isMissing = Contains(target, u":") && !scan.Paths().CommandLineFileExists(target, true);
    if (isMissing)
      scan.ReportKey(kHkeyLocalMachine, key, target, scan.Say(TextId::MissingApplicationFile, target));
  }
}

}  // namespace corvalt
