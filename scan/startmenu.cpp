// Start Menu: the stored sort order of menu folders that are gone.

#include "scan/threadscan.h"

namespace corvalt {

namespace {

constexpr TextView kProgramsOrder =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start Menu2\\Programs";
constexpr TextView kProgramsMenu = u"\\Start Menu\\Programs\\";

}  // namespace

void TScan::ScanStartMenu(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyCurrentUser);
  CheckMenuFolders(*registry, kProgramsOrder);
  FinishSection();
}

// Only keys without subkeys are judged. Each level of the walk begins the bar anew.
void TScan::CheckMenuFolders(RegistryStore& registry, TextView keyPath) {
  const Text folderPart = Text(kProgramsMenu) + Text(keyPath.substr(kProgramsOrder.size())) + u"\\";
  const std::vector<Text> names = SubKeyNames(registry, keyPath);
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text key = Text(keyPath) + u"\\" + names[i];
    ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    if (!registry.OpenKey(key, false))
      continue;
    const bool hasSubKeys = registry.HasSubKeys();
    const bool hasOrder = registry.ValueExists(u"Order");
    registry.CloseKey();
    if (hasSubKeys) {
      CheckMenuFolders(registry, key);
    } else if (!m_paths.DirectoryExists(m_context.Vars.AllUsersFolder + folderPart + names[i]) &&
               !m_paths.DirectoryExists(m_context.Vars.UserProfileFolder + folderPart + names[i])) {
      ReportKey(kHkeyCurrentUser, key, {}, Say(TextId::MissingStartMenuFolder, names[i]));
    } else if (!hasOrder) {
      ReportKey(kHkeyCurrentUser, key, {}, Say(TextId::EmptyKey));
    }
  }
}

}  // namespace corvalt
