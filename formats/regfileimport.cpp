#include "formats/regfileimport.h"

#include <algorithm>
#include <utility>

#include "base/lettercase.h"

namespace corvalt {

namespace {

constexpr TextView kClassesPath = u"\\Software\\Classes";

// Where the entry's key is to be written.
TKeyPlace PlaceOf(const TRegFileEntry& entry) {
  if (entry.Attributes.Hive == kNoRootKey)
    return {entry.RootKey, entry.KeyPath};
  const TextView path = entry.KeyPath;
  return {entry.Attributes.Hive, Text(kClassesPath) + Text(path == u"\\" ? TextView() : path)};
}

bool IsDeletion(const TRegFileEntry& entry) {
  return entry.Kind == TRegFileEntry::TKind::DeleteKey || entry.Kind == TRegFileEntry::TKind::DeleteValue;
}

std::ptrdiff_t DepthOf(TextView keyPath) {
  return std::count(keyPath.begin(), keyPath.end(), u'\\');
}

}  // namespace

TRegFileImport::TRegFileImport(TRawRegistry& registry, std::span<const std::uint8_t> bytes, TLocale& locale,
                               const TImportOptions& options)
    : m_registry(registry), m_bytes(bytes), m_locale(locale), m_options(options) {
}

TRegFileReader TRegFileImport::Reader() const {
  return {m_bytes, m_locale, m_options.CarryOutDeletions ? TDeletionLines::Entries : TDeletionLines::Skipped};
}

TImportResult TRegFileImport::Run() {
  const TKeysReleased released(m_registry);
  PlanKeys();
  TRegFileReader reader = Reader();
  m_result.HasHeader = reader.HasHeader();
  const TRegFileEntry* entry = reader.Next();
  for (; entry != nullptr && !m_options.Stop(); entry = reader.Next()) {
    const TRawResult replayed = Replay(*entry);
    const bool wasGone = replayed == TRawResult::Missing && IsDeletion(*entry);
    if (replayed != TRawResult::Done && !wasGone)
      ++m_result.WritesFailed;
  }
  m_result.Stopped = entry != nullptr;
  m_result.LinesSkipped = reader.LinesSkipped();
  m_result.FirstSkipped = reader.FirstSkipped();
  NoteUnfinished(reader, entry);
  WriteAttributes();
  return m_result;
}

// Permissions could forbid a second import to write what is missing, and it would change the times.
void TRegFileImport::NoteUnfinished(TRegFileReader& reader, const TRegFileEntry* entry) {
  for (; entry != nullptr; entry = reader.Next()) {
    const TKeyPlace place = PlaceOf(*entry);
    Text path = UpperCase(place.KeyPath);
    // A key that is noted has its parents noted.
    while (!path.empty() && m_unfinished.insert({place.RootKey, path}).second)
      path.resize(path.rfind(u'\\'));
  }
}

// A key that was saved before its parent would be restored before it too, and the parent would be created on
// the way without what the file has for it.
void TRegFileImport::PlanKeys() {
  TRegFileReader reader = Reader();
  while (const TRegFileEntry* entry = reader.Next()) {
    if (entry->Kind != TRegFileEntry::TKind::Key)
      continue;
    TKeyPlace place = PlaceOf(*entry);
    const auto [planned, isFirst] =
        m_planned.try_emplace({place.RootKey, UpperCase(place.KeyPath)}, entry->Attributes);
    // The key line above a single value holds hardly anything of its key, not even the time; and only below
    // a key with permissions of its own are inherited ones saved.
    const TRegFileAttributes& known = planned->second;
    const TRegFileAttributes& here = entry->Attributes;
    if (!isFirst && (!known.LastWrite || (known.Security.empty() && here.LastWrite)))
      planned->second = here;
  }
}

TRawResult TRegFileImport::Replay(const TRegFileEntry& entry) {
  const TKeyPlace place = PlaceOf(entry);
  if (IsDeletion(entry))
    m_existing.reset();
  switch (entry.Kind) {
    case TRegFileEntry::TKind::Key:
      return ReplayKey(place);
    case TRegFileEntry::TKind::Value:
      return ReplayValue(place, entry.Value);
    case TRegFileEntry::TKind::DeleteKey:
      return m_registry.DeleteKey(place.RootKey, place.KeyPath);
    case TRegFileEntry::TKind::DeleteValue:
      return m_registry.DeleteValue(place.RootKey, place.KeyPath, entry.Value.Name);
  }
  return TRawResult::Failed;
}

TRawResult TRegFileImport::ReplayKey(const TKeyPlace& place) {
  const TKeyId id{place.RootKey, UpperCase(place.KeyPath)};
  CreateParents(id, place);
  const std::size_t keysBefore = m_result.KeysWritten;
  const TRawResult result = CreatePlanned(id, place);
  if (result == TRawResult::Done && m_result.KeysWritten == keysBefore)
    LookAtExisting(id, place);
  else
    m_existing.reset();
  return result;
}

// Missing parents one by one: each counts, and one that the file has gets what the file has for it.
void TRegFileImport::CreateParents(const TKeyId& id, const TKeyPlace& place) {
  std::vector<std::size_t> missing;
  for (std::size_t end = place.KeyPath.rfind(u'\\'); end != 0; end = place.KeyPath.rfind(u'\\', end - 1)) {
    const TKeyId parent{place.RootKey, id.second.substr(0, end)};
    if (m_done.contains(parent))
      break;
    // Links are followed on the way.
    const TRawResult asked = m_registry.MayCreateSubKeys(place.RootKey, place.KeyPath.substr(0, end));
    if (asked != TRawResult::Missing) {
      m_done.insert(parent);
      break;
    }
    missing.push_back(end);
  }
  for (auto end = missing.rbegin(); end != missing.rend(); ++end)
    std::ignore = CreatePlanned({place.RootKey, id.second.substr(0, *end)},
                                {place.RootKey, place.KeyPath.substr(0, *end)});
}

// Of single values that were saved one after another from one key the first reads the key for all.
void TRegFileImport::LookAtExisting(const TKeyId& id, const TKeyPlace& place) {
  if (m_existing == id)
    return;
  m_existing = id;
  m_existingValues.clear();
  TRawKey key;
  // What can't be read is written.
  if (m_registry.ReadKey(place.RootKey, place.KeyPath, key) != TRawResult::Done)
    return;
  for (TRawValue& value : key.Values)
    m_existingValues.insert_or_assign(UpperCase(value.Name), std::move(value));
}

TRawResult TRegFileImport::ReplayValue(const TKeyPlace& place, const TRawValue& value) {
  const Text name = m_existing ? UpperCase(StoredValueName(value.Name)) : Text();
  const auto there = m_existing ? m_existingValues.find(name) : m_existingValues.end();
  const bool isThere =
      there != m_existingValues.end() && there->second.Type == value.Type && there->second.Data == value.Data;
  if (isThere)
    return TRawResult::Done;
  const TRawResult written = m_registry.WriteValue(place.RootKey, place.KeyPath, value);
  if (written != TRawResult::Done)
    return written;
  ++m_result.ValuesWritten;
  if (m_existing)
    m_existingValues.insert_or_assign(name, value);
  return written;
}

TRawResult TRegFileImport::CreatePlanned(const TKeyId& id, TKeyPlace place) {
  const bool isInFile = m_planned.contains(id);
  // A parent that the file lacks gets nothing of its own.
  const TRegFileAttributes& attributes = m_planned[id];
  TNewKey newKey{attributes.ClassName, attributes.IsVolatile};
  bool isNew = false;
  TRawResult result = m_registry.CreateKey(place.RootKey, place.KeyPath, newKey, isNew);
  if (result == TRawResult::MustBeVolatile) {
    newKey.IsVolatile = true;
    result = m_registry.CreateKey(place.RootKey, place.KeyPath, newKey, isNew);
  }
  if (result != TRawResult::Done)
    return result;
  m_done.insert(id);
  if (!isNew)
    return result;
  ++m_result.KeysWritten;
  if (isInFile)
    CheckNewKey(place, attributes, newKey);
  m_created.push_back({std::move(place), &attributes});
  return result;
}

// Reads back what can only be given at the creation. A lasting key is volatile now where its parent is.
void TRegFileImport::CheckNewKey(const TKeyPlace& place, const TRegFileAttributes& attributes,
                                 const TNewKey& newKey) {
  if (newKey.ClassName.empty() && !newKey.IsVolatile)
    return;
  TKeyAttributes read;
  const bool isRead = m_registry.ReadAttributes(place.RootKey, place.KeyPath, read) == TRawResult::Done;
  if (!isRead || read.ClassName != attributes.ClassName)
    ++m_result.AttributesLost;
  if (!isRead || read.IsVolatile.value_or(attributes.IsVolatile) != attributes.IsVolatile)
    ++m_result.AttributesLost;
}

// From the leaves up: whatever is written below a key changes its time, and permissions may forbid it.
void TRegFileImport::WriteAttributes() {
  std::stable_sort(m_created.begin(), m_created.end(), [](const TCreatedKey& a, const TCreatedKey& b) {
    return DepthOf(a.Place.KeyPath) > DepthOf(b.Place.KeyPath);
  });
  for (const TCreatedKey& key : m_created) {
    const TAttributesLost lost = WriteAttributes(key);
    m_result.AttributesLost += (lost.Security ? 1 : 0) + (lost.LastWrite ? 1 : 0);
  }
}

TAttributesLost TRegFileImport::WriteAttributes(const TCreatedKey& key) {
  const TWantedAttributes wanted{key.Attributes->LastWrite, key.Attributes->Security};
  TAttributesLost lost{!wanted.Security.empty(), wanted.LastWrite.has_value()};
  if (!lost.Any() || m_unfinished.contains({key.Place.RootKey, UpperCase(key.Place.KeyPath)}))
    return lost;
  TAttributesLost notSet;
  if (m_registry.WriteAttributes(key.Place.RootKey, key.Place.KeyPath, wanted, notSet) == TRawResult::Done)
    lost = notSet;
  return lost;
}

}  // namespace corvalt
