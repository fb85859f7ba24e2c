#include "base/lettercase.h"

#include "platform/memory/lettercasetable.h"

namespace corvalt {

const TLetterCaseTable& SystemLetterCase() {
  static const TLetterCaseTable table = {ExpandLetterCase(kUpperCaseRanges),
                                         ExpandLetterCase(kLowerCaseRanges)};
  return table;
}

}  // namespace corvalt
