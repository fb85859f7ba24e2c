// Any bytes as the selected and the English language file; every text that they say is looked up.
#include <cstdlib>

#include "core/languagetexts.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TMemoryLocale locale;
  const TLanguageTable table = TLanguageTable::FromFile({data, size}, locale);
  const TLanguageTexts texts = {{}, table};
  for (const auto& [identifier, text] : table.Lines()) {
    if (text != Trim(u"=" + text).substr(1))
      std::abort();
    const std::optional<std::int32_t> id = ParseInteger(identifier);
    if (!id)
      continue;
    const Text shown = LanguageText(texts, static_cast<TextId>(*id), u"a&b", u"<%s>");
    if (shown.starts_with(u' ') || Contains(shown, u"%s"))
      std::abort();
  }
  return 0;
}

}  // namespace corvalt
