#include "tests/support/testconsole.h"

namespace corvalt {

TSystemError TTestConsole::Write(std::string_view utf8) {
  if (WriteFailure != 0)
    return TSystemError{WriteFailure};
  Output += utf8;
  return {};
}

void TTestConsole::Tell(TextView line) {
  Told.push_back(EncodeUtf8(line));
}

void TTestConsole::ShowProgress(TextView line) {
  Progress.push_back(EncodeUtf8(line));
}

void TTestConsole::SetInterruptHandler(std::function<void()> handler) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  m_handler = std::move(handler);
}

bool TTestConsole::Interrupt() {
  const std::lock_guard<std::mutex> hold(m_mutex);
  if (!m_handler)
    return false;
  m_handler();
  return true;
}

int TConsoleRig::Run(const std::vector<Text>& arguments) {
  TSystem system = Scan.System.Bundle();
  const auto start = [this](TSystem& started, TGlobalVars& vars, TGlobalReg& reg) {
    ++Starts;
    FillGlobalVars(started, vars);
    FillGlobalReg(started, vars, reg);
    vars.Texts = Texts;
  };
  return static_cast<int>(
      RunConsoleProgram(arguments, {system, Console, u"9.8.7", start, [this](TSystem&) { return Texts; }}));
}

std::string TConsoleRig::Told() const {
  std::string told;
  for (const std::string& line : Console.Told)
    told += line + "\n";
  return told;
}

}  // namespace corvalt
