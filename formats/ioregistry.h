// TIORegistry: writes keys and values of the registry as REGEDIT4 text, and imports such text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "formats/backupblock.h"
#include "formats/regfileformat.h"
#include "formats/regfileimport.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"
#include "system/systemlocale.h"

namespace corvalt {

class TRegFileWriter;

enum class [[nodiscard]] TExportResult{
    Done,
    Missing,     // no such key or value
    Unreadable,  // it exists, but it or something below it can't be read whole: no access, or a registry link
};

// A key as it was read for an export.
struct TExportedKey {
  TRootKey RootKey = kNoRootKey;
  Text KeyPath;     // begins with "\"; names as they are stored
  TKeyPlace Place;  // where the key lies
  TRegFileAttributes Attributes;
  std::vector<TRawValue> Values;
};

// What a file tells about itself before anything of it is imported.
struct TRegFileFacts {
  bool HasHeader = false;
  std::optional<TBackupOrigin> Origin;

  // Whether the file is as it was written: it has the last line of a backup, the checksum in it is right, and
  // so are the numbers of keys and values. A file without an origin counts as whole.
  bool IsWhole = false;
  // Only the checksum: a later program's file may have it right and still count as not whole here.
  bool ChecksumIsRight = false;
};

[[nodiscard]] TRegFileFacts InspectRegFile(std::span<const std::uint8_t> bytes, TLocale& locale);

class TIORegistry {
 public:
  // Both must outlive this object.
  TIORegistry(TRawRegistry& registry, TLocale& locale);

  // Forgets what was exported; what is left is the text of no export. With an origin the text becomes that of
  // a backup: it tells where it was made, and Finish ends it.
  void Clear(std::optional<TBackupOrigin> origin = std::nullopt);

  // Each appends one export to the text: a key with its subkeys, or one value under its key. A result other
  // than Done leaves the text as it was. Below HKEY_CLASSES_ROOT only the hive that holds the key, or the
  // value, is read. A backup also keeps the hive and what a key has besides its values.
  TExportResult ExportKey(const TKeyPath& key);
  TExportResult ExportValue(const TKeyPath& key, TextView valueName);

  // The same at the place where the key, or the key that holds the value, really lies: read there, and
  // written under the key's own name.
  TExportResult ExportKey(const TKeyPath& key, const TKeyPlace& place);
  TExportResult ExportValue(const TKeyPath& key, const TKeyPlace& place, TextView valueName);

  // Writes the last line of a backup. To be called once, after the last export.
  void Finish();

  // The bytes of the file: the header and all exports since the last Clear.
  const TBytes& ExportedText() const {
    return m_text;
  }

  // The keys in the text, in its order; of a value's export the key with that value.
  std::span<const TExportedKey> Exported() const {
    return m_exported;
  }

  // Whether these bytes, read as Import reads them, hold exactly the origin, and the keys and values that
  // were taken from the registry since the last Clear, in their order and no others, and are whole.
  // ExportedText is not looked at.
  bool HoldsWhatWasExported(std::span<const std::uint8_t> bytes) const;

  // Replays a file into the registry, over what is there. A malformed line is skipped and counted, and no
  // value after a malformed key line goes to the key before it. A deletion of what is not there succeeds; one
  // of a registry link, or of a key with a link below it, fails.
  TImportResult Import(std::span<const std::uint8_t> bytes, const TImportOptions& options = {});

 private:
  TExportResult AppendTree(TRootKey rootKey, const Text& path, const TKeyPlace& top);
  TRawResult ReadKey(TExportedKey& key, bool savesSecurity, std::vector<Text>& subKeys);
  void AppendKey(TRegFileWriter& writer, TExportedKey key);
  TBackupEnd CountExported() const;

  TRawRegistry& m_registry;
  TLocale& m_locale;
  std::optional<TBackupOrigin> m_origin;
  TBytes m_text;
  std::vector<TExportedKey> m_exported;
};

}  // namespace corvalt
