// Add/Remove Programs: uninstall entries that can no longer work.

#include <algorithm>

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kUninstall = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

// The section's own place on the overall bar, whatever sections are ticked.
constexpr std::int32_t kFixedPosition = 64;

// Parts of a value's name that make the entry count as one with an uninstaller, wherever in the name they
// stand. "QuietUninstallString" holds the first.
bool NamesUninstaller(const std::vector<Text>& valueNames) {
  return std::any_of(valueNames.begin(), valueNames.end(), [](const Text& valueName) {
    const Text upper = UpperCase(valueName);
    return Contains(upper, u"UNINSTALLSTRING") || Contains(upper, u"SYSTEMCOMPONENT");
  });
}

Text UninstallCommand(RegistryStore& registry) {
  Text command = registry.ReadString(u"UninstallString");
  return command.empty() ? registry.ReadString(u"QuietUninstallString") : command;
}

void CheckUninstallEntry(TScan& scan, RegistryStore& registry, TextView keyPath) {
  const TOpenKey key(registry, keyPath);
  if (!key)
    return;
  const bool namesUninstaller = NamesUninstaller(registry.GetValueNames());
  const bool mayNameUninstaller = !registry.ListedWhole();
  if (namesUninstaller) {
    const Text command = UninstallCommand(registry);
    if (!command.empty() && !scan.Paths().CommandLineFileExists(command, true)) {
      scan.ReportKey(kHkeyLocalMachine, keyPath, {}, scan.Say(TextId::MissingUninstaller, command));
    }
  } else if (!mayNameUninstaller && !registry.HasSubKeys() && registry.ListedWhole()) {
    scan.ReportKey(kHkeyLocalMachine, keyPath, {}, scan.Say(TextId::NoUninstaller));
  }
}

}  // namespace

void ScanAddRemovePrograms(TScan& scan) {
  scan.ShowSectionAt(kFixedPosition);
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kUninstall);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(kUninstall) + u"\\" + names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    CheckUninstallEntry(scan, *registry, key);
  }
}

}  // namespace corvalt
