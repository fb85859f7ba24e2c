// The lines of a file in the system's ANSI code page, one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

class TRegFileLines {
 public:
  // Both must outlive this object.
  TRegFileLines(std::span<const std::uint8_t> bytes, TLocale& locale);

  // Goes to the next line; false after the last one, and then the line is empty and begins at the file's end.
  // A last line without a line end counts, an empty one doesn't.
  bool Next();

  // The current line without its end, and that end: CR LF, LF, CR, or nothing. Good until the next call.
  TextView Line() const {
    return m_line;
  }
  TextView LineEnd() const;

  // Where the current line begins, and back to a line by its beginning: Next goes to it once more.
  std::size_t Begin() const {
    return m_begin;
  }
  void GoBack(std::size_t begin) {
    m_next = begin;
  }

 private:
  std::string_view m_bytes;
  TLocale& m_locale;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;   // of the line without its end
  std::size_t m_next = 0;  // begin of the next line
  Text m_line;
};

}  // namespace corvalt
