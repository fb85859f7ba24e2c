// Device Drivers: examines no key. The section shows progress for a short, fixed time, so that the list of
// sections and the progress display stay as the users of the suite know them.

#include "scan/threadscan.h"

namespace corvalt {

void ScanDeviceDrivers(TScan& scan) {
  constexpr std::size_t kSteps = 101;
  // Runs to its end whatever the thread is told, and past 100 with its last step.
  for (std::size_t k = 0; k < kSteps; ++k) {
    scan.ReportProgress(ShareOfBar(k, 100, 100), {});
    scan.System().Clock.Sleep(std::chrono::milliseconds(1));
  }
}

}  // namespace corvalt
