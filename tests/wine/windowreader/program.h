// The program that the window reader looks at.
#pragma once

#include "tests/wine/windowreader/otherwindows.h"

namespace corvalt {

class TProgram {
 public:
  // process 0: the only one that runs.
  explicit TProgram(DWORD process) : m_process(process) {
  }

  HWND Main() const;
  std::vector<HWND> VisibleWindows() const;

  // The topmost visible window whose title begins so; WindowOf returns null when there is none.
  HWND WindowOf(TextView title) const;
  HWND Existing(TextView title) const;

  // A control of the main window by its number; a tree by its name.
  HWND Control(int number) const;
  HWND Tree(TextView name) const;

 private:
  bool IsOf(HWND window) const;

  DWORD m_process;
};

}  // namespace corvalt
