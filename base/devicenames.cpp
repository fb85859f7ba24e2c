#include "base/devicenames.h"

#include <algorithm>
#include <iterator>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr TextView kDevices[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$", u"CLOCK$"};

// The serial and parallel ports: 1 to 9, and the superscripts of 1 to 3.
constexpr TextView kPortNumbers = u"123456789\u00B9\u00B2\u00B3";

constexpr std::size_t kLongestDevice = 7;

}  // namespace

bool IsDeviceName(TextView name) {
  TextView withoutExtension = name.substr(0, name.find(u'.'));
  withoutExtension = withoutExtension.substr(0, withoutExtension.find_last_not_of(u' ') + 1);
  if (withoutExtension.size() > kLongestDevice)
    return false;
  const Text stem = UpperCase(withoutExtension);
  if (stem.size() == 4 && (stem.starts_with(u"COM") || stem.starts_with(u"LPT")))
    return kPortNumbers.find(stem.back()) != TextView::npos;
  return std::find(std::begin(kDevices), std::end(kDevices), stem) != std::end(kDevices);
}

}  // namespace corvalt
