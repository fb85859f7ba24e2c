// The results tree as JSON, for scripts.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/text.h"
#include "scan/scantrees.h"
#include "system/systemerror.h"

namespace corvalt {

// Of the format below; a program that reads it looks at this first. docs/scan.schema.json describes it.
inline constexpr int kJsonFormatVersion = 1;

// {"formatVersion":1,"sections":[{"caption","rootKey","imageIndex","childCount","problems":[{"rootKey","keyPath","valueName",
// "valueData","description","kind","imageIndex","extra","checkMark"}]}]} in tree order, one problem a line,
// each line ended by LF. A root key is its full name, or null for none. UTF-8 in which a control character
// and a lone surrogate are \u escapes, so that every text can be read back unit by unit. Written in pieces of
// about 64 KB, so that it never stands in memory whole; the first failure of write ends it and is returned.
TSystemError WriteProblemsJson(const TResultsTree& results,
                               const std::function<TSystemError(std::string_view piece)>& write);

// A text as a JSON string, with its quotes.
std::string JsonString(TextView text);

}  // namespace corvalt
