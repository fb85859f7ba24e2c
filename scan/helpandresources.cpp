// Help and Resources: registered help files that are not in their folder.

#include "scan/threadscan.h"

namespace corvalt {

void TScan::ScanHelpAndResources(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  CheckHelpKey(*registry, u"\\SOFTWARE\\Microsoft\\Windows\\Help", 0);
  CheckHelpKey(*registry, u"\\SOFTWARE\\Microsoft\\Windows\\Html Help", 50);
  FinishSection();
}

// A value's name is the file, its data the folder.
void TScan::CheckHelpKey(RegistryStore& registry, TextView keyPath, double start) {
  if (!registry.OpenKey(keyPath, false))
    return;
  const std::vector<Text> names = registry.GetValueNames();
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text folder = registry.ReadString(names[i]);
    ReportProgress(ShareOfBar(i, names.size(), 50, start), LabelOf(keyPath, names[i]));
    const Text path = WithTrailingBackslash(folder) + names[i];
    if (m_paths.CommandLineFileExists(path, true))
      continue;
    ReportValue(kHkeyLocalMachine, keyPath, names[i], folder, Say(TextId::MissingHelpFile, names[i], path));
  }
  registry.CloseKey();
}

}  // namespace corvalt
