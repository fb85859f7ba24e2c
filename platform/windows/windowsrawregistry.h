// The registry's types and bytes, for export and import.
#pragma once

#include <mutex>

#include "platform/windows/registrykeys.h"
#include "system/rawregistry.h"

namespace corvalt {

// Keeps the key it used last and that key's parents open until ReleaseKeys. May be called from any thread.
class TWindowsRawRegistry : public TRawRegistry {
 public:
  TRawResult ReadKey(TRootKey rootKey, TextView keyPath, TRawKey& key) override;
  TRawResult ReadValue(TRootKey rootKey, TextView keyPath, TextView name, TRawValue& value) override;
  TRawResult CreateKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult WriteValue(TRootKey rootKey, TextView keyPath, const TRawValue& value) override;
  TRawResult DeleteKey(TRootKey rootKey, TextView keyPath) override;
  TRawResult DeleteValue(TRootKey rootKey, TextView keyPath, TextView name) override;
  void ReleaseKeys() override;

  // How often the system was called so far.
  std::uint64_t SystemCalls() const {
    return m_calls.Count();
  }

 private:
  using TKeptPointer = std::shared_ptr<TKeptKey>;

  TRawResult OpenAnew(TRootKey rootKey, const Text& path, REGSAM access, TKeptPointer& key);
  TRawResult OpenKept(TRootKey rootKey, const Text& path, REGSAM access, TKeptPointer& key);
  TRawResult OpenOrCreate(TRootKey rootKey, const Text& path, TKeptPointer& key);
  TRawResult RefuseLink(TKeptKey& key);
  TRawResult ReadOnce(HKEY handle, TRawKey& key);
  TRawResult WriteTo(HKEY handle, const Text& name, const TRawValue& value);

  template <typename TRoutine>
  TRawResult WithKey(TRootKey rootKey, const Text& path, REGSAM access, TRoutine routine);

  std::mutex m_mutex;
  TRegistryCalls m_calls;
  TKeyChain m_chain{m_calls};
  TValueBuffer m_buffer;
};

}  // namespace corvalt
