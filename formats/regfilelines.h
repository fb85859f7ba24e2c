// The lines of a file in a code page, one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// One of the system's code pages.
struct TCodePage {
  TLocale& Locale;
  std::uint32_t Number = 0;

  Text Decode(std::string_view bytes) const {
    return Locale.DecodeCodePage(Number, bytes);
  }
};

// A line's place in its file.
struct TLinePlace {
  std::size_t Begin = 0;   // in bytes
  std::size_t Number = 0;  // from 1
};

class TRegFileLines {
 public:
  // The bytes and the locale must outlive this object.
  TRegFileLines(std::span<const std::uint8_t> bytes, TCodePage codePage);

  // Goes to the next line; false after the last one, and then the line is empty and begins at the file's end.
  // A last line without a line end counts, an empty one doesn't.
  bool Next();

  // The current line without its end, and that end: CR LF, LF, CR, or empty. Valid until the next call.
  TextView Line() const {
    return m_line;
  }
  TextView LineEnd() const;

  TLinePlace Place() const {
    return {m_begin, m_number};
  }

  // Goes back to a line that was the current one: Next makes it the current one again.
  void GoBack(TLinePlace place) {
    m_next = place.Begin;
    m_number = place.Number - 1;
  }

  // The first bytes of the line that begins here, without its end.
  Text LineAt(std::size_t begin, std::size_t mostBytes) const;

 private:
  std::string_view m_bytes;
  TCodePage m_codePage;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;   // of the line without its end
  std::size_t m_next = 0;  // begin of the next line
  std::size_t m_number = 0;
  Text m_line;
};

}  // namespace corvalt
