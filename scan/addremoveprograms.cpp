// Add/Remove Programs: uninstall entries that can no longer work.

#include <algorithm>

#include "base/lettercase.h"
#include "scan/threadscan.h"

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

}  // namespace

void TScan::ScanAddRemovePrograms(const TSection& section) {
  AddHeader(section);
  CurrentSectionName = section.ProgressName;
  SectionPosition = kFixedPosition;
  ShowSection();
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kUninstall);
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text key = Text(kUninstall) + u"\\" + names[i];
    ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    CheckUninstallEntry(*registry, key);
  }
  FinishSection();
}

void TScan::CheckUninstallEntry(RegistryStore& registry, TextView keyPath) {
  if (!registry.OpenKey(keyPath, false))
    return;
  if (NamesUninstaller(registry.GetValueNames())) {
    const Text command = UninstallCommand(registry);
    if (!command.empty() && !m_paths.CommandLineFileExists(command, true)) {
      ReportKey(kHkeyLocalMachine, keyPath, {}, Say(TextId::MissingUninstaller, command));
    }
  } else if (!registry.HasSubKeys()) {
    ReportKey(kHkeyLocalMachine, keyPath, {}, Say(TextId::NoUninstaller));
  }
  registry.CloseKey();
}

}  // namespace corvalt
