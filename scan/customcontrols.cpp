// Custom Controls: the component registrations, and the list of broken ones that File Associations reads
// afterwards.

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

constexpr TextView kServerKeys[] = {u"\\InprocServer", u"\\InprocServer32"};
constexpr TextView kLocalServerKeys[] = {u"\\LocalServer", u"\\LocalServer32"};
constexpr TextView kStubKeys[] = {u"\\ProxyStubClsid", u"\\ProxyStubClsid32"};

// In order of priority: the first that occurs at all counts, wherever it stands.
constexpr TextView kComponentExtensions[] = {u".EXE", u".DLL", u".OCX", u".ICO"};

std::size_t FindExtension(TextView text) {
  for (const TextView extension : kComponentExtensions) {
    const std::size_t at = text.find(extension);
    if (at != TextView::npos)
      return at;
  }
  return TextView::npos;
}

// A key's default value, and how much else the key holds.
struct TKeyContent {
  Text Default;
  std::size_t ValueCount = 0;  // a default value that is the only one does not count
  bool HasSubKeys = false;
  bool IsSeenWhole = false;  // otherwise the key may hold more than the two fields above count
};

std::optional<TKeyContent> ReadContent(RegistryStore& registry, TextView keyPath) {
  const TOpenKey key(registry, keyPath);
  if (!key)
    return std::nullopt;
  TKeyContent content;
  const std::vector<Text> names = registry.GetValueNames();
  content.IsSeenWhole = registry.ListedWhole();
  const bool loneDefault = names.size() == 1 && names.front().empty();
  content.ValueCount = loneDefault ? 0 : names.size();
  content.Default = registry.ReadString({});
  content.HasSubKeys = registry.HasSubKeys();
  content.IsSeenWhole = content.IsSeenWhole && registry.ListedWhole();
  return content;
}

// Whether the key holds fewer than this many values and no subkey.
bool IsHollow(const TKeyContent& content, std::size_t fewerThan) {
  return content.IsSeenWhole && content.Default.empty() && !content.HasSubKeys &&
         content.ValueCount < fewerThan;
}

// The checks of single classes, type libraries and interfaces.
class TComponentChecks {
 public:
  explicit TComponentChecks(TScan& scan) : m_scan(scan), m_registry(scan.OpenRoot(kHkeyClassesRoot)) {
  }

  void CheckClass(TextView classId);
  void CheckTypeLibrary(TextView libraryId);
  void CheckInterface(TextView interfaceId);

 private:
  void CheckServerKey(TextView classId, TextView suffix, TextId missingText);
  void CheckTypeLibraryVersion(TextView libraryId, TextView version);
  void CheckTypeLibraryLocale(TextView libraryId, TextView localePath);
  void ReportBroken(TextView identifier, TextView key, TextView data, TextView description);
  bool IsComponentFileValid(TextView originalText);

  TScan& m_scan;
  std::unique_ptr<RegistryStore> m_registry;
};

void TComponentChecks::CheckClass(TextView classId) {
  const Text iconKey = u"\\CLSID\\" + Text(classId) + u"\\DefaultIcon";
  if (const std::optional<Text> icon = DefaultValue(*m_registry, iconKey)) {
    if (icon->empty()) {
      m_scan.ReportKey(kHkeyClassesRoot, iconKey, {}, m_scan.Say(TextId::EmptyKey));
    } else if (!IsComponentFileValid(*icon)) {
      m_scan.ReportKey(kHkeyClassesRoot, iconKey, *icon, m_scan.Say(TextId::MissingIcon, *icon));
    }
  }
  for (const TextView suffix : kServerKeys)
    CheckServerKey(classId, suffix, TextId::MissingInProcessServer);
  for (const TextView suffix : kLocalServerKeys)
    CheckServerKey(classId, suffix, TextId::MissingLocalServer);
}

// An identifier that the ignore lists cover is not taken for broken by those who link to it.
void TComponentChecks::ReportBroken(TextView identifier, TextView key, TextView data, TextView description) {
  if (m_scan.ReportKey(kHkeyClassesRoot, key, data, description))
    m_scan.ReportedClassIds.Append(identifier);
}

// The class is reported, and listed as broken, once for each broken server key.
void TComponentChecks::CheckServerKey(TextView classId, TextView suffix, TextId missingText) {
  const Text classKey = u"\\CLSID\\" + Text(classId);
  const std::optional<TKeyContent> server = ReadContent(*m_registry, classKey + Text(suffix));
  if (!server)
    return;
  if (!server->Default.empty() && !IsComponentFileValid(server->Default)) {
    ReportBroken(classId, classKey, server->Default, m_scan.Say(missingText, server->Default));
  } else if (IsHollow(*server, 1)) {
    ReportBroken(classId, classKey, {}, m_scan.Say(TextId::EmptyKey));
  }
}

void TComponentChecks::CheckTypeLibrary(TextView libraryId) {
  for (const Text& version : SubKeyNames(*m_registry, u"\\Typelib\\" + Text(libraryId)))
    CheckTypeLibraryVersion(libraryId, version);
}

void TComponentChecks::CheckTypeLibraryVersion(TextView libraryId, TextView version) {
  const Text versionKey = u"\\Typelib\\" + Text(libraryId) + u"\\" + Text(version);
  const Text helpKey = versionKey + u"\\HELPDIR";
  if (const std::optional<TKeyContent> help = ReadContent(*m_registry, helpKey)) {
    if (!help->Default.empty() && !IsComponentFileValid(help->Default)) {
      m_scan.ReportKey(kHkeyClassesRoot, helpKey, {},
                       m_scan.Say(TextId::InvalidTypeLibraryHelpFolder, help->Default));
    } else if (IsHollow(*help, 2)) {
      m_scan.ReportKey(kHkeyClassesRoot, helpKey, {}, m_scan.Say(TextId::EmptyKey));
    }
  }
  for (const Text& locale : SubKeyNames(*m_registry, versionKey)) {
    if (ParseInteger(locale))
      CheckTypeLibraryLocale(libraryId, versionKey + u"\\" + locale);
  }
}

void TComponentChecks::CheckTypeLibraryLocale(TextView libraryId, TextView localePath) {
  const Text win32Key = Text(localePath) + u"\\win32";
  const std::optional<TKeyContent> library = ReadContent(*m_registry, win32Key);
  if (!library)
    return;
  if (!library->Default.empty() && !IsComponentFileValid(library->Default)) {
    ReportBroken(libraryId, u"\\Typelib\\" + Text(libraryId), library->Default,
                 m_scan.Say(TextId::MissingTypeLibraryFile, library->Default));
  } else if (IsHollow(*library, 2)) {
    ReportBroken(libraryId, win32Key, {}, m_scan.Say(TextId::EmptyTypeLibraryKey, win32Key));
  }
}

void TComponentChecks::CheckInterface(TextView interfaceId) {
  const Text interfaceKey = u"\\Interface\\" + Text(interfaceId);
  // A link without an identifier is not reported.
  const std::optional<Text> libraryId = DefaultValue(*m_registry, interfaceKey + u"\\TypeLib");
  if (libraryId && !libraryId->empty() &&
      (!m_registry->KeyExists(u"\\typelib\\" + *libraryId) || m_scan.ReportedClassIds.Holds(*libraryId))) {
    m_scan.ReportKey(kHkeyClassesRoot, interfaceKey, *libraryId,
                     m_scan.Say(TextId::BrokenTypeLibraryLink, *libraryId));
  }
  for (const TextView suffix : kStubKeys) {
    const Text stubKey = interfaceKey + Text(suffix);
    const std::optional<Text> classId = DefaultValue(*m_registry, stubKey);
    if (classId && !classId->empty() &&
        (!IsClassRegistered(*m_registry, *classId) || m_scan.ReportedClassIds.Holds(*classId)))
      m_scan.ReportKey(kHkeyClassesRoot, stubKey, *classId, m_scan.Say(TextId::BrokenClassLink, *classId));
  }
}

// Only a drive-letter path to an .EXE, .DLL, .OCX or .ICO file is ever judged.
bool TComponentChecks::IsComponentFileValid(TextView originalText) {
  Text text = UpperCase(originalText);
  if (Contains(text, u"\\\\") || BeginsWithArgument(text))
    return true;
  if (Contains(text, u"%"))
    text = m_scan.Paths().ExpandPathVariables(text);
  const std::size_t colon = text.find(u':');
  const std::size_t extension = FindExtension(text);
  if (colon == Text::npos || extension == Text::npos || colon > extension)
    return true;
  const std::size_t begin = colon == 0 ? 0 : colon - 1;
  constexpr std::size_t kExtensionLength = 4;
  return m_scan.Paths().CommandLineFileExists(
      TextView(text).substr(begin, extension + kExtensionLength - begin), false);
}

}  // namespace

void ScanCustomControls(TScan& scan) {
  const std::unique_ptr<RegistryStore> registry = scan.OpenRoot(kHkeyClassesRoot);
  TComponentChecks checks(scan);

  // The names of one pass are gone before the next: there may be many.
  const auto examine = [&](TextView topKey, double start, const auto& check) {
    const std::vector<Text> names = SubKeyNames(*registry, u"\\" + Text(topKey));
    for (std::size_t i = 0; i < names.size() && !scan.Terminated(); ++i) {
      scan.ReportProgress(ShareOfBar(i, names.size(), 33, start), Text(topKey) + u"\\" + names[i]);
      check(names[i]);
    }
  };
  examine(u"CLSID", 0, [&](TextView classId) { checks.CheckClass(classId); });
  examine(u"Typelib", 33, [&](TextView libraryId) { checks.CheckTypeLibrary(libraryId); });
  examine(u"Interface", 66, [&](TextView interfaceId) { checks.CheckInterface(interfaceId); });
}

}  // namespace corvalt
