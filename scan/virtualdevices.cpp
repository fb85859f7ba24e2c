// Virtual Devices: files of the old virtual device drivers that are gone.

#include "scan/threadscan.h"

namespace corvalt {

void ScanVirtualDevices(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyLocalMachine);
  scan.ScanKeyTree(*registry, kHkeyLocalMachine, 0, TPhraseMatcher({}),
                   u"\\SYSTEM\\CurrentControlSet\\Services\\VxD");
  if (!scan.Terminated()) {
    scan.ScanKeyTree(*registry, kHkeyLocalMachine, 0.5, TPhraseMatcher({}),
                     u"\\SYSTEM\\CurrentControlSet\\Control\\VirtualDeviceDrivers");
  }
}

}  // namespace corvalt
