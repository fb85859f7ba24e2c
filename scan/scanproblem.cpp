#include "scan/scanproblem.h"

namespace corvalt {

Text FullKeyText(const ScanProblem& problem) {
  const bool hasSeparator = problem.KeyPath.empty() || problem.KeyPath.front() == u'\\';
  return RootKeyName(problem.RootKey) + (hasSeparator ? u"" : u"\\") + problem.KeyPath;
}

}  // namespace corvalt
