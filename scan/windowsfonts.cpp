// Windows Fonts: registered fonts whose file is gone.

#include "scan/threadscan.h"

namespace corvalt {

namespace {

// Two versions alone keep their fonts below the NT key here; on the others the section normally finds no key.
TextView FontsKeyOf(TextView windowsVersionName) {
  if (windowsVersionName == u"xp" || windowsVersionName == u"2000") {
    return u"\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\fonts";
  }
  return u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\fonts";
}

}  // namespace

void TScan::ScanWindowsFonts(const TSection& section) {
  AddHeader(section);
  const TextView key = FontsKeyOf(m_context.Vars.WindowsVersionName);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  std::vector<Text> names;
  if (registry->OpenKey(key, false))
    names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text file = registry->ReadString(names[i]);
    ReportProgress(ShareOfBar(i, names.size(), 100), WithoutLeadingBackslash(key));
    if (m_paths.CommandLineFileExists(file, true))
      continue;
    if (m_paths.CommandLineFileExists(m_context.Vars.WindowsFolder + u"\\fonts\\" + file, true))
      continue;
    ReportValue(kHkeyLocalMachine, key, names[i], file, Say(TextId::MissingFontFile, file, names[i]));
  }
  FinishSection();
}

}  // namespace corvalt
