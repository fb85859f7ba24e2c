// The UI-thread interface: how a worker thread has routines run on the user-interface thread.
#pragma once

#include <functional>

namespace corvalt {

// The user-interface thread as the workers see it. Implemented over the Windows message loop and over a
// queue.
class TUiThread {
 public:
  virtual ~TUiThread() = default;

  // Runs routine on the user-interface thread and waits until it has run; an exception that it throws is
  // thrown here. False after Shut, or when Shut is called while this waits: the routine has not run and never
  // will. Called from worker threads only.
  virtual bool Send(const std::function<void()>& routine) = 0;

  // Hands routine over to run on the user-interface thread later, in the order of the calls, and returns at
  // once. False after Shut; an accepted routine runs for certain, at the latest during Shut.
  virtual bool Post(std::function<void()> routine) = 0;

  // Called on the user-interface thread, when the program ends: runs what was posted, makes every waiting
  // Send return false, and refuses every later call.
  virtual void Shut() = 0;
};

}  // namespace corvalt
