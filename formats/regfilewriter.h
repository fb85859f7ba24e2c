// Writes keys and values as REGEDIT4 text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/keypaths.h"
#include "base/text.h"
#include "formats/backupblock.h"
#include "formats/regfileformat.h"
#include "system/registryvalues.h"
#include "system/systemlocale.h"

namespace corvalt {

// Appends to the bytes that it is given. Values belong to the key written before them.
class TRegFileWriter {
 public:
  // Both must outlive this object.
  TRegFileWriter(TLocale& locale, TBytes& bytes);

  void WriteHeader();

  // Directly behind the header.
  void WriteOrigin(const TBackupOrigin& origin);

  // A key path begins with "\" and holds neither a doubled nor a trailing one. The attributes stand before
  // the key line.
  void WriteKey(TRootKey rootKey, TextView keyPath, const TRegFileAttributes& attributes = {});
  void WriteValue(const TRawValue& value);

  // The last line of a file that has an origin; all bytes are those of this file.
  void WriteEnd(const TBackupEnd& end);

 private:
  bool WritePlainValue(const TRawValue& value);
  bool AppendPlainData(const TRawValue& value);
  bool AppendTextData(const TRawValue& value);
  void AppendHexData(std::uint32_t type, std::string_view data);
  void AppendFoldedHex(std::string_view data);
  bool AppendPlain(TextView text);
  bool AppendQuoted(TextView text);

  void WriteAttributes(const TRegFileAttributes& attributes);
  void WriteAttribute(TextView word, std::string_view data);
  void WriteExactKey(TRootKey rootKey, TextView keyPath);
  void WriteExactValue(const TRawValue& value);
  void AppendExactBytes(std::string_view data);
  void AppendExactText(TextView text);
  void AppendExactWord(std::string_view word);
  void AppendFoldedWord(std::string_view word, TextView continuation);

  void AppendDigits(std::uint8_t byte);
  void FlushLine();

  TLocale& m_locale;
  TBytes& m_bytes;
  std::string m_line;          // under construction; holds folds when it is long
  std::size_t m_lastFold = 0;  // in m_line, where its last physical line begins
  Text m_units;                // the buffer of the text being written
  bool m_keyIsExact = false;
};

}  // namespace corvalt
