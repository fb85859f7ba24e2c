#include "platform/windows/windowsclock.h"

#include <thread>

#include "platform/windows/systemtimes.h"

namespace corvalt {

TDateTime TWindowsClock::Now() {
  SYSTEMTIME time = {};
  GetLocalTime(&time);
  return DateTimeOf(time);
}

void TWindowsClock::Sleep(std::chrono::milliseconds duration) {
  std::this_thread::sleep_for(duration);
}

}  // namespace corvalt
