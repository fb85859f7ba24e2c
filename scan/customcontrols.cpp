// Custom Controls: the component registrations, and the list of broken ones that File Associations reads
// afterwards.

#include "base/lettercase.h"
#include "scan/threadscan.h"

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

// What a key says of itself: its default value, and how much else it holds.
struct TKeyContent {
  Text Default;
  std::size_t ValueCount = 0;  // a default value that stands alone does not count
  bool HasSubKeys = false;
};

std::optional<TKeyContent> ReadContent(RegistryStore& registry, TextView keyPath) {
  if (!registry.OpenKey(keyPath, false))
    return std::nullopt;
  const std::vector<Text> names = registry.GetValueNames();
  const bool loneDefault = names.size() == 1 && names.front().empty();
  TKeyContent content = {registry.ReadString({}), loneDefault ? 0 : names.size(), registry.HasSubKeys()};
  registry.CloseKey();
  return content;
}

// Whether nothing but fewer than this many values is there.
bool IsHollow(const TKeyContent& content, std::size_t fewerThan) {
  return content.Default.empty() && !content.HasSubKeys && content.ValueCount < fewerThan;
}

}  // namespace

void TScan::ScanCustomControls(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> registry = OpenRoot(kHkeyClassesRoot);

  // The names of one pass are gone before the next: there may be many.
  const auto examine = [&](TextView topKey, double start, const auto& check) {
    const std::vector<Text> names = SubKeyNames(*registry, u"\\" + Text(topKey));
    for (std::size_t i = 0; i < names.size() && !Terminated(); ++i) {
      ReportProgress(ShareOfBar(i, names.size(), 33, start), Text(topKey) + u"\\" + names[i]);
      check(names[i]);
    }
  };
  examine(u"CLSID", 0, [&](TextView classId) { CheckClass(*registry, classId); });
  examine(u"Typelib", 33, [&](TextView libraryId) {
    for (const Text& version : SubKeyNames(*registry, u"\\Typelib\\" + Text(libraryId)))
      CheckTypeLibraryVersion(*registry, libraryId, version);
  });
  examine(u"Interface", 66, [&](TextView interfaceId) { CheckInterface(*registry, interfaceId); });
  FinishSection();
}

void TScan::CheckClass(RegistryStore& registry, TextView classId) {
  const Text iconKey = u"\\CLSID\\" + Text(classId) + u"\\DefaultIcon";
  if (const std::optional<Text> icon = DefaultValue(registry, iconKey)) {
    if (icon->empty()) {
      ReportKey(kHkeyClassesRoot, iconKey, {}, Say(TextId::EmptyKey));
    } else if (!IsComponentFileValid(*icon)) {
      ReportKey(kHkeyClassesRoot, iconKey, *icon, Say(TextId::MissingIcon, *icon));
    }
  }
  for (const TextView suffix : kServerKeys)
    CheckServerKey(registry, classId, suffix, TextId::MissingInProcessServer);
  for (const TextView suffix : kLocalServerKeys)
    CheckServerKey(registry, classId, suffix, TextId::MissingLocalServer);
}

// The class is reported, and listed as broken, once for each broken server key.
void TScan::CheckServerKey(RegistryStore& registry, TextView classId, TextView suffix, TextId missingText) {
  const Text classKey = u"\\CLSID\\" + Text(classId);
  const std::optional<TKeyContent> server = ReadContent(registry, classKey + Text(suffix));
  if (!server)
    return;
  if (!server->Default.empty() && !IsComponentFileValid(server->Default)) {
    ReportKey(kHkeyClassesRoot, classKey, server->Default, Say(missingText, server->Default));
    ReportedClassIds.Append(classId);
  } else if (IsHollow(*server, 1)) {
    ReportKey(kHkeyClassesRoot, classKey, {}, Say(TextId::EmptyKey));
    ReportedClassIds.Append(classId);
  }
}

void TScan::CheckTypeLibraryVersion(RegistryStore& registry, TextView libraryId, TextView version) {
  const Text versionKey = u"\\Typelib\\" + Text(libraryId) + u"\\" + Text(version);
  const Text helpKey = versionKey + u"\\HELPDIR";
  if (const std::optional<TKeyContent> help = ReadContent(registry, helpKey)) {
    if (!help->Default.empty() && !IsComponentFileValid(help->Default)) {
      ReportKey(kHkeyClassesRoot, helpKey, {}, Say(TextId::InvalidTypeLibraryHelpFolder, help->Default));
    } else if (IsHollow(*help, 2)) {
      ReportKey(kHkeyClassesRoot, helpKey, {}, Say(TextId::EmptyKey));
    }
  }
  for (const Text& locale : SubKeyNames(registry, versionKey)) {
    if (ParseInteger(locale))
      CheckTypeLibraryLocale(registry, libraryId, versionKey + u"\\" + locale);
  }
}

void TScan::CheckTypeLibraryLocale(RegistryStore& registry, TextView libraryId, TextView localePath) {
  const Text win32Key = Text(localePath) + u"\\win32";
  const std::optional<TKeyContent> library = ReadContent(registry, win32Key);
  if (!library)
    return;
  if (!library->Default.empty() && !IsComponentFileValid(library->Default)) {
    ReportKey(kHkeyClassesRoot, u"\\Typelib\\" + Text(libraryId), library->Default,
              Say(TextId::MissingTypeLibraryFile, library->Default));
    ReportedClassIds.Append(libraryId);
  } else if (IsHollow(*library, 2)) {
    ReportKey(kHkeyClassesRoot, win32Key, {}, Say(TextId::EmptyTypeLibraryKey, win32Key));
    ReportedClassIds.Append(libraryId);
  }
}

void TScan::CheckInterface(RegistryStore& registry, TextView interfaceId) {
  const Text interfaceKey = u"\\Interface\\" + Text(interfaceId);
  // A link that says nothing is as good as one to an intact key.
  const auto isIntact = [&](TextView key, const std::optional<Text>& identifier) {
    return !identifier || identifier->empty() ||
           (registry.KeyExists(Text(key) + *identifier) && !ReportedClassIds.Holds(*identifier));
  };
  const std::optional<Text> libraryId = DefaultValue(registry, interfaceKey + u"\\TypeLib");
  if (!isIntact(u"\\typelib\\", libraryId)) {
    ReportKey(kHkeyClassesRoot, interfaceKey, *libraryId, Say(TextId::BrokenTypeLibraryLink, *libraryId));
  }
  for (const TextView suffix : kStubKeys) {
    const Text stubKey = interfaceKey + Text(suffix);
    const std::optional<Text> classId = DefaultValue(registry, stubKey);
    if (!isIntact(u"\\CLSID\\", classId))
      ReportKey(kHkeyClassesRoot, stubKey, *classId, Say(TextId::BrokenClassLink, *classId));
  }
}

// Only a drive-letter path to an .EXE, .DLL, .OCX or .ICO file is ever judged.
bool TScan::IsComponentFileValid(TextView originalText) {
  Text text = UpperCase(originalText);
  if (Contains(text, u"\\\\") || BeginsWithArgument(text))
    return true;
  if (Contains(text, u"%"))
    text = m_paths.ExpandPathVariables(text);
  const std::size_t colon = text.find(u':');
  const std::size_t extension = FindExtension(text);
  if (colon == Text::npos || extension == Text::npos || colon > extension)
    return true;
  const std::size_t begin = colon == 0 ? 0 : colon - 1;
  constexpr std::size_t kExtensionLength = 4;
  return m_paths.CommandLineFileExists(TextView(text).substr(begin, extension + kExtensionLength - begin),
                                       false);
}

}  // namespace corvalt
