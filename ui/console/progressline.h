// What a command shows and listens to while a worker runs.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "base/text.h"
#include "scan/scantrees.h"
#include "ui/console/console.h"

namespace corvalt {

// The progress dialog as one line: "45%  Scanning File Extensions...  .abc".
class TProgressLine : public TProgressDialog {
 public:
  // Quiet shows nothing.
  TProgressLine(TConsole& console, bool quiet) : m_console(console), m_quiet(quiet) {
  }

  void SetSectionLabel(TextView text) override;
  void SetItemLabel(TextView text) override;
  void SetOverallPosition(std::int32_t position) override;
  // The line has no room for a second number.
  void SetSectionPosition(std::int32_t) override {
  }

  void Clear();

 private:
  void Show();

  TConsole& m_console;
  bool m_quiet;
  std::int32_t m_position = 0;
  Text m_section;
  Text m_item;
};

// Lets the interrupt key do something else than end the program, for its lifetime.
class TInterruptHandler {
 public:
  TInterruptHandler(TConsole& console, std::function<void()> handler) : m_console(console) {
    m_console.SetInterruptHandler(std::move(handler));
  }
  ~TInterruptHandler() {
    m_console.SetInterruptHandler({});
  }
  TInterruptHandler(const TInterruptHandler&) = delete;
  TInterruptHandler& operator=(const TInterruptHandler&) = delete;

 private:
  TConsole& m_console;
};

}  // namespace corvalt
