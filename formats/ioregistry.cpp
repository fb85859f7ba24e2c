#include "formats/ioregistry.h"

#include <algorithm>
#include <utility>

#include "base/lettercase.h"
#include "formats/regfilereader.h"
#include "formats/regfilewriter.h"

namespace corvalt {

namespace {

TExportResult ExportResultOf(TRawResult result) {
  switch (result) {
    case TRawResult::Done:
      return TExportResult::Done;
    case TRawResult::Missing:
      return TExportResult::Missing;
    default:
      return TExportResult::Unreadable;
  }
}

// The path spelled as its names are stored, as far as it ends in the names of its place; a part before a link
// keeps its spelling.
Text StoredPath(const Text& path, TextView placePath) {
  std::size_t kept = path.size();
  for (;;) {
    const std::size_t begin = path.rfind(u'\\', kept - 1);
    const std::size_t tail = path.size() - (begin == Text::npos ? 0 : begin);
    if (begin == Text::npos || tail > placePath.size() ||
        !EqualIgnoringCase(TextView(path).substr(begin), placePath.substr(placePath.size() - tail)))
      break;
    kept = begin;
    if (kept == 0)
      break;
  }
  return path.substr(0, kept) + Text(placePath.substr(placePath.size() - (path.size() - kept)));
}

// A key of a tree that is still to be exported.
struct TPendingKey {
  Text Below;                  // its path below the top
  bool SavesSecurity = false;  // also where its permissions are inherited
};

Text PathBelow(const Text& path, const Text& below) {
  return path == u"\\" && !below.empty() ? below : path + below;
}

// The hive of a key below HKEY_CLASSES_ROOT, when it is one of the two whose keys that root shows.
TRootKey HiveOf(const TExportedKey& key) {
  const bool isShown = key.RootKey == kHkeyClassesRoot &&
                       (key.Place.RootKey == kHkeyCurrentUser || key.Place.RootKey == kHkeyLocalMachine);
  return isShown ? key.Place.RootKey : kNoRootKey;
}

bool IsWhole(std::span<const std::uint8_t> bytes, TLocale& locale) {
  const std::optional<TBackupEnd> end = ReadEnd(bytes);
  if (!end)
    return !ReadOrigin(bytes) && !HasEndLine(bytes);
  TBackupEnd found;
  TRegFileReader reader(bytes, locale);
  while (const TRegFileEntry* entry = reader.Next()) {
    found.Keys += entry->Kind == TRegFileEntry::TKind::Key ? 1 : 0;
    found.Values += entry->Kind == TRegFileEntry::TKind::Value ? 1 : 0;
  }
  return found == *end;
}

}  // namespace

TRegFileFacts InspectRegFile(std::span<const std::uint8_t> bytes, TLocale& locale) {
  const TRegFileReader reader(bytes, locale);
  return {reader.HasHeader(), reader.Origin(), IsWhole(bytes, locale), ReadEnd(bytes).has_value()};
}

TIORegistry::TIORegistry(TRawRegistry& registry, TLocale& locale) : m_registry(registry), m_locale(locale) {
  Clear();
}

void TIORegistry::Clear(std::optional<TBackupOrigin> origin) {
  m_text.clear();
  m_exported.clear();
  m_origin = std::move(origin);
  TRegFileWriter writer(m_locale, m_text);
  writer.WriteHeader();
  if (m_origin)
    writer.WriteOrigin(*m_origin);
}

void TIORegistry::Finish() {
  if (m_origin)
    TRegFileWriter(m_locale, m_text).WriteEnd(CountExported());
}

TExportResult TIORegistry::ExportKey(const TKeyPath& key) {
  TKeyPlace place{key.RootKey(), key.Path()};
  if (!key.IsRoot()) {
    const TKeysReleased released(m_registry);
    const TRawResult found = m_registry.FindKey(key.RootKey(), key.Path(), place);
    if (found != TRawResult::Done)
      return ExportResultOf(found);
  }
  return ExportKey(key, place);
}

TExportResult TIORegistry::ExportKey(const TKeyPath& key, const TKeyPlace& place) {
  const TKeysReleased released(m_registry);
  const std::size_t textBefore = m_text.size();
  const std::size_t keysBefore = m_exported.size();
  const TExportResult result = AppendTree(key.RootKey(), StoredPath(key.Path(), place.KeyPath), place);
  if (result != TExportResult::Done) {
    m_text.resize(textBefore);
    m_exported.erase(m_exported.begin() + static_cast<std::ptrdiff_t>(keysBefore), m_exported.end());
  }
  return result;
}

// The keys in the order in which the system's editor writes them: each before its subkeys. Below a key whose
// permissions are saved those of every key are: when a restore creates them, the key above has other
// permissions to inherit.
TExportResult TIORegistry::AppendTree(TRootKey rootKey, const Text& path, const TKeyPlace& top) {
  TRegFileWriter writer(m_locale, m_text);
  std::vector<TPendingKey> pending{{}};
  while (!pending.empty()) {
    const auto [below, savesSecurity] = std::move(pending.back());
    pending.pop_back();
    TExportedKey key{rootKey, PathBelow(path, below), {top.RootKey, PathBelow(top.KeyPath, below)}, {}, {}};
    std::vector<Text> subKeys;
    const TRawResult read = ReadKey(key, savesSecurity, subKeys);
    // A subkey may have gone since its parent was read.
    if (read == TRawResult::Missing && !below.empty())
      continue;
    if (read != TRawResult::Done)
      return ExportResultOf(read);
    for (auto name = subKeys.rbegin(); name != subKeys.rend(); ++name)
      pending.push_back({below + u"\\" + *name, savesSecurity || !key.Attributes.Security.empty()});
    AppendKey(writer, std::move(key));
  }
  return TExportResult::Done;
}

// All of one key, from its place.
TRawResult TIORegistry::ReadKey(TExportedKey& key, bool savesSecurity, std::vector<Text>& subKeys) {
  TRawKey raw;
  const TRawResult read = m_registry.ReadKey(key.Place.RootKey, key.Place.KeyPath, raw);
  if (read != TRawResult::Done)
    return read;
  key.Values = std::move(raw.Values);
  subKeys = std::move(raw.SubKeys);
  if (!m_origin)
    return read;
  TKeyAttributes attributes;
  const TRawResult asked = m_registry.ReadAttributes(key.Place.RootKey, key.Place.KeyPath, attributes);
  if (asked != TRawResult::Done)
    return asked;
  key.Attributes = {HiveOf(key),
                    std::move(attributes.ClassName),
                    attributes.IsVolatile.value_or(false),
                    {},
                    attributes.LastWrite};
  if (attributes.HasOwnSecurity || savesSecurity)
    key.Attributes.Security = std::move(attributes.Security);
  return asked;
}

TExportResult TIORegistry::ExportValue(const TKeyPath& key, TextView valueName) {
  TKeyPlace place{key.RootKey(), key.Path()};
  if (!key.IsRoot()) {
    const TKeysReleased released(m_registry);
    const TRawResult found = m_registry.FindValue(key.RootKey(), key.Path(), valueName, place);
    if (found != TRawResult::Done)
      return ExportResultOf(found);
  }
  return ExportValue(key, place, valueName);
}

TExportResult TIORegistry::ExportValue(const TKeyPath& key, const TKeyPlace& place, TextView valueName) {
  const TKeysReleased released(m_registry);
  TRawValue value;
  const TRawResult read = m_registry.ReadValue(place.RootKey, place.KeyPath, valueName, value);
  if (read != TRawResult::Done)
    return ExportResultOf(read);
  TExportedKey exported;
  exported.RootKey = key.RootKey();
  exported.KeyPath = StoredPath(key.Path(), place.KeyPath);
  exported.Place = place;
  exported.Values.push_back(std::move(value));
  if (m_origin)
    exported.Attributes.Hive = HiveOf(exported);
  TRegFileWriter writer(m_locale, m_text);
  AppendKey(writer, std::move(exported));
  return TExportResult::Done;
}

void TIORegistry::AppendKey(TRegFileWriter& writer, TExportedKey key) {
  writer.WriteKey(key.RootKey, key.KeyPath, key.Attributes);
  for (const TRawValue& value : key.Values)
    writer.WriteValue(value);
  m_exported.push_back(std::move(key));
}

TBackupEnd TIORegistry::CountExported() const {
  TBackupEnd count{m_exported.size(), 0};
  for (const TExportedKey& key : m_exported)
    count.Values += key.Values.size();
  return count;
}

bool TIORegistry::HoldsWhatWasExported(std::span<const std::uint8_t> bytes) const {
  TRegFileReader reader(bytes, m_locale);
  if (reader.Origin() != m_origin || !IsWhole(bytes, m_locale))
    return false;
  for (const TExportedKey& key : m_exported) {
    const TRegFileEntry* entry = reader.Next();
    if (entry == nullptr || entry->Kind != TRegFileEntry::TKind::Key || entry->RootKey != key.RootKey ||
        entry->KeyPath != key.KeyPath || entry->Attributes != key.Attributes)
      return false;
    for (const TRawValue& value : key.Values) {
      entry = reader.Next();
      if (entry == nullptr || entry->Kind != TRegFileEntry::TKind::Value || entry->Value != value)
        return false;
    }
  }
  return reader.HasHeader() && reader.Next() == nullptr && reader.LinesSkipped() == 0;
}

TImportResult TIORegistry::Import(std::span<const std::uint8_t> bytes, const TImportOptions& options) {
  return TRegFileImport(m_registry, bytes, m_locale, options).Run();
}

}  // namespace corvalt
