#include "core/languagetexts.h"

#include "base/devicenames.h"
#include "core/datafiles.h"
#include "core/displaylanguages.h"
#include "core/settingskeys.h"
#include "formats/textfile.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

TLanguageTable LoadTable(TSystem& system, const Text& path) {
  const auto bytes = ReadDataFile(system.Files, path);
  return bytes ? TLanguageTable::FromFile(*bytes, system.Locale) : TLanguageTable();
}

Text LanguagesFolder(TextView programFolder) {
  return WithTrailingBackslash(programFolder) + u"languages\\";
}

void LoadTables(TSystem& system, const Text& languagesFolder, const Text& name, TLanguageTexts& texts) {
  texts.English = LoadTable(system, languagesFolder + Text(kEnglishFile));
  texts.Selected = LoadTable(system, languagesFolder + name);
}

bool IsThere(TSystem& system, const Text& languagesFolder, const Text& name) {
  return IsPlainFileName(name) && !IsDeviceName(name) && system.Probe.FileExists(languagesFolder + name);
}

// The file of the language that the suite's settings name. Where they name none, the language that Windows
// shows; where that one or the named one has no file, English. With full access the choice is stored wherever
// the settings name no file that exists.
Text ChooseLanguage(TSystem& system, const Text& languagesFolder, TRegistryAccess access) {
  const std::unique_ptr<RegistryStore> store = system.Registry.CreateStore(access);
  const TOpenKey key(*store, kSuiteKey, true);
  Text name = store->ReadString(kLanguageValue);
  if (name.empty() || !IsThere(system, languagesFolder, name)) {
    const Text display = LanguageFileOf(system.Locale.DisplayLanguage());
    name = name.empty() && IsThere(system, languagesFolder, display) ? display : Text(kEnglishFile);
    store->WriteString(kLanguageValue, name);
  }
  return name;
}

}  // namespace

TLanguageTable TLanguageTable::FromFile(std::span<const std::uint8_t> bytes, TLocale& locale) {
  TLanguageTable table;
  VisitFileLines(bytes, locale, [&table](TextView line) {
    const std::size_t equals = line.find(u'=');
    if (equals == TextView::npos)
      return;
    // Trimmed with its "=", so that a blank after it stays.
    const Text textWithEquals = Trim(line.substr(equals));
    table.m_lines.emplace(Trim(line.substr(0, equals)), textWithEquals.substr(1));
  });
  return table;
}

Text TLanguageTable::Find(TextView identifier) const {
  const auto line = m_lines.find(identifier);
  return line == m_lines.end() ? Text() : line->second;
}

Text LanguageText(const TLanguageTexts& texts, TextId id, TextView arg1, TextView arg2) {
  const Text identifier = DecimalText(static_cast<std::int32_t>(id));
  Text text = texts.Selected.Find(identifier);
  if (text.empty())
    text = texts.English.Find(identifier);
  // The longer placeholder first: the shorter one is its beginning.
  text = ReplaceAll(text, u"%s2", arg2);
  text = ReplaceAll(text, u"%s", arg1);
  return TrimLeadingBlanks(ReplaceAll(text, u"&", u"&&"));
}

Text PlainText(TextView text) {
  return ReplaceAll(text, u"&&", u"&");
}

Text PlainLanguageText(const TLanguageTexts& texts, TextId id, TextView arg1, TextView arg2) {
  return PlainText(LanguageText(texts, id, arg1, arg2));
}

void ReadLanguage(TSystem& system, TextView programFolder, TLanguageTexts& texts) {
  const Text folder = LanguagesFolder(programFolder);
  LoadTables(system, folder, ChooseLanguage(system, folder, TRegistryAccess::Read), texts);
}

Text LoadLanguage(TSystem& system, TextView programFolder, TLanguageTexts& texts) {
  const Text folder = LanguagesFolder(programFolder);
  Text name = ChooseLanguage(system, folder, TRegistryAccess::Full);
  LoadTables(system, folder, name, texts);
  return name;
}

}  // namespace corvalt
