#include "repair/backupname.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "base/lettercase.h"
#include "system/filestore.h"

namespace corvalt {

namespace {

constexpr int kSignificantDigits = 15;
constexpr TextView kNumberUnits = u"0123456789.eE+-";

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

}  // namespace

TBackupName TBackupName::OfTime(TDateTime time, TextView decimalSign) {
  const Text withPoint = WithPoint(time);
  const std::optional<TBackupName> name = FromText(ReplaceAll(withPoint, u".", decimalSign));
  // A sign that is read as another number, such as a digit, is none.
  if (name && TimeOfBackupName(name->Value(), decimalSign) == NumberWithSign(withPoint, u"."))
    return *name;
  return TBackupName(withPoint);
}

std::optional<TBackupName> TBackupName::FromText(TextView text) {
  if (!IsPlainFileName(text) || EqualIgnoringCase(text, kBackupIndexName) ||
      text.find(u']') != TextView::npos)
    return std::nullopt;
  return TBackupName(Text(text));
}

std::optional<TDateTime> TimeOfBackupName(TextView name, TextView decimalSign) {
  for (const TextView sign : {TextView(u"."), TextView(u","), decimalSign}) {
    if (const std::optional<double> number = NumberWithSign(name, sign))
      return number;
  }
  return std::nullopt;
}

}  // namespace corvalt
