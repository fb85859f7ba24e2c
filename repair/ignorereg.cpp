#include "repair/ignorereg.h"

#include <algorithm>
#include <set>

#include "base/lettercase.h"
#include "core/settingskeys.h"

namespace corvalt {

namespace {

bool IsOff(TextView entry) {
  return entry.starts_with(kOffMark);
}

TextView WithoutOffMark(TextView entry) {
  return entry.substr(IsOff(entry) ? 1 : 0);
}

std::unique_ptr<RegistryStore> UserStore(TSystem& system) {
  std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  store->SetRootKey(kHkeyCurrentUser);
  return store;
}

// The registry takes a name up to its first NUL, which stands for the unnamed value.
TextView StoredName(TextView entry) {
  return entry.substr(0, entry.find(u'\0'));
}

// What all forms of an entry have in common.
Text SameInAllForms(TextView entry) {
  return UpperCase(StoredName(WithoutOffMark(entry)));
}

// The stored entries that the list in memory does not know: other copies of the program have added them.
std::vector<Text> AddedByOthers(TSystem& system, const std::vector<Text>& list) {
  std::set<Text> known;
  for (const Text& entry : list)
    known.insert(SameInAllForms(entry));
  std::vector<Text> entries = LoadIgnoreList(system);
  std::erase_if(entries, [&known](const Text& entry) { return known.contains(SameInAllForms(entry)); });
  return entries;
}

}  // namespace

Text IgnoreEntryOf(const ScanProblem& problem) {
  return RootKeyName(problem.RootKey) + problem.KeyPath + u"\\" + problem.ValueName;
}

void AddIgnoreEntry(TSystem& system, TGlobalReg& reg, TextView entry) {
  const auto same = std::find_if(reg.IgnoreList.begin(), reg.IgnoreList.end(), [entry](const Text& known) {
    return EqualIgnoringCase(WithoutOffMark(known), entry);
  });
  if (same != reg.IgnoreList.end())
    *same = entry;
  else
    reg.IgnoreList.emplace_back(entry);
  StoreIgnoreEntry(system, entry);
}

void StoreIgnoreEntry(TSystem& system, TextView entry) {
  const std::unique_ptr<RegistryStore> store = UserStore(system);
  if (!store->OpenKey(kIgnoreListKey, true))
    return;
  store->WriteBool(StoredName(entry), true);
  store->CloseKey();
}

void SaveIgnoreList(TSystem& system, TGlobalReg& reg, std::vector<Text> entries) {
  const std::vector<Text> others = AddedByOthers(system, reg.IgnoreList);
  reg.IgnoreList = std::move(entries);
  reg.IgnoreList.insert(reg.IgnoreList.end(), others.begin(), others.end());
  const std::unique_ptr<RegistryStore> store = UserStore(system);
  store->DeleteKey(kIgnoreListKey);
  if (!store->OpenKey(kIgnoreListKey, true))
    return;
  for (const Text& entry : reg.IgnoreList)
    store->WriteBool(StoredName(entry), true);
  store->CloseKey();
}

}  // namespace corvalt
