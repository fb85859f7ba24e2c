#include "system/filestore.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "base/limits.h"

namespace corvalt {

namespace {

constexpr TextView kForbiddenUnits = u"\\/:*?\"<>|";
constexpr TextView kTemporaryEnd = u".tmp";

// The number that the digits at the end of text make, and the text before them.
std::optional<std::uint32_t> TakeNumber(TextView& text) {
  const std::size_t begin = text.find_last_not_of(u"0123456789") + 1;
  const std::string digits(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end());
  std::uint32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc())
    return std::nullopt;
  text = text.substr(0, begin);
  return number;
}

bool TakeUnit(TextView& text, char16_t unit) {
  if (!text.ends_with(unit))
    return false;
  text.remove_suffix(1);
  return true;
}

}  // namespace

bool IsPlainFileName(TextView name) {
  if (name.empty() || name.size() > kLongestFileName || name.back() == u'.' || name.back() == u' ')
    return false;
  return std::all_of(name.begin(), name.end(), [](char16_t unit) {
    return unit >= u' ' && kForbiddenUnits.find(unit) == TextView::npos;
  });
}

Text TemporaryNameOf(TextView target, std::uint32_t processId, int number) {
  return Text(target) + u"." + DecimalText(processId) + u"-" + DecimalText(number) + Text(kTemporaryEnd);
}

std::optional<TTemporaryName> ParseTemporaryName(TextView name) {
  if (!name.ends_with(kTemporaryEnd))
    return std::nullopt;
  name.remove_suffix(kTemporaryEnd.size());
  if (!TakeNumber(name) || !TakeUnit(name, u'-'))
    return std::nullopt;
  const std::optional<std::uint32_t> processId = TakeNumber(name);
  if (!processId || !TakeUnit(name, u'.') || name.empty())
    return std::nullopt;
  return TTemporaryName{Text(name), *processId};
}

}  // namespace corvalt
