// Deletion of a key with all its subkeys. Every key is opened once, as the link it may be, looked at and
// deleted through that handle, so that what is put in its place meanwhile is neither followed nor deleted.
#pragma once

#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/windows/keyreader.h"
#include "platform/windows/registrycalls.h"
#include "system/rawregistry.h"

namespace corvalt {

class TKeyTree {
 public:
  explicit TKeyTree(TRegistryCalls& calls) : m_calls(calls), m_reader(calls) {
  }

  // Opens the top of the tree.
  TRawResult Open(HKEY parent, TextView path);
  HKEY Top() const {
    return m_keys.front().Key.Get();
  }

  // Opens all keys below the top, each before its subkeys. Link when a key is a registry link, Refused when
  // the check does not agree to one. An empty check agrees to all.
  TRawResult Inspect(const TKeyCheck& mayDelete);

  // Deletes what Inspect found, deepest first, each key after the check has agreed to it once more. InPart
  // where a key stays after others are gone.
  TRawResult Delete(const TKeyCheck& mayDelete);

 private:
  struct TTreeKey {
    TRegistryKey Key;
    Text PathBelow;  // the top's is empty
  };

  TRawResult Look(HKEY key, TextView pathBelow, const TKeyCheck& mayDelete, std::vector<Text>& subKeys);
  TRawResult DeleteOne(const TTreeKey& key, const TKeyCheck& mayDelete);
  TRawResult ListSubKeys(HKEY key, std::vector<Text>& subKeys);

  TRegistryCalls& m_calls;
  TKeyReader m_reader;
  std::vector<TTreeKey> m_keys;
};

// Deletes the key with all its subkeys; below HKEY_CLASSES_ROOT of the hive that holds the key, and only
// there. All of it stays when a part of it can't be opened for deletion.
TRawResult DeleteKeyAndBelow(TRegistryCalls& calls, TRootKey rootKey, TextView path);

}  // namespace corvalt
