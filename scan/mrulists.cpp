// MRU and History Lists: recently used files of the open and save dialogs that are gone.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kOpenSaveMru =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ComDlg32\\OpenSaveMRU";

// The list's letters name its values. The visit begins one place before the first letter, at a NUL, which the
// registry reads as the default value, and so never reaches the last letter.
void CheckMruList(TScan& scan, RegistryStore& registry, TextView keyPath) {
  const TOpenKey key(registry, keyPath);
  if (!key)
    return;
  const Text visited = Text(1, u'\0') + registry.ReadString(u"MRUList");
  for (std::size_t position = 0; position + 1 < visited.size(); ++position) {
    const Text name(1, visited[position]);
    const Text path = registry.ReadString(name);
    if (path.empty() || scan.Paths().CommandLineFileExists(path, true))
      continue;
    scan.ReportValue(kHkeyCurrentUser, keyPath, name, path, scan.Say(TextId::MissingRecentFile, name, path));
  }
}

}  // namespace

void ScanMruLists(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyCurrentUser);
  const std::vector<Text> names = SubKeyNames(*registry, kOpenSaveMru);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(kOpenSaveMru) + u"\\" + names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    CheckMruList(scan, *registry, key);
  }
}

}  // namespace corvalt
