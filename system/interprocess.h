// What copies of the program agree on among themselves.
#pragma once

#include <memory>

#include "base/text.h"

namespace corvalt {

// Held for its lifetime.
class THeldLock {
 public:
  virtual ~THeldLock() = default;
};

class TInterprocess {
 public:
  virtual ~TInterprocess() = default;

  // Waits for the lock of this name and holds it: one holder in all processes and threads of this user, in
  // every session and at every level of elevation. A holder that died gives it up. Not recursive. The name
  // has up to 250 units. nullptr when the system can't make it.
  virtual std::unique_ptr<THeldLock> Lock(TextView name) = 0;
};

}  // namespace corvalt
