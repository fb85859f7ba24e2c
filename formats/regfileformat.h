// The words of a REGEDIT4 file.
//
// What REGEDIT4 can't say exactly (names outside the ANSI code page or with line breaks, strings that are
// ill-formed or not ended by one NUL) stands in comments of our own, which the system's registry editor
// skips:
//
//   ;TIORegistry key=HKEY_CURRENT_USER:<path>
//   ;TIORegistry value=<name>:<type>:<data>
//
// The path begins with "\"; path, name and data are bytes in hexadecimal, two digits each, texts as
// little-endian 16-bit units; the type is a hexadecimal number. A line that goes on ends in "+", and the next
// one begins with
// ";TIORegistry+". Below a key line of this form every value has this form too, because the editor would
// write a plain one to the key before.
#pragma once

#include "base/text.h"
#include "system/rawregistry.h"

namespace corvalt {

// REGEDIT4 holds the data of these types in the ANSI code page.
inline bool IsTextType(std::uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

inline constexpr TextView kRegFileHeader = u"REGEDIT4";
inline constexpr TextView kDwordWord = u"dword:";
inline constexpr TextView kHexWord = u"hex";

inline constexpr TextView kExactLine = u";TIORegistry ";
inline constexpr TextView kExactContinuation = u";TIORegistry+";
inline constexpr TextView kExactKey = u"key=";
inline constexpr TextView kExactValue = u"value=";
inline constexpr char16_t kExactSeparator = u':';
inline constexpr char16_t kExactGoesOn = u'+';

}  // namespace corvalt
