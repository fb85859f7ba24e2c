// Message boxes that a test answers in advance.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "system/messageboxes.h"

namespace corvalt {

// Remembers what it showed, one line a message. The list, which other doubles may write into too, must
// outlive the object.
class TMemoryMessageBoxes : public TMessageBoxes {
 public:
  explicit TMemoryMessageBoxes(std::vector<std::string>& calls) : m_calls(calls) {
  }

  TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) override;

  // The answers to the questions to come; No when none is left.
  std::deque<TAnswer> Answers;

  // What happens while a message is shown.
  std::function<void()> OnMessage;

 private:
  std::vector<std::string>& m_calls;
};

}  // namespace corvalt
