// The key that was opened last and its parents, kept open so that a walk opens each key relative to its
// parent.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/text.h"
#include "platform/windows/registrycalls.h"
#include "system/rawregistry.h"
#include "system/registryvalues.h"

namespace corvalt {

struct TKeptKey {
  TRootKey RootKey = kNoRootKey;
  Text Path;  // no leading "\"
  TRegistryKey Key;
  REGSAM Access = 0;
  bool LinkChecked = false;
  bool IsNew = false;              // it didn't exist before it was opened here
  std::optional<TBytes> Security;  // its descriptor, once it was read
};

class TKeyChain {
 public:
  explicit TKeyChain(TRegistryCalls& calls) : m_calls(calls) {
  }

  // Opens a key, relative to the deepest kept parent, and keeps it. A kept key at this very path is opened
  // again: it might have been deleted.
  LSTATUS Open(TRootKey rootKey, TextView path, REGSAM access, bool asLink, std::shared_ptr<TKeptKey>& key);
  LSTATUS Create(TRootKey rootKey, TextView path, REGSAM access, const TNewKey& newKey,
                 std::shared_ptr<TKeptKey>& key);

  // Whether the key lies directly in a kept key that is new, so that it can hardly exist.
  bool LiesInNewKey(TRootKey rootKey, TextView path) const;

  // Whether the key opens, or would but for its access rules; no handle of it is kept.
  bool Exists(TRootKey rootKey, TextView path);

  // The kept key in which the key lies directly; null when it is not kept.
  std::shared_ptr<TKeptKey> DirectParent(TRootKey rootKey, TextView path) const;

  // The key that was opened last, when it is this one; else null.
  std::shared_ptr<TKeptKey> Last(TRootKey rootKey, TextView path) const;

  void Clear() {
    m_kept.clear();
  }

 private:
  const TKeptKey* ParentOf(TRootKey rootKey, TextView path) const;
  void DropWhatIsNoParent(TRootKey rootKey, TextView path);
  std::shared_ptr<TKeptKey> Keep(TRootKey rootKey, TextView path, REGSAM access, TRegistryKey opened);

  TRegistryCalls& m_calls;
  std::vector<std::shared_ptr<TKeptKey>> m_kept;  // each a parent of the next
};

}  // namespace corvalt
