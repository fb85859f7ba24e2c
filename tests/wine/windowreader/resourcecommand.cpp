// What the program holds.
#include "tests/wine/windowreader/commands.h"

// Need the types of <windows.h>.
#include <psapi.h>
#include <winternl.h>

#include <algorithm>

namespace corvalt {

namespace {

// Under Wine GetProcessHandleCount and GetGuiResources return 0. What the session's server and the process
// itself keep account of is read there instead.

struct TSessionHandle {
  ULONG Process;
  BYTE Type;
  BYTE Flags;
  USHORT Value;
  ULONG_PTR Object;
  ULONG Access;
};

std::int64_t HandleCount(HANDLE process, DWORD processId) {
  DWORD count = 0;
  if (GetProcessHandleCount(process, &count) && count != 0)
    return count;
  constexpr auto kSystemHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
  constexpr ULONG kRoom = 4 << 20;
  std::vector<BYTE> buffer(kRoom);
  ULONG size = 0;
  if (NtQuerySystemInformation(kSystemHandles, buffer.data(), kRoom, &size) < 0)
    Refuse("the session's handles can't be read");
  const ULONG all = *reinterpret_cast<const ULONG*>(buffer.data());
  const auto* handles = reinterpret_cast<const TSessionHandle*>(buffer.data() + sizeof(ULONG_PTR));
  std::int64_t own = 0;
  for (ULONG i = 0; i < all; ++i)
    own += handles[i].Process == processId ? 1 : 0;
  return own;
}

// The most of the session that were in use at once at this look or an earlier one, so that only the growth
// from one look to the next says something. A new object takes a freed number before a new one.
std::int64_t UserObjectCount(HANDLE process) {
  const DWORD own = GetGuiResources(process, GR_USEROBJECTS);
  if (own != 0)
    return own;
  constexpr std::size_t kProbes = 4000;
  std::vector<HMENU> probes;
  ULONG_PTR highest = 0;
  while (probes.size() < kProbes) {
    probes.push_back(CreateMenu());
    highest = std::max<ULONG_PTR>(highest, LOWORD(reinterpret_cast<ULONG_PTR>(probes.back())) / 2);
  }
  for (HMENU probe : probes)
    DestroyMenu(probe);
  return static_cast<std::int64_t>(highest - kProbes);
}

// The system's table of graphics objects, which every process sees.
struct TGraphicsEntry {
  ULONGLONG Object;
  ULONG Owner;
  USHORT Unique;
  BYTE Type;
  BYTE Flags;
  ULONGLONG UserPointer;
};

std::int64_t GraphicsObjectCount(HANDLE process) {
  const DWORD own = GetGuiResources(process, GR_GDIOBJECTS);
  if (own != 0)
    return own;
  // In the 64-bit process environment block.
  constexpr std::size_t kTableOffset = 0xF8;
  constexpr std::size_t kEntries = 0x4000;
  PROCESS_BASIC_INFORMATION basic = {};
  NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof basic, nullptr);
  const BYTE* table = nullptr;
  const auto* block = reinterpret_cast<const BYTE*>(basic.PebBaseAddress);
  std::vector<TGraphicsEntry> entries(kEntries);
  if (!ReadProcessMemory(process, block + kTableOffset, &table, sizeof table, nullptr) ||
      !ReadProcessMemory(process, table, entries.data(), kEntries * sizeof(TGraphicsEntry), nullptr))
    Refuse("the table of graphics objects can't be read");
  std::int64_t count = 0;
  for (const TGraphicsEntry& entry : entries)
    count += entry.Type != 0 ? 1 : 0;
  return count;
}

std::int64_t WindowCount(DWORD processId) {
  std::int64_t count = 0;
  const TVisit visit = [&](HWND window) {
    if (ProcessOf(window) != processId)
      return;
    ++count;
    ForEachBelow(window, [&](HWND) { ++count; });
  };
  ForEachTopLevel(visit);
  // Windows for messages alone have a parent of their own.
  for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;)
    visit(window);
  return count;
}

}  // namespace

int PrintResources(const TProgram& program) {
  const DWORD processId = ProcessOf(program.Main());
  const TOwnedObject process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
  PROCESS_MEMORY_COUNTERS memory = {};
  GetProcessMemoryInfo(process.Get(), &memory, sizeof memory);
  const auto line = [](const Text& name, std::int64_t number) { Print(Fields({name, Number(number)})); };
  line(u"handles", HandleCount(process.Get(), processId));
  line(u"windows", WindowCount(processId));
  line(u"user", UserObjectCount(process.Get()));
  line(u"gdi", GraphicsObjectCount(process.Get()));
  line(u"private", static_cast<std::int64_t>(memory.PagefileUsage / 1024));
  line(u"resident", static_cast<std::int64_t>(memory.WorkingSetSize / 1024));
  return kDone;
}

}  // namespace corvalt
