#include "formats/ioregistry.h"

#include <algorithm>

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

// The path as it stands in the file: from the root, one "\" before each name. Nothing for a path that opens
// no key.
std::optional<Text> FilePath(TextView keyPath) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  if (!parsed)
    return std::nullopt;
  Text path;
  for (const Text& name : parsed->Names)
    path.append(u"\\").append(name);
  return path.empty() ? Text(u"\\") : path;
}

Text SubKeyPath(TextView keyPath, TextView name) {
  Text path;
  path.reserve(keyPath.size() + 1 + name.size());
  path = keyPath;
  if (!path.ends_with(u'\\'))
    path += u'\\';
  path += name;
  return path;
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

TRawResult Replay(TRawRegistry& registry, const TRegFileEntry& entry, TImportResult& result) {
  switch (entry.Kind) {
    case TRegFileEntry::TKind::Key: {
      const TRawResult created = registry.CreateKey(entry.RootKey, entry.KeyPath);
      result.KeysWritten += created == TRawResult::Done ? 1 : 0;
      return created;
    }
    case TRegFileEntry::TKind::Value: {
      const TRawResult written = registry.WriteValue(entry.RootKey, entry.KeyPath, entry.Value);
      result.ValuesWritten += written == TRawResult::Done ? 1 : 0;
      return written;
    }
    case TRegFileEntry::TKind::DeleteKey:
      return registry.DeleteKey(entry.RootKey, entry.KeyPath);
    case TRegFileEntry::TKind::DeleteValue:
      return registry.DeleteValue(entry.RootKey, entry.KeyPath, entry.Value.Name);
  }
  return TRawResult::Failed;
}

bool IsDeletion(const TRegFileEntry& entry) {
  return entry.Kind == TRegFileEntry::TKind::DeleteKey || entry.Kind == TRegFileEntry::TKind::DeleteValue;
}

}  // namespace

TRegFileFacts InspectRegFile(std::span<const std::uint8_t> bytes, TLocale& locale) {
  const TRegFileReader reader(bytes, locale);
  return {reader.HasHeader(), reader.Origin(), IsWhole(bytes, locale)};
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

TExportResult TIORegistry::ExportKey(TRootKey rootKey, TextView keyPath) {
  const TKeysReleased released(m_registry);
  const std::optional<Text> path = FilePath(keyPath);
  if (!path)
    return TExportResult::Missing;
  const std::size_t textBefore = m_text.size();
  const std::size_t keysBefore = m_exported.size();
  const TExportResult result = AppendTree(rootKey, *path);
  if (result != TExportResult::Done) {
    m_text.resize(textBefore);
    m_exported.erase(m_exported.begin() + static_cast<std::ptrdiff_t>(keysBefore), m_exported.end());
  }
  return result;
}

// The keys in the order in which the system's editor writes them: each before its subkeys.
TExportResult TIORegistry::AppendTree(TRootKey rootKey, Text keyPath) {
  const Text top = keyPath;
  TRegFileWriter writer(m_locale, m_text);
  std::vector<Text> pending;
  pending.push_back(std::move(keyPath));
  while (!pending.empty()) {
    Text path = std::move(pending.back());
    pending.pop_back();
    TRawKey key;
    const TRawResult read = m_registry.ReadKey(rootKey, path, key);
    // A subkey may have gone since its parent was read.
    if (read == TRawResult::Missing && path != top)
      continue;
    if (read != TRawResult::Done)
      return ExportResultOf(read);
    for (auto name = key.SubKeys.rbegin(); name != key.SubKeys.rend(); ++name)
      pending.push_back(SubKeyPath(path, *name));
    AppendKey(writer, {rootKey, std::move(path), {}, std::move(key.Values)});
  }
  return TExportResult::Done;
}

TExportResult TIORegistry::ExportValue(TRootKey rootKey, TextView keyPath, TextView valueName) {
  const TKeysReleased released(m_registry);
  std::optional<Text> path = FilePath(keyPath);
  if (!path)
    return TExportResult::Missing;
  TRawValue value;
  const TRawResult read = m_registry.ReadValue(rootKey, *path, valueName, value);
  TRegFileWriter writer(m_locale, m_text);
  if (read == TRawResult::Done)
    AppendKey(writer, {rootKey, std::move(*path), {}, {std::move(value)}});
  return ExportResultOf(read);
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
  const TKeysReleased released(m_registry);
  TRegFileReader reader(bytes, m_locale,
                        options.CarryOutDeletions ? TDeletionLines::Entries : TDeletionLines::Skipped);
  TImportResult result;
  result.HasHeader = reader.HasHeader();
  const TRegFileEntry* entry = reader.Next();
  for (; entry != nullptr && !options.Stop(); entry = reader.Next()) {
    const TRawResult replayed = Replay(m_registry, *entry, result);
    const bool wasGone = replayed == TRawResult::Missing && IsDeletion(*entry);
    if (replayed != TRawResult::Done && !wasGone)
      ++result.WritesFailed;
  }
  result.Stopped = entry != nullptr;
  result.LinesSkipped = reader.LinesSkipped();
  result.FirstSkipped = reader.FirstSkipped();
  return result;
}

}  // namespace corvalt
