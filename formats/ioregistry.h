// TIORegistry: writes keys and values of the registry as REGEDIT4 text, and imports such text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "system/rawregistry.h"
#include "system/systemlocale.h"

namespace corvalt {

class TRegFileWriter;

enum class TExportResult {
  Done,
  Missing,     // no such key or value
  Unreadable,  // it exists, but it or something below it can't be read whole: no access, or a registry link
};

struct TImportResult {
  bool HasHeader = false;  // without the REGEDIT4 line nothing is imported
  std::size_t LinesSkipped = 0;
  std::size_t WritesFailed = 0;  // keys, values and deletions that the registry refused; the rest went on
  std::size_t KeysWritten = 0;
  std::size_t ValuesWritten = 0;

  bool EverythingWritten() const {
    return HasHeader && LinesSkipped == 0 && WritesFailed == 0;
  }
};

// A key as it was read for an export.
struct TExportedKey {
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;  // begins with "\"
  std::vector<TRawValue> Values;
};

class TIORegistry {
 public:
  // Both must outlive this object.
  TIORegistry(TRawRegistry& registry, TLocale& locale);

  // Forgets what was exported; what is left is the text of no export, the header alone.
  void Clear();

  // Each appends one export to the text: a key with its subkeys, or one value under its key. A key path may
  // lack its leading "\". What is not Done appends nothing at all.
  TExportResult ExportKey(TRootKey rootKey, TextView keyPath);
  TExportResult ExportValue(TRootKey rootKey, TextView keyPath, TextView valueName);

  // The bytes of the file: the header and all exports since the last Clear.
  const TBytes& ExportedText() const {
    return m_text;
  }

  // The keys in the text, in its order; of a value's export the key with that value.
  std::span<const TExportedKey> Exported() const {
    return m_exported;
  }

  // Whether these bytes, read as Import reads them, say exactly the keys and values that were taken from the
  // registry since the last Clear, in their order and nothing else. Doesn't look at ExportedText.
  bool SaysWhatWasExported(std::span<const std::uint8_t> bytes) const;

  // Replays a file into the registry, over what is there. A malformed line is skipped and counted, and no
  // value after a malformed key line goes to the key before it. A deletion of what is not there succeeds; one
  // of a registry link, or of a key with a link below it, fails.
  TImportResult Import(std::span<const std::uint8_t> bytes);

 private:
  TExportResult AppendTree(TRootKey rootKey, Text keyPath);
  void AppendKey(TRegFileWriter& writer, TExportedKey key);

  TRawRegistry& m_registry;
  TLocale& m_locale;
  TBytes m_text;
  std::vector<TExportedKey> m_exported;
};

}  // namespace corvalt
