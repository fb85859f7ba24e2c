// Windows Services: services and drivers whose program file is gone.

#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services";
constexpr TextView kImagePath = u"ImagePath";

void CheckServiceImage(TScan& scan, RegistryStore& registry, TextView keyPath, std::size_t i,
                       std::size_t count) {
  const TOpenKey key(registry, keyPath);
  if (!key)
    return;
  const TDataType type = registry.GetDataType(kImagePath);
  const Text image = registry.ReadString(kImagePath);
  if (type != TDataType::String && type != TDataType::ExpandString)
    return;
  // The share of one service is scaled twice, so that the bar lags a little behind the plain ratio.
  const double scale = 100.0 / static_cast<double>(count);
  scan.ReportProgress(ShareOfBar(i, count, scale, scale * static_cast<double>(i)),
                      WithoutLeadingBackslash(keyPath));
  if (scan.CommandPathExists(image))
    return;
  scan.ReportKey(kHkeyLocalMachine, keyPath, image, scan.Say(TextId::MissingServiceFile, image), kNoImage,
                 kImagePath);
}

}  // namespace

void ScanWindowsServices(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kServices);
  // Once begun, the section runs to its end.
  for (std::size_t i = 0; i < names.size(); ++i) {
    CheckServiceImage(scan, *registry, Text(kServices) + u"\\" + names[i], i, names.size());
  }
}

}  // namespace corvalt
