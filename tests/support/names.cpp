#include "tests/support/names.h"

namespace corvalt {

Text Says(TextId id) {
  return DecimalText(static_cast<std::int32_t>(id));
}

Text Says(TextId id, TextView argument) {
  return Says(id) + u"(" + Text(argument) + u")";
}

Text Says(TextId id, TextView first, TextView second) {
  return Says(id) + u"(" + Text(first) + u"|" + Text(second) + u")";
}

}  // namespace corvalt
