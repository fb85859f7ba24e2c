#include "scan/scanproblem.h"

namespace corvalt {

Text FullKeyText(const ScanProblem& problem) {
  const bool hasSeparator = problem.KeyPath.empty() || problem.KeyPath.front() == u'\\';
  return RootKeyName(problem.RootKey) + (hasSeparator ? u"" : u"\\") + problem.KeyPath;
}

bool IsDefaultValueName(TextView valueName) {
  return valueName.empty() || valueName == TextView(u"\0", 1);
}

}  // namespace corvalt
