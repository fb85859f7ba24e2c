// Registries of tests as little texts in the manner of .reg files:
//
//   [HKEY_CURRENT_USER\Software\Vendor]
//   @="the default value"
//   "Path"="C:\\Program Files\\Vendor"
//   "Count"=dword:00000003
//   "Order"=hex:08,00
#pragma once

#include <string>
#include <string_view>

#include "base/text.h"
#include "platform/memory/memoryregistry.h"

namespace corvalt {

// Adds the keys and values of a text, without the header line, to the registry. Where top is a key's full
// path, the text's keys stand below it: "[\Games]", and "[]" for the key itself. A text that is malformed or
// that the registry refuses throws std::invalid_argument.
void LoadRegText(TMemoryRegistry& registry, std::string_view text, std::string_view top = {});

// The key with all below it as such a text, in the order in which the registry lists it, with an empty line
// between two keys; "" when there is no such key. Access rules do not count. Written without the product's
// exporter.
std::string RegText(const TMemoryRegistry& registry, TextView fullPath);

}  // namespace corvalt
