#include "tests/wine/windowreader/output.h"

#include <stdexcept>
#include <string>

namespace corvalt {

void Print(const Text& text) {
  const std::string bytes = EncodeUtf8(text);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
            nullptr);
}

[[noreturn]] void Refuse(const char* reason) {
  throw std::runtime_error(reason);
}

Text Fields(const std::vector<Text>& fields) {
  Text line;
  for (const Text& field : fields)
    line += (line.empty() ? u"" : u"\t") + field;
  return line + u"\n";
}

Text OneLine(const Text& text) {
  return ReplaceAll(ReplaceAll(text, u"\r\n", u" | "), u"\t", u" ");
}

Text Number(std::int64_t number) {
  return DecimalText(number);
}

Text HandleText(HWND window) {
  return Number(static_cast<std::int64_t>(reinterpret_cast<LONG_PTR>(window)));
}

std::vector<Text> PlaceFields(const RECT& place) {
  return {Number(place.left), Number(place.top), Number(place.right - place.left),
          Number(place.bottom - place.top)};
}

}  // namespace corvalt
