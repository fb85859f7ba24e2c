// Windows Fonts: registered fonts whose file is gone.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

// Only these two versions keep their fonts below the NT key here; on the others the section normally finds no
// key.
TextView FontsKeyOf(TextView windowsVersionName) {
  if (windowsVersionName == u"xp" || windowsVersionName == u"2000") {
    return u"\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\fonts";
  }
  return u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\fonts";
}

}  // namespace

void ScanWindowsFonts(TScan& scan) {
  const TextView key = FontsKeyOf(scan.Vars().WindowsVersionName);
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const TOpenKey opened(*registry, key);
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text file = registry->ReadString(names[i]);
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    if (scan.Paths().CommandLineFileExists(file, true))
      continue;
    if (scan.Paths().CommandLineFileExists(scan.Vars().WindowsFolder + u"\\fonts\\" + file, true))
      continue;
    scan.ReportValue(kHkeyLocalMachine, key, names[i], file,
                     scan.Say(TextId::MissingFontFile, file, names[i]));
  }
}

}  // namespace corvalt
