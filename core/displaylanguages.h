// Which of the shipped language files a display language of Windows has.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace corvalt {

// The language that is always there.
inline constexpr TextView kEnglishFile = u"english.lng";

// The name of the language file for a language identifier of Windows, "english.lng" for a language without
// one. Every country's German is German; Chinese goes by its script, and only Brazil's Portuguese has a file.
Text LanguageFileOf(std::uint16_t languageIdentifier);

}  // namespace corvalt
