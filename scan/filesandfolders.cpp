// Registry Integrity and Files and Folders: values that name a file or folder that is gone.

#include "base/lettercase.h"
#include "scan/threadscan.h"

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

// Below any key of this name only the control set in use is walked.
constexpr TextView kSystemKeyEnd = u"\\system";
constexpr TextView kControlSetInUse = u"CurrentControlSet";

// The 32-bit mirror, at which the walk of a key's subkeys ends.
constexpr TextView kMirror = u"wow6432node";

bool IsExcluded(TRootKey root, TextView keyPath, const TPhraseMatcher& exclusions) {
  return exclusions.OccursIn(UpperCase(RootKeyName(root).append(keyPath) + u"\\"));
}

TPhraseMatcher ExaminedElsewhere() {
  std::vector<Text> keyPaths;
  for (const TextView keyPath : kExaminedElsewhere)
    keyPaths.push_back(UpperCase(keyPath));
  return TPhraseMatcher(keyPaths);
}

bool EndsInSystem(TextView keyPath) {
  return keyPath.size() >= kSystemKeyEnd.size() &&
         LowerCase(keyPath.substr(keyPath.size() - kSystemKeyEnd.size())) == kSystemKeyEnd;
}

}  // namespace

void TScan::ScanShellFolders(const TSection& section) {
  AddHeader(section);
  // Both keys fill the upper half of the bar; the lower one is never used.
  CheckShellFolderKey(kUserShellFolders, 50, 1);
  if (!Terminated())
    CheckShellFolderKey(kShellFolders, 50, 1);
  FinishSection();
}

void TScan::CheckShellFolderKey(TextView keyPath, double scale, double offset) {
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyCurrentUser);
  if (!registry->OpenKey(keyPath, false))
    return;
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text folder = registry->ReadString(names[i]);
    ReportProgress(ShareOfBar(i, names.size(), scale, scale * offset), LabelOf(keyPath, names[i]));
    if (!CommandPathExists(folder)) {
      ReportValue(kHkeyCurrentUser, keyPath, names[i], folder,
                  Say(TextId::MissingShellFolder, names[i], folder));
    }
  }
}

void TScan::ScanFilesAndFolders(const TSection& section) {
  const TRootKey root = section.HeaderRoot;
  AddHeader(section);
  const TPhraseMatcher exclusions = ExaminedElsewhere();
  const std::unique_ptr<RegistryStore> registry = OpenRoot(root);
  if (root == kHkeyUsers) {
    const std::vector<Text> hives = SubKeyNames(*registry, u"\\");
    for (std::size_t i = 0; i < hives.size() && !Terminated(); ++i) {
      const double fraction = static_cast<double>(i + 1) / static_cast<double>(hives.size());
      ScanKeyTree(*registry, root, fraction, exclusions, u"\\" + hives[i]);
    }
  } else {
    // The bar stays at 0 while one whole root is walked; only the label moves.
    ScanKeyTree(*registry, root, 0, exclusions, {});
  }
  FinishSection();
}

void TScan::ScanKeyTree(RegistryStore& registry, TRootKey root, double fraction,
                        const TPhraseMatcher& exclusions, TextView keyPath) {
  if (IsExcluded(root, keyPath, exclusions) || !registry.OpenKey(keyPath, false))
    return;
  std::vector<Text> names = registry.GetValueNames();
  for (const Text& name : names) {
    if (Terminated())
      break;
    const TDataType type = registry.GetDataType(name);
    if (type != TDataType::String && type != TDataType::ExpandString)
      continue;
    const Text data = registry.ReadString(name);
    // A label costs more than the rest of a call that shows nothing.
    ReportProgress(RoundHalfToEven(100 * fraction), IsProgressDue() ? LabelOf(keyPath, name) : Text());
    if (!CommandPathExists(data)) {
      ReportValue(root, keyPath, name, data, Say(TextId::MissingFileOfValue, name, data));
    }
  }
  names = registry.GetKeyNames();
  registry.CloseKey();
  if (EndsInSystem(keyPath))
    names = {Text(kControlSetInUse)};
  for (const Text& name : names) {
    if (Terminated() || EqualIgnoringCase(name, kMirror))
      return;
    ScanKeyTree(registry, root, fraction, exclusions, Text(keyPath) + u"\\" + name);
  }
}

}  // namespace corvalt
