#include "platform/windows/usersid.h"

#include <cstdint>
#include <vector>

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

Text UserSidText() {
  const std::vector<std::uint64_t> record = ReadTokenUser();
  wchar_t* text = nullptr;
  if (record.empty() ||
      !ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(record.data())->User.Sid, &text))
    return {};
  const TOwnedLocalMemory owner(text);
  return Text(FromWide(text));
}

}  // namespace corvalt
