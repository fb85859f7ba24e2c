// The system's clock.
#pragma once

#include <chrono>

#include "system/systemclock.h"
#include "system/systemlocale.h"

namespace corvalt {

class TWindowsClock : public TClock {
 public:
  TDateTime Now() override;
  void Sleep(std::chrono::milliseconds duration) override;
};

}  // namespace corvalt
