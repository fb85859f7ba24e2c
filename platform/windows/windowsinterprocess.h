// Named mutexes of the whole machine that their user may open.
#pragma once

#include "system/interprocess.h"

namespace corvalt {

class TWindowsInterprocess : public TInterprocess {
 public:
  // The lock is given back on the thread that took it.
  std::unique_ptr<THeldLock> Lock(TextView name) override;
};

}  // namespace corvalt
