// What the commands write, with the reason told when it can't be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/text.h"
#include "core/languageids.h"
#include "core/languagetexts.h"
#include "system/filestore.h"
#include "system/systemerror.h"
#include "ui/console/console.h"

namespace corvalt {

// Tells why what was asked for is not written; subject is the file, and empty for standard output. False
// after a failure.
bool TellWriteFailure(TConsoleContext& context, TSystemError error, TextView subject);

std::span<const std::uint8_t> BytesOf(std::string_view text);

// Writes data to standard output. False after a failure.
bool WriteData(TConsoleContext& context, std::string_view utf8);

// Replaces the file whole. False after a failure, which leaves the old file in place.
bool WriteWholeFile(TConsoleContext& context, TextView file, std::string_view bytes);

// The same with bytes that are made piece by piece while they are written.
bool WriteWholeFile(TConsoleContext& context, TextView file, const TFileStore::TProducer& produce);

// A text of the language files as a console shows it; its bare argument where they lack the text.
Text ConsoleText(const TLanguageTexts& texts, TextId id, TextView arg1 = {}, TextView arg2 = {});

// Tells such a text.
void TellText(TConsoleContext& context, TextId id, TextView arg1 = {}, TextView arg2 = {});
void TellCount(TConsoleContext& context, TextId id, std::size_t count);

// A text on one line of a listing, in UTF-8: what a line can't show, control characters and lone surrogates,
// becomes U+FFFD.
std::string LineText(TextView text);

}  // namespace corvalt
