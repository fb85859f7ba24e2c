// The one door through which a worker thread reaches the user interface.
#pragma once

#include <functional>

namespace corvalt {

// The user-interface thread as the workers see it. Implemented over the Windows message loop and over a
// queue.
class TUiThread {
 public:
  virtual ~TUiThread() = default;

  // Runs routine on the user-interface thread and waits until it has run; an exception that it throws is
  // thrown here. False when the door is shut, or is shut while waiting: the routine has not run and never
  // will. Called from worker threads only.
  virtual bool Send(const std::function<void()>& routine) = 0;

  // Hands routine over to run on the user-interface thread later, in the order of the calls, and returns at
  // once. False when the door is shut; an accepted routine runs for certain, at the latest while the door is
  // being shut.
  virtual bool Post(std::function<void()> routine) = 0;

  // Called on the user-interface thread, when the program ends: runs what was posted, lets every waiting Send
  // answer false, and refuses everything from then on.
  virtual void Shut() = 0;
};

}  // namespace corvalt
