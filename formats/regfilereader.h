// Reads a REGEDIT4 file entry by entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "formats/regfilelines.h"
#include "system/rawregistry.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TRegFileEntry {
  enum class TKind { Key, Value, DeleteKey, DeleteValue };

  TKind Kind = TKind::Key;
  // The key, or the one that the value belongs to. The path begins with "\".
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;
  // The whole of a value; of a deletion its name alone.
  TRawValue Value;
};

// Malformed lines are skipped and counted, and so are the values after a malformed key line or a deleted key.
// Takes time and memory in proportion to the file.
class TRegFileReader {
 public:
  // Both must outlive this object.
  TRegFileReader(std::span<const std::uint8_t> bytes, TLocale& locale);

  // Whether the first line that isn't blank is "REGEDIT4". Without it there are no entries.
  bool HasHeader() const {
    return m_hasHeader;
  }

  // The next entry, good until the next call; null after the last one.
  const TRegFileEntry* Next();

  // Lines skipped so far, each line of a folded value counted.
  std::size_t LinesSkipped() const {
    return m_linesSkipped;
  }

 private:
  enum class TStringEnd { Closed, Open, Malformed };

  bool SaysSomething();
  bool ReadEntry();
  bool ReadKeyLine();
  bool ReadValueLine();
  bool ReadName();
  bool ReadData();
  bool ReadString();
  bool ReadStringOverLines(Text& text);
  bool ReadDword();
  bool ReadHex();
  bool ReadHexBytes(TBytes& bytes);
  bool ReadExactLine();
  bool ReadExactKey();
  bool ReadExactValue();
  bool ReadExactBytes(TBytes& bytes);
  bool ReadExactText(Text& text);
  bool SetKey(TextView rootName, TextView keyPath);

  // Tokens of the current line.
  void SkipBlanks();
  bool SkipBlanksAndFolds();
  bool AtEnd() const;
  bool Take(char16_t unit);
  bool TakeWord(TextView word);
  bool TakeDigit(std::uint32_t& digit);
  bool TakeByte(std::uint8_t& byte);
  bool TakePair(std::uint8_t& byte);
  std::optional<std::uint32_t> TakeNumber();
  TStringEnd TakeString(Text& text);

  bool GoOn();
  void SkipMalformed();

  TRegFileLines m_lines;
  TLocale& m_locale;
  bool m_hasHeader = false;
  bool m_hasKey = false;  // values may follow
  std::size_t m_linesSkipped = 0;
  std::size_t m_linesDone = 0;  // of the current entry, before the current line
  TextView m_rest;              // of the current line
  Text m_string;                // the buffer of the string being read
  TRegFileEntry m_entry;
};

}  // namespace corvalt
