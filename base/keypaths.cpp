#include "base/keypaths.h"

#include <array>

#include "base/lettercase.h"

namespace corvalt {

namespace {

struct TNamedRoot {
  TextView Name;
  TRootKey RootKey;
};

constexpr std::array<TNamedRoot, 6> kRoots = {{
    {u"HKEY_CURRENT_USER", kHkeyCurrentUser},
    {u"HKEY_CLASSES_ROOT", kHkeyClassesRoot},
    {u"HKEY_LOCAL_MACHINE", kHkeyLocalMachine},
    {u"HKEY_USERS", kHkeyUsers},
    {u"HKEY_CURRENT_CONFIG", kHkeyCurrentConfig},
    {u"HKEY_DYN_DATA", kHkeyDynData},
}};

}  // namespace

Text RootKeyName(TRootKey rootKey) {
  for (const TNamedRoot& root : kRoots) {
    if (root.RootKey == rootKey)
      return Text(root.Name);
  }
  return Text(kRoots.front().Name);
}

TRootKey RootKeyFromName(TextView name) {
  for (const TNamedRoot& root : kRoots) {
    if (root.Name == name)
      return root.RootKey;
  }
  return kHkeyCurrentUser;
}

bool IsRootKeyName(TextView name) {
  for (const TNamedRoot& root : kRoots) {
    if (root.Name == name)
      return true;
  }
  return false;
}

bool OpensKey(TextView path) {
  return !path.starts_with(u"\\\\");
}

std::optional<TParsedKeyPath> ParseKeyPath(TextView path) {
  TParsedKeyPath parsed;
  if (!OpensKey(path))
    return std::nullopt;
  parsed.FromRoot = !path.empty() && path.front() == u'\\';
  while (!path.empty()) {
    const std::size_t end = path.find(u'\\');
    if (end != 0)
      parsed.Names.emplace_back(path.substr(0, end));
    path.remove_prefix(end == TextView::npos ? path.size() : end + 1);
  }
  return parsed;
}

std::optional<TKeyPath> TKeyPath::Parse(TRootKey rootKey, TextView path) {
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(path);
  if (!parsed)
    return std::nullopt;
  Text fromRoot;
  for (const Text& name : parsed->Names)
    fromRoot.append(u"\\").append(name);
  return TKeyPath(RootKeyFromName(RootKeyName(rootKey)), fromRoot.empty() ? Text(u"\\") : fromRoot);
}

TKeyPath TKeyPath::SubKey(TextView name) const {
  return TKeyPath(m_rootKey, (IsRoot() ? u"" : m_path) + Text(u"\\").append(name));
}

Text TKeyPath::Comparable() const {
  return RootKeyName(m_rootKey) + UpperCase(m_path);
}

}  // namespace corvalt
