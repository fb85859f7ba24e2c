#include "system/changelog.h"

namespace corvalt {

namespace {

// The registry in another view, with its changes reported.
class TLoggedView : public TLoggedRawRegistry {
 public:
  TLoggedView(std::unique_ptr<TRawRegistry> view, TChangeLog& log)
      : TLoggedRawRegistry(*view, log), m_view(std::move(view)) {
  }

 private:
  std::unique_ptr<TRawRegistry> m_view;
};

}  // namespace

void TLoggedRegistryStore::SetRootKey(TRootKey rootKey) {
  m_rootKey = rootKey;
  m_store->SetRootKey(rootKey);
}

// The key that a path means, as OpenKey takes it.
TKeyPlace TLoggedRegistryStore::PlaceOf(TextView path) const {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  if (!parsed)
    return {m_rootKey, Text(path)};
  TKeyPlace place = parsed->FromRoot || !m_isOpen ? TKeyPlace{m_rootKey, {}} : m_open;
  for (const Text& name : parsed->Names)
    place.KeyPath += u"\\" + name;
  return place;
}

bool TLoggedRegistryStore::Report(TChangeKind kind, const TKeyPlace& place, TextView valueName, bool done) {
  m_log.Changed(
      {kind, place.RootKey, place.KeyPath, Text(valueName), done ? TRawResult::Done : TRawResult::Failed});
  return done;
}

bool TLoggedRegistryStore::OpenKey(TextView path, bool canCreate) {
  const TKeyPlace place = PlaceOf(path);
  const bool creates = canCreate && !m_store->KeyExists(path);
  m_isOpen = m_store->OpenKey(path, canCreate);
  m_open = place;
  return creates ? Report(TChangeKind::KeyCreated, place, {}, m_isOpen) : m_isOpen;
}

void TLoggedRegistryStore::CloseKey() {
  m_isOpen = false;
  m_store->CloseKey();
}

bool TLoggedRegistryStore::WriteString(TextView name, TextView value) {
  return Report(TChangeKind::ValueWritten, m_open, name, m_store->WriteString(name, value));
}

bool TLoggedRegistryStore::WriteInteger(TextView name, std::int32_t value) {
  return Report(TChangeKind::ValueWritten, m_open, name, m_store->WriteInteger(name, value));
}

bool TLoggedRegistryStore::WriteBool(TextView name, bool value) {
  return Report(TChangeKind::ValueWritten, m_open, name, m_store->WriteBool(name, value));
}

bool TLoggedRegistryStore::DeleteKey(TextView path) {
  return Report(TChangeKind::KeyDeleted, PlaceOf(path), {}, m_store->DeleteKey(path));
}

bool TLoggedRegistryStore::DeleteValue(TextView name) {
  return Report(TChangeKind::ValueDeleted, m_open, name, m_store->DeleteValue(name));
}

TRawResult TLoggedRawRegistry::Report(TChangeKind kind, TRootKey rootKey, TextView keyPath,
                                      TextView valueName, TRawResult result) {
  m_log.Changed({kind, rootKey, Text(keyPath), Text(valueName), result});
  return result;
}

TRawResult TLoggedRawRegistry::CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey,
                                         bool& isNew) {
  const TRawResult result = m_registry.CreateKey(rootKey, keyPath, newKey, isNew);
  const bool changedNothing = result == TRawResult::Done && !isNew;
  return changedNothing ? result : Report(TChangeKind::KeyCreated, rootKey, keyPath, {}, result);
}

TRawResult TLoggedRawRegistry::WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) {
  return Report(TChangeKind::ValueWritten, rootKey, keyPath, value.Name,
                m_registry.WriteValue(rootKey, keyPath, value));
}

TRawResult TLoggedRawRegistry::WriteAttributes(TRootKey rootKey, TextView keyPath,
                                               const TWantedAttributes& wanted, TAttributesLost& lost) {
  const TRawResult result = m_registry.WriteAttributes(rootKey, keyPath, wanted, lost);
  const bool isInPart = result == TRawResult::Done && lost.Any();
  static_cast<void>(
      Report(TChangeKind::AttributesWritten, rootKey, keyPath, {}, isInPart ? TRawResult::InPart : result));
  return result;
}

TRawResult TLoggedRawRegistry::DeleteKey(TRootKey rootKey, TextView keyPath) {
  return Report(TChangeKind::KeyDeleted, rootKey, keyPath, {}, m_registry.DeleteKey(rootKey, keyPath));
}

TRawResult TLoggedRawRegistry::DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) {
  return Report(TChangeKind::ValueDeleted, rootKey, keyPath, name,
                m_registry.DeleteValue(rootKey, keyPath, name));
}

TRawResult TLoggedRawRegistry::DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) {
  return Report(TChangeKind::KeyDeleted, place.RootKey, place.KeyPath, {},
                m_registry.DeleteKeyAt(place, mayDelete));
}

TRawResult TLoggedRawRegistry::DeleteValueAt(const TKeyPlace& place, TextView name,
                                             const TValueCheck& mayDelete) {
  return Report(TChangeKind::ValueDeleted, place.RootKey, place.KeyPath, name,
                m_registry.DeleteValueAt(place, name, mayDelete));
}

std::unique_ptr<TRawRegistry> TLoggedRawRegistry::OpenView(TRegistryView view) {
  std::unique_ptr<TRawRegistry> opened = m_registry.OpenView(view);
  return opened ? std::make_unique<TLoggedView>(std::move(opened), m_log) : nullptr;
}

}  // namespace corvalt
