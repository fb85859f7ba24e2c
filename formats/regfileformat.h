// The words of a REGEDIT4 file, and of the comments in which a backup keeps what REGEDIT4 has no words for.
//
// Names and data that REGEDIT4 can't hold exactly (names outside the ANSI code page or with line breaks,
// strings that are ill-formed or not ended by one NUL) stand in comments, which the system's registry editor
// skips:
//
//   ;TIORegistry key=HKEY_CURRENT_USER:<path>
//   ;TIORegistry value=<name>:<type>:<data>
//
// The path begins with "\"; path, name and data are bytes in hexadecimal, two digits each, texts as
// little-endian 16-bit units; the type is a hexadecimal number. A line that goes on ends in "+", and the next
// one begins with ";TIORegistry+". Below a key line of this form every value has this form too, because the
// editor would write a plain one to the key before.
//
// Everything else stands in comments that begin with ";Corvalt ". Readers skip those that they don't know.
// None of them stands inside a folded value. Behind the header, where the backup was made
// (formats/backupblock.h):
//
//   ;Corvalt format=1
//   ;Corvalt codepage=1252
//   ;Corvalt view=64
//   ;Corvalt computer=ANNS-PC
//   ;Corvalt user=S-1-5-21-1000-2000-3000-1001
//
// Before a key line, what the key has besides its values:
//
//   ;Corvalt hive=HKEY_LOCAL_MACHINE      whose Software\Classes holds a key of the merged HKEY_CLASSES_ROOT
//   ;Corvalt class=<name>                 as above: bytes in hexadecimal
//   ;Corvalt volatile=1
//   ;Corvalt security=<descriptor>        self-relative, bytes in hexadecimal
//   ;Corvalt time=<last write>            a FILETIME as sixteen hexadecimal digits
//
// A line that goes on ends in "+", and the next one begins with ";Corvalt +". And as the last line the number
// of keys, the number of values and the CRC-32 of all bytes before the line:
//
//   ;Corvalt end=12:34:89abcdef
#pragma once

#include <cstdint>
#include <optional>

#include "base/keypaths.h"
#include "base/text.h"
#include "system/registryvalues.h"

namespace corvalt {

// What a key has besides its values and subkeys, as far as a backup keeps it.
struct TRegFileAttributes {
  // For a key below HKEY_CLASSES_ROOT the root whose Software\Classes holds it, HKEY_CURRENT_USER or
  // HKEY_LOCAL_MACHINE; else kNoRootKey.
  TRootKey Hive = kNoRootKey;
  Text ClassName;
  bool IsVolatile = false;
  TBytes Security;                         // a self-relative SECURITY_DESCRIPTOR; empty: what a new key gets
  std::optional<std::uint64_t> LastWrite;  // a FILETIME

  bool operator==(const TRegFileAttributes&) const = default;
};

inline constexpr TextView kRegFileHeader = u"REGEDIT4";
inline constexpr TextView kDwordWord = u"dword:";
inline constexpr TextView kHexWord = u"hex";

inline constexpr TextView kExactLine = u";TIORegistry ";
inline constexpr TextView kExactContinuation = u";TIORegistry+";
inline constexpr TextView kExactKey = u"key=";
inline constexpr TextView kExactValue = u"value=";
inline constexpr char16_t kExactSeparator = u':';
inline constexpr char16_t kExactGoesOn = u'+';

inline constexpr TextView kBackupLine = u";Corvalt ";
inline constexpr TextView kBackupContinuation = u";Corvalt +";
inline constexpr TextView kHiveWord = u"hive=";
inline constexpr TextView kClassWord = u"class=";
inline constexpr TextView kVolatileLine = u"volatile=1";
inline constexpr TextView kSecurityWord = u"security=";
inline constexpr TextView kTimeWord = u"time=";

inline bool IsExactLine(TextView line) {
  return line.starts_with(kExactLine) || line.starts_with(kExactContinuation);
}

// Whether the line is a comment that this program reads.
inline bool IsOwnComment(TextView line) {
  return IsExactLine(line) || line.starts_with(kBackupLine);
}

}  // namespace corvalt
