#include "platform/windows/keytree.h"

#include "platform/windows/keyplaces.h"
#include "platform/windows/keyrules.h"

namespace corvalt {

namespace {

constexpr REGSAM kDeletionAccess = KEY_READ | DELETE;

}  // namespace

TRawResult TKeyTree::Open(HKEY parent, TextView path) {
  TRegistryKey key;
  const LSTATUS opened = m_calls.Open(parent, path, kDeletionAccess, true, key);
  if (opened == ERROR_SUCCESS)
    m_keys.push_back({std::move(key), {}});
  return RawResultOf(opened);
}

TRawResult TKeyTree::ListSubKeys(HKEY key, std::vector<Text>& subKeys) {
  TKeyCounts counts;
  const LSTATUS counted = m_calls.Counts(key, counts);
  if (counted != ERROR_SUCCESS)
    return RawResultOf(counted);
  if (counts.Values != 0 && m_calls.IsLink(key))
    return TRawResult::Link;
  subKeys.resize(counts.SubKeys);
  for (DWORD i = 0; i < counts.SubKeys; ++i) {
    const LSTATUS listed = m_calls.EnumKey(key, i, subKeys[i]);
    if (listed != ERROR_SUCCESS || HoldsNul(subKeys[i]))
      return TRawResult::Failed;
  }
  return TRawResult::Done;
}

TRawResult TKeyTree::Look(HKEY key, TextView pathBelow, const TKeyCheck& mayDelete,
                          std::vector<Text>& subKeys) {
  if (!mayDelete)
    return ListSubKeys(key, subKeys);
  TRawKey content;
  const TRawResult read = m_reader.Read(key, content);
  if (read != TRawResult::Done)
    return read;
  if (!mayDelete(pathBelow, content))
    return TRawResult::Refused;
  subKeys = std::move(content.SubKeys);
  return TRawResult::Done;
}

// The list grows while it is worked off: the keys that were found last are looked at last, and a key always
// stands before its subkeys.
TRawResult TKeyTree::Inspect(const TKeyCheck& mayDelete) {
  for (std::size_t i = 0; i < m_keys.size(); ++i) {
    const HKEY key = m_keys[i].Key.Get();
    const Text pathBelow = m_keys[i].PathBelow;
    std::vector<Text> subKeys;
    const TRawResult looked = Look(key, pathBelow, mayDelete, subKeys);
    if (looked != TRawResult::Done)
      return looked;
    for (const Text& name : subKeys) {
      TRegistryKey subKey;
      const LSTATUS opened = m_calls.Open(key, name, kDeletionAccess, true, subKey);
      // Somebody else may have deleted it since it was listed.
      if (RawResultOf(opened) == TRawResult::Missing)
        continue;
      if (opened != ERROR_SUCCESS)
        return RawResultOf(opened);
      m_keys.push_back({std::move(subKey), pathBelow + u"\\" + name});
    }
  }
  return TRawResult::Done;
}

TRawResult TKeyTree::Delete(const TKeyCheck& mayDelete) {
  bool someAreGone = false;
  while (!m_keys.empty()) {
    const TRawResult deleted = DeleteOne(m_keys.back(), mayDelete);
    if (deleted != TRawResult::Done && deleted != TRawResult::Missing)
      return someAreGone ? TRawResult::InPart : deleted;
    someAreGone = true;
    m_keys.pop_back();
  }
  return TRawResult::Done;
}

// What was written into the key since the whole tree was looked at is in no backup.
TRawResult TKeyTree::DeleteOne(const TTreeKey& key, const TKeyCheck& mayDelete) {
  const HKEY handle = key.Key.Get();
  TKeyCounts counts;
  std::vector<Text> subKeys;
  const TRawResult looked = mayDelete ? Look(handle, key.PathBelow, mayDelete, subKeys) : TRawResult::Done;
  if (looked == TRawResult::Done)
    return RawResultOf(m_calls.DeleteKey(handle));
  return IsGone(m_calls.Counts(handle, counts)) ? TRawResult::Missing : looked;
}

TRawResult DeleteKeyAndBelow(TRegistryCalls& calls, TRootKey rootKey, TextView path) {
  TKeyTree tree(calls);
  TRawResult result = tree.Open(RootHandle(rootKey), path);
  if (result == TRawResult::Done && rootKey == kHkeyClassesRoot) {
    // Handles below this root show the subkeys of both hives.
    const std::optional<TKeyPlace> place = TKeyPlaces(calls).Find(tree.Top());
    if (!place)
      return TRawResult::Failed;
    return DeleteKeyAndBelow(calls, place->RootKey, TextView(place->KeyPath).substr(1));
  }
  if (result == TRawResult::Done)
    result = tree.Inspect({});
  return result == TRawResult::Done ? tree.Delete({}) : result;
}

}  // namespace corvalt
