#include "platform/memory/memoryprograms.h"

namespace corvalt {

void TMemoryPrograms::Execute(TextView verb, TextView target) {
  m_calls.push_back("execute " + EncodeUtf8(verb) + " " + EncodeUtf8(target));
}

bool TMemoryPrograms::ExecuteAndWaitForIdle(TextView verb, TextView program) {
  m_calls.push_back("start " + EncodeUtf8(verb) + " " + EncodeUtf8(program));
  if (Starts && OnStarted)
    OnStarted();
  return Starts;
}

bool TMemoryPrograms::ShowProperties(TextView path, std::uint32_t mask) {
  m_calls.push_back("properties " + EncodeUtf8(path) + " " + std::to_string(mask));
  return Starts;
}

void TMemoryPrograms::ShowHelpTopic(TextView helpFile, TextView topic) {
  m_calls.push_back("help " + EncodeUtf8(helpFile) + " " + EncodeUtf8(topic));
}

}  // namespace corvalt
