#include "platform/windows/windowsmachine.h"

#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr std::size_t kFirstPathUnits = 260;
constexpr std::size_t kMostPathUnits = 32768;  // no path of the system is longer

}  // namespace

TSystemVersion TWindowsMachine::GetVersion() {
  OSVERSIONINFOW information = {};
  information.dwOSVersionInfoSize = sizeof(information);
  if (!GetVersionExW(&information))
    return {};
  return {information.dwMajorVersion, information.dwMinorVersion,
          information.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS};
}

Text TWindowsMachine::GetSystemDirectory(std::size_t bufferLength) {
  Text folder(bufferLength, u'\0');
  const UINT length = GetSystemDirectoryW(WideBuffer(folder), static_cast<UINT>(bufferLength));
  folder.resize(length < bufferLength ? length : 0);
  return folder;
}

Text TWindowsMachine::ProgramFile() {
  // A path that does not fit is cut, and fills the buffer whole.
  for (std::size_t units = kFirstPathUnits; units <= kMostPathUnits * 2; units *= 2) {
    Text path(units, u'\0');
    const DWORD length = GetModuleFileNameW(nullptr, WideBuffer(path), static_cast<DWORD>(units));
    if (length < units) {
      path.resize(length);
      return path;
    }
  }
  return {};
}

}  // namespace corvalt
