// The names of one key's values as they are stored: asked for a value by name, Wine gives the name it was
// asked for.
#pragma once

#include <map>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/windows/keychain.h"
#include "platform/windows/registrycalls.h"

namespace corvalt {

class TValueNames {
 public:
  explicit TValueNames(TRegistryCalls& calls) : m_calls(calls) {
  }

  // The stored spelling of the name of a value that exists in the key.
  Text AsStored(const TKeptKey& key, const Text& name);

  // The caller has deleted this value of the key, so that the names need not be listed again.
  void Drop(const TKeptKey& key, const Text& name);

 private:
  bool IsOf(const TKeptKey& key) const;
  void List(const TKeptKey& key, const TKeyCounts& counts);

  TRegistryCalls& m_calls;
  TRootKey m_rootKey = kNoRootKey;
  Text m_path;
  TKeyCounts m_counts;
  std::map<Text, Text> m_names;  // by upper-cased name
  TValueBuffer m_buffer;
};

}  // namespace corvalt
