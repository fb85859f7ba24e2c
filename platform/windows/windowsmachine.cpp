#include "platform/windows/windowsmachine.h"

#include "base/limits.h"
#include "platform/windows/usersid.h"
#include "platform/windows/windowsapi.h"

namespace corvalt {

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
  for (std::size_t units = kMaxPath; units <= 2 * (kLongestPath + 1); units *= 2) {
    Text path(units, u'\0');
    const DWORD length = GetModuleFileNameW(nullptr, WideBuffer(path), static_cast<DWORD>(units));
    if (length < units) {
      path.resize(length);
      return path;
    }
  }
  return {};
}

Text TWindowsMachine::ComputerName() {
  Text name(MAX_COMPUTERNAME_LENGTH + 1, u'\0');
  auto units = static_cast<DWORD>(name.size());
  if (!GetComputerNameW(WideBuffer(name), &units))
    return {};
  name.resize(units);
  return name;
}

Text TWindowsMachine::UserSid() {
  return UserSidText();
}

}  // namespace corvalt
