// A console that remembers what was written to it, and the console program run on it over a system in memory.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "base/text.h"
#include "core/languagetexts.h"
#include "system/systemerror.h"
#include "tests/support/scanrig.h"
#include "ui/console/console.h"
#include "ui/console/consoleprogram.h"

namespace corvalt {

class TTestConsole : public TConsole {
 public:
  TSystemError Write(std::string_view utf8) override;
  void Tell(TextView line) override;
  void ShowProgress(TextView line) override;
  void SetInterruptHandler(std::function<void()> handler) override;

  // The interrupt key; may be pressed on any thread. False when it would have ended the program.
  bool Interrupt();

  std::string Output;
  std::vector<std::string> Told;
  std::vector<std::string> Progress;
  std::uint32_t WriteFailure = 0;  // the code with which every writing fails

 private:
  std::mutex m_mutex;
  std::function<void()> m_handler;
};

class TConsoleRig {
 public:
  // Runs the program with these arguments; its start sequence is the real one, its texts are their numbers.
  int Run(const std::vector<Text>& arguments);

  // Everything told, one line each.
  std::string Told() const;

  TScanRig Scan;
  TTestConsole Console;
  TLanguageTexts Texts = NumberedTexts();
  int Starts = 0;  // how often the start sequence ran
};

}  // namespace corvalt
