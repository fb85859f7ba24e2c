// Windows Services: services and drivers whose program file is gone.

#include "scan/threadscan.h"

namespace corvalt {

namespace {

constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services";
constexpr TextView kImagePath = u"ImagePath";

}  // namespace

void TScan::ScanWindowsServices(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  const std::vector<Text> names = SubKeyNames(*registry, kServices);
  // Once begun, the section runs to its end.
  for (std::size_t i = 0; i < names.size(); ++i) {
    CheckServiceImage(*registry, Text(kServices) + u"\\" + names[i], i, names.size());
  }
  FinishSection();
}

void TScan::CheckServiceImage(RegistryStore& registry, TextView keyPath, std::size_t i, std::size_t count) {
  if (!registry.OpenKey(keyPath, false))
    return;
  const TDataType type = registry.GetDataType(kImagePath);
  const Text image = registry.ReadString(kImagePath);
  registry.CloseKey();
  if (type != TDataType::String && type != TDataType::ExpandString)
    return;
  // The share of one service is scaled twice, so that the bar lags a little behind the plain ratio.
  const double scale = 100.0 / static_cast<double>(count);
  ReportProgress(ShareOfBar(i, count, scale, scale * static_cast<double>(i)),
                 WithoutLeadingBackslash(keyPath));
  if (CommandPathExists(image))
    return;
  ReportKey(kHkeyLocalMachine, keyPath, image, Say(TextId::MissingServiceFile, image), kNoImage, kImagePath);
}

}  // namespace corvalt
