// Whole contents through an open file, and what its handle tells of it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/filestore.h"
#include "system/systemerror.h"

namespace corvalt {

// Reads to the end of the file. What was read before a failure stays in bytes.
TSystemError ReadAll(HANDLE file, std::vector<std::uint8_t>& bytes);

// Writes everything. It is on the disk after FlushFileBuffers only.
TSystemError WriteBytes(HANDLE file, std::span<const std::uint8_t> bytes);

// WriteBytes, and all of it is on the disk afterwards.
TSystemError WriteAll(HANDLE file, std::span<const std::uint8_t> bytes);

// Whether something with these attributes and this reparse tag stands for another place. A reparse point of
// no known tag counts as one.
[[nodiscard]] bool IsLinkOf(DWORD attributes, DWORD reparseTag);

// The same of what a path with these attributes names; a "\" at its end would follow a link.
[[nodiscard]] bool IsLinkPath(const Text& path, DWORD attributes);

// The whole path as the system makes it of a relative one or one with "..". Empty when it fails.
[[nodiscard]] Text FullPathOf(const Text& path);

// The path in a form that the system takes whatever its length: one of kMaxPath units or more in the form
// that names the system's own objects, which begins with "\\?\" (Maximum Path Length Limitation,
// learn.microsoft.com), a shorter one as it is.
[[nodiscard]] Text PathOfAnyLength(TextView path);

// Whether the system takes the path for that of a device, such as "nul" or "com1.txt" in any folder.
[[nodiscard]] bool IsDevicePath(const Text& path);

[[nodiscard]] std::int64_t SizeOf(DWORD high, DWORD low);

}  // namespace corvalt
