// Time, so that tests can hold it still.
#pragma once

#include <chrono>

#include "system/systemlocale.h"

namespace corvalt {

class TClock {
 public:
  virtual ~TClock() = default;

  // Local date and time, to the millisecond.
  virtual TDateTime Now() = 0;

  virtual void Sleep(std::chrono::milliseconds duration) = 0;
};

}  // namespace corvalt
