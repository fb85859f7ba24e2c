#include "platform/windows/windowsmachine.h"

#include <cstdint>
#include <vector>

#include "base/limits.h"
#include "platform/windows/windowsapi.h"
// The system's own headers expect windows.h before them.
#include <sddl.h>

namespace corvalt {

namespace {

// TOKEN_USER with the identifier behind it; empty on failure. Aligned as the record needs it.
std::vector<std::uint64_t> ReadTokenUser() {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened))
    return {};
  const TOwnedObject token(opened);
  DWORD size = 0;
  GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
  std::vector<std::uint64_t> record(size / sizeof(std::uint64_t) + 1);
  if (size == 0 || !GetTokenInformation(token.Get(), TokenUser, record.data(), size, &size))
    return {};
  return record;
}

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
  const std::vector<std::uint64_t> record = ReadTokenUser();
  wchar_t* text = nullptr;
  if (record.empty() ||
      !ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(record.data())->User.Sid, &text))
    return {};
  const TOwnedLocalMemory owner(text);
  return Text(FromWide(text));
}

}  // namespace corvalt
