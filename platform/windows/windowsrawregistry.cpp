#include "platform/windows/windowsrawregistry.h"

#include <algorithm>

#include "base/lettercase.h"
#include "platform/windows/keyrules.h"
#include "platform/windows/keysecurity.h"
#include "platform/windows/keytree.h"
#include "platform/windows/registryviews.h"
#include "system/securitydescriptor.h"

namespace corvalt {

namespace {

constexpr REGSAM kReadAccess = KEY_READ;
constexpr REGSAM kChangeAccess = KEY_READ | KEY_WRITE;

}  // namespace

TWindowsRawRegistry::TWindowsRawRegistry() : m_view(OwnView()) {
}

TWindowsRawRegistry::TWindowsRawRegistry(TRegistryView view)
    : m_view(view), m_calls(view == OwnView() ? 0 : ViewFlag(view)) {
}

std::unique_ptr<TRawRegistry> TWindowsRawRegistry::OpenView(TRegistryView view) {
  return HasView(view) ? std::make_unique<TWindowsRawRegistry>(view) : nullptr;
}

// Checks a kept key once. A key that is deleted later and made anew as a link needs no second check: the
// handle kept of the deleted key fails, and the key is opened again.
TRawResult TWindowsRawRegistry::RefuseLink(TKeptKey& key) {
  if (key.LinkChecked)
    return TRawResult::Done;
  if (m_calls.IsLink(key.Key.Get()))
    return TRawResult::Link;
  key.LinkChecked = true;
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::OpenAnew(TRootKey rootKey, const Text& path, REGSAM access,
                                         TKeptPointer& key) {
  return RawResultOf(m_chain.Open(rootKey, path, access, true, key));
}

TRawResult TWindowsRawRegistry::OpenKept(TRootKey rootKey, const Text& path, REGSAM access,
                                         TKeptPointer& key) {
  key = m_chain.Last(rootKey, path);
  if (key && (key->Access & access) == access)
    return TRawResult::Done;
  const TRawResult opened = OpenAnew(rootKey, path, access, key);
  if (opened != TRawResult::Done)
    return opened;
  const TRawResult checked = RefuseLink(*key);
  if (checked != TRawResult::Done)
    m_chain.Clear();
  return checked;
}

TRawResult TWindowsRawRegistry::OpenOrCreate(TRootKey rootKey, const Text& path, const TNewKey& newKey,
                                             TKeptPointer& key) {
  // In a new key there are no subkeys yet: creating at once saves the call that would look for the key first,
  // a third of an import's calls.
  if (!m_chain.Last(rootKey, path) && m_chain.LiesInNewKey(rootKey, path)) {
    if (m_chain.Create(rootKey, path, kChangeAccess, newKey, key) == ERROR_SUCCESS && key->IsNew) {
      key->LinkChecked = true;
      return TRawResult::Done;
    }
    // Somebody else made it meanwhile, and it may be a link.
    m_chain.Clear();
  }
  const TRawResult opened = OpenKept(rootKey, path, kChangeAccess, key);
  if (opened != TRawResult::Missing)
    return opened;
  const TRawResult created = RawResultOf(m_chain.Create(rootKey, path, kChangeAccess, newKey, key));
  if (created != TRawResult::Done)
    return created;
  if (!key->IsNew) {
    // The same: what was opened may be the target of a link.
    m_chain.Clear();
    return OpenKept(rootKey, path, kChangeAccess, key);
  }
  key->LinkChecked = true;
  return TRawResult::Done;
}

// Runs a routine that returns the system's error code on the key. A kept key that somebody deleted meanwhile
// is opened once more.
template <typename TRoutine>
TRawResult TWindowsRawRegistry::WithKey(TRootKey rootKey, const Text& path, REGSAM access, TRoutine routine) {
  LSTATUS status = ERROR_KEY_DELETED;
  for (int attempt = 0; attempt < 2 && IsGone(status); ++attempt) {
    TKeptPointer key;
    const TRawResult opened = OpenKept(rootKey, path, access, key);
    if (opened != TRawResult::Done)
      return opened;
    status = routine(*key);
    if (IsGone(status))
      m_chain.Clear();
  }
  return RawResultOf(status);
}

TRawResult TWindowsRawRegistry::ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  TKeptPointer kept;
  const TRawResult opened = OpenAnew(rootKey, *path, kReadAccess, kept);
  if (opened != TRawResult::Done)
    return opened;
  const TRawResult result = m_reader.Read(kept->Key.Get(), key);
  kept->LinkChecked = result == TRawResult::Done;
  if (result == TRawResult::Link)
    m_chain.Clear();
  return result;
}

TRawResult TWindowsRawRegistry::ReadValue(TRootKey rootKey, TextView keyPath, TextView name,
                                          TRawValue& value) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  TSystemValue at;
  const TRawResult named = SystemValueOf(keyPath, name, at);
  if (named != TRawResult::Done)
    return named;
  Text storedName = at.Name;
  const TRawResult result = WithKey(rootKey, at.KeyPath, kReadAccess, [&](const TKeptKey& key) {
    const LSTATUS status = m_calls.QueryValue(key.Key.Get(), at.Name, m_buffer);
    if (status == ERROR_SUCCESS && !at.Name.empty())
      storedName = m_names.AsStored(key, at.Name);
    return status;
  });
  if (result == TRawResult::Done)
    value = {storedName, m_buffer.Type, TBytes(m_buffer.Data().begin(), m_buffer.Data().end())};
  return result;
}

TRawResult TWindowsRawRegistry::PlaceOfKey(TRootKey rootKey, const Text& path, TKeyPlace& place) {
  if (path.empty())
    return TRawResult::Failed;
  std::optional<TKeyPlace> found;
  const TRawResult result = WithKey(rootKey, path, kReadAccess, [&](const TKeptKey& key) -> LSTATUS {
    found = m_places.Find(key.Key.Get());
    return ERROR_SUCCESS;
  });
  if (result != TRawResult::Done)
    return result;
  if (!found)
    return TRawResult::Failed;
  place = std::move(*found);
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::FindKey(TRootKey rootKey, TextView keyPath, TKeyPlace& place) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  return path ? PlaceOfKey(rootKey, *path, place) : TRawResult::Failed;
}

// A key below HKEY_CLASSES_ROOT shows the values of both hives, and its handle is the user's key where there
// is one (page "Merged View of HKEY_CLASSES_ROOT").
TRawResult TWindowsRawRegistry::FindValue(TRootKey rootKey, TextView keyPath, TextView name,
                                          TKeyPlace& place) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  TSystemValue at;
  const TRawResult named = SystemValueOf(keyPath, name, at);
  if (named != TRawResult::Done)
    return named;
  TKeyPlace found{rootKey, Text(keyPath)};
  TRawResult result = IsRootPlace(found) ? TRawResult::Done : PlaceOfKey(rootKey, at.KeyPath, found);
  if (result != TRawResult::Done)
    return result;
  const auto holdsValue = [&](const TKeyPlace& holder) {
    return WithKey(holder.RootKey, holder.KeyPath.substr(1), kReadAccess, [&](const TKeptKey& key) {
      DWORD type = kRegNone;
      return m_calls.QueryType(key.Key.Get(), at.Name, type);
    });
  };
  result = holdsValue(found);
  const bool inUserClasses =
      found.RootKey == kHkeyCurrentUser && found.KeyPath.size() > kClassesPrefix.size() &&
      EqualIgnoringCase(found.KeyPath.substr(0, kClassesPrefix.size()), kClassesPrefix);
  if (result == TRawResult::Missing && rootKey == kHkeyClassesRoot && inUserClasses) {
    result = PlaceOfKey(kHkeyLocalMachine, found.KeyPath.substr(1), found);
    if (result == TRawResult::Done)
      result = holdsValue(found);
  }
  if (result == TRawResult::Done)
    place = std::move(found);
  return result;
}

const TBytes& TWindowsRawRegistry::SecurityOf(TKeptKey& key) {
  if (!key.Security)
    key.Security = ReadSecurity(key.Key.Get());
  return *key.Security;
}

const TBytes& TWindowsRawRegistry::NewOwner() {
  if (!m_newOwner)
    m_newOwner = OwnerOfNewKeys();
  return *m_newOwner;
}

TBytes TWindowsRawRegistry::ParentSecurity(TRootKey rootKey, TextView path) {
  if (const TKeptPointer parent = m_chain.DirectParent(rootKey, path))
    return SecurityOf(*parent);
  const std::size_t end = path.rfind(u'\\');
  if (end == TextView::npos)
    return ReadSecurity(RootHandle(rootKey));
  TRegistryKey parent;
  if (m_calls.Open(RootHandle(rootKey), path.substr(0, end), READ_CONTROL, false, parent) != ERROR_SUCCESS)
    return {};
  return ReadSecurity(parent.Get());
}

TRawResult TWindowsRawRegistry::ReadAttributes(TRootKey rootKey, TextView keyPath,
                                               TKeyAttributes& attributes) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  TKeyAttributes read;
  TKeptPointer kept;
  const TRawResult result = WithKey(rootKey, *path, kReadAccess, [&](const TKeptKey& key) {
    const LSTATUS status = m_calls.ClassAndTime(key.Key.Get(), read.ClassName, read.LastWrite);
    if (status == ERROR_SUCCESS)
      read.IsVolatile = m_calls.IsVolatile(key.Key.Get());
    return status;
  });
  if (result != TRawResult::Done)
    return result;
  if (const TKeptPointer key = m_chain.Last(rootKey, *path))
    read.Security = SecurityOf(*key);
  read.HasOwnSecurity = HasOwnSecurity(read.Security, ParentSecurity(rootKey, *path), NewOwner());
  attributes = std::move(read);
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::MayCreateSubKeys(TRootKey rootKey, TextView keyPath) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  // A link is followed: the user's Software\Classes is one, and its classes are created where it leads.
  TRegistryKey key;
  return RawResultOf(m_calls.Open(RootHandle(rootKey), *path, KEY_CREATE_SUB_KEY, false, key));
}

bool TWindowsRawRegistry::OpensWithFullAccess(TRootKey rootKey, TextView subKey) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  TRegistryKey key;
  return !HoldsNul(subKey) &&
         m_calls.Open(RootHandle(rootKey), subKey, KEY_ALL_ACCESS, false, key) == ERROR_SUCCESS;
}

// Of a key that is not plain: the system would give missing parents the same class and volatility.
TRawResult TWindowsRawRegistry::CreateParents(TRootKey rootKey, const Text& path, const TNewKey& newKey) {
  const std::size_t end = path.rfind(u'\\');
  const bool isPlain = newKey.ClassName.empty() && !newKey.IsVolatile;
  if (isPlain || end == Text::npos || m_chain.Exists(rootKey, path.substr(0, end)))
    return TRawResult::Done;
  TKeptPointer parent;
  const TRawResult result = OpenOrCreate(rootKey, path.substr(0, end), {}, parent);
  if (result != TRawResult::MustBeVolatile || !newKey.IsVolatile)
    return result;
  return OpenOrCreate(rootKey, path.substr(0, end), {{}, true}, parent);
}

TRawResult TWindowsRawRegistry::CreateKey(TRootKey rootKey, TextView keyPath, const TNewKey& newKey,
                                          bool& isNew) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  // A key kept from before might have been deleted; the result must be about the registry as it is now.
  if (m_chain.Last(rootKey, *path))
    m_chain.Clear();
  const TRawResult parents = CreateParents(rootKey, *path, newKey);
  if (parents != TRawResult::Done)
    return parents;
  TKeptPointer key;
  TRawResult result = OpenOrCreate(rootKey, *path, newKey, key);
  if (result == TRawResult::Denied && OpenKept(rootKey, *path, kReadAccess, key) == TRawResult::Done)
    result = TRawResult::Done;
  if (result == TRawResult::Done)
    isNew = key->IsNew;
  return result;
}

TRawResult TWindowsRawRegistry::WriteTo(HKEY handle, const Text& name, const TRawValue& value) {
  const LSTATUS written = m_calls.SetValue(handle, name, value.Type, value.Data);
  if (written != ERROR_SUCCESS)
    return RawResultOf(written);
  // The system may add a terminator to strings without one, so those are read back.
  if (!IsTextType(value.Type) || EndsInNul(value.Data))
    return TRawResult::Done;
  const LSTATUS read = m_calls.QueryValue(handle, name, m_buffer);
  const bool same =
      read == ERROR_SUCCESS && m_buffer.Type == value.Type && std::ranges::equal(m_buffer.Data(), value.Data);
  return same ? TRawResult::Done : TRawResult::Failed;
}

TRawResult TWindowsRawRegistry::WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  const std::optional<TextView> name = SystemValueName(value.Name);
  if (!path || !name)
    return TRawResult::Failed;
  TRawResult result = TRawResult::Missing;
  for (int attempt = 0; attempt < 2 && result == TRawResult::Missing; ++attempt) {
    TKeptPointer key;
    result = OpenOrCreate(rootKey, *path, {}, key);
    if (result != TRawResult::Done)
      return result;
    result = WriteTo(key->Key.Get(), Text(*name), value);
    if (result == TRawResult::Missing)
      m_chain.Clear();
  }
  return result;
}

// With as much access as the user has: what is missing shows when the attributes are read back.
TRawResult TWindowsRawRegistry::OpenForAttributes(TRootKey rootKey, const Text& path, TRegistryKey& key) {
  LSTATUS status = ERROR_ACCESS_DENIED;
  for (const REGSAM access : {KEY_READ | KEY_SET_VALUE | WRITE_DAC | WRITE_OWNER,
                              KEY_READ | KEY_SET_VALUE | WRITE_DAC, KEY_READ | KEY_SET_VALUE}) {
    if (status == ERROR_ACCESS_DENIED)
      status = m_calls.Open(RootHandle(rootKey), path, access, true, key);
  }
  if (status != ERROR_SUCCESS)
    return RawResultOf(status);
  return m_calls.IsLink(key.Get()) ? TRawResult::Link : TRawResult::Done;
}

TRawResult TWindowsRawRegistry::WriteAttributes(TRootKey rootKey, TextView keyPath,
                                                const TWantedAttributes& wanted, TAttributesLost& lost) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  TRegistryKey key;
  const TRawResult opened = OpenForAttributes(rootKey, *path, key);
  if (opened != TRawResult::Done)
    return opened;
  // Handles kept with the rights that the key had before, and what was read of it, count no longer.
  m_chain.Clear();
  lost = {};
  if (!wanted.Security.empty()) {
    WriteSecurity(key.Get(), wanted.Security);
    lost.Security = !HasSecurity(ReadSecurity(key.Get()), wanted.Security);
  }
  if (wanted.LastWrite) {
    m_calls.SetLastWrite(key.Get(), *wanted.LastWrite);
    TKeyCounts counts;
    lost.LastWrite =
        m_calls.Counts(key.Get(), counts) != ERROR_SUCCESS || counts.LastWrite != *wanted.LastWrite;
  }
  return TRawResult::Done;
}

TRawResult TWindowsRawRegistry::DeleteKey(TRootKey rootKey, TextView keyPath) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(keyPath);
  if (!path || path->empty())
    return TRawResult::Failed;
  m_chain.Clear();
  return DeleteKeyAndBelow(m_calls, rootKey, *path);
}

TRawResult TWindowsRawRegistry::DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) {
  TKeyPlace place;
  if (rootKey == kHkeyClassesRoot) {
    const TRawResult found = FindValue(rootKey, keyPath, name, place);
    if (found != TRawResult::Done)
      return found;
  }
  const std::lock_guard<std::mutex> hold(m_mutex);
  TSystemValue at;
  const TRawResult named = SystemValueOf(place.KeyPath.empty() ? keyPath : TextView(place.KeyPath), name, at);
  if (named != TRawResult::Done)
    return named;
  const TRootKey root = place.KeyPath.empty() ? rootKey : place.RootKey;
  return WithKey(root, at.KeyPath, kChangeAccess,
                 [&](const TKeptKey& key) { return m_calls.DeleteValue(key.Key.Get(), at.Name); });
}

TRawResult TWindowsRawRegistry::DeleteKeyAt(const TKeyPlace& place, const TKeyCheck& mayDelete) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  const std::optional<Text> path = SystemPath(place.KeyPath);
  if (!path || path->empty())
    return TRawResult::Failed;
  m_chain.Clear();
  TKeyTree tree(m_calls);
  TRawResult result = tree.Open(RootHandle(place.RootKey), *path);
  if (result == TRawResult::Done && m_calls.IsLink(tree.Top()))
    result = TRawResult::Link;
  if (result == TRawResult::Done && !m_places.LiesAt(tree.Top(), place))
    result = TRawResult::Refused;
  if (result == TRawResult::Done)
    result = tree.Inspect(mayDelete);
  return result == TRawResult::Done ? tree.Delete(mayDelete) : result;
}

TRawResult TWindowsRawRegistry::DeleteValueAt(const TKeyPlace& place, TextView name,
                                              const TValueCheck& mayDelete) {
  const std::lock_guard<std::mutex> hold(m_mutex);
  TSystemValue at;
  const TRawResult named = SystemValueOf(place.KeyPath, name, at);
  if (named != TRawResult::Done)
    return named;
  TKeptPointer key;
  const TRawResult opened = OpenForDeletion(place, at.KeyPath, key);
  if (opened != TRawResult::Done)
    return opened;
  const LSTATUS read = m_calls.QueryValue(key->Key.Get(), at.Name, m_buffer);
  if (read != ERROR_SUCCESS)
    return RawResultOf(read);
  const Text stored = at.Name.empty() ? at.Name : m_names.AsStored(*key, at.Name);
  if (!mayDelete({stored, m_buffer.Type, TBytes(m_buffer.Data().begin(), m_buffer.Data().end())}))
    return TRawResult::Refused;
  const TRawResult deleted = RawResultOf(m_calls.DeleteValue(key->Key.Get(), at.Name));
  m_names.Drop(*key, at.Name);
  return deleted;
}

// Opens the key anew: a kept one might be gone, and another in its place.
TRawResult TWindowsRawRegistry::OpenForDeletion(const TKeyPlace& place, const Text& path, TKeptPointer& key) {
  m_chain.Clear();
  const TRawResult opened = OpenKept(place.RootKey, path, kChangeAccess, key);
  if (opened != TRawResult::Done)
    return opened;
  const bool liesThere = IsRootPlace(place) || m_places.LiesAt(key->Key.Get(), place);
  return liesThere ? TRawResult::Done : TRawResult::Refused;
}

void TWindowsRawRegistry::ReleaseKeys() {
  const std::lock_guard<std::mutex> hold(m_mutex);
  m_chain.Clear();
}

}  // namespace corvalt
