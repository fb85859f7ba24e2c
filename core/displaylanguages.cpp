#include "core/displaylanguages.h"

#include <algorithm>
#include <iterator>

namespace corvalt {

namespace {

// Numbers from "Language Identifier Constants and Strings", learn.microsoft.com.
struct TLanguageFile {
  std::uint16_t Identifier;
  TextView File;
};

// One country's or script's language where others of the same primary language have another file or none.
constexpr TLanguageFile kExactLanguages[] = {
    {0x0416, u"portuguese-brazil.lng"},    // Brazil
    {0x0804, u"chinese-simplified.lng"},   // China
    {0x1004, u"chinese-simplified.lng"},   // Singapore
    {0x0004, u"chinese-simplified.lng"},   // without a country
    {0x0404, u"chinese-traditional.lng"},  // Taiwan
    {0x0C04, u"chinese-traditional.lng"},  // Hong Kong
    {0x1404, u"chinese-traditional.lng"},  // Macao
    {0x7C04, u"chinese-traditional.lng"},  // without a country
};

// The lower ten bits of an identifier: the primary language.
constexpr std::uint16_t kPrimaryLanguageBits = 0x03FF;
constexpr TLanguageFile kPrimaryLanguages[] = {
    {0x07, u"german.lng"},   {0x0A, u"spanish.lng"}, {0x0C, u"french.lng"},    {0x10, u"italian.lng"},
    {0x11, u"japanese.lng"}, {0x12, u"korean.lng"},  {0x13, u"dutch.lng"},     {0x15, u"polish.lng"},
    {0x19, u"russian.lng"},  {0x1F, u"turkish.lng"}, {0x22, u"ukrainian.lng"},
};

template <std::size_t count>
TextView FileIn(const TLanguageFile (&languages)[count], std::uint16_t identifier) {
  const auto* const found = std::ranges::find(
      languages, identifier, [](const TLanguageFile& language) { return language.Identifier; });
  return found == std::end(languages) ? TextView() : found->File;
}

}  // namespace

Text LanguageFileOf(std::uint16_t languageIdentifier) {
  TextView file = FileIn(kExactLanguages, languageIdentifier);
  if (file.empty())
    file = FileIn(kPrimaryLanguages, languageIdentifier & kPrimaryLanguageBits);
  return Text(file.empty() ? kEnglishFile : file);
}

}  // namespace corvalt
