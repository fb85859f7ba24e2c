// Text files in the encodings that users and translators save them in.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// The text in the bytes. A byte order mark (UTF-8, UTF-16 LE or BE) decides and is not part of the text;
// without one the bytes are UTF-8 when they are valid UTF-8, else they are in the ANSI code page. An odd last
// byte of UTF-16 is dropped.
Text DecodeTextFile(std::span<const std::uint8_t> bytes, TLocale& locale);

// Calls visit with each line of what DecodeTextFile returns. Of a file that is not UTF-16 only one line at a
// time is decoded, so that a large one costs little beside its bytes.
void VisitFileLines(std::span<const std::uint8_t> bytes, TLocale& locale,
                    const std::function<void(TextView line)>& visit);

// The parts of it, for files that are written back as they were read.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
inline constexpr std::string_view kUtf16LittleEndianMark = "\xFF\xFE";
inline constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";

std::string_view AsCharacters(std::span<const std::uint8_t> bytes);
Text DecodeUtf16LittleEndian(std::string_view bytes);

}  // namespace corvalt
