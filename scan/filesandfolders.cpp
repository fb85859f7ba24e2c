// Registry Integrity and Files and Folders: values that name a file or folder that is gone.

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kUserShellFolders =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
constexpr TextView kShellFolders = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

constexpr TextView kProgramsOrder =
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder\\Start "
    u"Menu2\\Programs\\";

// Keys that other sections examine on their own, and the system hive. The comparison is with the root's own
// name, so that the copies of the user's keys under HKEY_USERS are walked there.
constexpr TextView kExaminedElsewhere[] = {
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\CLASSES\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\fonts\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\Help\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\Html Help\\",
    u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs\\",
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\",
    u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\VxD\\",
    u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers\\",
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\",
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ComDlg32\\OpenSaveMRU\\",
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders\\",
    u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\",
    u"HKEY_CURRENT_USER\\AppEvents\\Schemes\\Apps\\",
    kProgramsOrder,
    u"HKEY_LOCAL_MACHINE\\SYSTEM\\",
};

TPhraseMatcher ExaminedElsewhere() {
  std::vector<Text> keyPaths;
  for (const TextView keyPath : kExaminedElsewhere)
    keyPaths.push_back(UpperCase(keyPath));
  return TPhraseMatcher(keyPaths);
}

void CheckShellFolderKey(TScan& scan, TextView keyPath, double scale, double offset) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyCurrentUser);
  const TOpenKey key(*registry, keyPath);
  if (!key)
    return;
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text folder = registry->ReadString(names[i]);
    scan.ReportProgress(ShareOfBar(i, names.size(), scale, scale * offset), LabelOf(keyPath, names[i]));
    if (!scan.CommandPathExists(folder)) {
      scan.ReportValue(kHkeyCurrentUser, keyPath, names[i], folder,
                       scan.Say(TextId::MissingShellFolder, names[i], folder));
    }
  }
}

}  // namespace

void ScanShellFolders(TScan& scan) {
  // Both keys fill the upper half of the bar; the lower one is never used.
  CheckShellFolderKey(scan, kUserShellFolders, 50, 1);
  if (!scan.Terminated())
    CheckShellFolderKey(scan, kShellFolders, 50, 1);
}

void ScanFilesAndFolders(TScan& scan) {
  const TRootKey root = scan.Section().HeaderRoot;
  const TPhraseMatcher exclusions = ExaminedElsewhere();
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(root);
  if (root == kHkeyUsers) {
    const std::vector<Text> hives = SubKeyNames(*registry, u"\\");
    for (std::size_t i = 0; i < hives.size() && !scan.Terminated(); ++i) {
      const double fraction = static_cast<double>(i + 1) / static_cast<double>(hives.size());
      scan.ScanKeyTree(*registry, root, fraction, exclusions, u"\\" + hives[i]);
    }
  } else {
    // The bar stays at 0 while one whole root is walked; only the label changes.
    scan.ScanKeyTree(*registry, root, 0, exclusions, {});
  }
}

}  // namespace corvalt
