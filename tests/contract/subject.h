// What the contract suite runs over: the doubles in memory, or the real system. A test gets an empty key and
// an empty folder of its own, gone with the subject.
#pragma once

#include <functional>
#include <memory>

#include "system/system.h"
#include "system/uithread.h"

namespace corvalt {

enum class TPlatform {
  Windows,  // subkeys by upper case, values as they were created
  Wine,     // both by lower case
};

class TSubject {
 public:
  virtual ~TSubject() = default;

  virtual TSystem System() = 0;
  virtual TPlatform Platform() = 0;

  // Below kScratchRoot, with a leading "\".
  virtual Text ScratchKey() = 0;
  // An existing folder without a trailing "\".
  virtual Text ScratchFolder() = 0;

  // Takes every access from a key that exists.
  virtual void Deny(TextView keyPath) = 0;
  // Lets everybody read a key that exists, and nobody change it.
  virtual void LetOnlyRead(TextView keyPath) = 0;
  // Makes a registry link to a key that exists; both paths below kScratchRoot.
  virtual void MakeLink(TextView keyPath, TextView targetPath) = 0;
  // The path of a link to an existing folder.
  virtual Text FolderLink() = 0;

  // The thread of the test is the user-interface thread.
  virtual TUiThread& UiThread() = 0;
  // Works off what reaches the user-interface thread; done is asked at first and after each routine.
  virtual void RunUiUntil(const std::function<bool()>& done) = 0;
};

inline constexpr TRootKey kScratchRoot = kHkeyCurrentUser;

std::unique_ptr<TSubject> MakeSubject();

}  // namespace corvalt
