// File Associations: extensions, the file types they name, and what those types link to.

#include <algorithm>

#include "base/lettercase.h"
#include "scan/threadscan.h"
#include "system/openkey.h"

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

// A key that does not open is treated like one with an empty default value.
Text DefaultText(RegistryStore& registry, TextView keyPath) {
  return DefaultValue(registry, keyPath).value_or(Text());
}

// The checks of single extensions, classes and file types.
class TAssociationChecks {
 public:
  explicit TAssociationChecks(TScan& scan)
      : m_scan(scan), m_reader(scan.OpenRoot(kHkeyClassesRoot)), m_prober(scan.OpenRoot(kHkeyClassesRoot)) {
  }

  // The names of all keys directly below the root, sorted without regard to case.
  std::vector<Text> ClassKeys();

  void CheckExtension(TextView extension);
  void CheckClassKey(TextView name);
  void CheckFileType(TextView base);

  // One line for all files, and one for each extension that CheckExtension found working: the extension, "="
  // and its program identifier.
  const std::vector<Text>& TypePairs() const {
    return m_typePairs;
  }

 private:
  void CheckClassLink(TextView base);
  void CheckVerb(TextView base, TextView verb);
  void CheckHandler(TextView handlersKey, TextView handler, TextView bracedKey, std::int32_t bracedImage);
  bool IsClassIntact(TextView classId);
  bool IsShellTargetValid(TextView text);

  TScan& m_scan;
  std::unique_ptr<RegistryStore> m_reader;
  // Only asked whether keys exist, so that the reader's key stays open.
  std::unique_ptr<RegistryStore> m_prober;
  std::vector<Text> m_typePairs = {Text(kAllFilesPair)};
};

std::vector<Text> TAssociationChecks::ClassKeys() {
  std::vector<Text> names = SubKeyNames(*m_reader, u"\\");
  std::sort(names.begin(), names.end(), TLessIgnoringCase());
  return names;
}

void TAssociationChecks::CheckExtension(TextView extension) {
  const Text key = u"\\" + Text(extension);
  const Text programId = DefaultText(*m_reader, key);
  if (!programId.empty()) {
    if (!m_prober->KeyExists(programId)) {
      const Text fullKey = RootKeyName(kHkeyClassesRoot) + u"\\" + programId;
      m_scan.ReportKey(kHkeyClassesRoot, key, programId, m_scan.Say(TextId::MissingProgId, fullKey),
                       kProblemImage);
    } else {
      m_typePairs.push_back(Text(extension) + u"=" + programId);
    }
  }
  const Text commandKey = key + u"\\shell\\command";
  if (m_scan.IsKeyEmpty(kHkeyClassesRoot, commandKey, true)) {
    m_scan.ReportKey(kHkeyClassesRoot, commandKey, {}, m_scan.Say(TextId::EmptyKey), kProblemImage);
  }
}

void TAssociationChecks::CheckClassKey(TextView name) {
  const Text key = u"\\" + Text(name);
  if (m_scan.IsKeyEmpty(kHkeyClassesRoot, key, true)) {
    m_scan.ReportKey(kHkeyClassesRoot, key, {}, m_scan.Say(TextId::EmptyKey), kProblemImage);
  }
  CheckClassLink(key);
}

void TAssociationChecks::CheckClassLink(TextView base) {
  const Text key = Text(base) + u"\\CLSID";
  const Text classId = DefaultText(*m_reader, key);
  if (classId.empty() || IsClassIntact(classId))
    return;
  m_scan.ReportKey(kHkeyClassesRoot, key, classId, m_scan.Say(TextId::BrokenClassLink, classId),
                   kProblemImage);
}

void TAssociationChecks::CheckFileType(TextView base) {
  CheckClassLink(base);

  const Text iconKey = Text(base) + u"\\DefaultIcon";
  const Text icon = DefaultText(*m_reader, iconKey);
  if (!icon.empty() && !IsShellTargetValid(icon)) {
    m_scan.ReportKey(kHkeyClassesRoot, iconKey, icon, m_scan.Say(TextId::MissingIcon, icon), kProblemImage);
  }
  for (const Text& verb : SubKeyNames(*m_reader, Text(base) + u"\\Shell")) {
    CheckVerb(base, verb);
  }
  const Text handlersKey = Text(base) + Text(kHandlersKey);
  for (const Text& handler : SubKeyNames(*m_reader, handlersKey)) {
    // A braced handler's key is named without a separator, and only there the problem has an image.
    CheckHandler(handlersKey, handler, handlersKey + handler, kProblemImage);
  }
  const Text sheetsKey = Text(base) + Text(kSheetsKey);
  for (const Text& sheet : SubKeyNames(*m_reader, sheetsKey)) {
    CheckHandler(sheetsKey, sheet, sheetsKey + u"\\" + sheet, kNoImage);
  }
}

void TAssociationChecks::CheckVerb(TextView base, TextView verb) {
  const Text verbKey = Text(base) + u"\\Shell\\" + Text(verb);
  const Text command = DefaultText(*m_reader, verbKey + u"\\Command");
  if (!command.empty() && !IsShellTargetValid(command)) {
    m_scan.ReportKey(kHkeyClassesRoot, verbKey, command, m_scan.Say(TextId::BrokenVerb, verb, command),
                     kProblemImage);
  }
  if (const TOpenKey dropTarget(*m_reader, verbKey + u"\\DropTarget"); dropTarget) {
    // The list of broken classes does not count here.
    const Text classId = m_reader->ReadString(u"CLSID");
    if (!classId.empty() && !IsClassRegistered(*m_prober, classId)) {
      m_scan.ReportKey(kHkeyClassesRoot, verbKey, classId, m_scan.Say(TextId::BrokenVerb, verb, classId),
                       kProblemImage);
    }
  }
  if (!m_prober->KeyExists(verbKey + u"\\command") && !m_prober->KeyExists(verbKey + u"\\DropTarget")) {
    m_scan.ReportKey(kHkeyClassesRoot, verbKey, {}, m_scan.Say(TextId::VerbWithoutCommand), kProblemImage);
  }
}

// A handler's name is the class identifier itself, in braces, or its default value is.
void TAssociationChecks::CheckHandler(TextView handlersKey, TextView handler, TextView bracedKey,
                                      std::int32_t bracedImage) {
  if (IsBracedName(handler)) {
    if (IsClassIntact(handler))
      return;
    m_scan.ReportKey(kHkeyClassesRoot, bracedKey, {}, m_scan.Say(TextId::BrokenClassLink, handler),
                     bracedImage);
    return;
  }
  const Text key = Text(handlersKey) + u"\\" + Text(handler);
  const std::optional<Text> classId = DefaultValue(*m_reader, key);
  if (!classId)
    return;
  if (classId->empty()) {
    m_scan.ReportKey(kHkeyClassesRoot, key, {}, m_scan.Say(TextId::HandlerWithoutClass));
  } else if (!IsClassIntact(*classId)) {
    m_scan.ReportKey(kHkeyClassesRoot, key, *classId, m_scan.Say(TextId::BrokenClassLink, *classId));
  }
}

bool TAssociationChecks::IsClassIntact(TextView classId) {
  return IsClassRegistered(*m_prober, classId) && !m_scan.ReportedClassIds.Holds(classId);
}

bool TAssociationChecks::IsShellTargetValid(TextView text) {
  if (Contains(text, u"\\\\") || BeginsWithArgument(text))
    return true;
  if (!Contains(text, u"%"))
    return m_scan.Paths().CommandLineFileExists(text, true);
  return m_scan.Paths().CommandLineFileExists(m_scan.Paths().ExpandPathVariables(text), true);
}

}  // namespace

void ScanFileAssociations(TScan& scan) {
  TAssociationChecks checks(scan);
  const std::vector<Text> classKeys = checks.ClassKeys();
  for (std::size_t i = 0; i < classKeys.size() && !scan.Terminated(); ++i) {
    scan.ReportProgress(ShareOfBar(i, classKeys.size(), 50), classKeys[i]);
    if (classKeys[i].starts_with(u'.')) {
      checks.CheckExtension(classKeys[i]);
    } else {
      checks.CheckClassKey(classKeys[i]);
    }
  }
  const std::vector<Text>& typePairs = checks.TypePairs();
  for (std::size_t i = 0; i < typePairs.size() && !scan.Terminated(); ++i) {
    const Text programId = ValuePart(typePairs[i]);
    scan.ReportProgress(ShareOfBar(i, typePairs.size(), 50, 50), programId);
    checks.CheckFileType(u"\\" + programId);
  }
}

}  // namespace corvalt
