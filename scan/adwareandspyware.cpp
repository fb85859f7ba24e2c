// Adware and Spyware: registry traces of known unwanted programs. The programs and their traces come from a
// data file.

#include "base/lettercase.h"
#include "formats/inflate.h"
#include "scan/threadscan.h"
#include "system/systemerror.h"

namespace corvalt {

namespace {

constexpr TextView kServices = u"\\SYSTEM\\CurrentControlSet\\Services\\";
constexpr TextView kHelperObjects =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\";
constexpr TextView kToolbar = u"\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";

// A full key path taken apart at its root's name; a text without "\" is all root name.
struct TRootedPath {
  TRootKey Root;
  Text Rest;
};

TRootedPath SplitRoot(TextView path) {
  const std::size_t end = path.find(u'\\');
  return {RootKeyFromName(path.substr(0, end)),
          Text(end == TextView::npos ? TextView() : path.substr(end + 1))};
}

std::optional<TNativeXml> LoadCatalogue(TFileStore& files, TextView path) {
  std::vector<std::uint8_t> file;
  if (files.ReadFile(path, file).Failed())
    return std::nullopt;
  const std::optional<std::vector<std::uint8_t>> content = InflateDataFile(file);
  return content ? TNativeXml::Parse(*content) : std::nullopt;
}

std::size_t ChildCountOf(const TXmlElement& element) {
  std::size_t count = 0;
  for (TXmlElement child = element.FirstChild(); child; child = child.NextSibling())
    ++count;
  return count;
}

}  // namespace

void TScan::ScanAdwareAndSpyware(const TSection& section) {
  AddHeader(section);
  const Text path = m_context.Vars.ProgramFolder + u"\\data\\xdata.dat";
  const std::optional<TNativeXml> catalogue = LoadCatalogue(m_system.Files, path);
  // The catalogue belongs to the installation: without it the scan can't say that nothing was found.
  if (!catalogue)
    throw TProgramException(PlainText(Say(TextId::CatalogueUnreadable, path)));
  const std::size_t count = ChildCountOf(catalogue->Root());
  std::size_t i = 0;
  for (TXmlElement program = catalogue->Root().FirstChild(); program; program = program.NextSibling()) {
    if (const TXmlElement name = program.FirstChild())
      ReportProgress(ShareOfBar(i, count, 100), name.ElementText());
    CheckProgramTraces(program);
    ++i;
  }
  FinishSection();
}

// The first element names the program, and is looked at as a trace like every other.
void TScan::CheckProgramTraces(const TXmlElement& program) {
  const TXmlElement name = program.FirstChild();
  if (!name)
    return;
  const Text description = u" " + name.ElementText();
  for (TXmlElement trace = name; trace && !Terminated(); trace = trace.NextSibling()) {
    CheckTrace(UpperCase(trace.Name()), trace.ElementText(), description);
  }
}

void TScan::CheckTrace(TextView kind, TextView trace, TextView description) {
  if (kind == u"SERVICE") {
    if (!Trim(trace).empty())
      CheckKeyTrace(kHkeyLocalMachine, Text(kServices) + Text(trace), description);
  } else if (kind == u"BHO") {
    if (!Trim(trace).empty())
      CheckKeyTrace(kHkeyLocalMachine, Text(kHelperObjects) + Text(trace), description);
  } else if (kind == u"TOOLBAR") {
    CheckValueTrace(kHkeyLocalMachine, kToolbar, trace, description);
  } else if (kind == u"REGKEY") {
    const TRootedPath path = SplitRoot(trace);
    const Text keyPath = Trim(path.Rest);
    if (!keyPath.empty())
      CheckKeyTrace(path.Root, keyPath, description);
  } else if (kind == u"REGVALUE") {
    const TRootedPath path = SplitRoot(trace);
    const std::size_t separator = LastPos(u"\\", path.Rest);
    const TextView rest = path.Rest;
    const TextView keyPath = separator == 0 ? TextView() : rest.substr(0, separator - 1);
    CheckValueTrace(path.Root, keyPath, rest.substr(separator), description);
  }
}

void TScan::CheckKeyTrace(TRootKey root, TextView keyPath, TextView description) {
  if (OpenRoot(root)->KeyExists(keyPath))
    ReportKey(root, keyPath, {}, description);
}

void TScan::CheckValueTrace(TRootKey root, TextView keyPath, TextView valueName, TextView description) {
  const std::unique_ptr<RegistryStore> registry = OpenRoot(root);
  if (!registry->OpenKey(keyPath, false) || !registry->ValueExists(valueName))
    return;
  ReportValue(root, keyPath, valueName, {}, description);
}

}  // namespace corvalt
