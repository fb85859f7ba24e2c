#include "system/registrystore.h"

#include "system/registryvalues.h"

namespace corvalt {

TDataType DataTypeOf(std::uint32_t type) {
  switch (type) {
    case kRegSz:
      return TDataType::String;
    case kRegExpandSz:
      return TDataType::ExpandString;
    case kRegDword:
      return TDataType::Integer;
    case kRegBinary:
      return TDataType::Binary;
    default:
      return TDataType::Unknown;
  }
}

}  // namespace corvalt
