// The texts that the user sees, looked up by identifier in the selected language and in English.
#pragma once

#include <cstdint>
#include <map>
#include <span>

#include "base/text.h"
#include "core/languageids.h"
#include "system/system.h"

namespace corvalt {

// The lines of one language file.
class TLanguageTable {
 public:
  // The lines of a file's bytes: UTF-16 or UTF-8 by a byte order mark, else UTF-8 when valid, else the ANSI
  // code page. Lines without "=" are left out; of two lines with one identifier the first counts.
  static TLanguageTable FromFile(std::span<const std::uint8_t> bytes, TLocale& locale);

  // The text after the "=" of this identifier's line, empty when there is none. A blank after the "=" is
  // still there.
  Text Find(TextView identifier) const;

  // All identifiers, for checks of a language file as a whole.
  const std::map<Text, Text, std::less<>>& Lines() const {
    return m_lines;
  }

 private:
  std::map<Text, Text, std::less<>> m_lines;
};

// The selected table and the English one that fills its gaps.
struct TLanguageTexts {
  TLanguageTable Selected;
  TLanguageTable English;
};

// The text of an identifier: "%s2" replaced by arg2, then "%s" by arg1, every "&" doubled, leading blanks
// removed. Empty when neither table has it.
Text LanguageText(const TLanguageTexts& texts, TextId id, TextView arg1 = {}, TextView arg2 = {});

// A text as it is shown where the system gives "&" no meaning: each doubled "&" single again.
Text PlainText(TextView text);

// The two together: an identifier's text with each "&" once, for what is shown as it is.
Text PlainLanguageText(const TLanguageTexts& texts, TextId id, TextView arg1 = {}, TextView arg2 = {});

// Loads both tables of the user's language and changes no setting: for messages before the start
// sequence.
void ReadLanguage(TSystem& system, TextView programFolder, TLanguageTexts& texts);

// Reads the user's language from the suite's settings and loads both tables. Where the setting is empty, the
// language that Windows shows is taken and written to it; where that language has no file, or the file that
// the setting names is missing, "english.lng" is. Returns the language file's name. A missing file leaves its
// table empty.
Text LoadLanguage(TSystem& system, TextView programFolder, TLanguageTexts& texts);

}  // namespace corvalt
