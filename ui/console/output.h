// What the commands write, with the reason told when it can't be written.
#pragma once

#include <string>
#include <string_view>

#include "ui/console/console.h"

namespace corvalt {

// Writes data to standard output. False after a failure.
bool WriteData(TConsoleContext& context, std::string_view utf8);

// Replaces the file whole. False after a failure, which leaves the old file in place.
bool WriteWholeFile(TConsoleContext& context, TextView file, std::string_view bytes);

// Tells a text that takes a reason as its argument; the bare reason where the language files lack the text.
void TellReason(TConsoleContext& context, TextId id, TextView reason);

// A text on one line of a listing, in UTF-8: what a line can't show, control characters and lone surrogates,
// becomes U+FFFD.
std::string LineText(TextView text);

}  // namespace corvalt
