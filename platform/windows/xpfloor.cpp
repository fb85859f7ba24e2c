// The compiler's thread library imports GetTickCount64 outright, which Windows XP lacks: the loader would
// refuse the program. This object takes the place of that import and looks the routine up when it is first
// called.
#include <windows.h>

#include <atomic>

#ifdef _WIN64
#define IMPORT_NAME "__imp_GetTickCount64"
#else
#define IMPORT_NAME "__imp__GetTickCount64@0"
#endif

namespace {

using TTickRoutine = ULONGLONG(WINAPI*)();

// On XP the count wraps after 49.7 days; its callers measure waits, which then end early once.
ULONGLONG WINAPI ShortTickCount() {
  return GetTickCount();
}

TTickRoutine FindTickRoutine() {
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount64");
  return found ? reinterpret_cast<TTickRoutine>(reinterpret_cast<void*>(found)) : ShortTickCount;
}

// The routine is kept in an atomic and not in a static with an initialiser: the lock of such a static is
// taken by the thread library, which calls this function itself.
ULONGLONG WINAPI TickCount() {
  static std::atomic<TTickRoutine> routine{nullptr};
  TTickRoutine known = routine.load(std::memory_order_relaxed);
  if (!known) {
    known = FindTickRoutine();
    routine.store(known, std::memory_order_relaxed);
  }
  return known();
}

}  // namespace

extern "C" const TTickRoutine ImportedTickCount64 __asm__(IMPORT_NAME) = TickCount;
