// File Extensions: the user's settings for extensions that hold no value.

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kFileExts = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";

// Whether the open key holds a value, or might: its names can't be enumerated to their end.
bool MayHoldValues(RegistryStore& registry) {
  return !registry.GetValueNames().empty() || !registry.ListedWhole();
}

// Only values count, whatever other subkeys there are. A key that does not open is taken for used.
bool IsUsed(RegistryStore& registry, const Text& key) {
  const TOpenKey opened(registry, key);
  if (!opened || MayHoldValues(registry))
    return true;
  for (const TextView subKey : {u"\\OpenWithList", u"\\OpenWithProgids"}) {
    const TOpenKey openedBelow(registry, key + Text(subKey));
    if (openedBelow && MayHoldValues(registry))
      return true;
  }
  return false;
}

// Keys of the shell's own that stand among the extensions.
bool IsShellsOwn(TextView name) {
  return EqualIgnoringCase(name, u"ddecache") || EqualIgnoringCase(name, u"openwithlist");
}

}  // namespace

void ScanFileExtensions(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyCurrentUser);
  const std::vector<Text> names = SubKeyNames(*registry, kFileExts);
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text key = Text(kFileExts) + u"\\" + names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    if (IsUsed(*registry, key) || IsShellsOwn(names[i]))
      continue;
    scan.ReportKey(kHkeyCurrentUser, key, {}, scan.Say(TextId::EmptyKey));
  }
}

}  // namespace corvalt
