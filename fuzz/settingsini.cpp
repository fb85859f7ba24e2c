// Any bytes as an ini file: read by the start sequence, changed, and read back.
#include <cstdlib>

#include "core/globals.h"
#include "formats/inifile.h"
#include "platform/memory/memorysystem.h"

namespace corvalt {

namespace {

void Expect(bool holds) {
  if (!holds)
    std::abort();
}

void ReadAsSettings(std::span<const std::uint8_t> bytes) {
  TMemorySystem system;
  system.Machine.Program = u"C:\\corvalt.exe";
  system.Disk.AddFile(u"C:\\settings.ini", std::string(bytes.begin(), bytes.end()));
  TSystem bundle = system.Bundle();
  TGlobalVars vars;
  FillGlobalVars(bundle, vars);
  Expect(vars.SuiteDataFolder.ends_with(u"\\TessalySoft\\"));
}

void ChangeAndReadBack(std::span<const std::uint8_t> bytes) {
  TMemoryLocale locale;
  TIniFile file = TIniFile::FromBytes(bytes, locale);
  const std::vector<Text> names = file.SectionNames();
  for (const Text& name : names)
    file.Read(name, u"Type");
  file.Write(u"46341.5", u"Type", u" 11001 ");
  const TIniFile again = TIniFile::FromBytes(file.ToBytes(locale), locale);
  Expect(again.Read(u"46341.5", u"Type") == u" 11001 ");
  Expect(again.SectionNames() == file.SectionNames());
  for (const Text& name : file.SectionNames())
    file.EraseSection(name);
  Expect(file.SectionNames().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ReadAsSettings({data, size});
  ChangeAndReadBack({data, size});
  return 0;
}

}  // namespace corvalt
