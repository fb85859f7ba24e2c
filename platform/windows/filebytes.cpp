#include "platform/windows/filebytes.h"

#include <algorithm>

#include "base/limits.h"

namespace corvalt {

namespace {

constexpr std::size_t kBlock = std::size_t{1024} * 1024;  // bytes of one reading or writing

}  // namespace

TSystemError ReadAll(HANDLE file, std::vector<std::uint8_t>& bytes) {
  for (;;) {
    const std::size_t done = bytes.size();
    bytes.resize(done + kBlock);
    DWORD read = 0;
    if (!ReadFile(file, bytes.data() + done, static_cast<DWORD>(kBlock), &read, nullptr))
      return LastError();
    bytes.resize(done + read);
    if (read == 0)
      return {};
  }
}

TSystemError WriteBytes(HANDLE file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kBlock));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), size, &written, nullptr))
      return LastError();
    if (written == 0)
      return TSystemError{kErrorDiskFull};
    bytes = bytes.subspan(written);
  }
  return {};
}

TSystemError WriteAll(HANDLE file, std::span<const std::uint8_t> bytes) {
  const TSystemError error = WriteBytes(file, bytes);
  if (error.Failed())
    return error;
  return FlushFileBuffers(file) ? TSystemError{} : LastError();
}

bool IsLinkOf(DWORD attributes, DWORD reparseTag) {
  // IsReparseTagNameSurrogate, learn.microsoft.com ("Reparse Point Tags").
  constexpr DWORD kNameSurrogate = 0x20000000;
  const bool isReparsePoint = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return isReparsePoint && (reparseTag == 0 || (reparseTag & kNameSurrogate) != 0);
}

bool IsLinkPath(const Text& path, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    return false;
  // The tag stands in dwReserved0 (WIN32_FIND_DATA, learn.microsoft.com).
  WIN32_FIND_DATAW found = {};
  const TOwnedFind search(FindFirstFileW(Wide(path), &found));
  return IsLinkOf(attributes, search ? found.dwReserved0 : 0);
}

Text FullPathOf(const Text& path) {
  // Room for a usual path; a longer one takes a second call.
  Text full(kMaxPath, u'\0');
  DWORD length = GetFullPathNameW(Wide(path), kMaxPath, WideBuffer(full), nullptr);
  if (length > full.size()) {
    full.resize(length);
    length = GetFullPathNameW(Wide(path), length, WideBuffer(full), nullptr);
  }
  full.resize(std::min<std::size_t>(length, full.size()));
  return full;
}

Text PathOfAnyLength(TextView path) {
  Text plain(path);
  if (path.size() < kMaxPath || path.starts_with(u"\\\\?\\") || path.starts_with(u"\\\\.\\"))
    return plain;
  const Text full = FullPathOf(plain);
  if (full.empty() || full.starts_with(u"\\\\.\\"))
    return plain;
  return full.starts_with(u"\\\\") ? u"\\\\?\\UNC" + full.substr(1) : u"\\\\?\\" + full;
}

bool IsDevicePath(const Text& path) {
  return FullPathOf(path).starts_with(u"\\\\.\\");
}

std::int64_t SizeOf(DWORD high, DWORD low) {
  return static_cast<std::int64_t>((std::uint64_t{high} << 32) | low);
}

}  // namespace corvalt
