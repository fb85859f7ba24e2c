// A key that is open for a block of statements.
#pragma once

#include "base/text.h"
#include "system/registrystore.h"

namespace corvalt {

// Opens a key in a store, and leaves the store with no key open at the end of its life. Where the key does
// not open, the store's reads find nothing and its writes fail, as with no key open.
class TOpenKey {
 public:
  // Path and canCreate as in RegistryStore::OpenKey. The store must outlive the object.
  TOpenKey(RegistryStore& store, TextView path, bool canCreate = false)
      : m_store(store), m_isOpen(store.OpenKey(path, canCreate)) {
  }
  ~TOpenKey() {
    m_store.CloseKey();
  }
  TOpenKey(const TOpenKey&) = delete;
  TOpenKey& operator=(const TOpenKey&) = delete;

  // Whether the key opened.
  explicit operator bool() const {
    return m_isOpen;
  }

 private:
  RegistryStore& m_store;
  bool m_isOpen;
};

}  // namespace corvalt
