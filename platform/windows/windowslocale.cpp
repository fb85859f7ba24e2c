#include "platform/windows/windowslocale.h"

#include <limits>

#include "platform/windows/systemtimes.h"
#include "platform/windows/windowsapi.h"

namespace corvalt {

namespace {

constexpr int kLocaleTextUnits = 80;  // the longest that the system allows, winnls.h

Text LocaleText(LCTYPE what) {
  Text text(kLocaleTextUnits, u'\0');
  const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, what, WideBuffer(text), kLocaleTextUnits);
  text.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
  return text;
}

using TFormatRoutine = int(WINAPI*)(LCID, DWORD, const SYSTEMTIME*, LPCWSTR, LPWSTR, int);

Text Formatted(TDateTime time, DWORD flags, TFormatRoutine routine) {
  const std::optional<SYSTEMTIME> systemTime = SystemTimeOf(time);
  if (!systemTime)
    return {};
  const int units = routine(LOCALE_USER_DEFAULT, flags, &*systemTime, nullptr, nullptr, 0);
  if (units <= 0)
    return {};
  Text text(static_cast<std::size_t>(units), u'\0');
  const int length = routine(LOCALE_USER_DEFAULT, flags, &*systemTime, nullptr, WideBuffer(text), units);
  text.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
  return text;
}

// The conversions count in int.
bool IsTooLong(std::size_t size) {
  return size > static_cast<std::size_t>(std::numeric_limits<int>::max());
}

}  // namespace

std::uint16_t TWindowsLocale::DisplayLanguage() {
  return GetUserDefaultUILanguage();
}

Text TWindowsLocale::DecimalSeparator() {
  return LocaleText(LOCALE_SDECIMAL);
}
Text TWindowsLocale::ThousandsSeparator() {
  return LocaleText(LOCALE_STHOUSAND);
}
Text TWindowsLocale::FormatShortDate(TDateTime time) {
  return Formatted(time, DATE_SHORTDATE, GetDateFormatW);
}
Text TWindowsLocale::FormatLongTime(TDateTime time) {
  return Formatted(time, 0, GetTimeFormatW);
}

Text TWindowsLocale::DecodeAnsi(std::string_view bytes) {
  return DecodeCodePage(CP_ACP, bytes);
}

std::uint32_t TWindowsLocale::AnsiCodePage() {
  return GetACP();
}

bool TWindowsLocale::HasCodePage(std::uint32_t codePage) {
  return IsValidCodePage(codePage) != FALSE;
}

Text TWindowsLocale::DecodeCodePage(std::uint32_t codePage, std::string_view bytes) {
  if (bytes.empty() || IsTooLong(bytes.size()))
    return {};
  const int size = static_cast<int>(bytes.size());
  const int units = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
  Text text(static_cast<std::size_t>(units), u'\0');
  MultiByteToWideChar(codePage, 0, bytes.data(), size, WideBuffer(text), units);
  return text;
}

std::string TWindowsLocale::EncodeAnsi(TextView text) {
  if (text.empty() || IsTooLong(text.size()))
    return {};
  const int units = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_ACP, 0, WideUnits(text), units, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, WideUnits(text), units, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

std::optional<std::string> TWindowsLocale::EncodeAnsiExact(TextView text) {
  std::string bytes = EncodeAnsi(text);
  if (DecodeAnsi(bytes) != text)
    return std::nullopt;
  return bytes;
}

Text TWindowsLocale::SystemMessage(std::uint32_t code) {
  constexpr DWORD kFlags =
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  wchar_t* message = nullptr;
  const DWORD length =
      FormatMessageW(kFlags, nullptr, code, 0, reinterpret_cast<LPWSTR>(&message), 0, nullptr);
  const TOwnedLocalMemory owner(message);
  if (length == 0)
    return DecimalText(code);
  return Trim(FromWide(message, length));
}

}  // namespace corvalt
