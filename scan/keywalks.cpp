// The two recursive walks that scanners share.

#include <algorithm>

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "scan/walkedplaces.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

// Below any key of this name only the control set in use is walked.
constexpr TextView kSystemKeyEnd = u"\\system";
constexpr TextView kControlSetInUse = u"CurrentControlSet";

// The 32-bit mirror of its parent key. The walk of the parent's subkeys ends at it: the mirror is not walked,
// and neither are the subkeys that the enumeration returns after it, whatever their names.
constexpr TextView kMirror = u"wow6432node";

bool IsExcluded(TRootKey root, TextView keyPath, const TPhraseMatcher& exclusions) {
  return exclusions.OccursIn(UpperCase(RootKeyName(root).append(keyPath) + u"\\"));
}

bool EndsInSystem(TextView keyPath) {
  return keyPath.size() >= kSystemKeyEnd.size() &&
         LowerCase(keyPath.substr(keyPath.size() - kSystemKeyEnd.size())) == kSystemKeyEnd;
}

// One walk of TScan::ScanKeyTree.
class TKeyTreeWalk {
 public:
  TKeyTreeWalk(TScan& scan, RegistryStore& registry, TRootKey root, double fraction,
               const TPhraseMatcher& exclusions)
      : m_scan(scan), m_registry(registry), m_root(root), m_fraction(fraction), m_exclusions(exclusions) {
  }

  // The key itself, reached by this name from the key before, and everything below it.
  void Walk(TextView keyPath, TextView name);

 private:
  void CheckValues(TextView keyPath, const std::vector<Text>& names);

  TScan& m_scan;
  RegistryStore& m_registry;
  TRootKey m_root;
  double m_fraction;
  const TPhraseMatcher& m_exclusions;
  TWalkedPlaces m_places;
};

void TKeyTreeWalk::Walk(TextView keyPath, TextView name) {
  if (IsExcluded(m_root, keyPath, m_exclusions))
    return;
  m_scan.HandOverIfDue();
  std::vector<Text> subKeys;
  {
    // The names of a large key's values aren't kept while the keys below it are walked.
    const TOpenKey key(m_registry, keyPath);
    if (!key)
      return;
    const std::vector<Text> valueNames = m_registry.GetValueNames();
    subKeys = EndsInSystem(keyPath) ? std::vector<Text>{Text(kControlSetInUse)} : m_registry.GetKeyNames();
    // A key without subkeys is no parent of anything: no link to it can lead back.
    if (!subKeys.empty() && !m_places.Enter(m_registry.RealPath(), name))
      return;
    CheckValues(keyPath, valueNames);
  }
  for (const Text& subKey : subKeys) {
    if (m_scan.Terminated() || EqualIgnoringCase(subKey, kMirror))
      break;
    Walk(Text(keyPath) + u"\\" + subKey, subKey);
  }
  if (!subKeys.empty())
    m_places.Leave();
}

void TKeyTreeWalk::CheckValues(TextView keyPath, const std::vector<Text>& names) {
  for (const Text& name : names) {
    if (m_scan.Terminated())
      return;
    const TDataType type = m_registry.GetDataType(name);
    if (type != TDataType::String && type != TDataType::ExpandString)
      continue;
    const Text data = m_registry.ReadString(name);
    // Making the label costs more than the rest of a call that does not refresh the dialog.
    m_scan.ReportProgress(RoundHalfToEven(100 * m_fraction),
                          m_scan.IsProgressDue() ? LabelOf(keyPath, name) : Text());
    if (!m_scan.CommandPathExists(data))
      m_scan.ReportValue(m_root, keyPath, name, data, m_scan.Say(TextId::MissingFileOfValue, name, data));
  }
}

// One walk of TScan::IsKeyEmpty.
class TEmptyKeyWalk {
 public:
  TEmptyKeyWalk(TScan& scan, RegistryStore& registry) : m_scan(scan), m_registry(registry) {
  }

  bool IsEmpty(TextView keyPath, TextView name, bool recursive);

 private:
  bool AreEmpty(TextView keyPath, const std::vector<Text>& subKeys);

  TScan& m_scan;
  RegistryStore& m_registry;
  TWalkedPlaces m_places;
};

// What can't be seen whole, a link that leads back among it, is not taken for empty.
bool TEmptyKeyWalk::IsEmpty(TextView keyPath, TextView name, bool recursive) {
  if (m_scan.Terminated())
    return false;
  m_scan.HandOverIfDue();
  const TOpenKey key(m_registry, keyPath);
  if (!key)
    return false;
  const bool holdsNoValue = m_registry.GetValueNames().empty() && m_registry.ListedWhole();
  std::vector<Text> subKeys;
  if (holdsNoValue)
    subKeys = m_registry.GetKeyNames();
  const bool isSeenWhole = holdsNoValue && m_registry.ListedWhole();
  const bool goesOn = isSeenWhole && recursive && !subKeys.empty();
  const bool entered = goesOn && m_places.Enter(m_registry.RealPath(), name);
  if (!entered)
    return isSeenWhole && subKeys.empty();
  const bool isEmpty = AreEmpty(keyPath, subKeys);
  m_places.Leave();
  return isEmpty;
}

bool TEmptyKeyWalk::AreEmpty(TextView keyPath, const std::vector<Text>& subKeys) {
  return std::all_of(subKeys.begin(), subKeys.end(), [&](const Text& subKey) {
    return IsEmpty(Text(keyPath) + u"\\" + subKey, subKey, true);
  });
}

}  // namespace

void TScan::ScanKeyTree(RegistryStore& registry, TRootKey root, double fraction,
                        const TPhraseMatcher& exclusions, TextView keyPath) {
  TKeyTreeWalk(*this, registry, root, fraction, exclusions).Walk(keyPath, {});
}

bool TScan::IsKeyEmpty(TRootKey rootKey, TextView keyPath, bool recursive) {
  Registry->SetRootKey(rootKey);
  return TEmptyKeyWalk(*this, *Registry).IsEmpty(keyPath, {}, recursive);
}

}  // namespace corvalt
