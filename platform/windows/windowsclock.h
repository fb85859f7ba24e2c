// The system's clock.
#pragma once

#include "system/systemclock.h"

namespace corvalt {

class TWindowsClock : public TClock {
 public:
  TDateTime Now() override;
  void Sleep(std::chrono::milliseconds duration) override;
};

}  // namespace corvalt
