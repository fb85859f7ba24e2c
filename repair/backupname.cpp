#include "repair/backupname.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr int kSignificantDigits = 15;
constexpr TextView kNumberUnits = u"0123456789.eE+-";
constexpr TextView kForbiddenUnits = u"\\/:*?\"<>|";
constexpr TextView kIndexName = u"index.ini";

std::optional<double> NumberWithSign(TextView name, TextView sign) {
  const Text text = sign.empty() ? Text(name) : ReplaceAll(name, sign, u".");
  if (text.find_first_not_of(kNumberUnits) != Text::npos)
    return std::nullopt;
  std::string ascii(text.begin(), text.end());
  if (ascii.starts_with('+'))
    ascii.erase(0, 1);
  double number = 0;
  const char* const end = ascii.data() + ascii.size();
  const std::from_chars_result result = std::from_chars(ascii.data(), end, number);
  const bool isNumber = result.ec == std::errc() && result.ptr == end && std::isfinite(number);
  return isNumber ? std::optional(number) : std::nullopt;
}

Text WithPoint(TDateTime time) {
  std::array<char, 32> digits{};
  const std::to_chars_result result = std::to_chars(digits.data(), digits.data() + digits.size(), time,
                                                    std::chars_format::general, kSignificantDigits);
  return FromAscii({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())});
}

// Whether a name with this sign in it is a file name and a section name, and is read as the same number.
bool IsUsableName(const Text& name, const Text& withPoint, TextView sign) {
  return IsPlainFileName(name) && name.find(u']') == Text::npos &&
         TimeOfBackupName(name, sign) == NumberWithSign(withPoint, u".");
}

}  // namespace

Text BackupNameOf(TDateTime time, TextView decimalSign) {
  const Text withPoint = WithPoint(time);
  Text name = ReplaceAll(withPoint, u".", decimalSign);
  return IsUsableName(name, withPoint, decimalSign) ? name : withPoint;
}

std::optional<TDateTime> TimeOfBackupName(TextView name, TextView decimalSign) {
  for (const TextView sign : {TextView(u"."), TextView(u","), decimalSign}) {
    if (const std::optional<double> number = NumberWithSign(name, sign))
      return number;
  }
  return std::nullopt;
}

bool IsPlainFileName(TextView name) {
  if (name.empty() || name.back() == u'.' || name.back() == u' ')
    return false;
  const bool isPlain = std::all_of(name.begin(), name.end(), [](char16_t unit) {
    return unit >= u' ' && kForbiddenUnits.find(unit) == TextView::npos;
  });
  return isPlain && !EqualIgnoringCase(name, kIndexName);
}

}  // namespace corvalt
