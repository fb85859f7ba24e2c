// Programs that start, or do not, as a test has set it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/text.h"
#include "system/programs.h"

namespace corvalt {

// Remembers what it was asked for, one line a call. The list, which other doubles may write into too, must
// outlive the object.
class TMemoryPrograms : public TPrograms {
 public:
  explicit TMemoryPrograms(std::vector<std::string>& calls) : m_calls(calls) {
  }

  void Execute(TextView verb, TextView target) override;
  bool ExecuteAndWaitForIdle(TextView verb, TextView program) override;
  bool ShowProperties(TextView path, std::uint32_t mask) override;
  void ShowHelpTopic(TextView helpFile, TextView topic) override;

  bool Starts = true;

  // What happens when a program has started that was waited for.
  std::function<void()> OnStarted;

 private:
  std::vector<std::string>& m_calls;
};

}  // namespace corvalt
