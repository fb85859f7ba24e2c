#include "repair/ignorereg.h"

#include <algorithm>
#include <set>

#include "base/lettercase.h"
#include "core/settingskeys.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kIgnoreListLock = u"TessalySoft Corvalt Ignore List";

bool IsOff(TextView entry) {
  return entry.starts_with(kOffMark);
}

TextView WithoutOffMark(TextView entry) {
  return entry.substr(IsOff(entry) ? 1 : 0);
}

// The registry takes a name up to its first NUL, which stands for the unnamed value.
TextView StoredName(TextView entry) {
  return entry.substr(0, entry.find(u'\0'));
}

// The same text for an entry in any letter case, switched on or off.
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

// The copies of the program that this user runs change the stored list one after another. One that doesn't
// give way in time keeps nobody from storing: each step of a change leaves a list that holds every entry.
std::unique_ptr<THeldLock> LockIgnoreList(TSystem& system) {
  TLockWish wish;
  wish.Name = kIgnoreListLock;
  return system.Interprocess.Lock(wish, {}).Lock;
}

bool WriteEntries(RegistryStore& store, const std::vector<Text>& entries) {
  bool allWritten = true;
  for (const Text& entry : entries)
    allWritten = store.WriteBool(StoredName(entry), true) && allWritten;
  return allWritten;
}

// What is in the open key beside the entries: values of any data, and subkeys.
void DeleteAllBut(RegistryStore& store, const std::vector<Text>& entries) {
  std::set<Text> kept;
  for (const Text& entry : entries)
    kept.insert(UpperCase(StoredName(entry)));
  for (const Text& name : store.GetValueNames()) {
    if (!kept.contains(UpperCase(name)))
      store.DeleteValue(name);
  }
  for (const Text& name : store.GetKeyNames())
    store.DeleteKey(Text(kIgnoreListKey) + u"\\" + name);
}

}  // namespace

Text IgnoreEntryOf(const ScanProblem& problem) {
  return KeyText(problem) + u"\\" + problem.ValueName;
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
  const std::unique_ptr<THeldLock> lock = LockIgnoreList(system);
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*store, kIgnoreListKey, true);
  if (key)
    store->WriteBool(StoredName(entry), true);
}

void SaveIgnoreList(TSystem& system, TGlobalReg& reg, std::vector<Text> entries) {
  const std::unique_ptr<THeldLock> lock = LockIgnoreList(system);
  const std::vector<Text> others = AddedByOthers(system, reg.IgnoreList);
  reg.IgnoreList = std::move(entries);
  reg.IgnoreList.insert(reg.IgnoreList.end(), others.begin(), others.end());
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(TRegistryAccess::Full);
  const TOpenKey key(*store, kIgnoreListKey, true);
  if (!key)
    return;
  // The new values come first, so that a program that is ended in the middle loses no entry.
  if (WriteEntries(*store, reg.IgnoreList))
    DeleteAllBut(*store, reg.IgnoreList);
}

}  // namespace corvalt
