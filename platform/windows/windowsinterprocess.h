// Named mutexes of the whole machine, open to one user or to all.
#pragma once

#include <cstdint>
#include <functional>

#include "system/interprocess.h"

namespace corvalt {

class TWindowsInterprocess : public TInterprocess {
 public:
  TLockAnswer Lock(const TLockWish& wish, const std::function<bool()>& stop) override;
  bool ProcessRuns(std::uint32_t processId) override;
};

}  // namespace corvalt
