// Shared Programs: reference counts of shared files that are gone, or that no program uses.

#include "scan/threadscan.h"

namespace corvalt {

namespace {

constexpr TextView kSharedDlls = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";

// A count of another type is never taken for zero.
std::int32_t CountOf(RegistryStore& registry, TextView name) {
  return registry.GetDataType(name) == TDataType::Integer ? registry.ReadInteger(name) : 1;
}

}  // namespace

void TScan::ScanSharedPrograms(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  std::vector<Text> names;
  if (registry->OpenKey(kSharedDlls, false))
    names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
    const Text& file = names[i];
    ReportProgress(ShareOfBar(i, names.size(), 100), LabelOf(kSharedDlls, file));
    const std::int32_t count = CountOf(*registry, file);
    if (!CommandPathExists(file)) {
      ReportValue(kHkeyLocalMachine, kSharedDlls, file, DecimalText(count),
                  Say(TextId::MissingSharedFile, file));
    } else if (count == 0) {
      ReportValue(kHkeyLocalMachine, kSharedDlls, file, DecimalText(count),
                  Say(TextId::UnusedSharedFile, file));
    }
  }
  FinishSection();
}

}  // namespace corvalt
