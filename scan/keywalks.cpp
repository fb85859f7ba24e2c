// The two recursive walks that scanners share.

#include "base/lettercase.h"
#include "scan/threadscan.h"

namespace corvalt {

namespace {

// Below any key of this name only the control set in use is walked.
constexpr TextView kSystemKeyEnd = u"\\system";
constexpr TextView kControlSetInUse = u"CurrentControlSet";

// The 32-bit mirror, at which the walk of a key's subkeys ends.
constexpr TextView kMirror = u"wow6432node";

bool IsExcluded(TRootKey root, TextView keyPath, const TPhraseMatcher& exclusions) {
  return exclusions.OccursIn(UpperCase(RootKeyName(root).append(keyPath) + u"\\"));
}

bool EndsInSystem(TextView keyPath) {
  return keyPath.size() >= kSystemKeyEnd.size() &&
         LowerCase(keyPath.substr(keyPath.size() - kSystemKeyEnd.size())) == kSystemKeyEnd;
}

}  // namespace

void TScan::ScanKeyTree(RegistryStore& registry, TRootKey root, double fraction,
                        const TPhraseMatcher& exclusions, TextView keyPath) {
  if (IsExcluded(root, keyPath, exclusions) || !registry.OpenKey(keyPath, false))
    return;
  std::vector<Text> names = registry.GetValueNames();
  for (const Text& name : names) {
    if (Terminated())
      break;
    const TDataType type = registry.GetDataType(name);
    if (type != TDataType::String && type != TDataType::ExpandString)
      continue;
    const Text data = registry.ReadString(name);
    // A label costs more than the rest of a call that shows nothing.
    ReportProgress(RoundHalfToEven(100 * fraction), IsProgressDue() ? LabelOf(keyPath, name) : Text());
    if (!CommandPathExists(data)) {
      ReportValue(root, keyPath, name, data, Say(TextId::MissingFileOfValue, name, data));
    }
  }
  names = registry.GetKeyNames();
  registry.CloseKey();
  if (EndsInSystem(keyPath))
    names = {Text(kControlSetInUse)};
  for (const Text& name : names) {
    if (Terminated() || EqualIgnoringCase(name, kMirror))
      return;
    ScanKeyTree(registry, root, fraction, exclusions, Text(keyPath) + u"\\" + name);
  }
}

bool TScan::IsKeyEmpty(TRootKey rootKey, TextView keyPath, bool recursive) {
  Registry->SetRootKey(rootKey);
  if (!Registry->OpenKey(keyPath, false))
    return false;
  const bool hasValues = !Registry->GetValueNames().empty();
  std::vector<Text> subKeys;
  if (!hasValues)
    subKeys = Registry->GetKeyNames();
  Registry->CloseKey();
  if (hasValues || (!subKeys.empty() && !recursive))
    return false;
  for (const Text& name : subKeys) {
    if (!IsKeyEmpty(rootKey, Text(keyPath) + u"\\" + name, true))
      return false;
  }
  return true;
}

}  // namespace corvalt
