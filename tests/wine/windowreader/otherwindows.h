// Windows of another program, seen from outside.
#pragma once

#include <functional>

#include "tests/wine/windowreader/output.h"

namespace corvalt {

Text ClassOf(HWND window);
// Asked by message: GetWindowText returns the text that a control of another process had at first.
Text TextOf(HWND window);
DWORD ProcessOf(HWND window);
// "hidden", "enabled" or "disabled".
Text StateOf(HWND window);
RECT PlaceOf(HWND window);

using TVisit = std::function<void(HWND)>;
void ForEachTopLevel(const TVisit& visit);
void ForEachBelow(HWND parent, const TVisit& visit);

// The control of this class that lies first in the window.
HWND FirstOfClass(HWND parent, TextView className);

// False when it has not happened within a minute.
bool WaitUntil(const std::function<bool()>& happened);

// Memory of another process, for what control messages answer by address.
class TForeignMemory {
 public:
  TForeignMemory(HWND window, std::size_t size)
      : m_process(
            OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, ProcessOf(window))),
        m_address(static_cast<BYTE*>(
            VirtualAllocEx(m_process.Get(), nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {
    if (m_address == nullptr)
      Refuse("the other process gives no memory");
  }
  ~TForeignMemory() {
    VirtualFreeEx(m_process.Get(), m_address, 0, MEM_RELEASE);
  }
  TForeignMemory(const TForeignMemory&) = delete;
  TForeignMemory& operator=(const TForeignMemory&) = delete;

  BYTE* Address() const {
    return m_address;
  }
  template <typename TValue>
  void Write(const TValue& value) const {
    WriteProcessMemory(m_process.Get(), m_address, &value, sizeof value, nullptr);
  }
  template <typename TValue>
  void Read(std::size_t offset, TValue* values, std::size_t count) const {
    ReadProcessMemory(m_process.Get(), m_address + offset, values, count * sizeof(TValue), nullptr);
  }

 private:
  TOwnedObject m_process;
  BYTE* m_address;
};

}  // namespace corvalt
