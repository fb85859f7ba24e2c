// Any bytes as a REGEDIT4 file: inspected, imported, exported, and imported again, which must give the same
// registry. The second import reads a backup, with its origin, its attributes and its last line.
#include <cstdlib>
#include <memory>
#include <optional>

#include "formats/ioregistry.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

constexpr TextView kUserClasses = u"HKEY_CURRENT_USER\\Software\\Classes";
constexpr TRootKey kRoots[] = {kHkeyClassesRoot, kHkeyCurrentUser,   kHkeyLocalMachine,
                               kHkeyUsers,       kHkeyCurrentConfig, kHkeyDynData};

void Expect(bool holds) {
  if (!holds)
    std::abort();
}

TImportResult ImportInto(TMemorySystem& system, std::span<const std::uint8_t> bytes) {
  return TIORegistry(system.Raw, system.Locale).Import(bytes);
}

// The registry's text, as a backup or without what only a backup keeps. A tree with a link in it can't be
// exported, and the one link of a new registry is that from HKEY_CURRENT_USER\Software\Classes to the hive of
// the user's classes. The machine's classes lie below HKEY_LOCAL_MACHINE.
class TWholeExport {
 public:
  TWholeExport(TMemorySystem& system, bool asBackup)
      : m_registry(system.Registry), m_exporter(system.Raw, system.Locale) {
    TBackupOrigin origin;
    origin.CodePage = system.Locale.AnsiCodePage();
    m_exporter.Clear(asBackup ? std::optional(origin) : std::nullopt);
    for (const TRootKey rootKey : {kHkeyLocalMachine, kHkeyUsers, kHkeyCurrentConfig, kHkeyDynData})
      Expect(m_exporter.ExportKey(KeyPath(rootKey, u"\\")) == TExportResult::Done);
    const std::shared_ptr<TMemoryKey> classes = KeyAt(kUserClasses).LinkTarget.lock();
    Expect(classes != nullptr);
    AddAllBut(u"SOFTWARE", KeyAt(u"HKEY_CURRENT_USER"), kHkeyCurrentUser, {});
    AddAllBut(u"CLASSES", KeyAt(u"HKEY_CURRENT_USER\\Software"), kHkeyCurrentUser, u"\\Software");
    AddSubKeysBut({}, *classes, kHkeyCurrentUser, u"\\Software\\Classes");
    AddValues(*classes, kHkeyClassesRoot, {});
    m_exporter.Finish();
    Expect(InspectRegFile(Bytes(), system.Locale).IsWhole);
    Expect(m_exporter.HoldsWhatWasExported(Bytes()));
  }

  const TBytes& Bytes() const {
    return m_exporter.ExportedText();
  }

 private:
  static TKeyPath KeyPath(TRootKey rootKey, TextView path) {
    const std::optional<TKeyPath> keyPath = TKeyPath::Parse(rootKey, path);
    Expect(keyPath.has_value());
    return *keyPath;
  }

  const TMemoryKey& KeyAt(TextView fullPath) const {
    const TMemoryKey* key = m_registry.KeyAt(fullPath);
    Expect(key != nullptr);
    return *key;
  }

  void AddAllBut(TextView upperName, const TMemoryKey& key, TRootKey rootKey, TextView path) {
    AddValues(key, rootKey, path);
    AddSubKeysBut(upperName, key, rootKey, path);
  }

  void AddValues(const TMemoryKey& key, TRootKey rootKey, TextView path) {
    for (const auto& [upperName, value] : key.Values)
      Expect(m_exporter.ExportValue(KeyPath(rootKey, path), value.Raw.Name) == TExportResult::Done);
  }

  void AddSubKeysBut(TextView upperName, const TMemoryKey& key, TRootKey rootKey, TextView path) {
    for (const auto& [upper, subKey] : key.SubKeys) {
      const Text subPath = Text(path) + u"\\" + subKey->Name;
      Expect(upper == upperName || m_exporter.ExportKey(KeyPath(rootKey, subPath)) == TExportResult::Done);
    }
  }

  const TMemoryRegistry& m_registry;
  TIORegistry m_exporter;
};

TBytes ExportOf(TMemorySystem& system, bool asBackup) {
  return TWholeExport(system, asBackup).Bytes();
}

std::vector<std::string> DumpOf(const TMemorySystem& system) {
  std::vector<std::string> lines;
  for (const TRootKey rootKey : kRoots) {
    for (std::string& line : system.Registry.Dump(RootKeyName(rootKey)))
      lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TMemorySystem first;
  const TRegFileFacts facts = InspectRegFile({data, size}, first.Locale);
  Expect(!facts.IsWhole || !facts.Origin || ReadEnd({data, size}).has_value());
  const TImportResult imported = ImportInto(first, {data, size});
  Expect(imported.HasHeader || imported.KeysWritten + imported.ValuesWritten + imported.LinesSkipped == 0);
  TMemorySystem second;
  const TImportResult restored = ImportInto(second, ExportOf(first, true));
  Expect(restored.EverythingWritten() && restored.AttributesLost == 0);
  Expect(DumpOf(second) == DumpOf(first));
  Expect(ExportOf(second, false) == ExportOf(first, false));
  return 0;
}

}  // namespace corvalt
