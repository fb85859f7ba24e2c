// Startup Programs: programs started at logon that are gone.

#include "scan/threadscan.h"

namespace corvalt {

namespace {

constexpr TextView kRun = u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";

}  // namespace

void TScan::ScanStartupPrograms(const TSection& section) {
  AddHeader(section);
  CheckRunKey(kHkeyCurrentUser, 0);
  if (!Terminated())
    CheckRunKey(kHkeyLocalMachine, 50);
  FinishSection();
}

void TScan::CheckRunKey(TRootKey root, double start) {
  const std::unique_ptr<RegistryStore> registry = OpenRoot(root);
  if (!registry->OpenKey(kRun, false))
    return;
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    Text command = registry->ReadString(names[i]);
    ReportProgress(ShareOfBar(i, names.size(), 50, start), LabelOf(kRun, names[i]));
    if (Contains(command, u"%"))
      command = m_paths.ExpandPathVariables(command);
    if (m_paths.CommandLineFileExists(command, true))
      continue;
    ReportValue(root, kRun, names[i], command, Say(TextId::MissingStartupProgram, names[i], command));
  }
}

}  // namespace corvalt
