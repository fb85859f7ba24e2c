// A registry in memory, as strict as the real one: names that compare without regard to case and keep theirs,
// typed values, access that is denied, links, the merged view of the classes, permissions and times, deletion
// of keys that others hold open.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "platform/memory/journal.h"
#include "platform/memory/memoryhives.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"
#include "system/registryvalues.h"

namespace corvalt {

enum class TDumpDetail {
  Content,    // keys, links, rights, values
  Attributes  // and class, volatility, permissions and time of each key
};

class TMemoryRegistry : public TRegistryFactory {
 public:
  explicit TMemoryRegistry(TNameOrder order = TNameOrder::Windows) : m_hives(order) {
  }

  std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) override;

  // Building and looking, by full paths ("HKEY_CURRENT_USER\Software\Foo"); access rules do not count here.
  // Keys are created with their parents.
  void AddKey(TextView fullPath);
  void Set(TextView fullPath, TextView name, TextView text);
  void SetExpand(TextView fullPath, TextView name, TextView text);
  void SetInteger(TextView fullPath, TextView name, std::uint32_t value);
  void SetRaw(TextView fullPath, const TRawValue& value);
  void RemoveKey(TextView fullPath);
  void Deny(TextView fullPath);
  void LetUse(TextView fullPath, TMemoryRights rights);
  void MakeLink(TextView fullPath, TextView targetFullPath);
  // From now on an enumeration of the key's values or subkeys fails before its last name, as RegEnumValue and
  // RegEnumKeyEx do (learn.microsoft.com) when the key is changed meanwhile or memory is short.
  void FailListing(TextView fullPath);
  void SetClass(TextView fullPath, TextView className);
  void MakeVolatile(TextView fullPath);
  void SetSecurity(TextView fullPath, const TBytes& descriptor);
  void SetLastWrite(TextView fullPath, std::uint64_t time);
  bool HasKey(TextView fullPath) const;
  bool HasValue(TextView fullPath, TextView name) const;
  const TRawValue* FindValue(TextView fullPath, TextView name) const;
  // nullptr when there is none.
  const TMemoryKey* KeyAt(TextView fullPath) const;

  // Every key and value below a key with type and bytes, one a line, for comparing a before with an after.
  std::vector<std::string> Dump(TextView fullPath, TDumpDetail detail = TDumpDetail::Content) const;

  // What the system lets a program do beside the keys' own rights.
  bool TellsVolatility = true;  // false: as a Windows whose KeyFlagsInformation does not tell
  bool SetsTimes = true;        // false: success without an effect, as under Wine
  bool SetsOwners = true;       // false: the user lacks SeRestorePrivilege
  TRegistryView View = TRegistryView::Bits64;
  TMemoryRegistry* OtherView = nullptr;  // what the other view shows; null: the system lacks it

  // Called before each read of a value or key listing by the stores; lets a test change the registry or set a
  // thread's flag in the middle of a scan.
  std::function<void()> OnRead;
  // Called in a deletion of a place, after the key was opened and before it is read.
  std::function<void()> OnDeletion;

  // Below: for the doubles of the interfaces.

  TMemoryHives& Hives() {
    return m_hives;
  }
  const TMemoryHives& Hives() const {
    return m_hives;
  }
  void SetJournal(TJournal* journal) {
    m_journal = journal;
  }
  void Note(std::string_view what, TextView path) const;

 private:
  TOpenMemoryKey Open(TextView fullPath) const;
  TMemoryKey& Make(TextView fullPath);

  TMemoryHives m_hives;
  TJournal* m_journal = nullptr;
};

}  // namespace corvalt
