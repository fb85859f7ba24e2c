#include "core/registrystore.h"

std::int32_t ReadOrWriteInteger(RegistryStore& store, TextView name, std::int32_t defaultValue) {
  if (store.ValueExists(name))
    return store.ReadInteger(name);
  store.WriteInteger(name, defaultValue);
  return defaultValue;
}
