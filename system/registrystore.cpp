#include "system/registrystore.h"

#include "system/rawregistry.h"

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

std::int32_t ReadOrWriteInteger(RegistryStore& store, TextView name, std::int32_t defaultValue) {
  if (store.ValueExists(name))
    return store.ReadInteger(name);
  store.WriteInteger(name, defaultValue);
  return defaultValue;
}

}  // namespace corvalt
