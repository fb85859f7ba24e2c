#include "platform/windows/registryviews.h"

namespace corvalt {

namespace {

// Windows XP has this routine from its second service pack.
bool Is32BitProgramOn64BitWindows() {
  using TIsWow64Process = BOOL(WINAPI*)(HANDLE, BOOL*);
  const auto isWow64Process =
      FindRoutine<TIsWow64Process>(GetModuleHandleW(L"kernel32.dll"), "IsWow64Process");
  BOOL isWow64 = FALSE;
  return isWow64Process != nullptr && isWow64Process(GetCurrentProcess(), &isWow64) && isWow64;
}

}  // namespace

TRegistryView OwnView() {
  return sizeof(void*) == 8 ? TRegistryView::Bits64 : TRegistryView::Bits32;
}

bool HasView(TRegistryView view) {
  return view == OwnView() || OwnView() == TRegistryView::Bits64 || Is32BitProgramOn64BitWindows();
}

REGSAM ViewFlag(TRegistryView view) {
  return view == TRegistryView::Bits64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
}

}  // namespace corvalt
