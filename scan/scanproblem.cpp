#include "scan/scanproblem.h"

namespace corvalt {

Text KeyText(const ScanProblem& problem) {
  return RootKeyName(problem.RootKey) + problem.KeyPath;
}

Text PlaceText(const ScanProblem& problem) {
  return problem.Kind == TProblemKind::File ? problem.KeyPath : KeyText(problem);
}

Text FullKeyText(const ScanProblem& problem) {
  const bool hasSeparator = problem.KeyPath.empty() || problem.KeyPath.front() == u'\\';
  return RootKeyName(problem.RootKey) + (hasSeparator ? u"" : u"\\") + problem.KeyPath;
}

}  // namespace corvalt
