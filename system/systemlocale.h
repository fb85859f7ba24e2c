// What the user's locale and the system's code page decide.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"

namespace corvalt {

// Local date and time as a day count: whole days since 30 December 1899, the fraction is the time of day.
using TDateTime = double;

class TLocale {
 public:
  virtual ~TLocale() = default;

  virtual Text DecimalSeparator() = 0;
  virtual Text ThousandsSeparator() = 0;

  // The language in which Windows shows itself to this user ("Language Identifiers", learn.microsoft.com).
  virtual std::uint16_t DisplayLanguage() = 0;

  // The user's short date format and long time format. A date outside the system's calendar gives the empty
  // text.
  virtual Text FormatShortDate(TDateTime time) = 0;
  virtual Text FormatLongTime(TDateTime time) = 0;

  // The system's ANSI code page. Encoding takes the system's best fit for what the code page lacks;
  // EncodeAnsiExact returns nullopt when decoding would not give back the same units.
  virtual Text DecodeAnsi(std::string_view bytes) = 0;
  virtual std::string EncodeAnsi(TextView text) = 0;
  virtual std::optional<std::string> EncodeAnsiExact(TextView text) = 0;

  // The number of that code page ("Code Page Identifiers", learn.microsoft.com).
  virtual std::uint32_t AnsiCodePage() = 0;

  // Whether the system has a code page of this number; text in it, which is empty where the system has none.
  virtual bool HasCodePage(std::uint32_t codePage) = 0;
  virtual Text DecodeCodePage(std::uint32_t codePage, std::string_view bytes) = 0;

  // The system's own words for a Windows error code, without a line end.
  virtual Text SystemMessage(std::uint32_t code) = 0;
};

}  // namespace corvalt
