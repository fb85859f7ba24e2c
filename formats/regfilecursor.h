// The tokens of a REGEDIT4 file: a place in one of its lines, and the lines that the current entry took.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/text.h"
#include "formats/regfilelines.h"
#include "system/registryvalues.h"

namespace corvalt {

// A line that no entry could be made of.
struct TSkippedLine {
  std::size_t Number = 0;  // from 1
  Text Line;               // its beginning

  bool operator==(const TSkippedLine&) const = default;
};

// A Take routine that finds what it looks for at the current place moves behind it; otherwise it returns
// false (or nullopt) and the place stays.
class TRegFileCursor {
 public:
  enum class TStringEnd { Closed, Open, Malformed };

  // The bytes and the locale must outlive this object.
  TRegFileCursor(std::span<const std::uint8_t> bytes, TCodePage codePage);

  // To the next line, which begins an entry; false after the last line.
  bool NextEntry();

  // To the next line of the same entry; false, and the rest empty, after the last line.
  bool GoOn();

  // The current line from here on; valid until the next line.
  TextView Rest() const {
    return m_rest;
  }
  void RemovePrefix(std::size_t units) {
    m_rest.remove_prefix(units);
  }

  void SkipBlanks();

  // To the next token, also on a later line when this one ends in "\"; blank lines and comments between the
  // two don't count. False when the entry doesn't go on there.
  bool SkipBlanksAndFolds();

  // Whether the line ends here or a comment begins.
  bool AtEnd() const;

  // Whether anything but blanks and a comment follows. The program's own comments count.
  bool HasContent();

  bool Take(char16_t unit);
  bool TakeWord(TextView word);    // in any letter case
  bool TakeExact(TextView words);  // in this letter case
  bool TakeByte(std::uint8_t& byte);
  std::optional<std::uint32_t> TakeNumber();  // hexadecimal, up to eight digits

  // Appends what stands before the closing quote, which is taken too. Editors escape quotes and backslashes,
  // some of them line breaks too.
  TStringEnd TakeString(Text& text);

  // The same over several lines: Windows' editor writes a line break in a string as it is. Only a quote that
  // ends its line ends such a string; when there is none, the entry is its first line.
  bool TakeStringOverLines(Text& text);

  // Appends all pairs of digits that follow here and on the lines that begin with this word after a "+".
  // False when such a line is missing.
  bool TakePairs(TextView continuation, TBytes& bytes);

  // Counts lines of the current entry as skipped: all of them, or those that could not be read, and goes back
  // to the line on which reading failed when it is not the first, for that line may be an entry itself.
  void SkipEntry();
  void SkipMalformed();

  std::size_t LinesSkipped() const {
    return m_linesSkipped;
  }
  // The first twenty of them.
  const std::vector<TSkippedLine>& FirstSkipped() const {
    return m_firstSkipped;
  }

 private:
  bool TakeDigit(std::uint32_t& digit);
  bool TakePair(std::uint8_t& byte);
  void Skip(std::size_t lines);

  TRegFileLines m_lines;
  TextView m_rest;
  std::vector<TLinePlace> m_entry;  // the lines of the current entry; the last one is the current line
  std::size_t m_linesSkipped = 0;
  std::vector<TSkippedLine> m_firstSkipped;
};

}  // namespace corvalt
