// The user's locale, the system's code page and the system's own messages.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

class TWindowsLocale : public TLocale {
 public:
  std::uint16_t DisplayLanguage() override;
  Text DecimalSeparator() override;
  Text ThousandsSeparator() override;
  Text FormatShortDate(TDateTime time) override;
  Text FormatLongTime(TDateTime time) override;
  Text DecodeAnsi(std::string_view bytes) override;
  std::string EncodeAnsi(TextView text) override;
  std::optional<std::string> EncodeAnsiExact(TextView text) override;
  std::uint32_t AnsiCodePage() override;
  bool HasCodePage(std::uint32_t codePage) override;
  Text DecodeCodePage(std::uint32_t codePage, std::string_view bytes) override;
  Text SystemMessage(std::uint32_t code) override;
};

}  // namespace corvalt
