// Reads a REGEDIT4 file entry by entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "formats/backupblock.h"
#include "formats/regfilecursor.h"
#include "formats/regfileformat.h"
#include "formats/regfilelines.h"
#include "system/registryvalues.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TRegFileEntry {
  enum class TKind { Key, Value, DeleteKey, DeleteValue };

  TKind Kind = TKind::Key;
  // The key, or the one that the value belongs to. The path begins with "\".
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;
  // Of the key, or of the one that the value belongs to.
  TRegFileAttributes Attributes;
  // The whole of a value; of a deletion only its name.
  TRawValue Value;
};

// What becomes of lines that delete keys or values.
enum class TDeletionLines {
  Entries,
  Skipped,  // they count as malformed
};

// The code page of a file's texts: the one that the file names, or the system's own when it names none or one
// that the system lacks. The locale must outlive the result.
[[nodiscard]] TCodePage CodePageOfFile(std::span<const std::uint8_t> bytes, TLocale& locale);

// Malformed lines are skipped and counted, and so are the values after a malformed key line or a deleted key.
// Takes time and memory in proportion to the file.
class TRegFileReader {
 public:
  // Both must outlive this object.
  TRegFileReader(std::span<const std::uint8_t> bytes, TLocale& locale,
                 TDeletionLines deletions = TDeletionLines::Entries);

  // Whether the first line that isn't blank is "REGEDIT4". Without it there are no entries.
  bool HasHeader() const {
    return m_hasHeader;
  }

  // Where the file was made; nullopt when it doesn't tell.
  const std::optional<TBackupOrigin>& Origin() const {
    return m_origin;
  }

  // The next entry, valid until the next call; null after the last one.
  const TRegFileEntry* Next();

  // Lines skipped so far, each line of a folded value counted, and the first twenty of them.
  std::size_t LinesSkipped() const {
    return m_cursor.LinesSkipped();
  }
  const std::vector<TSkippedLine>& FirstSkipped() const {
    return m_cursor.FirstSkipped();
  }

 private:
  enum class TLineResult { Entry, Comment, Malformed };

  TLineResult ReadLine();
  bool IsWanted() const;
  bool ReadEntry();
  void EndKeyWhereAKeyLineIsMissing();
  bool TakeAttributes(TRegFileAttributes& attributes);
  bool ReadKeyLine();
  bool ReadValueLine();
  bool ReadName();
  bool ReadData();
  bool ReadString();
  bool ReadDword();
  bool ReadHex();
  bool ReadHexBytes(TBytes& bytes);
  bool ReadExactLine();
  bool ReadExactKey();
  bool ReadExactValue();
  bool ReadExactText(Text& text);
  bool ReadAttribute();
  bool ReadAttributeBytes(TBytes& bytes);
  bool ReadClass();
  bool ReadTime();
  bool SetKey(TextView rootName, TextView keyPath);

  std::optional<TBackupOrigin> m_origin;
  TCodePage m_codePage;
  TRegFileCursor m_cursor;
  TDeletionLines m_deletions;
  bool m_hasHeader = false;
  bool m_hasKey = false;            // values may follow
  TRegFileAttributes m_attributes;  // read for the key line to come
  bool m_hiveIsLost = false;        // a damaged comment named the hive of that key
  Text m_string;                    // the buffer of the string being read
  TRegFileEntry m_entry;
};

}  // namespace corvalt
