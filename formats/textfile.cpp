#include "formats/textfile.h"

namespace corvalt {

namespace {

Text DecodeUtf16(std::string_view bytes, std::size_t lowByte) {
  Text text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i + lowByte]);
    const auto high = static_cast<unsigned char>(bytes[i + 1 - lowByte]);
    text.push_back(static_cast<char16_t>(low | (high << 8)));
  }
  return text;
}

}  // namespace

std::string_view AsCharacters(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Text DecodeUtf16LittleEndian(std::string_view bytes) {
  return DecodeUtf16(bytes, 0);
}

Text DecodeTextFile(std::span<const std::uint8_t> bytes, TLocale& locale) {
  std::string_view characters = AsCharacters(bytes);
  if (characters.starts_with(kUtf16LittleEndianMark))
    return DecodeUtf16(characters.substr(kUtf16LittleEndianMark.size()), 0);
  if (characters.starts_with(kUtf16BigEndianMark))
    return DecodeUtf16(characters.substr(kUtf16BigEndianMark.size()), 1);
  if (characters.starts_with(kUtf8Mark))
    characters.remove_prefix(kUtf8Mark.size());
  std::optional<Text> text = DecodeUtf8(characters);
  return text ? *std::move(text) : locale.DecodeAnsi(characters);
}

void VisitFileLines(std::span<const std::uint8_t> bytes, TLocale& locale,
                    const std::function<void(TextView line)>& visit) {
  std::string_view characters = AsCharacters(bytes);
  if (characters.starts_with(kUtf16LittleEndianMark) || characters.starts_with(kUtf16BigEndianMark)) {
    VisitLines(TextView(DecodeTextFile(bytes, locale)), visit);
    return;
  }
  if (characters.starts_with(kUtf8Mark))
    characters.remove_prefix(kUtf8Mark.size());
  // No character of UTF-8 or of an ANSI code page holds a line's end within it.
  bool isUtf8 = true;
  VisitLines(characters, [&](std::string_view line) { isUtf8 = isUtf8 && DecodeUtf8(line).has_value(); });
  VisitLines(characters,
             [&](std::string_view line) { visit(isUtf8 ? *DecodeUtf8(line) : locale.DecodeAnsi(line)); });
}

}  // namespace corvalt
