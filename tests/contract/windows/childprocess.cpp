#include "tests/contract/windows/childprocess.h"

#include <gtest/gtest.h>

#include "platform/windows/windowsapi.h"
#include "platform/windows/windowsmachine.h"

namespace corvalt {

int RunTestInChild(TextView testName) {
  TWindowsMachine machine;
  Text commandLine = u"\"" + machine.ProgramFile() +
                     u"\" --gtest_brief=1 --gtest_also_run_disabled_tests --gtest_filter=" + Text(testName);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  const BOOL started = CreateProcessW(nullptr, WideBuffer(commandLine), nullptr, nullptr, FALSE, 0, nullptr,
                                      nullptr, &startup, &process);
  EXPECT_TRUE(started);
  if (!started)
    return -1;
  const TOwnedObject thread(process.hThread);
  const TOwnedObject owner(process.hProcess);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  return static_cast<int>(code & 0xFF);
}

}  // namespace corvalt
