// File Associations: extensions, the file types they name, and what those types link to.

#include <algorithm>

#include "base/lettercase.h"
#include "scan/threadscan.h"

namespace corvalt {

namespace {

constexpr TextView kHandlersKey = u"\\shellex\\ContextMenuHandlers";
constexpr TextView kSheetsKey = u"\\shellex\\PropertySheetHandlers";

// Problems of this section carry 0, those of handlers no image.
constexpr std::int32_t kProblemImage = 0;

// The class of all files, checked first even when no extension names it.
constexpr TextView kAllFilesPair = u"(All files)=*";

bool IsBracedName(TextView text) {
  return !text.empty() && text.front() == u'{' && text.back() == u'}';
}

Text ValuePart(TextView pair) {
  return Text(pair.substr(pair.find(u'=') + 1));
}

// A key that does not open says as much as one with an empty default value.
Text DefaultText(RegistryStore& registry, TextView keyPath) {
  return DefaultValue(registry, keyPath).value_or(Text());
}

}  // namespace

void TScan::ScanFileAssociations(const TSection& section) {
  AddHeader(section);
  const std::unique_ptr<RegistryStore> reader = OpenRoot(kHkeyClassesRoot);
  const std::unique_ptr<RegistryStore> prober = OpenRoot(kHkeyClassesRoot);
  std::vector<Text> classKeys = SubKeyNames(*reader, u"\\");
  std::sort(classKeys.begin(), classKeys.end(), TLessIgnoringCase());

  // One line a working extension: the extension, "=" and its program identifier.
  std::vector<Text> typePairs = {Text(kAllFilesPair)};
  for (std::size_t i = 0; i < classKeys.size() && !Terminated(); ++i) {
    ReportProgress(ShareOfBar(i, classKeys.size(), 50), classKeys[i]);
    if (classKeys[i].starts_with(u'.')) {
      CheckExtension(*reader, *prober, classKeys[i], typePairs);
    } else {
      CheckClassKey(*reader, *prober, classKeys[i]);
    }
  }
  for (std::size_t i = 0; i < typePairs.size() && !Terminated(); ++i) {
    const Text programId = ValuePart(typePairs[i]);
    ReportProgress(ShareOfBar(i, typePairs.size(), 50, 50), programId);
    CheckFileType(*reader, *prober, u"\\" + programId);
  }
  FinishSection();
}

void TScan::CheckExtension(RegistryStore& registry, RegistryStore& prober, TextView extension,
                           std::vector<Text>& typePairs) {
  const Text key = u"\\" + Text(extension);
  const Text programId = DefaultText(registry, key);
  if (!programId.empty()) {
    if (!prober.KeyExists(programId)) {
      const Text fullKey = RootKeyName(kHkeyClassesRoot) + u"\\" + programId;
      ReportKey(kHkeyClassesRoot, key, programId, Say(TextId::MissingProgId, fullKey), kProblemImage);
    } else {
      typePairs.push_back(Text(extension) + u"=" + programId);
    }
  }
  const Text commandKey = key + u"\\shell\\command";
  if (IsKeyEmpty(kHkeyClassesRoot, commandKey, true)) {
    ReportKey(kHkeyClassesRoot, commandKey, {}, Say(TextId::EmptyKey), kProblemImage);
  }
}

void TScan::CheckClassKey(RegistryStore& registry, RegistryStore& prober, TextView name) {
  const Text key = u"\\" + Text(name);
  if (IsKeyEmpty(kHkeyClassesRoot, key, true)) {
    ReportKey(kHkeyClassesRoot, key, {}, Say(TextId::EmptyKey), kProblemImage);
  }
  CheckClassLink(registry, prober, key);
}

void TScan::CheckClassLink(RegistryStore& registry, RegistryStore& prober, TextView base) {
  const Text key = Text(base) + u"\\CLSID";
  const Text classId = DefaultText(registry, key);
  if (classId.empty() || IsClassIntact(prober, classId))
    return;
  ReportKey(kHkeyClassesRoot, key, classId, Say(TextId::BrokenClassLink, classId), kProblemImage);
}

void TScan::CheckFileType(RegistryStore& registry, RegistryStore& prober, TextView base) {
  CheckClassLink(registry, prober, base);

  const Text iconKey = Text(base) + u"\\DefaultIcon";
  const Text icon = DefaultText(registry, iconKey);
  if (!icon.empty() && !IsShellTargetValid(icon)) {
    ReportKey(kHkeyClassesRoot, iconKey, icon, Say(TextId::MissingIcon, icon), kProblemImage);
  }
  for (const Text& verb : SubKeyNames(registry, Text(base) + u"\\Shell")) {
    CheckVerb(registry, prober, base, verb);
  }
  const Text handlersKey = Text(base) + Text(kHandlersKey);
  for (const Text& handler : SubKeyNames(registry, handlersKey)) {
    // A braced handler's key is named without a separator, and only there the problem has an image.
    CheckHandler(registry, prober, handlersKey, handler, handlersKey + handler, kProblemImage);
  }
  const Text sheetsKey = Text(base) + Text(kSheetsKey);
  for (const Text& sheet : SubKeyNames(registry, sheetsKey)) {
    CheckHandler(registry, prober, sheetsKey, sheet, sheetsKey + u"\\" + sheet, kNoImage);
  }
}

void TScan::CheckVerb(RegistryStore& registry, RegistryStore& prober, TextView base, TextView verb) {
  const Text verbKey = Text(base) + u"\\Shell\\" + Text(verb);
  const Text command = DefaultText(registry, verbKey + u"\\Command");
  if (!command.empty() && !IsShellTargetValid(command)) {
    ReportKey(kHkeyClassesRoot, verbKey, command, Say(TextId::BrokenVerb, verb, command), kProblemImage);
  }
  if (registry.OpenKey(verbKey + u"\\DropTarget", false)) {
    // The list of broken classes does not count here.
    const Text classId = registry.ReadString(u"CLSID");
    registry.CloseKey();
    if (!classId.empty() && !prober.KeyExists(u"\\clsid\\" + classId)) {
      ReportKey(kHkeyClassesRoot, verbKey, classId, Say(TextId::BrokenVerb, verb, classId), kProblemImage);
    }
  }
  if (!prober.KeyExists(verbKey + u"\\command") && !prober.KeyExists(verbKey + u"\\DropTarget")) {
    ReportKey(kHkeyClassesRoot, verbKey, {}, Say(TextId::VerbWithoutCommand), kProblemImage);
  }
}

// A handler's name is the class identifier itself, in braces, or its default value is.
void TScan::CheckHandler(RegistryStore& registry, RegistryStore& prober, TextView handlersKey,
                         TextView handler, TextView bracedKey, std::int32_t bracedImage) {
  if (IsBracedName(handler)) {
    if (IsClassIntact(prober, handler))
      return;
    ReportKey(kHkeyClassesRoot, bracedKey, {}, Say(TextId::BrokenClassLink, handler), bracedImage);
    return;
  }
  const Text key = Text(handlersKey) + u"\\" + Text(handler);
  const std::optional<Text> classId = DefaultValue(registry, key);
  if (!classId)
    return;
  if (classId->empty()) {
    ReportKey(kHkeyClassesRoot, key, {}, Say(TextId::HandlerWithoutClass));
  } else if (!IsClassIntact(prober, *classId)) {
    ReportKey(kHkeyClassesRoot, key, *classId, Say(TextId::BrokenClassLink, *classId));
  }
}

bool TScan::IsClassIntact(RegistryStore& prober, TextView classId) {
  return prober.KeyExists(u"\\clsid\\" + Text(classId)) && !ReportedClassIds.Holds(classId);
}

bool TScan::IsShellTargetValid(TextView text) {
  if (Contains(text, u"\\\\") || BeginsWithArgument(text))
    return true;
  if (!Contains(text, u"%"))
    return m_paths.CommandLineFileExists(text, true);
  return m_paths.CommandLineFileExists(m_paths.ExpandPathVariables(text), true);
}

}  // namespace corvalt
