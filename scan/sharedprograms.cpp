// Shared Programs: reference counts of shared files that are gone, or that no program uses.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kSharedDlls = u"\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";

// A count of another type or size is never taken for zero; the store reads both as zero.
std::int32_t CountOf(TScan& scan, RegistryStore& registry, TextView name) {
  if (registry.GetDataType(name) != TDataType::Integer)
    return 1;
  const std::int32_t count = registry.ReadInteger(name);
  if (count != 0)
    return count;
  TRawRegistry& raw = scan.System().Raw;
  const TKeysReleased released(raw);
  TRawValue value;
  const bool isCount = raw.ReadValue(kHkeyLocalMachine, kSharedDlls, name, value) == TRawResult::Done &&
                       IntegerOf(value.Type, value.Data).has_value();
  return isCount ? 0 : 1;
}

}  // namespace

void ScanSharedPrograms(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const TOpenKey key(*registry, kSharedDlls);
  const std::vector<Text> names = registry->GetValueNames();
  for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
    const Text& file = names[i];
    scan.ReportProgress(ShareOfBar(i, names.size(), 100), LabelOf(kSharedDlls, file));
    const std::int32_t count = CountOf(scan, *registry, file);
    if (!scan.CommandPathExists(file)) {
      scan.ReportValue(kHkeyLocalMachine, kSharedDlls, file, DecimalText(count),
                       scan.Say(TextId::MissingSharedFile, file));
    } else if (count == 0) {
      scan.ReportValue(kHkeyLocalMachine, kSharedDlls, file, DecimalText(count),
                       scan.Say(TextId::UnusedSharedFile, file));
    }
  }
}

}  // namespace corvalt
