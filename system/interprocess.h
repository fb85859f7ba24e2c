// What copies of the program agree on among themselves, and know of each other.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "base/text.h"

namespace corvalt {

// Held for its lifetime; given back on the thread that took it.
class THeldLock {
 public:
  virtual ~THeldLock() = default;
};

struct TLockWish {
  // Up to 150 units, in any letter case.
  Text Name;
  // Whether the programs of all users who may log on to this machine share the lock; otherwise those of one
  // user do, in every session and at every level of elevation.
  bool ForAllUsers = false;
  std::chrono::milliseconds Patience = std::chrono::seconds(10);
};

enum class TLockEnd {
  Held,
  Stopped,   // it was asked to stop first
  TimedOut,  // another holder kept it for longer than the patience
  Refused,   // the system can't make the lock, or doesn't let this user have it
};

struct TLockAnswer {
  TLockEnd End = TLockEnd::Refused;
  std::unique_ptr<THeldLock> Lock;  // null unless it is held
};

class TInterprocess {
 public:
  virtual ~TInterprocess() = default;

  // Waits for a lock that has one holder in all processes and threads. A holder that died gives it up. Asks
  // stop, which may be empty, several times a second. Not recursive.
  [[nodiscard]] virtual TLockAnswer Lock(const TLockWish& wish, const std::function<bool()>& stop) = 0;

  // Whether a process of this machine has this identifier now.
  [[nodiscard]] virtual bool ProcessRuns(std::uint32_t processId) = 0;
};

}  // namespace corvalt
