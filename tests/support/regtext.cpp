#include "tests/support/regtext.h"

#include <algorithm>
#include <stdexcept>

#include "base/keypaths.h"
#include "formats/ioregistry.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memoryrawregistry.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

std::string Hex(std::uint32_t number, int digits) {
  std::string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
    text.push_back("0123456789abcdef"[(number >> shift) & 15]);
  return text;
}

// Without leading zeros.
std::string HexNumber(std::uint32_t number) {
  const std::string text = Hex(number, 8);
  return text.substr(std::min(text.find_first_not_of('0'), text.size() - 1));
}

std::string Quoted(TextView text) {
  std::string quoted = "\"";
  for (const char unit : EncodeUtf8(text)) {
    if (unit == '"' || unit == '\\')
      quoted.push_back('\\');
    quoted.push_back(unit);
  }
  return quoted + "\"";
}

std::string HexBytes(const TBytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes)
    text += (text.empty() ? "" : ",") + Hex(byte, 2);
  return text;
}

// The text of a string as Windows stores it: no NUL but the one at its end, and no control characters.
std::optional<Text> PlainString(const TRawValue& value) {
  if (value.Type != kRegSz || value.Data.size() % 2 != 0 || value.Data.empty())
    return std::nullopt;
  Text text;
  for (std::size_t i = 0; i < value.Data.size(); i += 2)
    text.push_back(static_cast<char16_t>(value.Data[i] | (value.Data[i + 1] << 8)));
  const bool isPlain = text.find_first_of(TextView(u"\0\r\n", 3)) == text.size() - 1 && text.back() == u'\0';
  text.pop_back();
  return isPlain ? std::optional(text) : std::nullopt;
}

std::string DataText(const TRawValue& value) {
  const TBytes& data = value.Data;
  if (const std::optional<Text> text = PlainString(value))
    return Quoted(*text);
  if (value.Type == kRegDword && data.size() == 4)
    return "dword:" + Hex(data[3], 2) + Hex(data[2], 2) + Hex(data[1], 2) + Hex(data[0], 2);
  const std::string type = value.Type == kRegBinary ? "hex:" : "hex(" + HexNumber(value.Type) + "):";
  return type + HexBytes(data);
}

void AppendKey(const TMemoryHives& hives, const TOpenMemoryKey& key, const std::string& path,
               std::string& text) {
  text += (text.empty() ? "[" : "\n[") + path + "]\n";
  for (const TRawValue* value : hives.OrderedValues(key))
    text += (value->Name.empty() ? "@" : Quoted(value->Name)) + "=" + DataText(*value) + "\n";
  for (const Text& name : hives.SubKeyNames(key))
    AppendKey(hives, hives.Find(key, {name}, false), path + "\\" + EncodeUtf8(name), text);
}

// The text with the path of the top key in each key line.
std::string KeysBelow(std::string_view top, std::string_view text) {
  std::string whole;
  bool beginsLine = true;
  for (const char unit : text) {
    whole.push_back(unit);
    if (beginsLine && unit == '[')
      whole.append(top);
    beginsLine = unit == '\n';
  }
  return whole;
}

}  // namespace

void LoadRegText(TMemoryRegistry& registry, std::string_view text, std::string_view top) {
  TMemoryLocale locale;
  TMemoryRawRegistry raw(registry);
  TIORegistry importer(raw, locale);
  const std::string file = "REGEDIT4\n" + KeysBelow(top, text);
  const TImportResult result =
      importer.Import({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
  if (!result.EverythingWritten())
    throw std::invalid_argument("no registry text: " + file);
}

std::string RegText(const TMemoryRegistry& registry, TextView fullPath) {
  const std::size_t rootEnd = std::min(fullPath.find(u'\\'), fullPath.size());
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(fullPath.substr(rootEnd));
  const TRootKey rootKey = RootKeyFromName(fullPath.substr(0, rootEnd));
  const TMemoryHives& hives = registry.Hives();
  const TOpenMemoryKey key = hives.Find(hives.Root(rootKey), parsed.value().Names, false);
  std::string text;
  if (key)
    AppendKey(hives, key, EncodeUtf8(fullPath), text);
  return text;
}

}  // namespace corvalt
