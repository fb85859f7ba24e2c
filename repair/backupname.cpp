#include "repair/backupname.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/lettercase.h"
#include "system/filestore.h"

namespace corvalt {

namespace {

constexpr int kSignificantDigits = 15;
constexpr TextView kNumberUnits = u"0123456789.eE+-";

// The C library's routines, not from_chars and to_chars, whose tables for floating-point numbers are a tenth
// of the program. The decimal sign is a point for both, because the program never calls setlocale.
std::optional<double> NumberWithSign(TextView name, TextView sign) {
  const Text text = sign.empty() ? Text(name) : ReplaceAll(name, sign, u".");
  if (text.find_first_not_of(kNumberUnits) != Text::npos)
    return std::nullopt;
  std::string ascii(text.begin(), text.end());
  if (ascii.starts_with('+'))
    ascii.erase(0, 1);
  if (ascii.empty() || ascii.starts_with('+'))
    return std::nullopt;
  char* end = nullptr;
  errno = 0;
  const double number = std::strtod(ascii.c_str(), &end);
  // Too large gives infinity, too small zero; a number that only lost digits is one.
  const bool isInRange = std::isfinite(number) && (errno != ERANGE || number != 0);
  const bool isNumber = isInRange && end == ascii.c_str() + ascii.size();
  return isNumber ? std::optional(number) : std::nullopt;
}

Text WithPoint(TDateTime time) {
  std::array<char, 32> digits{};
  const int length = std::snprintf(digits.data(), digits.size(), "%.*g", kSignificantDigits, time);
  return FromAscii({digits.data(), static_cast<std::size_t>(length)});
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
