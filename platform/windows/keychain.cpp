#include "platform/windows/keychain.h"

#include "base/lettercase.h"
#include "platform/windows/keyrules.h"

namespace corvalt {

namespace {

bool IsKeyPrefix(TextView prefix, TextView path) {
  if (prefix.size() >= path.size() || path[prefix.size()] != u'\\')
    return false;
  const TextView head = path.substr(0, prefix.size());
  return head == prefix || EqualIgnoringCase(head, prefix);
}

}  // namespace

const TKeptKey* TKeyChain::ParentOf(TRootKey rootKey, TextView path) const {
  for (auto kept = m_kept.rbegin(); kept != m_kept.rend(); ++kept) {
    if ((*kept)->RootKey == rootKey && IsKeyPrefix((*kept)->Path, path))
      return kept->get();
  }
  return nullptr;
}

void TKeyChain::DropWhatIsNoParent(TRootKey rootKey, TextView path) {
  const TKeptKey* parent = ParentOf(rootKey, path);
  while (!m_kept.empty() && m_kept.back().get() != parent)
    m_kept.pop_back();
}

std::shared_ptr<TKeptKey> TKeyChain::Keep(TRootKey rootKey, TextView path, REGSAM access,
                                          TRegistryKey opened) {
  auto kept = std::make_shared<TKeptKey>();
  kept->RootKey = rootKey;
  kept->Path = Text(path);
  kept->Key = std::move(opened);
  kept->Access = access;
  m_kept.push_back(kept);
  return kept;
}

LSTATUS TKeyChain::Open(TRootKey rootKey, TextView path, REGSAM access, bool asLink,
                        std::shared_ptr<TKeptKey>& key) {
  DropWhatIsNoParent(rootKey, path);
  TRegistryKey opened;
  LSTATUS status = ERROR_KEY_DELETED;
  if (!m_kept.empty()) {
    const TKeptKey& parent = *m_kept.back();
    status = m_calls.Open(parent.Key.Get(), path.substr(parent.Path.size() + 1), access, asLink, opened);
  }
  if (IsGone(status)) {
    Clear();
    status = m_calls.Open(RootHandle(rootKey), path, access, asLink, opened);
  }
  if (status == ERROR_SUCCESS)
    key = Keep(rootKey, path, access, std::move(opened));
  return status;
}

LSTATUS TKeyChain::Create(TRootKey rootKey, TextView path, REGSAM access, const TNewKey& newKey,
                          std::shared_ptr<TKeptKey>& key) {
  DropWhatIsNoParent(rootKey, path);
  TRegistryKey created;
  bool isNew = false;
  LSTATUS status = ERROR_KEY_DELETED;
  if (!m_kept.empty()) {
    const TKeptKey& parent = *m_kept.back();
    status =
        m_calls.Create(parent.Key.Get(), path.substr(parent.Path.size() + 1), access, newKey, created, isNew);
  }
  if (IsGone(status)) {
    Clear();
    status = m_calls.Create(RootHandle(rootKey), path, access, newKey, created, isNew);
  }
  if (status == ERROR_SUCCESS) {
    key = Keep(rootKey, path, access, std::move(created));
    key->IsNew = isNew;
  }
  return status;
}

bool TKeyChain::LiesInNewKey(TRootKey rootKey, TextView path) const {
  const TKeptKey* parent = ParentOf(rootKey, path);
  return parent != nullptr && parent->IsNew && path.find(u'\\', parent->Path.size() + 1) == TextView::npos;
}

bool TKeyChain::Exists(TRootKey rootKey, TextView path) {
  TRegistryKey opened;
  LSTATUS status = ERROR_KEY_DELETED;
  const TKeptKey* parent = ParentOf(rootKey, path);
  if (parent != nullptr) {
    const TextView rest = path.substr(parent->Path.size() + 1);
    status = m_calls.Open(parent->Key.Get(), rest, KEY_READ, false, opened);
  }
  if (IsGone(status))
    status = m_calls.Open(RootHandle(rootKey), path, KEY_READ, false, opened);
  return status == ERROR_SUCCESS || status == ERROR_ACCESS_DENIED;
}

std::shared_ptr<TKeptKey> TKeyChain::DirectParent(TRootKey rootKey, TextView path) const {
  const std::size_t end = path.rfind(u'\\');
  if (end == TextView::npos)
    return nullptr;
  const TextView parentPath = path.substr(0, end);
  for (const std::shared_ptr<TKeptKey>& kept : m_kept) {
    if (kept->RootKey == rootKey && EqualIgnoringCase(kept->Path, parentPath))
      return kept;
  }
  return nullptr;
}

std::shared_ptr<TKeptKey> TKeyChain::Last(TRootKey rootKey, TextView path) const {
  if (m_kept.empty() || m_kept.back()->RootKey != rootKey)
    return nullptr;
  const Text& last = m_kept.back()->Path;
  return last == path || EqualIgnoringCase(last, path) ? m_kept.back() : nullptr;
}

}  // namespace corvalt
