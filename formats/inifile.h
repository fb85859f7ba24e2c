// Ini files as the Windows profile calls read and write them, kept as text so that what other programs wrote
// stays.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// One ini file in memory. Lines that say nothing (comments, blanks, damaged ones) are kept where they are.
// Section and key names compare without regard to case; of two with one name the first counts.
class TIniFile {
 public:
  // Any bytes are accepted: UTF-16 LE with its byte order mark, else UTF-8 with one, else the ANSI code page.
  static TIniFile FromBytes(std::span<const std::uint8_t> bytes, TLocale& locale);

  // The section names in file order, each once.
  std::vector<Text> SectionNames() const;

  // The trimmed value, one pair of enclosing quotes removed; nothing when the section or the key is missing.
  std::optional<Text> Read(TextView section, TextView key) const;

  // Replaces the value or adds it at the end of its section, the section at the end of the file. Expects
  // names and a value that an ini file can hold (no line ends, no "]" in a section, no "=" in a key).
  void Write(TextView section, TextView key, TextView value);

  // Removes the section with everything up to the next one; every section of this name.
  void EraseSection(TextView section);

  // The file's bytes in the encoding it was read in; UTF-16 LE with its mark once a text needs it (the
  // profile calls read and write all characters in that form alone).
  std::vector<std::uint8_t> ToBytes(TLocale& locale) const;

 private:
  enum class TEncoding { Ansi, Utf8, Utf16 };
  struct TDecoded {
    TEncoding Encoding = TEncoding::Ansi;
    Text Content;
    bool operator==(const TDecoded&) const = default;
  };
  struct TLine {
    Text Content;
    Text End;
  };

  static TDecoded Decode(std::span<const std::uint8_t> bytes, TLocale& locale);

  // The index of a section's line; section is trimmed.
  std::optional<std::size_t> FindSection(const Text& section) const;

  // The index after the last line of the section that begins at header.
  std::size_t SectionEnd(std::size_t header) const;
  void InsertLine(std::size_t at, Text content);
  Text Content() const;

  TEncoding m_encoding = TEncoding::Ansi;
  std::vector<TLine> m_lines;
};

}  // namespace corvalt
