#include "system/registryvalues.h"

#include <algorithm>

namespace corvalt {

bool IsTextType(std::uint32_t type) {
  return IsStringType(type) || type == kRegMultiSz;
}

bool IsStringType(std::uint32_t type) {
  return type == kRegSz || type == kRegExpandSz;
}

bool IsDefaultValueName(TextView name) {
  return StoredValueName(name).empty();
}

TextView StoredValueName(TextView name) {
  return name == TextView(u"\0", 1) ? TextView() : name;
}

bool EndsInNul(std::span<const std::uint8_t> data) {
  const std::size_t size = data.size();
  return size >= 2 && size % 2 == 0 && data[size - 1] == 0 && data[size - 2] == 0;
}

TBytes UnitBytes(TextView text) {
  TBytes bytes;
  AppendUnits(text, bytes);
  return bytes;
}

TBytes StringBytes(TextView text) {
  TBytes bytes = UnitBytes(text);
  bytes.insert(bytes.end(), {0, 0});
  return bytes;
}

Text UnitsOf(std::span<const std::uint8_t> data) {
  Text text(data.size() / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  return text;
}

Text StringOf(std::span<const std::uint8_t> data) {
  Text text = UnitsOf(data);
  text.resize(std::min(text.find(u'\0'), text.size()));
  return text;
}

TBytes IntegerBytes(std::uint32_t value) {
  TBytes bytes;
  for (int shift = 0; shift < 32; shift += 8)
    bytes.push_back(static_cast<std::uint8_t>(value >> shift));
  return bytes;
}

std::optional<std::int32_t> IntegerOf(std::uint32_t type, std::span<const std::uint8_t> data) {
  std::uint32_t number = 0;
  if (type != kRegDword || data.size() != sizeof(number))
    return std::nullopt;
  for (std::size_t i = 0; i < data.size(); ++i)
    number |= std::uint32_t{data[i]} << (8 * i);
  return static_cast<std::int32_t>(number);
}

}  // namespace corvalt
