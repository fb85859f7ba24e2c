// Virtual Devices: files of the old virtual device drivers that are gone.

#include "scan/threadscan.h"

namespace corvalt {

void TScan::ScanVirtualDevices(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyLocalMachine);
  ScanKeyTree(*registry, kHkeyLocalMachine, 0, TPhraseMatcher({}),
              u"\\SYSTEM\\CurrentControlSet\\Services\\VxD");
  if (!Terminated()) {
    ScanKeyTree(*registry, kHkeyLocalMachine, 0.5, TPhraseMatcher({}),
                u"\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers");
  }
  FinishSection();
}

}  // namespace corvalt
