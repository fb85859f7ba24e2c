// Replays the entries of a REGEDIT4 file into the registry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "formats/regfilecursor.h"
#include "formats/regfileformat.h"
#include "formats/regfilereader.h"
#include "system/rawregistry.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TImportOptions {
  // Otherwise lines that delete something are skipped and counted as such.
  bool CarryOutDeletions = true;

  // Asked before each entry; true ends the import.
  std::function<bool()> Stop = [] { return false; };
};

struct [[nodiscard]] TImportResult {
  bool HasHeader = false;  // without the REGEDIT4 line no entry is imported
  bool Stopped = false;
  std::size_t LinesSkipped = 0;
  std::vector<TSkippedLine> FirstSkipped;  // the first twenty of them
  std::size_t WritesFailed = 0;   // keys, values and deletions that the registry refused; the rest went on
  std::size_t KeysWritten = 0;    // those that did not exist
  std::size_t ValuesWritten = 0;  // those that were not there as the file has them
  // Of keys that were created: class, volatility, permissions, time. After a stop also the permissions and
  // the times of those that lack something of the file, which are not set.
  std::size_t AttributesLost = 0;

  // Lost attributes do not count.
  bool EverythingWritten() const {
    return HasHeader && !Stopped && LinesSkipped == 0 && WritesFailed == 0;
  }
};

// One import. Values that a key holds already, as the file has them, are not written: the key keeps its time,
// and need not be open to changes. A key that is created gets the class and the volatility that the file
// gives it, and when everything below it is there, its permissions and at last its time; a key that exists
// keeps what it has. A key below HKEY_CLASSES_ROOT goes to the hive that the file names.
class TRegFileImport {
 public:
  // All must outlive this object.
  TRegFileImport(TRawRegistry& registry, std::span<const std::uint8_t> bytes, TLocale& locale,
                 const TImportOptions& options);

  TImportResult Run();

 private:
  // A key in the form in which it is compared: its root and its upper-cased path.
  using TKeyId = std::pair<TRootKey, Text>;

  struct TCreatedKey {
    TKeyPlace Place;
    const TRegFileAttributes* Attributes = nullptr;
  };

  TRegFileReader Reader() const;
  void PlanKeys();
  TRawResult Replay(const TRegFileEntry& entry);
  TRawResult ReplayKey(const TKeyPlace& place);
  void CreateParents(const TKeyId& id, const TKeyPlace& place);
  TRawResult ReplayValue(const TKeyPlace& place, const TRawValue& value);
  TRawResult CreatePlanned(const TKeyId& id, TKeyPlace place);
  void LookAtExisting(const TKeyId& id, const TKeyPlace& place);
  void CheckNewKey(const TKeyPlace& place, const TRegFileAttributes& attributes, const TNewKey& newKey);
  void NoteUnfinished(TRegFileReader& reader, const TRegFileEntry* entry);
  void WriteAttributes();
  TAttributesLost WriteAttributes(const TCreatedKey& key);

  TRawRegistry& m_registry;
  std::span<const std::uint8_t> m_bytes;
  TLocale& m_locale;
  const TImportOptions& m_options;
  std::map<TKeyId, TRegFileAttributes>
      m_planned;            // every key line of the file, and parents that were missing
  std::set<TKeyId> m_done;  // those that were created or exist
  std::vector<TCreatedKey> m_created;
  std::set<TKeyId> m_unfinished;  // those that the entries after a stop would change, and their parents
  // The key whose values come now, when it existed, and what it holds by upper-cased name.
  std::optional<TKeyId> m_existing;
  std::map<Text, TRawValue> m_existingValues;
  TImportResult m_result;
};

}  // namespace corvalt
