// Any bytes as a REGEDIT4 file: imported, exported, and imported again, which must give the same registry.
#include <cstdlib>

#include "formats/ioregistry.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

constexpr TRootKey kRoots[] = {kHkeyClassesRoot, kHkeyCurrentUser,   kHkeyLocalMachine,
                               kHkeyUsers,       kHkeyCurrentConfig, kHkeyDynData};

void Expect(bool holds) {
  if (!holds)
    std::abort();
}

TImportResult ImportInto(TMemorySystem& system, std::span<const std::uint8_t> bytes) {
  return TIORegistry(system.Raw, system.Locale).Import(bytes);
}

// The text of all roots, which says what the registry says.
TBytes ExportOf(TMemorySystem& system) {
  TIORegistry exporter(system.Raw, system.Locale);
  for (const TRootKey rootKey : kRoots)
    Expect(exporter.ExportKey(*TKeyPath::Parse(rootKey, u"\\")) == TExportResult::Done);
  Expect(exporter.HoldsWhatWasExported(exporter.ExportedText()));
  return exporter.ExportedText();
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
  const TImportResult imported = ImportInto(first, {data, size});
  Expect(imported.HasHeader || imported.KeysWritten + imported.ValuesWritten + imported.LinesSkipped == 0);
  const TBytes text = ExportOf(first);
  TMemorySystem second;
  Expect(ImportInto(second, text).EverythingWritten());
  Expect(DumpOf(second) == DumpOf(first));
  Expect(ExportOf(second) == text);
  return 0;
}

}  // namespace corvalt
