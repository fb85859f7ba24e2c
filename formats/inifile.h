// Ini files as the Windows profile calls read and write them. What other programs wrote stays byte for byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// One ini file in memory. Lines that are neither a section's nor a value's (comments, blanks, damaged ones)
// are kept where they are. Section and key names compare without regard to case; of two with one name the
// first counts.
class TIniFile {
 public:
  // Any bytes are accepted: UTF-16 LE with its byte order mark, else UTF-8 with one, else the ANSI code page.
  static TIniFile FromBytes(std::span<const std::uint8_t> bytes, TLocale& locale);

  // The section names in file order, each once.
  std::vector<Text> SectionNames() const;

  // The trimmed value, one pair of enclosing quotes removed; nullopt when the section or the key is missing.
  std::optional<Text> Read(TextView section, TextView key) const;

  // Replaces the value or adds it at the end of its section, the section at the end of the file. Expects
  // names and a value that an ini file can hold (no line ends, no "]" in a section, no "=" in a key).
  void Write(TextView section, TextView key, TextView value);

  // Removes the section with everything up to the next one; every section of this name.
  void EraseSection(TextView section);

  // The file's bytes in the encoding it was read in, every line that was not changed as it was read; UTF-16
  // LE with its mark once a new text needs it (the profile calls read and write all characters in that form
  // only).
  std::vector<std::uint8_t> ToBytes(TLocale& locale) const;

 private:
  enum class TEncoding { Ansi, Utf8, Utf16 };
  struct TLine {
    Text Content;
    Text End;
    // The content as it was read; nullopt for a line that is new or changed.
    std::optional<std::string> Bytes;
  };

  static TEncoding EncodingOf(std::string_view bytes);
  void AddLines(std::string_view bytes, TLocale& locale);
  void AddUtf16Lines(std::string_view bytes);
  bool SameText(const TIniFile& other) const;
  std::string Encoded(TLocale& locale) const;
  std::string EncodedAsUtf16() const;

  // The index of a section's line; section is trimmed.
  std::optional<std::size_t> FindSection(const Text& section) const;

  // The index after the last line of the section that begins at header.
  std::size_t SectionEnd(std::size_t header) const;
  void InsertLine(std::size_t at, Text content);

  TEncoding m_encoding = TEncoding::Ansi;
  std::vector<TLine> m_lines;
};

}  // namespace corvalt
