#include "platform/windows/systemtimes.h"

#include <cmath>

namespace corvalt {

namespace {

// A file time counts 100 nanoseconds from 1 January 1601; the day count starts on 30 December 1899.
constexpr std::int64_t kDaysFrom1601 = 109205;
constexpr std::int64_t kMillisecondsADay = 86400000;
constexpr std::int64_t kTicksAMillisecond = 10000;
constexpr double kLargestDayCount = 20000000;  // beyond the calendar either way

}  // namespace

std::optional<SYSTEMTIME> SystemTimeOf(TDateTime time) {
  if (!(std::abs(time) < kLargestDayCount))
    return std::nullopt;
  const std::int64_t milliseconds =
      std::llround(time * kMillisecondsADay) + kDaysFrom1601 * kMillisecondsADay;
  if (milliseconds < 0)
    return std::nullopt;
  const std::int64_t ticks = milliseconds * kTicksAMillisecond;
  const FILETIME fileTime = {static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
  SYSTEMTIME systemTime = {};
  if (!FileTimeToSystemTime(&fileTime, &systemTime))
    return std::nullopt;
  return systemTime;
}

TDateTime DateTimeOf(const SYSTEMTIME& time) {
  FILETIME fileTime = {};
  SystemTimeToFileTime(&time, &fileTime);
  const auto ticks =
      static_cast<std::int64_t>((std::uint64_t{fileTime.dwHighDateTime} << 32) | fileTime.dwLowDateTime);
  const std::int64_t milliseconds = ticks / kTicksAMillisecond - kDaysFrom1601 * kMillisecondsADay;
  return static_cast<double>(milliseconds) / static_cast<double>(kMillisecondsADay);
}

}  // namespace corvalt
