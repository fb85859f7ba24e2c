// Start Menu: the stored sort order of menu folders that are gone.

#include "scan/threadscan.h"
#include "scan/walkedplaces.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kProgramsOrder =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start Menu2\\Programs";
constexpr TextView kProgramsMenu = u"\\Start Menu\\Programs\\";

// Only keys without subkeys are judged. Each level of the walk begins the bar anew.
void CheckMenuFolders(TScan& scan, RegistryStore& registry, TextView keyPath, TWalkedPlaces& places) {
  const Text folderPart = Text(kProgramsMenu) + Text(keyPath.substr(kProgramsOrder.size())) + u"\\";
  const std::vector<Text> names = SubKeyNames(registry, keyPath);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(keyPath) + u"\\" + names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    const TOpenKey opened(registry, key);
    if (!opened)
      continue;
    const bool hasSubKeys = registry.HasSubKeys();
    const bool mayHaveSubKeys = hasSubKeys || !registry.ListedWhole();
    const bool isEntered = hasSubKeys && places.Enter(registry.RealPath(), names[i]);
    const bool hasOrder = registry.ValueExists(u"Order");
    if (isEntered) {
      CheckMenuFolders(scan, registry, key, places);
      places.Leave();
    } else if (mayHaveSubKeys) {
      continue;
    } else if (!scan.Paths().DirectoryExists(scan.Vars().AllUsersFolder + folderPart + names[i]) &&
               !scan.Paths().DirectoryExists(scan.Vars().UserProfileFolder + folderPart + names[i])) {
      scan.ReportKey(kHkeyCurrentUser, key, {}, scan.Say(TextId::MissingStartMenuFolder, names[i]));
    } else if (!hasOrder) {
      scan.ReportKey(kHkeyCurrentUser, key, {}, scan.Say(TextId::EmptyKey));
    }
  }
}

}  // namespace

void ScanStartMenu(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyCurrentUser);
  TWalkedPlaces places;
  CheckMenuFolders(scan, *registry, kProgramsOrder, places);
}

}  // namespace corvalt
