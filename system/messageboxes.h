// Message boxes: how the program asks the user, and tells what happened.
#pragma once

#include "base/text.h"

namespace corvalt {

enum class TMessageKind {
  Question,     // Yes and No, the warning icon
  Information,  // OK, the information icon
  Failure,      // OK, the error icon
};

enum class TAnswer { Ok, Yes, No };

class TMessageBoxes {
 public:
  virtual ~TMessageBoxes() = default;

  // Shows a plain message box and waits until it is answered. Closing a question without an answer counts as
  // No.
  virtual TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) = 0;
};

}  // namespace corvalt
